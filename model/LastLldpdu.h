// The octets of the LLDPDU that was read into a neighbour last. Those of a usual one stand in the
// neighbour itself, where they can be fetched with its times as soon as the neighbour is found.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "Rex/String.h"

namespace Lldp {

class LastLldpdu {
 public:
   static constexpr size_t inside = 256;  // octets; the rest of a longer one stands elsewhere

   LastLldpdu() {}  // NOLINT(modernize-use-equals-default): the octets are not cleared
   bool operator==(std::string_view lldpdu) const {
      size_t first = std::min(lldpdu.size(), inside);
      return lldpdu.size() == bytes_ && !std::memcmp(octets_.data(), lldpdu.data(), first) &&
             rest_.view() == lldpdu.substr(first);
   }
   LastLldpdu& operator=(std::string_view lldpdu) {
      size_t first = std::min(lldpdu.size(), inside);
      bytes_ = lldpdu.size();
      std::memcpy(octets_.data(), lldpdu.data(), first);
      rest_ = Rex::String(lldpdu.substr(first));
      return *this;
   }

 private:
   size_t bytes_ = 0;
   Rex::String rest_;
   std::array<char, inside> octets_;
};

}  // namespace Lldp
