// What the agent learned, and its counters: one `Status` for each supervisor, in the directory
// "l2discovery/lldp/status/local", and the merged `AllStatus` at "l2discovery/lldp/status/all".
//
// A reader sees one attribute change at a time: `remTablesLastChangeTime` moves after all
// attributes of a neighbour are written, `lastPacketParsedTime` last.
#pragma once

#include "Foreign/L3.h"
#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"
#include "model/RemoteSystem.h"

namespace Lldp {

struct PortStatus : Rex::Entity {
   REX_ENTITY(PortStatus, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   REX_KEY(double, creationTime)  // seconds; the counters count from here
   // The owning table, and the same entities by MSAP: made and deleted in both together. An index
   // is not used again until `nextRemoteSystemIndex` wraps.
   REX_CHILDREN(RemoteSystem, remoteSystem, int)
   REX_POINTERS(RemoteSystem, remoteSystemByMsap, RemoteSystem::Msap, msap)
   REX_COUNTER(int32_t, nextRemoteSystemIndex)
   REX_ATTRIBUTE(uint32_t, ceeSeqNumToAck)
   REX_ATTRIBUTE(double, lastTxTime)               // seconds; the last frame built
   REX_COUNTER(uint32_t, rxFramesTotal)            // every frame handed to the parser
   REX_COUNTER(uint32_t, rxFramesDiscardedTotal)   // frames dropped whole
   REX_COUNTER(uint32_t, rxFramesErrors)           // frames with any error
   REX_COUNTER(uint32_t, rxTLVsDiscardedTotal)     // TLVs dropped
   REX_COUNTER(uint32_t, rxTLVsUnrecognizedTotal)  // TLVs not understood
   REX_COUNTER(uint32_t, rxAgeoutsTotal)           // neighbours aged out
   REX_COUNTER(uint32_t, txFramesTotal)            // frames built
   REX_COUNTER(uint32_t, txFramesLengthExceeded)   // frames that lost a TLV for lack of room
   REX_COUNTER(uint32_t, txFramesNoMemErrors)      // frames not built for lack of a packet
   REX_ENTITY_END()
   PortStatus(const Wirekit::IntfId& intfId, const double& now)
       : intfId_(intfId), creationTime_(now) {}

   // Whether any neighbour on the port has the thing.
   bool anyLldpMedReceived() const;
   bool powerViaMdiTlvReceived() const;
   bool networkPolicyTlvReceived() const;
};

struct StatusBase : Rex::Entity {
   REX_ENTITY(StatusBase, Rex::Entity)
   REX_COUNTER(uint32_t, remTablesInserts)
   REX_COUNTER(uint32_t, remTablesDeletes)
   REX_COUNTER(uint32_t, remTablesDrops)
   REX_COUNTER(uint32_t, remTablesAgeouts)
   REX_STAMP(double, remTablesLastChangeTime)  // seconds
   REX_STAMP(double, lastPacketParsedTime)     // seconds
   REX_ATTRIBUTE(L3::VrfName, mgmtAddrVrf)
   REX_ENTITY_END()
};

struct Status : StatusBase {
   REX_ENTITY(Status, StatusBase)
   REX_CHILDREN(PortStatus, portStatus, Wirekit::IntfId)
   REX_ENTITY_END()
};

struct AllStatus : StatusBase {
   REX_ENTITY(AllStatus, StatusBase)
   REX_POINTERS(PortStatus const, portStatus, Wirekit::IntfId, intfId)
   REX_ENTITY_END()
};

// At the cell's path of "l2discovery/lldp/remTablesStatus". It outlives the process, and so a
// request to clear runs once and not once for each start.
struct RemTablesStatus : Rex::Entity {
   REX_ENTITY(RemTablesStatus, Rex::Entity)
   REX_ATTRIBUTE(double, remTablesLastClearTime)  // seconds
   REX_ENTITY_END()
};

}  // namespace Lldp
