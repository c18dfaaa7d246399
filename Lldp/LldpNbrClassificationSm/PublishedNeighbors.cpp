#include "Lldp/LldpNbrClassificationSm/PublishedNeighbors.h"

namespace Lldp::Agent::NbrClassification {

PublishedNeighbors::PublishedNeighbors(Identity::NbrClassification::Status::Ptr status)
    : status_(std::move(status)) {
   for (auto [ethAddr, neighbor] : status_->neighbor()) count(neighbor.intfId, 1);
}

void PublishedNeighbors::neighborIs(const Neighbor& neighbor) {
   if (neighborHas(neighbor.ethAddr)) {
      Neighbor standing = status_->neighbor(neighbor.ethAddr);
      if (standing == neighbor) return;
      count(standing.intfId, -1);
   }
   count(neighbor.intfId, 1);
   status_->neighborIs(neighbor);
}

void PublishedNeighbors::neighborDel(const Wirekit::EthAddr& ethAddr) {
   if (!neighborHas(ethAddr)) return;
   count(status_->neighbor(ethAddr).intfId, -1);
   status_->neighborDel(ethAddr);
}

void PublishedNeighbors::count(const Wirekit::IntfId& intfId, int rows) {
   const int* found = rowsOn_.find(intfId);
   int sum = (found ? *found : 0) + rows;
   if (sum) {
      rowsOn_.insert(intfId, sum);
   } else {
      rowsOn_.erase(intfId);
   }
}

}  // namespace Lldp::Agent::NbrClassification
