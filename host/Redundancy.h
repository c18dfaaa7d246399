// The host's side of redundancy. An agent becomes active in place and never goes back by itself, so
// that its process begins anew when the role that it is given is out of its reach.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Foreign/Redundancy.h"
#include "Rex/Dir.h"
#include "Rex/StateMachine.h"
#include "Statestore/EntityManager.h"
#include "Statestore/Store.h"
#include "host/Role.h"

namespace Host {

class RedundancySm : public Rex::StateMachine {
 public:
   struct Reactions {
      // The agent becomes active with the reaction that is on, and so does what it writes.
      std::function<void()> becomesActive;
      // From a turn of the loop, when the writer of the role is done: the agent is active.
      std::function<void()> activeIs;
      // From such a turn, once, when the agent
      // - was active and no longer is to be,
      // - waits for the status that an active supervisor would make for it, and is to be active, or
      // - has taken its status, and in its place stands none or another one.
      std::function<void(Role)> restart;
   };
   RedundancySm(Redundancy::RedundancyStatus::PtrConst redundancyStatus,
                Rex::Dir::PtrConst lldpStatusDir, Reactions reactions);

   // As the agent sees it: any mode but one is a standby's under hot standby, none under others.
   bool isActive() const;

 private:
   void handleRedundancyStatus();
   void handleLldpStatus(const Rex::String& cell);
   void handleSettled();
   bool waits() const;
   bool lostStatus() const;
   Rex::Ptr<const Rex::Entity> ownStatus() const;

   const Redundancy::RedundancyStatus::PtrConst redundancyStatus_;
   const Rex::Dir::PtrConst lldpStatusDir_;
   const Reactions reactions_;
   const bool beganAsStandby_;
   bool wasActive_;
   bool restarting_ = false;
   // This supervisor's status as the agent found it; null before.
   Rex::Ptr<const Rex::Entity> taken_;
   Rex::Timer settled_;
};

// What the platform holds for both supervisors, so that either can be told its part from here, and
// this one's place in the chassis. `begin` is its role where the store knows of none. Returns this
// supervisor's.
Redundancy::RedundancyStatus::Ptr redundancyIn(Statestore::EntityManager& manager,
                                               std::optional<Role> begin);

// Where the status of each supervisor's agent stands, this one's fit for its agent to take: what is
// of another type there is replaced.
Rex::Dir::Ptr lldpStatusDirIn(Statestore::EntityManager& manager);

// What an active supervisor requires of the store: that it is the active one there. So nothing of
// it is written behind the change that takes its role. None for a supervisor that stands alone.
std::optional<Statestore::Operation> writeGuard(const Redundancy::RedundancyStatus& status);

// Runs the program anew in this process, with the arguments it has and the role. Returns only if
// that cannot be, with errno set.
void restart(const std::vector<std::string>& arguments, Role role);
// Those arguments, the program's name first.
std::vector<std::string> restartArguments(std::vector<std::string> arguments, Role role);

}  // namespace Host
