#include "cli/CivicAddress.h"

#include <fmt/format.h>

#include <array>

#include "cli/Names.h"
#include "cli/Octets.h"

namespace LldpCli {
namespace {

// Whose address it is (3.1).
constexpr auto ofNames =
    std::to_array<Name>({{0, "DHCP server"}, {1, "network element"}, {2, "client"}});

// Types of elements (3.4).
constexpr auto typeNames = std::to_array<Name>({
    {0, "language"},
    {1, "state"},
    {2, "county"},
    {3, "city"},
    {4, "city division"},
    {5, "neighborhood"},
    {6, "street group"},
    {16, "leading street direction"},
    {17, "trailing street suffix"},
    {18, "street suffix"},
    {19, "house number"},
    {20, "house number suffix"},
    {21, "landmark"},
    {22, "additional location information"},
    {23, "name"},
    {24, "postal code"},
    {25, "building"},
    {26, "unit"},
    {27, "floor"},
    {28, "room"},
    {29, "type of place"},
    {30, "postal community name"},
    {31, "post office box"},
    {32, "additional code"},
    {33, "seat"},
    {34, "primary road name"},
    {35, "road section"},
    {36, "branch road name"},
    {37, "sub-branch road name"},
    {38, "street name pre-modifier"},
    {39, "street name post-modifier"},
    {128, "script"},
});

}  // namespace

Json civicAddress(const Json& from) {
   Json made{{"of", nameOf(ofNames, from.at("what").get<unsigned>())},
             {"country", text(from.at("countryCode"))},
             {"elements", Json::array()}};
   for (const Json& element : from.at("caElements")) {
      auto type = element.at("caType").get<unsigned>();
      made["elements"].push_back({{"type", type},
                                  {"name", nameOf(typeNames, type)},
                                  {"value", text(element.at("caValue"))}});
   }
   return made;
}

void addCivicAddress(Fields& lines, const std::string& label, const Json& view) {
   auto words = [](const Json& in, const char* name) { return in.at(name).get<std::string>(); };
   lines.emplace_back(label, fmt::format("of the {}", words(view, "of")));
   lines.emplace_back(label, fmt::format("country: {}", words(view, "country")));
   for (const Json& element : view.at("elements")) {
      lines.emplace_back(label,
                         fmt::format("{}: {}", words(element, "name"), words(element, "value")));
   }
}

}  // namespace LldpCli
