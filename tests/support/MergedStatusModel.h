// What the merged table has to say, from the two statuses alone. It follows a chassis beside its
// active agent, and knows what is asked of that agent and may surprise:
// - the port of this cell is shown where both have one of the same name;
// - a counter of the merged table falls when the other cell goes, or begins anew;
// - the VRF of the other cell is never looked at;
// - all ports of an other cell that goes are taken out, those of this cell's with the same name
// too,
//   and such a one comes back when its row in a status comes or goes, or the other cell returns
//   with a port of the name;
// - nobody keeps the table while no agent is active, and the next one puts it right.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "support/World.h"

namespace LldpTest {

class MergedStatusModel : public Rex::StateMachine {
 public:
   // Begins when the active agent does.
   explicit MergedStatusModel(Supervisor& active)
       : active_(active),
         dir_(active.at<Rex::Dir>("l2discovery/lldp/status/local")),
         peer_(3 - active.context().cellId),
         local_(active.status()) {
      on(dir_, Rex::Dir::entityPtrAttr, &MergedStatusModel::handleEntry);
      on(local_, Lldp::Status::portStatusAttr, &MergedStatusModel::handlePort);
      remoteIs(active_.statusOf(peer_));
   }

   // What is wrong in the merged table as a supervisor sees it.
   std::vector<std::string> check(Supervisor& viewer) const {
      const auto& all = *viewer.allStatus();
      auto local = viewer.statusOf(active_.context().cellId);
      auto remote = viewer.statusOf(peer_);
      std::vector<std::string> broken;
      auto must = [&broken](bool holds, const std::string& what) {
         if (!holds) broken.push_back(what);
      };
      auto sum = [&](auto counter) {
         return ((*local).*counter)() + (remote ? ((*remote).*counter)() : 0u);
      };
      using Base = Lldp::StatusBase;
      must(all.remTablesInserts() == sum(&Base::remTablesInserts), "inserts");
      must(all.remTablesDeletes() == sum(&Base::remTablesDeletes), "deletes");
      must(all.remTablesDrops() == sum(&Base::remTablesDrops), "drops");
      must(all.remTablesAgeouts() == sum(&Base::remTablesAgeouts), "ageouts");
      double latest = local->remTablesLastChangeTime();
      if (remote && remote->remTablesLastChangeTime() > latest) {
         latest = remote->remTablesLastChangeTime();
      }
      must(all.remTablesLastChangeTime() == latest, "last change");
      must(all.mgmtAddrVrf() == local->mgmtAddrVrf(), "VRF");

      std::map<std::string, Lldp::PortStatus::PtrConst> expected;
      if (remote) {
         for (auto [intfId, port] : remote->portStatus()) expected[nameOf(intfId)] = port;
      }
      for (auto [intfId, port] : local->portStatus()) expected[nameOf(intfId)] = port;
      for (const std::string& name : missing_) expected.erase(name);
      for (const auto& [name, port] : expected) {
         must(all.portStatus(Wirekit::IntfId(name)) == port, name);
      }
      must(all.portStatuss() == expected.size(), "ports of nobody");
      return broken;
   }
   // Ports that the table owes to nobody but has lost.
   size_t missing() const { return missing_.size(); }

 private:
   static std::string nameOf(const Wirekit::IntfId& intfId) {
      return intfId.stringValue().stdString();
   }
   void handlePort(const Wirekit::IntfId& intfId) { missing_.erase(nameOf(intfId)); }
   void handleEntry(const Rex::String& name) {
      if (name == Rex::format("%d", peer_)) remoteIs(active_.statusOf(peer_));
   }
   void remoteIs(const Lldp::Status::Ptr& remote) {
      if (remote == remote_) return;
      if (remote_) {
         for (auto [intfId, port] : remote_->portStatus()) {
            if (local_->portStatusHas(intfId)) missing_.insert(nameOf(intfId));
         }
         unwatch(remote_);
      }
      remote_ = remote;
      if (!remote_) return;
      on(remote_, Lldp::Status::portStatusAttr, &MergedStatusModel::handlePort);
      for (auto [intfId, port] : remote_->portStatus()) handlePort(intfId);
   }

   Supervisor& active_;
   const Rex::Dir::Ptr dir_;
   const int peer_;
   const Lldp::Status::Ptr local_;
   Lldp::Status::Ptr remote_;
   std::set<std::string> missing_;
};

}  // namespace LldpTest
