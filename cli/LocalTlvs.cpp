#include "cli/LocalTlvs.h"

#include <array>

#include "cli/Dot3Tlvs.h"
#include "cli/Neighbor.h"

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

}  // namespace

void putLocalTlvs(Json& view, const Json& localPort, const Json& portConfig) {
   for (const LocalTlv& tlv : localTlvs) {
      const NeighborItem& item = *neighborItem(tlv.ofNeighbor);
      if (isSent(tlv, portConfig)) view[item.name] = item.view(localPort.at(tlv.attribute));
   }
   const Json& power = portConfig.at("poeAllocatedPowerFallback");
   if (power != 0u) view[fallback] = watts(power);
}

void addLocalTlvLines(Fields& lines, const Json& view) {
   for (const LocalTlv& tlv : localTlvs)
      addItemLines(lines, {neighborItem(tlv.ofNeighbor), 1}, view);
   if (view.contains(fallback)) {
      lines.emplace_back("Power without a report", wattsWords(view.at(fallback)));
   }
}

}  // namespace LldpCli
