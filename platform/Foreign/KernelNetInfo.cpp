#include "Foreign/KernelNetInfo.h"

#include "Rex/Register.h"

REX_REGISTER(KernelNetInfo::Status)
