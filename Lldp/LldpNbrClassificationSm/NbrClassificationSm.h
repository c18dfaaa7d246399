// Which MAC addresses are telephones: those of neighbours that say so, and those that the operator
// entered, whose word beats LLDP's. Exists on an active supervisor alone.
//
// After every parsed frame the tables are what a walk over all ports and neighbours would make of
// them. The walk itself is not made: only the addresses are looked at of which the walk could make
// something else than the last time. NbrPortStatusSm, a change of the tables and, where they count,
// links and the 802.1X side's cache note them.
#pragma once

#include <mutex>

#include "Foreign/Dot1x.h"
#include "Foreign/NbrClassification.h"
#include "Interface/EthPhyIntfStatus.h"
#include "Lldp/LldpNbrClassificationSm/HeardAddrs.h"
#include "Lldp/LldpNbrClassificationSm/NbrClassificationIntfSm.h"
#include "Lldp/LldpNbrClassificationSm/NbrPortStatusSm.h"
#include "Lldp/LldpNbrClassificationSm/PublishedNeighbors.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "model/Status.h"

namespace Lldp::Agent::NbrClassification {

class NbrClassificationSm : public Rex::StateMachine {
 public:
   NbrClassificationSm(Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir,
                       Lldp::Status::PtrConst status,
                       Identity::NbrClassification::CliConfig::PtrConst identityCliConfig,
                       Identity::Dot1x::Status::PtrConst identityDot1xStatus,
                       Identity::NbrClassification::Status::Ptr nbrClassficationStatus);
   ~NbrClassificationSm() override;

   // A neighbour is heard from the address, or no longer; or the walk may make something else of
   // the address than the last time.
   void doHear(const Wirekit::EthAddr& ethAddr, const Heard& heard);
   void doHearNoMore(const Wirekit::EthAddr& ethAddr, const Place& place);
   void doNote(const Wirekit::EthAddr& ethAddr);

   // Forgets what was learned on the interface, save what is being cached.
   void doNeighborClassficationCleanup(const Wirekit::IntfId& intfId);
   // Whether a classification outlives its interface's link: the feature toggle
   // LldpKeepNbrClassificationIntfDown, asked once.
   bool keepsClassificationIntfDown();

 private:
   using EthAddrs = Rex::HashMap<Wirekit::EthAddr, bool>;
   using Neighbors = Rex::HashMap<Wirekit::EthAddr, Neighbor>;

   void initialize();
   void handleNbrClassification();
   std::vector<Heard> takeDue();
   void handleNbrClassification(const Lldp::RemoteSystem& remoteSystem,
                                const Wirekit::IntfId& intfId);
   void handleCliNbrClassification(const Wirekit::EthAddr& ethAddr);
   void handlePortStatus(const Wirekit::IntfId& intfId);
   void doClose() override;

   // Clear requests; in ClearRequests.cpp.
   void handleClassificationClearRequest(const Rex::String& reqId);
   bool handleClassificationClearRequestAll();
   bool handleClassificationClearRequestInterface(const Rex::String& target);
   bool handleClassificationClearRequestMac(const Rex::String& target);

   // What ends a classification; in Cleanup.cpp.
   void doNeighborClassficationCleanup();
   bool shouldNeighborBeRemoved(const Neighbor& neighbor);
   bool lldpHasNeighbor(const Neighbor& neighbor) const;
   bool isIntfUp(const Wirekit::IntfId& intfId) const;
   bool unregisterNeighbor(const Wirekit::EthAddr& ethAddr, const Wirekit::IntfId& intfId);
   void handleIntfStatus(const Wirekit::IntfId& intfId);
   void handleAnyLinkStatus(const Rex::Change& change);
   void handleCache(const Wirekit::EthAddr& ethAddr);
   void doCheckIntf(const Wirekit::IntfId& intfId);

   void addNbrClassificationIntfSm(const Wirekit::IntfId& intfId);
   void delNbrClassificationIntfSm(const Wirekit::IntfId& intfId);
   void updateClassificationStatus();
   void doPublish(const Neighbor& entry, const char* phoneSetBy, const char* rowFrom);

   void lldpNeighborIs(const Neighbor& neighbor);
   void lldpNeighborDel(const Wirekit::EthAddr& ethAddr);
   Neighbor lldpNeighbor(const Wirekit::EthAddr& ethAddr) const;
   void cliNeighborIs(const Neighbor& neighbor);
   void cliNeighborDel(const Wirekit::EthAddr& ethAddr);

   const Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir_;
   const Lldp::Status::PtrConst status_;
   const Identity::NbrClassification::CliConfig::PtrConst identityCliConfig_;
   const Identity::Dot1x::Status::PtrConst identityDot1xStatus_;
   const Identity::NbrClassification::Status::Ptr nbrClassficationStatus_;
   PublishedNeighbors published_;
   Neighbors lldpNeighbor_;
   Neighbors cliNeighbor_;
   HeardAddrs heard_;
   uint64_t nextPortPlace_ = 0;
   EthAddrs toClassify_;  // noted for the next frame
   EthAddrs toCheck_;     // classified ones that may end; only where links count
   EthAddrs toPublish_;
   uint32_t classifiedIn_ = Rex::Dispatcher::idle;  // the reaction of the last frame
   Rex::HashMap<Wirekit::IntfId, Interface::EthPhyIntfStatus::PtrConst> links_;  // watched
   std::once_flag toggleAsked_;
   bool keepsIntfDown_ = true;

   REX_MACHINES(NbrClassificationIntfSm, nbrClassificationIntfSm, Wirekit::IntfId)
   REX_MACHINES(NbrPortStatusSm, nbrPortStatusSm, Wirekit::IntfId)
};

// Whether one of the neighbours was heard from the address.
bool doesPortHaveRemoteSystemFrom(const Lldp::PortStatus& portStatus,
                                  const Wirekit::EthAddr& ethAddr);

}  // namespace Lldp::Agent::NbrClassification
