#include "host/Settings.h"

#include "model/CliConfig.h"

namespace Host {
namespace {

struct Words {
   static constexpr const char* text = "setting out of its range";
};

template <uint32_t least, uint32_t most>
void wholeNumber(const Rex::Json& json, const std::string& path) {
   Rex::BoundedNumber<uint32_t, least, most, Words> number;
   Rex::fromJson(json, number, path);
}

struct Range {
   const Rex::EntityType& type;
   const char* attribute;
   void (*check)(const Rex::Json& json, const std::string& path);
};

// IEEE Std 802.1AB-2016, 9.2.5 and 10.5; the hold time is the TTL itself, which has two octets.
const std::vector<Range>& ranges() {
   static const std::vector<Range> all{
       {Lldp::CliConfig::staticType(), "messageTxInterval", wholeNumber<1, 3600>},
       {Lldp::CliConfig::staticType(), "messageTxHoldTime", wholeNumber<1, 65535>},
       {Lldp::CliConfig::staticType(), "reinitDelay", wholeNumber<1, 10>},
   };
   return all;
}

}  // namespace

Rex::Member::Write decodeSettings(const Rex::EntityType& type, const Rex::Json& attributes,
                                  const std::string& path) {
   for (const Range& range : ranges()) {
      if (&range.type != &type || !attributes.is_object()) continue;
      auto at = attributes.find(range.attribute);
      if (at == attributes.end()) continue;
      range.check(*at, path.empty() ? range.attribute : path + "." + range.attribute);
   }
   return Rex::decodeEntity(type, attributes, path);
}

}  // namespace Host
