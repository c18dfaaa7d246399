#include "cli/Tlvs.h"

#include <fmt/format.h>

#include <array>
#include <string_view>

#include "Rex/Printable.h"
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
constexpr size_t capabilityBits = 16;

struct OrganizationTlv {
   unsigned oui;
   unsigned subtype;
   const char* words;
};

constexpr unsigned ieee8021 = 0x0080C2;  // IEEE Std 802.1Q, Annex D
constexpr unsigned ieee8023 = 0x00120F;  // IEEE Std 802.3, 79.3
constexpr unsigned tia = 0x0012BB;       // ANSI/TIA-1057, clause 10

constexpr auto organizationTlvs = std::to_array<OrganizationTlv>({
    {ieee8021, 1, "Port VLAN ID"},
    {ieee8021, 2, "Port and Protocol VLAN ID"},
    {ieee8021, 3, "VLAN Name"},
    {ieee8021, 4, "Protocol Identity"},
    {ieee8021, 5, "VID Usage Digest"},
    {ieee8021, 6, "Management VID"},
    {ieee8021, 7, "Link Aggregation"},
    {ieee8023, 1, "MAC/PHY Configuration/Status"},
    {ieee8023, 2, "Power via MDI"},
    {ieee8023, 3, "Link Aggregation"},
    {ieee8023, 4, "Maximum Frame Size"},
    {ieee8023, 5, "Energy-Efficient Ethernet"},
    {tia, 1, "LLDP-MED Capabilities"},
    {tia, 2, "Network Policy"},
    {tia, 3, "Location Identification"},
    {tia, 4, "Extended Power via MDI"},
    {tia, 5, "Hardware Revision"},
    {tia, 6, "Firmware Revision"},
    {tia, 7, "Software Revision"},
    {tia, 8, "Serial Number"},
    {tia, 9, "Manufacturer Name"},
    {tia, 10, "Model Name"},
    {tia, 11, "Asset ID"},
});

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

Json capabilityList(unsigned bits) {
   Json names = Json::array();
   for (size_t bit = 0; bit < capabilityBits; ++bit) {
      if (!(bits >> bit & 1)) continue;
      names.push_back(bit < capabilityNames.size() ? capabilityNames[bit]
                                                   : fmt::format("Reserved {}", bit));
   }
   return names;
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
   return {{"supported", capabilityList(supported.get<unsigned>())},
           {"enabled", capabilityList(enabled.get<unsigned>())}};
}

std::string listWords(const Json& names) {
   std::string words;
   for (const Json& name : names) words += (words.empty() ? "" : ", ") + name.get<std::string>();
   return words.empty() ? "none" : words;
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
   Json made{
       {"oui", fmt::format("{:02x}-{:02x}-{:02x}", oui >> 16 & 0xFF, oui >> 8 & 0xFF, oui & 0xFF)},
       {"subtype", key.at("subtype").get<unsigned>()},
       {"index", key.at("index").get<unsigned>()},
       {"value", hex(octets(from.at("orgDefInfo")))}};
   for (const OrganizationTlv& known : organizationTlvs) {
      if (known.oui == oui && known.subtype == made.at("subtype")) made["name"] = known.words;
   }
   return made;
}

std::string unknownOrganizationTlvWords(const Json& tlv) {
   std::string name = tlv.value("name", std::string());
   return fmt::format("{} subtype {}{}: {}", tlv.at("oui").get<std::string>(),
                      tlv.at("subtype").get<unsigned>(), name.empty() ? "" : " (" + name + ")",
                      tlv.at("value").get<std::string>());
}

}  // namespace LldpCli
