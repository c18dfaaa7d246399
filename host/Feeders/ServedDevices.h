// Which devices of the machine are the switch's ports.
#pragma once

#include <set>
#include <string>

#include "host/Feeders/Links.h"

namespace Host {

class ServedDevices {
 public:
   // Those of `names`, whatever kind of Ethernet device they are; and every physical one where no
   // names are given, or where `others` are served beside them.
   explicit ServedDevices(std::set<std::string> names = {}, bool others = false)
       : names_(std::move(names)), others_(others || names_.empty()) {}

   bool serves(const Link& link) const {
      return (link.ethernet && names_.contains(link.name)) || (others_ && isPhysical(link));
   }
   const std::set<std::string>& names() const { return names_; }

 private:
   const std::set<std::string> names_;
   const bool others_;
};

}  // namespace Host
