#include "Lldp/LldpNbrClassificationSm/NbrClassificationSm.h"

#include <algorithm>

#include "Foreign/Toggle.h"
#include "Rex/Dispatcher.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::NbrClassification {
namespace {

const Rex::TraceHandle trace("LldpNbrClassification", false);

using Identity::NbrClassification::Classification;

constexpr uint16_t telephoneCapability = 0x20;

// What is enabled does not matter: a telephone is one that can be one.
void setTelephoneClassification(const Lldp::RemoteSystem& remoteSystem,
                                Classification& classification) {
   const SystemCapabilitiesTlv& capabilities = remoteSystem.systemCapabilities();
   bool telephone =
       capabilities.tlvReceived && (capabilities.supported.value() & telephoneCapability);
   TRACE(trace, 8,
         remoteSystem.ethAddr().stringValue()
             << (telephone ? " is telephone" : " is not telephone"));
   classification.flags = telephone ? Classification::telephone : 0;
}

bool isTelephone(const Neighbor& neighbor) {
   return neighbor.classification.flags & Classification::telephone;
}

// The walk over all ports and neighbours.
std::vector<Heard> everyone(const Lldp::Status& status) {
   std::vector<Heard> all;
   for (auto [intfId, portStatus] : status.portStatus()) {
      for (auto [index, remoteSystem] : portStatus->remoteSystem()) {
         all.push_back({remoteSystem, intfId, {}});
      }
   }
   return all;
}

// What a frame writes of its neighbour. With one frame in a reaction nothing of it waits any more
// when the frame's end is reported.
bool isOfNeighbour(const Rex::Entity& entity, uint32_t attribute) {
   if (dynamic_cast<const Lldp::RemoteSystem*>(&entity)) return true;
   if (dynamic_cast<const Lldp::PortStatus*>(&entity)) {
      return attribute == Lldp::PortStatus::remoteSystemAttr.id;
   }
   return dynamic_cast<const Lldp::Status*>(&entity) &&
          attribute == Lldp::Status::portStatusAttr.id;
}

// An entry counts as present when it differs from the default.
bool isPresent(const Neighbor& neighbor) {
   return neighbor != Neighbor();
}

}  // namespace

NbrClassificationSm::NbrClassificationSm(
    Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir, Lldp::Status::PtrConst status,
    Identity::NbrClassification::CliConfig::PtrConst identityCliConfig,
    Identity::Dot1x::Status::PtrConst identityDot1xStatus,
    Identity::NbrClassification::Status::Ptr nbrClassficationStatus)
    : ethPhyIntfStatusDir_(std::move(ethPhyIntfStatusDir)),
      status_(std::move(status)),
      identityCliConfig_(std::move(identityCliConfig)),
      identityDot1xStatus_(std::move(identityDot1xStatus)),
      nbrClassficationStatus_(std::move(nbrClassficationStatus)),
      published_(nbrClassficationStatus_) {
   on(status_, StatusBase::lastPacketParsedTimeAttr,
      static_cast<void (NbrClassificationSm::*)()>(&NbrClassificationSm::handleNbrClassification));
   on(status_, Status::portStatusAttr, &NbrClassificationSm::handlePortStatus);
   on(identityCliConfig_, Identity::NbrClassification::CliConfig::neighborAttr,
      &NbrClassificationSm::handleCliNbrClassification);
   on(identityCliConfig_, Identity::NbrClassification::CliConfig::clearRequestAttr,
      &NbrClassificationSm::handleClassificationClearRequest);
   if (!keepsClassificationIntfDown()) {
      on(identityDot1xStatus_, Identity::Dot1x::Status::nbrClassificationCacheAttr,
         &NbrClassificationSm::handleCache);
      on(ethPhyIntfStatusDir_, Interface::AllEthPhyIntfStatusDir::intfStatusAttr,
         &NbrClassificationSm::handleIntfStatus);
      for (auto [intfId, row] : ethPhyIntfStatusDir_->intfStatus()) handleIntfStatus(intfId);
   }

   initialize();
}

NbrClassificationSm::~NbrClassificationSm() = default;

bool NbrClassificationSm::keepsClassificationIntfDown() {
   std::call_once(toggleAsked_, [this] {
      keepsIntfDown_ = getToggleState("LldpKeepNbrClassificationIntfDown", "Lldp.json", true);
   });
   return keepsIntfDown_;
}

// The tables start empty: what an earlier process published goes, unless it is renewed here.
// Requests to clear that stand already are not looked at.
void NbrClassificationSm::initialize() {
   for (auto [ethAddr, neighbor] : nbrClassficationStatus_->neighbor()) {
      toPublish_.insert(ethAddr, true);
   }
   for (auto [ethAddr, phone] : nbrClassficationStatus_->phone()) toPublish_.insert(ethAddr, true);
   for (auto [intfId, portStatus] : status_->portStatus()) handlePortStatus(intfId);
   handleNbrClassification();
   for (auto [ethAddr, neighbor] : identityCliConfig_->neighbor()) {
      handleCliNbrClassification(ethAddr);
   }
}

