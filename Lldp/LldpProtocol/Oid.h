// Object identifiers of the Management Address TLV (IEEE Std 802.1AB-2016, 8.5.9.8): contents
// octets of the basic encoding rules (ITU-T X.690, 8.19), without tag and length.
#pragma once

#include "Foreign/Snmp.h"

namespace Lldp::Agent {

// At least one octet. Octets that are no object identifier give the empty one.
Snmp::ObjectIdentifier decodeOid(const Rex::String& oidBytes);

// Only what is received has object identifiers: none is ever configured here, and any but the
// empty one is an assertion.
Rex::String encodeOid(const Snmp::ObjectIdentifier& oid);

}  // namespace Lldp::Agent
