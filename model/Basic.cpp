#include "model/Basic.h"

#include "Rex/Register.h"
#include "model/Identifiers.h"

REX_REGISTER(Lldp::UnknownOrgDefTlvCounter)
REX_REGISTER(Lldp::UnknownOrgDefTlvParseContext)

namespace Lldp {

Rex::String ManagementAddress::Key::stringValue() const {
   return addressText(manAddrSubtype, manAddr.view());
}

}  // namespace Lldp
