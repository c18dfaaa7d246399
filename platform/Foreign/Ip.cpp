#include "Foreign/Ip.h"

#include "Foreign/Ip6.h"
#include "Rex/Register.h"

REX_REGISTER(L3::Intf::Status)
REX_REGISTER(Ip::IpIntfStatus)
REX_REGISTER(Ip::Status)
REX_REGISTER(Ip6::IntfStatus)
REX_REGISTER(Ip6::Status)
