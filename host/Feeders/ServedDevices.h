// Which devices of the machine are the switch's ports.
#pragma once

#include <set>
#include <string>

#include "host/Feeders/Links.h"

namespace Host {

class ServedDevices {
 public:
   // By name; none means every physical one.
   explicit ServedDevices(std::set<std::string> names = {}) : names_(std::move(names)) {}

   bool serves(const Link& link) const {
      return names_.empty() ? isPhysical(link) : link.ethernet && names_.contains(link.name);
   }
   const std::set<std::string>& names() const { return names_; }

 private:
   const std::set<std::string> names_;
};

}  // namespace Host
