#include "cli/MedTlvs.h"

#include <fmt/format.h>

#include <array>

#include "cli/Applications.h"

namespace LldpCli {
namespace {

// 10.2.2; lowest bit first.
constexpr auto capabilityNames = std::to_array<const char*>(
    {"LLDP-MED Capabilities", "Network Policy", "Location Identification",
     "Extended Power via MDI PSE", "Extended Power via MDI PD", "Inventory"});

constexpr auto deviceClassNames = std::to_array<Name>({{0, "not defined"},
                                                       {1, "endpoint class I"},
                                                       {2, "endpoint class II"},
                                                       {3, "endpoint class III"},
                                                       {4, "network connectivity"}});

// The agent keeps every class that is reserved as one number.
Json medCapabilities(const Json& from) {
   const char* name =
       findName(deviceClassNames, from.at("mediaEndpointDeviceType").get<unsigned>());
   return {{"capabilities", bitNames(capabilityNames, from.at("capabilities").get<unsigned>())},
           {"deviceClass", name ? name : "reserved"}};
}

void addMedCapabilities(Fields& lines, const char* label, const Json& view) {
   lines.emplace_back(fmt::format("{} capabilities", label), listWords(view.at("capabilities")));
   lines.emplace_back(fmt::format("{} device class", label), textWords(view.at("deviceClass")));
}

Json networkPolicy(const Json& from) {
   auto application = from.at("appType").get<unsigned>();
   return {{"applicationNumber", application},
           {"application", nameOf(applicationNames, application)},
           {"unknown", from.at("unknown").get<bool>()},
           {"tagged", from.at("tagged").get<bool>()},
           {"vlanId", from.at("vlanId").get<unsigned>()},
           {"priority", from.at("l2Priority").get<unsigned>()},
           {"dscp", from.at("dscp").get<unsigned>()}};
}

std::string networkPolicyWords(const Json& policy) {
   auto number = [&](const char* name) { return policy.at(name).get<unsigned>(); };
   return fmt::format("{}: {}{}, VLAN {}, priority {}, DSCP {}",
                      textWords(policy.at("application")),
                      policy.at("unknown").get<bool>() ? "policy unknown, " : "",
                      policy.at("tagged").get<bool>() ? "tagged" : "untagged", number("vlanId"),
                      number("priority"), number("dscp"));
}

}  // namespace

NeighborItems medItems() {
   static constexpr auto items = std::to_array<NeighborItem>({
       {"medCapabilitiesInfo", "medCapabilitiesTlvReceived", "medCapabilities", "LLDP-MED",
        medCapabilities, addMedCapabilities},
       {"networkPolicyTlv", nullptr, "networkPolicies", "Network policy", listView<networkPolicy>,
        addLineEach<networkPolicyWords>},
       {"hardwareRevisionTlvInfo", nullptr, "hardwareRevision", "Hardware revision", tlvTextView,
        addLine<textWords>},
       {"firmwareRevisionTlvInfo", nullptr, "firmwareRevision", "Firmware revision", tlvTextView,
        addLine<textWords>},
       {"softwareRevisionTlvInfo", nullptr, "softwareRevision", "Software revision", tlvTextView,
        addLine<textWords>},
       {"serialNumberTlvInfo", nullptr, "serialNumber", "Serial number", tlvTextView,
        addLine<textWords>},
       {"manufacturerNameTlvInfo", nullptr, "manufacturerName", "Manufacturer name", tlvTextView,
        addLine<textWords>},
       {"modelNameTlvInfo", nullptr, "modelName", "Model name", tlvTextView, addLine<textWords>},
       {"assetIDTlvInfo", nullptr, "assetId", "Asset ID", tlvTextView, addLine<textWords>},
   });
   return items;
}

}  // namespace LldpCli
