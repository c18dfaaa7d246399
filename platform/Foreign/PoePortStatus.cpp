#include "Foreign/PoePortStatus.h"

#include "Rex/Register.h"

REX_REGISTER(Environment::Power::PoePortStatus)
