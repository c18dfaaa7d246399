// Fills the link aggregation groups: which ports are members of which.
#pragma once

#include <cstdint>
#include <map>

#include "host/Feeders/Intfs.h"
#include "host/Feeders/Links.h"

namespace Host {

class GroupFeeder {
 public:
   // Starts with what stands, and follows both as long as they live.
   GroupFeeder(IntfTables& tables, Links& links, Intfs& intfs);

 private:
   struct Membership {
      Wirekit::IntfId portId;
      int32_t group = 0;  // index of its device
   };

   void handleIntf(int32_t ifIndex, const Wirekit::IntfId& intfId);
   void handleIntfGoes(int32_t ifIndex, const Wirekit::IntfId& intfId);
   void syncMember(int32_t ifIndex);
   void leave(int32_t ifIndex);

   const Links& links_;
   const Intfs& intfs_;
   IntfTables& tables_;
   std::map<int32_t, Membership> memberships_;  // by index of the port's device
};

}  // namespace Host
