#include "Foreign/Redundancy.h"

#include "Rex/Register.h"

REX_REGISTER(Redundancy::RedundancyStatus)
