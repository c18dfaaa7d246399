#include "Lldp/LldpProtocol/Compare.h"

#include "Lldp/LldpProtocol/Trace.h"

namespace Lldp::Agent {

// The words of the trace hold the attribute's own name, as in
// "Attribute portDesc changed (was: "
// " of collection managementAddress deleted"
// " of collection managementAddress added/updated"
#define COPY_SCALAR(x)                                                                           \
   if (stored.x() != scratch.x()) {                                                              \
      TRACE(codecTrace, 8,                                                                       \
            "Attribute " #x " changed (was: " << stored.x() << ", now: " << scratch.x() << ")"); \
      stored.x##Is(scratch.x());                                                                 \
      changed = true;                                                                            \
   }

#define COPY_COLLECTION(x)                                                             \
   for (auto [key, member] : stored.x()) {                                             \
      if (scratch.x##Has(key)) continue;                                               \
      TRACE(codecTrace, 8, "Member " << key << " of collection " #x " deleted");       \
      stored.x##Del(key);                                                              \
      changed = true;                                                                  \
   }                                                                                   \
   for (auto [key, member] : scratch.x()) {                                            \
      const auto* known = stored.x().find(key);                                        \
      if (known && *known == member) continue;                                         \
      TRACE(codecTrace, 8, "Member " << key << " of collection " #x " added/updated"); \
      stored.x##Is(member);                                                            \
      changed = true;                                                                  \
   }

// The order is that in which other agents see the changes.
bool copyChanges(const RemoteSystem& scratch, RemoteSystem& stored) {
   bool changed = false;
   COPY_SCALAR(portDesc)
   COPY_SCALAR(sysName)
   COPY_SCALAR(sysDesc)
   COPY_SCALAR(systemCapabilities)
   COPY_COLLECTION(managementAddress)
   COPY_COLLECTION(unknownTlv)
   COPY_COLLECTION(unknownOrgDefTlv)
   COPY_SCALAR(portVlanId)
   COPY_SCALAR(portVlanIdTlvReceived)
   COPY_COLLECTION(portAndProtocolVlan)
   COPY_COLLECTION(vlanName)
   COPY_COLLECTION(protocolIdentityInfo)
   COPY_SCALAR(vidUsageDigest)
   COPY_SCALAR(vidUsageDigestTlvReceived)
   COPY_SCALAR(managementVid)
   COPY_SCALAR(managementVidTlvReceived)
   COPY_SCALAR(linkAggregationInfo)
   COPY_SCALAR(linkAggregationTlvReceived)
   COPY_SCALAR(macPhyConfigStatusInfo)
   COPY_SCALAR(macPhyConfigStatusTlvReceived)
   COPY_SCALAR(powerViaMdiInfo)
   COPY_SCALAR(powerViaMdiTlvReceived)
   COPY_SCALAR(medCapabilitiesTlvReceived)
   COPY_SCALAR(medCapabilitiesInfo)
   COPY_COLLECTION(networkPolicyTlv)
   COPY_SCALAR(locationId)
   COPY_SCALAR(hardwareRevisionTlvInfo)
   COPY_SCALAR(firmwareRevisionTlvInfo)
   COPY_SCALAR(softwareRevisionTlvInfo)
   COPY_SCALAR(serialNumberTlvInfo)
   COPY_SCALAR(manufacturerNameTlvInfo)
   COPY_SCALAR(modelNameTlvInfo)
   COPY_SCALAR(assetIDTlvInfo)
   COPY_SCALAR(maximumFrameSizeInfo)
   COPY_SCALAR(maximumFrameSizeTlvReceived)
   return changed;
}

#undef COPY_SCALAR
#undef COPY_COLLECTION

}  // namespace Lldp::Agent
