#include "cli/Location.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

#include "cli/CivicAddress.h"
#include "cli/Names.h"
#include "cli/Octets.h"

namespace LldpCli {
namespace {

constexpr auto altitudeTypes = std::to_array<Name>({{0, "unknown"}, {1, "metres"}, {2, "floors"}});
constexpr auto datums =
    std::to_array<Name>({{1, "WGS 84"}, {2, "NAD 83 with NAVD 88"}, {3, "NAD 83 with MLLW"}});

// Signed numbers with a binary point (RFC 3825).
struct FixedPoint {
   int bits;
   int fraction;  // of the bits, those behind the point
};
constexpr FixedPoint degrees{34, 25};
constexpr FixedPoint altitude{30, 8};

// {"value": 48.5, "uncertainty": 0.25}: only that many leading bits of the number count, and the
// others leave the true value open by as much as they can hold. No uncertainty is told where the
// resolution is none.
Json measure(const FixedPoint& format, const Json& number, const Json& resolution) {
   auto leading = resolution.get<int>();
   Json made{{"value", std::ldexp(number.get<double>(), -format.fraction)}};
   if (leading >= 1 && leading <= format.bits) {
      made["uncertainty"] = std::ldexp(1.0, format.bits - leading - format.fraction);
   }
   return made;
}

std::string measureWords(const Json& measure, int decimals) {
   std::string words = fmt::format("{:.{}f}", measure.at("value").get<double>(), decimals);
   if (!measure.contains("uncertainty")) return words + " (uncertainty unknown)";
   return fmt::format("{} +/- {:.{}f}", words, measure.at("uncertainty").get<double>(), decimals);
}

Json coordinates(const Json& from) {
   Json made{{"latitude", measure(degrees, from.at("latitude"), from.at("latitudeResolution"))},
             {"longitude", measure(degrees, from.at("longitude"), from.at("longitudeResolution"))},
             {"altitude", measure(altitude, from.at("altitude"), from.at("altitudeResolution"))},
             {"datum", nameOf(datums, from.at("datum").get<unsigned>())}};
   made["altitude"]["unit"] = nameOf(altitudeTypes, from.at("altitudeType").get<unsigned>());
   return made;
}

void addCoordinates(Fields& lines, const char* label, const Json& view) {
   // Their last bit is worth 0.00000003 degrees and 0.004 metres.
   for (const char* name : {"latitude", "longitude"}) {
      lines.emplace_back(fmt::format("{} {}", label, name),
                         measureWords(view.at(name), 8) + " degrees");
   }
   const Json& height = view.at("altitude");
   lines.emplace_back(
       fmt::format("{} altitude", label),
       fmt::format("{}, unit {}", measureWords(height, 3), textWords(height.at("unit"))));
   lines.emplace_back(fmt::format("{} datum", label), textWords(view.at("datum")));
}

Json location(const Json& from) {
   auto sent = [&](const char* part) { return from.at(part).at("valid").get<bool>(); };
   Json made;
   if (sent("coordinateBasedLCI")) made["coordinates"] = coordinates(from.at("coordinateBasedLCI"));
   if (sent("civicAddressLCI")) made["civicAddress"] = civicAddress(from.at("civicAddressLCI"));
   if (sent("ecsElin")) made["elin"] = text(from.at("ecsElin").at("elin"));
   return made;
}

void addLocation(Fields& lines, const char* label, const Json& view) {
   if (view.contains("coordinates")) addCoordinates(lines, label, view.at("coordinates"));
   if (view.contains("civicAddress")) {
      addCivicAddress(lines, fmt::format("{} address", label), view.at("civicAddress"));
   }
   if (view.contains("elin")) {
      lines.emplace_back(fmt::format("{} ELIN", label), textWords(view.at("elin")));
   }
}

}  // namespace

NeighborItems locationItems() {
   static constexpr auto items = std::to_array<NeighborItem>(
       {{"locationId", nullptr, "location", "Location", location, addLocation}});
   return items;
}

}  // namespace LldpCli
