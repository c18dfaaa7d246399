#include "Foreign/Routing.h"

#include "Rex/Register.h"

REX_REGISTER(Routing::Config)
