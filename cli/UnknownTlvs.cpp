#include "cli/UnknownTlvs.h"

#include <fmt/format.h>

#include <array>

#include "cli/Names.h"
#include "cli/Octets.h"

namespace LldpCli {
namespace {

// Subtypes that nobody here reads, under the 24 bits of their organisation.
constexpr unsigned ieee8021 = 0x0080C2 << 8;  // IEEE Std 802.1Q, Annex D
constexpr unsigned ieee8023 = 0x00120F << 8;  // IEEE Std 802.3, 79.3
constexpr unsigned tia = 0x0012BB << 8;       // ANSI/TIA-1057, clause 10

constexpr auto subtypeNames = std::to_array<Name>({
    {ieee8021 | 8, "Congestion Notification"},
    {ieee8021 | 9, "ETS Configuration"},
    {ieee8021 | 10, "ETS Recommendation"},
    {ieee8021 | 11, "Priority-based Flow Control Configuration"},
    {ieee8021 | 12, "Application Priority"},
    {ieee8021 | 13, "EVB"},
    {ieee8021 | 14, "CDCP"},
    {ieee8023 | 5, "Energy-Efficient Ethernet"},
    {tia | 3, "Location Identification"},
    {tia | 4, "Extended Power via MDI"},
});

Json unknownTlv(const Json& from) {
   return {{"type", from.at("type").get<unsigned>()}, {"value", hex(octets(from.at("value")))}};
}

std::string unknownTlvWords(const Json& tlv) {
   return fmt::format("type {}: {}", tlv.at("type").get<unsigned>(),
                      tlv.at("value").get<std::string>());
}

Json unknownOrganizationTlv(const Json& from) {
   const Json& key = from.at("key");
   auto oui = key.at("oui").at("value").get<unsigned>();
   auto subtype = key.at("subtype").get<unsigned>();
   Json made{
       {"oui", fmt::format("{:02x}-{:02x}-{:02x}", oui >> 16 & 0xFF, oui >> 8 & 0xFF, oui & 0xFF)},
       {"subtype", subtype},
       {"index", key.at("index").get<unsigned>()},
       {"value", hex(octets(from.at("orgDefInfo")))}};
   if (const char* name = findName(subtypeNames, oui << 8 | subtype)) made["name"] = name;
   return made;
}

}  // namespace

std::string unknownOrganizationTlvWords(const Json& tlv) {
   std::string name = tlv.value("name", std::string());
   return fmt::format("{} subtype {}{}: {}", tlv.at("oui").get<std::string>(),
                      tlv.at("subtype").get<unsigned>(), name.empty() ? "" : " (" + name + ")",
                      tlv.at("value").get<std::string>());
}

NeighborItems unknownItems() {
   static constexpr auto items = std::to_array<NeighborItem>({
       {"unknownTlv", nullptr, "unknownTlvs", "Unknown TLV", listView<unknownTlv>,
        addLineEach<unknownTlvWords>},
       {"unknownOrgDefTlv", nullptr, "unknownOrganizationTlvs", "Organization TLV",
        listView<unknownOrganizationTlv>, addLineEach<unknownOrganizationTlvWords>},
   });
   return items;
}

}  // namespace LldpCli
