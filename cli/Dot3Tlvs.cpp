#include "cli/Dot3Tlvs.h"

#include <fmt/format.h>

#include <array>

#include "cli/MauTypes.h"
#include "cli/Names.h"

namespace LldpCli {
namespace {

// Auto-negotiation abilities, lowest bit first: the TLV numbers them from its highest one on.
constexpr auto abilityNames = std::to_array<const char*>(
    {"1000BASE-T full duplex", "1000BASE-T half duplex", "1000BASE-X full duplex",
     "1000BASE-X half duplex", "asymmetric and symmetric pause", "symmetric pause",
     "asymmetric pause", "pause", "100BASE-T2 full duplex", "100BASE-T2 half duplex",
     "100BASE-TX full duplex", "100BASE-TX half duplex", "100BASE-T4", "10BASE-T full duplex",
     "10BASE-T half duplex", "other"});

Json macPhy(const Json& from) {
   auto mauType = from.at("operMauType").get<unsigned>();
   return {
       {"autoNegotiation",
        {{"supported", from.at("autoNegSupported").get<bool>()},
         {"enabled", from.at("autoNegEnabled").get<bool>()},
         {"advertised", bitNames(abilityNames, from.at("advertisedCapability").get<unsigned>())}}},
       {"mauType", mauType},
       {"mauTypeName", nameOf(mauTypeNames(), mauType)}};
}

void addMacPhy(Fields& lines, const char* label, const Json& view) {
   const Json& negotiation = view.at("autoNegotiation");
   lines.emplace_back(fmt::format("{} auto-negotiation", label),
                      flagWords(negotiation, {"supported", "enabled"}));
   lines.emplace_back(fmt::format("{} advertised", label), listWords(negotiation.at("advertised")));
   lines.emplace_back(fmt::format("{} type", label), textWords(view.at("mauTypeName")));
}

// Power via MDI (79.3.2).
constexpr auto pairNames = std::to_array<Name>({{1, "signal"}, {2, "spare"}});
constexpr auto classNames = std::to_array<Name>(
    {{1, "class 0"}, {2, "class 1"}, {3, "class 2"}, {4, "class 3"}, {5, "class 4"}});
constexpr auto typeNames =
    std::to_array<Name>({{0, "type 2 PSE"}, {1, "type 2 PD"}, {2, "type 1 PSE"}, {3, "type 1 PD"}});
constexpr auto pseSourceNames =
    std::to_array<Name>({{0, "unknown"}, {1, "primary"}, {2, "backup"}});
constexpr auto pdSourceNames =
    std::to_array<Name>({{0, "unknown"}, {1, "PSE"}, {2, "local"}, {3, "PSE and local"}});
constexpr auto priorityNames =
    std::to_array<Name>({{0, "unknown"}, {1, "critical"}, {2, "high"}, {3, "low"}});

enum PowerSupport { portClassPse = 1, supported = 2, enabled = 4, pairControl = 8 };

Json powerViaMdi(const Json& from) {
   auto number = [&](const char* name) { return from.at(name).get<unsigned>(); };
   unsigned support = number("mdiPowerSupport");
   Json made{{"portClass", support & portClassPse ? "PSE" : "PD"},
             {"supported", (support & supported) != 0},
             {"enabled", (support & enabled) != 0},
             {"pairControl", (support & pairControl) != 0},
             {"pair", nameOf(pairNames, number("psePowerPair"))},
             {"class", nameOf(classNames, number("powerClass"))}};
   if (number("tlvFormat") == 0) return made;
   unsigned type = number("powerType");
   bool isPse = type % 2 == 0;
   made["type"] = nameOf(typeNames, type);
   made["source"] = isPse ? nameOf(pseSourceNames, number("powerSource"))
                          : nameOf(pdSourceNames, number("powerSource"));
   made["priority"] = nameOf(priorityNames, number("powerPriority"));
   made["requestedWatts"] = watts(from.at("pdRequestedPower"));
   made["allocatedWatts"] = watts(from.at("pseAllocatedPower"));
   return made;
}

void addPowerViaMdi(Fields& lines, const char* label, const Json& view) {
   auto words = [&](const char* name) { return textWords(view.at(name)); };
   lines.emplace_back(
       label,
       fmt::format("{}, {}, {} pair{}, {}", words("portClass"),
                   flagWords(view, {"supported", "enabled"}), words("pair"),
                   view.at("pairControl").get<bool>() ? " (can be changed)" : "", words("class")));
   if (!view.contains("type")) return;
   lines.emplace_back(fmt::format("{} type", label),
                      fmt::format("{}, source {}, priority {}", words("type"), words("source"),
                                  words("priority")));
   lines.emplace_back(
       fmt::format("{} power", label),
       fmt::format("{} requested, {} allocated", wattsWords(view.at("requestedWatts")),
                   wattsWords(view.at("allocatedWatts"))));
}

Json linkAggregation(const Json& from) {
   auto status = from.at("status").get<unsigned>();
   return {{"capable", (status & 1) != 0},
           {"enabled", (status & 2) != 0},
           {"portId", from.at("portId").get<unsigned>()}};
}

std::string linkAggregationWords(const Json& view) {
   return fmt::format("{}, port {}", flagWords(view, {"capable", "enabled"}),
                      numberWords(view.at("portId")));
}

Json frameSize(const Json& from) {
   return numberView(from.at("maxFrameSize"));
}

}  // namespace

Json watts(const Json& tenths) {
   return tenths.get<unsigned>() / 10.0;
}

std::string wattsWords(const Json& watts) {
   return fmt::format("{:.1f} W", watts.get<double>());
}

NeighborItems dot3Items() {
   static constexpr auto items = std::to_array<NeighborItem>({
       {"macPhyConfigStatusInfo", "macPhyConfigStatusTlvReceived", "macPhy", "MAC/PHY", macPhy,
        addMacPhy},
       {"powerViaMdiInfo", "powerViaMdiTlvReceived", "powerViaMdi", "Power via MDI", powerViaMdi,
        addPowerViaMdi},
       {"linkAggregationInfo", "linkAggregationTlvReceived", "linkAggregation", "Link aggregation",
        linkAggregation, addLine<linkAggregationWords>},
       {"maximumFrameSizeInfo", "maximumFrameSizeTlvReceived", "maximumFrameSize",
        "Maximum frame size", frameSize, addLine<numberWords>},
   });
   return items;
}

}  // namespace LldpCli