// Ports have their places as they are reported, which is the table's order as long as no two of
// them leave and return the other way round within one reaction: the switch's interfaces come and
// go one after the other.
void NbrClassificationSm::handlePortStatus(const Wirekit::IntfId& intfId) {
   auto portStatus = status_->portStatus(intfId);
   auto standing = nbrPortStatusSm(intfId);
   if (standing && standing->portStatus() == portStatus) return;
   nbrPortStatusSmDel(intfId);
   if (portStatus) nbrPortStatusSmIs(intfId, portStatus, nextPortPlace_++, this);
}

void NbrClassificationSm::doHear(const Wirekit::EthAddr& ethAddr, const Heard& heard) {
   heard_.add(ethAddr, heard);
   doNote(ethAddr);
}

void NbrClassificationSm::doHearNoMore(const Wirekit::EthAddr& ethAddr, const Place& place) {
   heard_.remove(ethAddr, place);
   doNote(ethAddr);
}

// A note may have waited behind the report of the frame that it belongs to, when one reaction
// brought several frames. It is then due already; where links count, takeDue() has foreseen it.
void NbrClassificationSm::doNote(const Wirekit::EthAddr& ethAddr) {
   toClassify_.insert(ethAddr, true);
   if (!keepsClassificationIntfDown()) {
      toCheck_.insert(ethAddr, true);
   } else if (classifiedIn_ == Rex::Dispatcher::reaction && Rex::Dispatcher::running()) {
      handleNbrClassification();
   }
}

void NbrClassificationSm::handleNbrClassification() {
   classifiedIn_ = Rex::Dispatcher::reaction;
   for (const Heard& heard : takeDue()) {
      handleNbrClassification(*heard.remoteSystem, heard.intfId);
   }
   doNeighborClassficationCleanup();
}

// The neighbours heard from the noted addresses, in the order of the walk. Of several with one
// address the last has the last word; where links count, the others leave watchers of their
// interfaces behind, at every walk, and notes that wait behind another frame's would come too late
// for its order: then the walk is made. One that has gone may not have been reported yet.
std::vector<Heard> NbrClassificationSm::takeDue() {
   if (!keepsClassificationIntfDown() && Rex::Dispatcher::anyPending(isOfNeighbour)) {
      for (auto [ethAddr, neighbor] : lldpNeighbor_) toCheck_.insert(ethAddr, true);
      return everyone(*status_);
   }
   auto stands = [this](const Heard& heard) {
      auto portStatus = status_->portStatus(heard.intfId);
      return portStatus &&
             portStatus->remoteSystem(heard.remoteSystem->index()) == heard.remoteSystem;
   };
   std::vector<Heard> due;
   for (auto [ethAddr, noted] : toClassify_) {
      if (keepsClassificationIntfDown()) {
         toClassify_.erase(ethAddr);
         if (const Heard* heard = heard_.last(ethAddr, stands)) due.push_back(*heard);
         continue;
      }
      std::vector<Heard> heard = heard_.all(ethAddr);
      if (heard.size() < 2) toClassify_.erase(ethAddr);
      std::ranges::copy_if(heard, std::back_inserter(due), stands);
   }
   std::ranges::sort(due, {}, &Heard::place);
   return due;
}

void NbrClassificationSm::handleNbrClassification(const Lldp::RemoteSystem& remoteSystem,
                                                  const Wirekit::IntfId& intfId) {
   Neighbor now{remoteSystem.ethAddr(), intfId, {}};
   setTelephoneClassification(remoteSystem, now.classification);
   Neighbor old = lldpNeighbor(now.ethAddr);
   bool classified = now.classification.flags != 0;
   if ((!isPresent(old) && !classified) || now == old) return;
   if (!classified) {
      TRACE(trace, 8,
            "Remove neighbor :" << Rex::valueToString(old) << " as it is not classified anymore");
      lldpNeighborDel(now.ethAddr);
      delNbrClassificationIntfSm(intfId);
      return;
   }
   if (isPresent(old)) {
      TRACE(
          trace, 8,
          "Neighbor change: old:" << Rex::valueToString(old) << " new:" << Rex::valueToString(now));
   } else {
      TRACE(trace, 8, "New neighbor :" << Rex::valueToString(now));
   }
   lldpNeighborIs(now);
   addNbrClassificationIntfSm(intfId);
}

void NbrClassificationSm::handleCliNbrClassification(const Wirekit::EthAddr& ethAddr) {
   Neighbor entry = identityCliConfig_->neighbor(ethAddr);
   if (isPresent(entry)) {
      TRACE(trace, 8, "Add nbr classification via CLI as " << Rex::valueToString(entry));
      cliNeighborIs(entry);
   } else {
      TRACE(trace, 8, "Remove nbr classification via CLI of " << ethAddr.stringValue());
      cliNeighborDel(ethAddr);
   }
   updateClassificationStatus();
}

