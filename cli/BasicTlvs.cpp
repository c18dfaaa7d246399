#include "cli/BasicTlvs.h"

#include <fmt/format.h>

#include <array>
#include <string_view>

#include "Rex/Printable.h"
#include "cli/Names.h"
#include "cli/Octets.h"

namespace LldpCli {
namespace {

struct Words {
   std::string_view name;
   const char* words;
};

// Identifier subtypes by the name that the agent gives them. A number that has no name comes as
// the number, and is reserved.
constexpr auto subtypes = std::to_array<Words>({
    {"chassisComponent", "chassis component"},
    {"portComponent", "port component"},
    {"interfaceAlias", "interface alias"},
    {"interfaceName", "interface name"},
    {"macAddress", "MAC address"},
    {"networkAddress", "network address"},
    {"agentCircuitId", "agent circuit ID"},
    {"local", "locally assigned"},
    {"unknown", "reserved subtype"},
});

constexpr auto numberings = std::to_array<Words>({
    {"unknown", "interface number"},
    {"ifIndex", "interface index"},
    {"systemPort", "system port"},
});

// Names of the capability bits, lowest first (table 8-4).
constexpr auto capabilityNames =
    std::to_array<const char*>({"Other", "Repeater", "Bridge", "WLAN AP", "Router", "Telephone",
                                "DOCSIS", "Station", "C-VLAN", "S-VLAN", "TPMR"});

template <size_t n>
std::string wordsOf(const std::array<Words, n>& table, const std::string& name) {
   for (const Words& entry : table) {
      if (entry.name == name) return entry.words;
   }
   return Rex::printable(name);
}

std::string identifierText(const std::string& subtype, const std::string& value) {
   if (subtype == "macAddress" && value.size() == 6) return hex(value, ":");
   if (subtype != "networkAddress") return Rex::printable(value);
   if (value.empty()) return {};
   std::string usual = address(static_cast<unsigned char>(value[0]), value.substr(1));
   bool isUsual = usual.find_first_of(".:") != std::string::npos;
   return isUsual ? usual : hex(value);
}

std::string familyName(unsigned family) {
   return family == 1 ? "ipv4" : family == 2 ? "ipv6" : family == 6 ? "mac" : "other";
}

std::string numberingName(unsigned subtype) {
   return subtype == 1   ? "unknown"
          : subtype == 2 ? "ifIndex"
          : subtype == 3 ? "systemPort"
                         : fmt::format("reserved {}", subtype);
}

Json capabilitiesTlv(const Json& tlv) {
   return tlv.at("tlvReceived").get<bool>() ? capabilities(tlv.at("supported"), tlv.at("enabled"))
                                            : Json();
}

void addCapabilities(Fields& lines, const char* label, const Json& view) {
   for (const char* which : {"supported", "enabled"}) {
      lines.emplace_back(fmt::format("{} {}", label, which), listWords(view.at(which)));
   }
}

}  // namespace

Json identifier(const Json& from) {
   const Json& subtype = from.at("subtype");
   std::string name = subtype.is_string() ? Rex::printable(subtype.get<std::string>())
                                          : fmt::format("reserved {}", subtype.get<int>());
   return {{"subtype", name}, {"id", identifierText(name, octets(from.at("value")))}};
}

std::string identifierWords(const Json& identifier) {
   return fmt::format("{} ({})", identifier.at("id").get<std::string>(),
                      wordsOf(subtypes, identifier.at("subtype")));
}

Json capabilities(const Json& supported, const Json& enabled) {
   return {{"supported", bitNames(capabilityNames, supported.get<unsigned>())},
           {"enabled", bitNames(capabilityNames, enabled.get<unsigned>())}};
}

Json managementAddress(const Json& from) {
   const Json& key = from.at("key");
   auto family = key.at("manAddrSubtype").get<unsigned>();
   Json made{{"family", familyName(family)},
             {"familyNumber", family},
             {"address", address(family, octets(key.at("manAddr")))},
             {"interfaceNumbering", numberingName(from.at("ifSubtype").get<unsigned>())},
             {"interfaceNumber", from.at("ifNumber").get<unsigned>()}};
   if (std::string oid = text(from.at("oid")); !oid.empty()) made["oid"] = oid;
   return made;
}

std::string managementAddressWords(const Json& address) {
   std::string family = address.at("family");
   std::string shown = family == "ipv4"   ? "IPv4"
                       : family == "ipv6" ? "IPv6"
                       : family == "mac"
                           ? "MAC"
                           : fmt::format("family {}", address.at("familyNumber").get<unsigned>());
   std::string words = fmt::format("{} ({}), {} {}", address.at("address").get<std::string>(),
                                   shown, wordsOf(numberings, address.at("interfaceNumbering")),
                                   address.at("interfaceNumber").get<unsigned>());
   if (address.contains("oid")) words += ", OID " + address.at("oid").get<std::string>();
   return words;
}

NeighborItems basicItems() {
   static constexpr auto items = std::to_array<NeighborItem>({
       {"portDesc", nullptr, "portDescription", "Port description", tlvTextView,
        addLine<textWords>},
       {"sysName", nullptr, "systemName", "System name", tlvTextView, addLine<textWords>},
       {"sysDesc", nullptr, "systemDescription", "System description", tlvTextView,
        addLine<textWords>},
       {"systemCapabilities", nullptr, "capabilities", "Capabilities", capabilitiesTlv,
        addCapabilities},
       {"managementAddress", nullptr, "managementAddresses", "Management address",
        listView<managementAddress>, addLineEach<managementAddressWords>},
   });
   return items;
}

}  // namespace LldpCli
