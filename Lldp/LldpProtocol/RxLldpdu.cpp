#include "Lldp/LldpProtocol/RxLldpdu.h"

#include <limits>

#include "Lldp/LldpProtocol/Compare.h"
#include "Lldp/LldpProtocol/OptionalTlvs.h"
#include "Lldp/LldpProtocol/Trace.h"
#include "Lldp/LldpProtocol/Whereabouts.h"
#include "Lldp/LogEvents.h"
#include "Rex/System.h"

namespace Lldp::Agent {
namespace {

using Msap = RemoteSystem::Msap;

constexpr int maxIdentifierInfoLen = 256;
constexpr uint8_t maxIdentifierSubtype = 7;
constexpr uint8_t unknownIdentifierSubtype = 8;

// Subtype and value of an identifier. The value is taken as it is, whatever the subtype says of
// its form; all subtypes above 7 become one, and 0 stays.
template <class Identifier>
Identifier identifierFrom(int infoLen, const char* info, const char* unknownSubtypeWords) {
   uint8_t subtype = get8(info);
   if (subtype > maxIdentifierSubtype) {
      TRACE(codecTrace, 0, unknownSubtypeWords << subtype);
      subtype = unknownIdentifierSubtype;
   }
   using Subtype = decltype(Identifier::subtype);
   using Value = decltype(Identifier::value);
   return {static_cast<Subtype>(subtype), Value(info + 1, static_cast<size_t>(infoLen - 1))};
}

// The three TLVs that have to stand first, in this order. False is a fatal error.
bool readMandatoryTlvs(const char** cursor, const char* end, Msap* msap, uint16_t* ttl) {
   int infoLen = 0;
   const char* info = nullptr;
   if (!extractMandatoryTlv(cursor, end, tlvChassisId, maxIdentifierInfoLen, &infoLen, &info)) {
      TRACE(codecTrace, 0, "Error in first mandatory TLV");
      return false;
   }
   auto& chassis = msap->chassisIdentifier;
   chassis = identifierFrom<ChassisIdentifier>(infoLen, info, "Unknown chassid ID subtype ");
   TRACE(codecTrace, 6, "Chassis ID: " << chassis.value);

   if (!extractMandatoryTlv(cursor, end, tlvPortId, maxIdentifierInfoLen, &infoLen, &info)) {
      TRACE(codecTrace, 0, "Error in second mandatory TLV");
      return false;
   }
   auto& port = msap->portIdentifier;
   port = identifierFrom<PortIdentifier>(infoLen, info, "Unknown port ID subtype ");
   TRACE(codecTrace, 6, "Port ID: " << port.value);

   // Only the first two octets count, and a tail is ignored.
   constexpr int anyLen = std::numeric_limits<int>::max();
   if (!extractMandatoryTlv(cursor, end, tlvTimeToLive, anyLen, &infoLen, &info)) {
      TRACE(codecTrace, 0, "Error in third mandatory TLV");
      return false;
   }
   *ttl = get16(info);
   TRACE(codecTrace, 6, "TTL: " << *ttl);
   return true;
}

// The stored neighbour, if there is one, stays as it was.
RemoteSystem::PtrConst discardedFrame(PortStatus& portStatus) {
   TRACE(codecTrace, 8, "Frame had a fatal error -- discarding");
   portStatus.rxFramesDiscardedTotalInc(1);
   TRACE(codecTrace, 8, "Frame had an error");
   portStatus.rxFramesErrorsInc(1);
   return nullptr;
}

void logNeighbour(const Rex::LogHandle& event, const Msap& msap, const PortConfig& portConfig) {
   // Handed over as they are: a text would be made harmless a second time.
   Rex::log(event, msap.chassisIdentifier, msap.portIdentifier, portConfig.intfId());
}

void processShutdown(const Msap& msap, const PortConfig& portConfig, Status& status,
                     PortStatus& portStatus, double now) {
   TRACE(codecTrace, 4, "Received shutdown frame from " << msap);
   RemoteSystem::Ptr remoteSystem = portStatus.remoteSystemByMsap(msap);
   if (!remoteSystem) {
      TRACE(codecTrace, 2, "Received shutdown frame from unknown MSAP: " << msap);
      return;
   }
   TRACE(codecTrace, 4, "Deleting RemoteSystem");
   int index = remoteSystem->index();
   portStatus.remoteSystemByMsapDel(msap);
   portStatus.remoteSystemDel(index);
   status.remTablesDeletesInc(1);
   logNeighbour(LLDP_NEIGHBOR_GONE, msap, portConfig);
   status.remTablesLastChangeTimeIs(now);
}

// Indices start over at 1 when they wrap, and pass over those of neighbours that still live.
int newIndex(PortStatus& portStatus) {
   int index = 0;
   do {
      index = portStatus.nextRemoteSystemIndexInc(1);
      if (index < 0) {
         TRACE(codecTrace, 2, "Index for RemoteSystem tables has wrapped");
         portStatus.nextRemoteSystemIndexIs(0);
         index = portStatus.nextRemoteSystemIndexInc(1);
      }
   } while (portStatus.remoteSystemHas(index));
   return index;
}

RemoteSystem::Ptr newNeighbour(const Msap& msap, const PortConfig& portConfig, Status& status,
                               PortStatus& portStatus, double now) {
   TRACE(codecTrace, 4, "Creating RemoteSystem");
   RemoteSystem::Ptr remoteSystem = portStatus.remoteSystemIs(newIndex(portStatus), msap);
   portStatus.remoteSystemByMsapIs(remoteSystem);
   remoteSystem->creationTimeIs(now);
   status.remTablesInsertsInc(1);
   logNeighbour(LLDP_NEIGHBOR_NEW, msap, portConfig);
   return remoteSystem;
}

// Of the neighbours on all ports.
Whereabouts whereabouts;

}  // namespace

void expectLldpdu(std::string_view lldpdu) {
   whereabouts.expect(Whereabouts::senderOf(lldpdu));
}

RemoteSystem::PtrConst processRxLldpdu(char* begin, char* end, PortConfig::PtrConst portConfig,
                                       Status::Ptr status, PortStatus::Ptr portStatus,
                                       const Wirekit::EthAddr& srcAddr) {
   // One time for all that this frame sets.
   const double now = Rex::System::currentTime();
   portStatus->rxFramesTotalInc(1);
   const std::string_view lldpdu(begin, static_cast<size_t>(end - begin));
   const auto sender = Whereabouts::senderOf(lldpdu);
   whereabouts.fetch(sender);

   const char* cursor = begin;
   Msap msap;
   uint16_t ttl = 0;
   if (!readMandatoryTlvs(&cursor, end, &msap, &ttl)) return discardedFrame(*portStatus);
   if (ttl == 0) {
      // A shutdown frame says no more than that: its rest is not read.
      processShutdown(msap, *portConfig, *status, *portStatus, now);
      return nullptr;
   }
   TRACE(codecTrace, 4, "Received info frame from " << msap << " valid for " << ttl << " seconds");

   portStatus->remoteSystemByMsap().prefetch(msap);

   // The frame is read apart from all tables, so that a fatal error leaves no trace in them and
   // watchers see nothing transient.
   auto scratch = Rex::make<RemoteSystem>(1, msap);
   bool frameError = false;
   if (!parseOptionalTlvs(cursor, end, scratch, portStatus, &frameError)) {
      return discardedFrame(*portStatus);
   }

   bool changed = false;
   RemoteSystem::Ptr remoteSystem;
   bool repeated = false;
   // Who said the same before, octet by octet, has the same identifiers.
   auto said = [&](const RemoteSystem::Ptr& known) {
      return repeated = known->lastLldpdu == lldpdu;
   };
   const auto* found = portStatus->remoteSystemByMsap().find(msap, said);
   if (found) {
      remoteSystem = *found;
      TRACE(codecTrace, 4, "Updating RemoteSystem");
   } else if (portStatus->remoteSystems() >= portConfig->maxRemoteSystems()) {
      TRACE(codecTrace, 2, "Not creating RemoteSystem for " << msap << " because limit reached");
      portStatus->rxFramesDiscardedTotalInc(1);
      REX_ASSERT(!remoteSystem);
      return remoteSystem;
   } else {
      remoteSystem = newNeighbour(msap, *portConfig, *status, *portStatus, now);
      changed = true;
   }

   if (!repeated) {
      // A new time to live alone is no change.
      remoteSystem->ttlIs(ttl);
      if (copyChanges(*scratch, *remoteSystem)) changed = true;
      remoteSystem->lastLldpdu = lldpdu;
   }
   remoteSystem->ethAddrIs(srcAddr);
   remoteSystem->lastRefreshTimeIs(now);
   remoteSystem->expiryTimeIs(now + ttl);
   if (changed) {
      TRACE(codecTrace, 6, "Something changed -- updating lastChangeTime to " << now);
      remoteSystem->lastChangeTimeIs(now);
      status->remTablesLastChangeTimeIs(now);
   }
   status->lastPacketParsedTimeIs(now);
   if (frameError) {
      TRACE(codecTrace, 8, "Frame had an error");
      portStatus->rxFramesErrorsInc(1);
   }
   if (found) whereabouts.note(sender, *remoteSystem, *found);
   return remoteSystem;
}

}  // namespace Lldp::Agent
