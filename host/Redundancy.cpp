#include "host/Redundancy.h"

#include <unistd.h>

#include "Rex/Context.h"
#include "Rex/Json.h"
#include "Rex/Log.h"
#include "Statestore/Cell.h"
#include "host/Feeders/FedEntity.h"
#include "model/Status.h"

namespace Host {
namespace {

constexpr const char* option = "--redundancy";

const Rex::LogHandle roleLost(
    "LLDP_AGENT_RESTART", 5, "The LLDP agent of supervisor %s begins anew as %s",
    "The supervisor was given a role that a running agent cannot take up, or the status that the "
    "agent writes was removed from the state store.",
    "Nothing, if the switchover was wanted, or the supervisor was taken out of the chassis and put "
    "back.",
    0, 1, 0);

const Rex::LogHandle otherStatus(
    "LLDP_STATUS_REPLACED", 4, "The LLDP status of supervisor %s was a %s and begins empty",
    "The state store had something else where this supervisor's agent has its status.",
    "Find out who wrote it.", 0, 1, 0);

Rex::String ownEntry() {
   return Rex::format("%d", Cell::cellId());
}

const char* nameOf(Role role) {
   return role == Role::active ? "active" : "standby";
}

// As the agent finds it when its mounts are done: it then waits for its status.
bool isStandby(const Redundancy::RedundancyStatus& status) {
   return status.protocol() == Redundancy::protocolHotStandby &&
          status.mode() == Redundancy::modeStandby;
}

}  // namespace

RedundancySm::RedundancySm(Redundancy::RedundancyStatus::PtrConst redundancyStatus,
                           Rex::Dir::PtrConst lldpStatusDir, Reactions reactions)
    : redundancyStatus_(std::move(redundancyStatus)),
      lldpStatusDir_(std::move(lldpStatusDir)),
      reactions_(std::move(reactions)),
      beganAsStandby_(isStandby(*redundancyStatus_)),
      wasActive_(isActive()),
      taken_(ownStatus()),
      settled_(context().clock()) {
   on(redundancyStatus_, Redundancy::RedundancyStatus::protocolAttr,
      &RedundancySm::handleRedundancyStatus);
   on(redundancyStatus_, Redundancy::RedundancyStatus::modeAttr,
      &RedundancySm::handleRedundancyStatus);
   on(lldpStatusDir_, Rex::Dir::entityPtrAttr, &RedundancySm::handleLldpStatus);
   on(settled_, &RedundancySm::handleSettled);
}

// Protocol and mode come one after the other, and what they say in between is nobody's will. But
// the agent takes over at once, also where the role goes again before the turn is over.
void RedundancySm::handleRedundancyStatus() {
   if (isActive()) {
      wasActive_ = true;
      if (redundancyStatus_->protocol() == Redundancy::protocolHotStandby) {
         reactions_.becomesActive();
      }
   }
   settled_.timeMinIs(0);
}

// A standby's agent takes its status as soon as it comes.
void RedundancySm::handleLldpStatus(const Rex::String& cell) {
   if (cell != ownEntry()) return;
   if (!taken_) taken_ = ownStatus();
   settled_.timeMinIs(0);
}

void RedundancySm::handleSettled() {
   if (restarting_) return;
   bool active = isActive();
   if (lostStatus() || (active ? waits() : wasActive_)) {
      restarting_ = true;
      Role role = active ? Role::active : Role::standby;
      Rex::log(roleLost, Cell::cellId(), nameOf(role));
      reactions_.restart(role);
   } else if (active) {
      wasActive_ = true;
      reactions_.activeIs();
   }
}

bool RedundancySm::isActive() const {
   return redundancyStatus_->protocol() != Redundancy::protocolHotStandby ||
          redundancyStatus_->mode() == Redundancy::modeActive;
}

bool RedundancySm::waits() const {
   return beganAsStandby_ && !ownStatus();
}

// Neither the agent nor who reads its neighbours would ever see that it writes where nobody looks.
bool RedundancySm::lostStatus() const {
   return taken_ && ownStatus() != taken_;
}

Rex::Ptr<const Rex::Entity> RedundancySm::ownStatus() const {
   return lldpStatusDir_->entityPtr(ownEntry());
}

Redundancy::RedundancyStatus::Ptr redundancyIn(Statestore::EntityManager& manager,
                                               std::optional<Role> begin) {
   for (int cell : {1, 2}) {
      fedEntity<Redundancy::RedundancyStatus>(manager,
                                              Cell::path("redundancy/status", cell).view());
   }
   fedEntity<Rex::Dir>(manager, "hardware/cellInfo")->createEntity(ownEntry(), "Rex::Dir");
   auto own =
       fedEntity<Redundancy::RedundancyStatus>(manager, Cell::path("redundancy/status", 0).view());
   if (begin && own->protocol() == Redundancy::protocolUnknown) {
      own->modeIs(*begin == Role::active ? Redundancy::modeActive : Redundancy::modeStandby);
      own->protocolIs(Redundancy::protocolHotStandby);
   }
   return own;
}

// The active supervisor makes a status only when the cell comes, so that it is replaced here.
Rex::Dir::Ptr lldpStatusDirIn(Statestore::EntityManager& manager) {
   auto dir = fedEntity<Rex::Dir>(manager, "l2discovery/lldp/status/local");
   auto found = dir->entityPtr(ownEntry());
   if (found && !Rex::dynamicPtr<Lldp::Status>(found)) {
      Rex::log(otherStatus, Cell::cellId(), Rex::String(found->entityType().name()));
      dir->entityPtrIs(ownEntry(), Rex::make<Lldp::Status>());
   }
   return dir;
}

std::optional<Statestore::Operation> writeGuard(const Redundancy::RedundancyStatus& status) {
   if (status.protocol() != Redundancy::protocolHotStandby) return std::nullopt;
   return Statestore::Operation{Statestore::Operation::Kind::require,
                                Cell::path("redundancy/status", 0).stdString(), "mode",
                                Rex::toJson(Redundancy::modeActive).dump()};
}

std::vector<std::string> restartArguments(std::vector<std::string> arguments, Role role) {
   for (size_t i = 1; i < arguments.size();) {
      bool alone = arguments[i] == option;  // its value is the next word
      if (!alone && !arguments[i].starts_with(std::string(option) + "=")) {
         ++i;
         continue;
      }
      auto at = arguments.begin() + static_cast<ptrdiff_t>(i);
      arguments.erase(at, at + (alone && i + 1 < arguments.size() ? 2 : 1));
   }
   arguments.insert(arguments.begin() + 1, {option, nameOf(role)});
   return arguments;
}

void restart(const std::vector<std::string>& arguments, Role role) {
   std::vector<std::string> words = restartArguments(arguments, role);
   std::vector<char*> pointers;
   for (std::string& word : words) pointers.push_back(word.data());
   pointers.push_back(nullptr);
   execv("/proc/self/exe", pointers.data());
}

}  // namespace Host
