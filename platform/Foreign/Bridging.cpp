#include "Foreign/Bridging.h"

#include "Rex/Register.h"

REX_REGISTER(Bridging::SwitchIntfConfig)
REX_REGISTER(Bridging::Config)
REX_REGISTER(Bridging::HwCapabilities)
