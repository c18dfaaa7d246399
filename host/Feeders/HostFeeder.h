// Fills the name and the description of the system.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "Foreign/EntityMib.h"
#include "Foreign/System.h"
#include "Statestore/EntityManager.h"

namespace Host {

// What the machine says of itself.
struct HostFacts {
   std::string hostname;
   std::string domainName;  // empty for none
   std::string description;

   // From the kernel's node name and domain name, which is "(none)" where there is none. A node
   // name with dots in it is a name and its domain.
   static HostFacts fromKernel(std::string_view nodeName, std::string_view domainName,
                               std::string_view description);
   // "Debian GNU/Linux 12 (bookworm)" of the text of os-release(5); "Linux" when it does not say.
   static std::string systemName(std::string_view osRelease);
};

class HostFeeder {
 public:
   explicit HostFeeder(const Rex::Ptr<Statestore::EntityManager>& entityManager);

   // `chassis`: the other supervisor's feeder writes too, in its place.
   static std::set<std::string> fedPaths(bool chassis);
   void factsAre(const HostFacts& facts);
   // The description is of the system, and so the active supervisor's to tell; the name is each
   // supervisor's own.
   void activeIs();

 private:
   System::NetStatus::Ptr net_;
   EntityMib::Status::Ptr mib_;
   Rex::String description_;
   bool active_ = false;
};

}  // namespace Host
