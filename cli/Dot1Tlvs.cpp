#include "cli/Dot1Tlvs.h"

#include <fmt/format.h>

#include <array>

#include "cli/Names.h"
#include "cli/Octets.h"

namespace LldpCli {
namespace {

std::string vlanWords(const Json& vlanId) {
   return vlanId == 0u ? "none" : numberWords(vlanId);
}

Json protocolVlan(const Json& from) {
   return {{"vlanId", from.at("ppvid").get<unsigned>()},
           {"supported", from.at("supported").get<bool>()},
           {"enabled", from.at("enabled").get<bool>()}};
}

std::string protocolVlanWords(const Json& vlan) {
   return fmt::format("{}: {}", vlanWords(vlan.at("vlanId")),
                      flagWords(vlan, {"supported", "enabled"}));
}

Json vlanName(const Json& from) {
   return {{"vlanId", from.at("vlanId").get<unsigned>()}, {"name", text(from.at("vlanName"))}};
}

std::string vlanNameWords(const Json& vlan) {
   return fmt::format("{}: {}", vlanWords(vlan.at("vlanId")), textWords(vlan.at("name")));
}

Json protocolIdentity(const Json& from) {
   return {{"index", from.at("index").get<unsigned>()},
           {"identity", hex(octets(from.at("protocolIdentity")))}};
}

std::string protocolIdentityWords(const Json& protocol) {
   return textWords(protocol.at("identity"));
}

Json digest(const Json& number) {
   return fmt::format("{:#010x}", number.get<unsigned>());
}

}  // namespace

NeighborItems dot1Items() {
   static constexpr auto items = std::to_array<NeighborItem>({
       {"portVlanId", "portVlanIdTlvReceived", "portVlanId", "Port VLAN ID", numberView,
        addLine<vlanWords>},
       {"portAndProtocolVlan", nullptr, "protocolVlans", "Protocol VLAN", listView<protocolVlan>,
        addLineEach<protocolVlanWords>},
       {"vlanName", nullptr, "vlanNames", "VLAN name", listView<vlanName>,
        addLineEach<vlanNameWords>},
       {"protocolIdentityInfo", nullptr, "protocolIdentities", "Protocol identity",
        listView<protocolIdentity>, addLineEach<protocolIdentityWords>},
       {"vidUsageDigest", "vidUsageDigestTlvReceived", "vidUsageDigest", "VID usage digest", digest,
        addLine<textWords>},
       {"managementVid", "managementVidTlvReceived", "managementVid", "Management VID", numberView,
        addLine<vlanWords>},
   });
   return items;
}

}  // namespace LldpCli