// The operator's entries come first, and one that is no telephone takes the phone away.
void NbrClassificationSm::updateClassificationStatus() {
   if (toPublish_.empty()) return;
   TRACE(trace, 8, "Add neighbors from CLI");
   for (auto [ethAddr, changed] : toPublish_) {
      if (const Neighbor* cli = cliNeighbor_.find(ethAddr)) {
         doPublish(*cli, ") set by CLI", "Nbr classification from CLI for ");
      }
   }
   TRACE(trace, 8, "Add neighbors from LLDP");
   for (auto [ethAddr, changed] : toPublish_) {
      if (cliNeighbor_.find(ethAddr)) continue;
      if (const Neighbor* lldp = lldpNeighbor_.find(ethAddr)) {
         doPublish(*lldp, ") set by LLDP", "Nbr classification from LLDP for ");
      }
   }
   TRACE(trace, 8, "Remove not classified neighbors");
   for (auto [ethAddr, changed] : toPublish_) {
      bool known = cliNeighbor_.find(ethAddr) || lldpNeighbor_.find(ethAddr);
      if (known || !published_.neighborHas(ethAddr)) continue;
      TRACE(trace, 8, "Remove Nbr classification for " << ethAddr.stringValue());
      published_.neighborDel(ethAddr);
   }
   TRACE(trace, 8, "Remove not classified phones");
   for (auto [ethAddr, changed] : toPublish_) {
      toPublish_.erase(ethAddr);
      if (!published_.phoneHas(ethAddr)) continue;
      if (const Neighbor* cli = cliNeighbor_.find(ethAddr)) {
         if (!isTelephone(*cli)) published_.phoneDel(ethAddr);
      } else if (!isTelephone(lldpNeighbor(ethAddr))) {
         TRACE(trace, 8, "Remove Phone (" << ethAddr.stringValue() << ")");
         published_.phoneDel(ethAddr);
      }
   }
}

void NbrClassificationSm::doPublish(const Neighbor& entry, const char* phoneSetBy,
                                    const char* rowFrom) {
   if (isTelephone(entry)) {
      TRACE(trace, 8, "Phone (" << entry.ethAddr.stringValue() << phoneSetBy);
      published_.phoneIs(entry.ethAddr);
   }
   TRACE(trace, 8, rowFrom << Rex::valueToString(entry));
   published_.neighborIs(entry);
}

void NbrClassificationSm::addNbrClassificationIntfSm(const Wirekit::IntfId& intfId) {
   auto intfStatus = ethPhyIntfStatusDir_->intfStatus(intfId);
   if (!intfStatus || nbrClassificationIntfSmHas(intfId)) return;
   TRACE(trace, 8, "Adding SM for Interface " << intfId);
   nbrClassificationIntfSmIs(intfId, intfStatus, intfId, this);
}

// Asks what is published, and the callers publish afterwards: the watcher usually outlives its last
// neighbour until the next one on the interface goes. It then finds nothing to do.
void NbrClassificationSm::delNbrClassificationIntfSm(const Wirekit::IntfId& intfId) {
   if (published_.anyOn(intfId) || !nbrClassificationIntfSmHas(intfId)) return;
   TRACE(trace, 8, "Remove SM for Interface " << intfId);
   nbrClassificationIntfSmDel(intfId);
}

void NbrClassificationSm::lldpNeighborIs(const Neighbor& neighbor) {
   lldpNeighbor_.insert(neighbor.ethAddr, neighbor);
   toPublish_.insert(neighbor.ethAddr, true);
}

void NbrClassificationSm::lldpNeighborDel(const Wirekit::EthAddr& ethAddr) {
   if (!lldpNeighbor_.erase(ethAddr)) return;
   toPublish_.insert(ethAddr, true);
}

Neighbor NbrClassificationSm::lldpNeighbor(const Wirekit::EthAddr& ethAddr) const {
   const Neighbor* found = lldpNeighbor_.find(ethAddr);
   return found ? *found : Neighbor();
}

void NbrClassificationSm::cliNeighborIs(const Neighbor& neighbor) {
   cliNeighbor_.insert(neighbor.ethAddr, neighbor);
   toPublish_.insert(neighbor.ethAddr, true);
}

void NbrClassificationSm::cliNeighborDel(const Wirekit::EthAddr& ethAddr) {
   if (cliNeighbor_.erase(ethAddr)) toPublish_.insert(ethAddr, true);
}

void NbrClassificationSm::doClose() {
   for (auto [intfId, sm] : nbrClassificationIntfSm()) nbrClassificationIntfSmDel(intfId);
   for (auto [intfId, sm] : nbrPortStatusSm()) nbrPortStatusSmDel(intfId);
}

}  // namespace Lldp::Agent::NbrClassification
