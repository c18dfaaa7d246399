// The published table of classified neighbours and of phones. Writes only what differs, so that no
// other agent is woken by an equal value, and knows how many rows name an interface.
#pragma once

#include "Foreign/NbrClassification.h"
#include "Rex/HashMap.h"

namespace Lldp::Agent::NbrClassification {

using Identity::NbrClassification::Neighbor;

class PublishedNeighbors {
 public:
   // Takes over what stands.
   explicit PublishedNeighbors(Identity::NbrClassification::Status::Ptr status);

   void neighborIs(const Neighbor& neighbor);
   void neighborDel(const Wirekit::EthAddr& ethAddr);
   bool neighborHas(const Wirekit::EthAddr& ethAddr) const { return status_->neighborHas(ethAddr); }
   bool anyOn(const Wirekit::IntfId& intfId) const { return rowsOn_.find(intfId); }

   void phoneIs(const Wirekit::EthAddr& ethAddr) { status_->phoneIs(ethAddr, ethAddr); }
   void phoneDel(const Wirekit::EthAddr& ethAddr) { status_->phoneDel(ethAddr); }
   bool phoneHas(const Wirekit::EthAddr& ethAddr) const { return status_->phoneHas(ethAddr); }

 private:
   void count(const Wirekit::IntfId& intfId, int rows);

   const Identity::NbrClassification::Status::Ptr status_;
   Rex::HashMap<Wirekit::IntfId, int> rowsOn_;
};

}  // namespace Lldp::Agent::NbrClassification
