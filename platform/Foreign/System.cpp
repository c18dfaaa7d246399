#include "Foreign/System.h"

#include "Rex/Register.h"

REX_REGISTER(System::NetStatus)
