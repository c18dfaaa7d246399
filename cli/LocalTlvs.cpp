#include "cli/LocalTlvs.h"

#include <algorithm>
#include <array>

#include "Rex/Printable.h"
#include "cli/Dot3Tlvs.h"
#include "cli/Names.h"
#include "cli/Neighbor.h"
#include "cli/UnknownTlvs.h"

namespace LldpCli {
namespace {

// In the agent's entity, in that of a neighbour, and the setting of the port that has it sent, if
// there is one, with its bit in a set of TLVs.
struct LocalTlv {
   const char* attribute;
   const char* ofNeighbor;
   const char* setting;
   unsigned bit;
};

constexpr auto localTlvs = std::to_array<LocalTlv>({
    {"portVlanId", "portVlanId", "portVlanTxEnable", 0},
    {"linkAggregationInfo", "linkAggregationInfo", "dot3EnabledTlvs", 4},
    {"maximumFrameSizeInfo", "maximumFrameSizeInfo", "dot3EnabledTlvs", 8},
    {"medCapabilities", "medCapabilitiesInfo", "tiaEnabledTlvs", 2},
    {"localNetworkPolicyTlv", "networkPolicyTlv", nullptr, 0},
});

bool isSent(const LocalTlv& tlv, const Json& portConfig) {
   if (!tlv.setting) return true;
   const Json& setting = portConfig.at(tlv.setting);
   return tlv.bit ? (setting.at("bits").get<unsigned>() & tlv.bit) != 0 : setting.get<bool>();
}

constexpr const char* fallback = "powerFallbackWatts";
constexpr const char* external = "externalTlvs";

// The TLV that carries an acknowledgement is the last one to go out.
constexpr unsigned lastOui = 0x001b21;

bool asksFor(const Json& row, const Json& tlv) {
   const Json wishes = row.value("tlv", Json::array());
   return std::ranges::find(wishes, tlv) != wishes.end();
}

std::string externalTlvWords(const Json& tlv) {
   std::string words = unknownOrganizationTlvWords(tlv);
   const Json& asking = tlv.at("providers");
   if (!asking.empty()) words += ", from " + listWords(asking);
   return tlv.at("sent") == true ? words : words + ", not sent";
}

}  // namespace

void putLocalTlvs(Json& view, const Json& localPort, const Json& portConfig) {
   for (const LocalTlv& tlv : localTlvs) {
      const NeighborItem& item = *neighborItem(tlv.ofNeighbor);
      if (isSent(tlv, portConfig)) view[item.name] = item.view(localPort.at(tlv.attribute));
   }
   const Json& power = portConfig.at("poeAllocatedPowerFallback");
   if (power != 0u) view[fallback] = watts(power);
}

void putExternalTlvs(Json& view, const std::string& port, const Json& localPort,
                     const Json& providers) {
   const Json& sent = localPort.at("unknownOrgDefTlv");
   if (sent.empty()) return;
   Json list = neighborItem("unknownOrgDefTlv")->view(sent);
   bool out = true;
   for (size_t i = 0; i < sent.size(); ++i) {
      Json asking = Json::array();
      for (const auto& [name, provider] : providers.items()) {
         const Json rows = provider.value("externalTlvPortConfig", Json::object());
         if (rows.contains(port) && asksFor(rows.at(port), sent[i])) {
            asking.push_back(Rex::printable(name));
         }
      }
      list[i]["providers"] = asking;
      list[i]["sent"] = out;
      if (sent[i].at("key").at("oui").at("value") == lastOui) out = false;
   }
   view[external] = list;
}

void addLocalTlvLines(Fields& lines, const Json& view) {
   for (const LocalTlv& tlv : localTlvs)
      addItemLines(lines, {neighborItem(tlv.ofNeighbor), 1}, view);
   for (const Json& tlv : view.value(external, Json::array())) {
      lines.emplace_back("External TLV", externalTlvWords(tlv));
   }
   if (view.contains(fallback)) {
      lines.emplace_back("Power without a report", wattsWords(view.at(fallback)));
   }
}

}  // namespace LldpCli
