// The descriptions of this module's entity types.
#include "Rex/Register.h"
#include "Wirekit/Pam.h"

REX_REGISTER(Wirekit::Pam)
