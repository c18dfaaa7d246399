#include "Foreign/Dot1x.h"
#include "Foreign/NbrClassification.h"
#include "Rex/Register.h"

REX_REGISTER(Identity::Dot1x::Status)
REX_REGISTER(Identity::NbrClassification::CliConfig)
REX_REGISTER(Identity::NbrClassification::Status)
