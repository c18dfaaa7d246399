#include "host/Settings.h"

#include <algorithm>
#include <limits>

#include "Foreign/Ip.h"
#include "Foreign/NbrClassification.h"
#include "Rex/Dir.h"
#include "Wirekit/VlanIntfId.h"
#include "host/PortNames.h"
#include "model/CliConfig.h"
#include "model/IntfRank.h"

namespace Host {
namespace {

struct Words {
   static constexpr const char* text = "setting out of its range";
};
template <uint32_t least, uint32_t most>
using Number = Rex::BoundedNumber<uint32_t, least, most, Words>;
template <size_t most>
using Text = Rex::BoundedText<most, Words>;

template <class T>
void as(const Rex::Json& json, const std::string& path) {
   T value;
   Rex::fromJson(json, value, path);
}

constexpr const char* rankedForm =
    "an interface such as Loopback0 to 2100, Vlan1 to 4094 or Ethernet1";

void asRankedIntf(const Rex::Json& json, const std::string& path) {
   Wirekit::IntfId intfId;
   Rex::fromJson(json, intfId, path);
   if (!isRanked(intfId)) {
      Rex::expected(json, path, rankedForm);
   }
}

struct Range {
   const Rex::EntityType& type;
   std::string_view place;  // in an entity of the type; "[]" stands behind what is a list
   void (*check)(const Rex::Json& json, const std::string& path);
};

// The timers': IEEE Std 802.1AB-2016, 9.2.5 and 10.5; the hold time is the TTL itself, which has
// two octets. The policy's: what its TLV has room for (ANSI/TIA-1057, 10.2.3.2). Power is in tenths
// of a watt (IEEE Std 802.3-2018, 79.3.2.6).
const std::vector<Range>& ranges() {
   const auto& config = Lldp::CliConfig::staticType();
   const auto& port = Lldp::CliPortConfig::staticType();
   const auto& clear = Lldp::RemTablesCliConfig::staticType();
   const auto& phones = Identity::NbrClassification::CliConfig::staticType();
   const auto& provider = Lldp::ExternalTlvConfig::staticType();
   const auto& tlvs = Lldp::ExternalTlvPortConfig::staticType();
   static const std::vector<Range> all{
       {config, "messageTxInterval", as<Number<1, 3600>>},
       {config, "messageTxHoldTime", as<Number<1, 65535>>},
       {config, "reinitDelay", as<Number<1, 10>>},
       {config, "ip6MgmtAddrIntfName", as<Wirekit::IntfId>},
       {config, "mgmtAddrTxOption.intfName", asRankedIntf},
       {port, "poeAllocatedPowerFallback", as<Number<0, 999>>},
       {port, "networkPolicyConfig[].policyName", as<Text<64>>},
       {port, "networkPolicyConfig[].vlanId", as<Number<0, 4094>>},
       {port, "networkPolicyConfig[].l2Priority", as<Number<0, 7>>},
       {port, "networkPolicyConfig[].dscp", as<Number<0, 63>>},
       {clear, "remTablesClearRequest.requesterName", as<Text<256>>},
       {clear, "remTablesClearRequest.requesterLine", as<Text<256>>},
       {provider, "name", as<Text<64>>},
       {phones, "neighbor[].classification.flags", as<Number<0, 1>>},
       {phones, "neighbor[].classification.reserved", as<Number<0, 0>>},
       {phones, "clearRequest[].key", as<Text<64>>},
       {phones, "clearRequest[].value.clearedBy", as<Text<256>>},
       {phones, "clearRequest[].value.clearedOn", as<Text<256>>},
       {phones, "clearRequest[].value.target", as<Text<256>>},
       {tlvs, "tlv[].key.oui.value", as<Number<0, 0xFFFFFF>>},
       {tlvs, "tlv[].key.subtype", as<Number<0, 255>>},
   };
   return all;
}

// What has another shape than the place is the type's to refuse.
void checkAt(const Rex::Json& json, std::string_view place, const std::string& path,
             const Range& range) {
   if (place.empty()) return range.check(json, path);
   if (place.starts_with("[]")) {
      if (!json.is_array()) return;
      for (size_t i = 0; i < json.size(); ++i) {
         checkAt(json[i], place.substr(2), Rex::elementPath(path, i), range);
      }
      return;
   }
   if (place.front() == '.') place.remove_prefix(1);
   std::string_view name = place.substr(0, place.find_first_of(".["));
   if (!json.is_object() || !json.contains(name)) return;
   checkAt(json[std::string(name)], place.substr(name.size()), Rex::fieldPath(path, name), range);
}

bool isEntryName(std::string_view text) {
   Wirekit::IntfId name;
   return Wirekit::IntfId::fromText(text, name);
}

bool isRankedName(std::string_view text) {
   Wirekit::IntfId intfId;
   return Wirekit::IntfId::fromText(text, intfId) && isRanked(intfId);
}

struct Rows {
   const Rex::Member* collection;
   bool (*isKey)(std::string_view text);
   const char* keyForm;
   size_t most;
};

constexpr const char* portForm = "a port name such as Ethernet1, Ethernet3/1 or Management1";

const Rows* rowsOf(const Rex::Member& collection) {
   static const Rows all[] = {
       {Lldp::CliConfig::staticType().member("cliPortConfig"), PortNames::isPortName, portForm,
        4096},
       {Lldp::ExternalTlvConfig::staticType().member("externalTlvPortConfig"),
        PortNames::isPortName, portForm, 4096},
       {Ip::Status::staticType().member("ipIntfStatus"), isRankedName, rankedForm, 65536},
       {Rex::Dir::staticType().member("entityPtr"), isEntryName,
        "a name of 1 to 64 visible characters", 1024},
   };
   auto at = std::ranges::find(all, &collection, &Rows::collection);
   return at == std::end(all) ? nullptr : at;
}

}  // namespace

// The rank alone knows no bound for VLANs.
bool isRanked(const Wirekit::IntfId& intfId) {
   if (Wirekit::VlanIntfId::isVlanIntfId(intfId)) {
      uint32_t vlan = Wirekit::VlanIntfId::vlan(intfId);
      return vlan >= 1 && vlan <= 4094;
   }
   return !Lldp::intfRank(intfId).fault;
}

Rex::Member::Write decodeSettings(const Rex::EntityType& type, const Rex::Json& attributes,
                                  const std::string& path) {
   checkRanges(type, attributes, path);
   return Rex::decodeEntity(type, attributes, path);
}

void checkRanges(const Rex::EntityType& type, const Rex::Json& attributes,
                 const std::string& path) {
   for (const Range& range : ranges()) {
      if (&range.type == &type) checkAt(attributes, range.place, path, range);
   }
}

std::string keyFault(const Rex::Member& collection, std::string_view key) {
   std::string fault = collection.keyFault(key);
   const Rows* rows = rowsOf(collection);
   if (!fault.empty() || !rows || rows->isKey(key)) return fault;
   try {
      Rex::expected(Rex::Json(key), {}, rows->keyForm);
   } catch (const Rex::JsonError& error) {
      return error.what();
   }
}

size_t mostRows(const Rex::Member& collection) {
   const Rows* rows = rowsOf(collection);
   return rows ? rows->most : std::numeric_limits<size_t>::max();
}

}  // namespace Host
