#include "cli/Neighbor.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

#include "Rex/Printable.h"
#include "cli/BasicTlvs.h"
#include "cli/Dot1Tlvs.h"
#include "cli/Dot3Tlvs.h"
#include "cli/Location.h"
#include "cli/MedTlvs.h"
#include "cli/Names.h"
#include "cli/Octets.h"
#include "cli/Times.h"
#include "cli/UnknownTlvs.h"

namespace LldpCli {
namespace {

std::string secondsWords(const Json& seconds) {
   return numberWords(seconds) + " s";
}

constexpr auto frameItems = std::to_array<NeighborItem>({
    {"ethAddr", nullptr, "sourceMac", "Source MAC", textView, addLine<textWords>},
    {"ttl", nullptr, "ttl", "Time to live", numberView, addLine<secondsWords>},
});

// In the order in which they are shown.
std::array<NeighborItems, 7> allItems() {
   return {basicItems(),    dot1Items(),    dot3Items(), medItems(),
           locationItems(), unknownItems(), frameItems};
}

const NeighborItem* findItem(const std::string& name, const char* NeighborItem::*by) {
   for (NeighborItems items : allItems()) {
      for (const NeighborItem& item : items) {
         if (item.*by && name == item.*by) return &item;
      }
   }
   return nullptr;
}

std::string textOf(const Json& view, const char* name) {
   return view.value(name, std::string());
}

void addAge(Fields& fields, const char* label, const Json& view, const char* name) {
   if (view.contains(name)) {
      fields.emplace_back(label, duration(view.at(name).get<double>()) + " ago");
   }
}

// What is left of a second counts as one: 0 is for a time that is over.
std::string secondsLeft(const Json& view) {
   if (!view.contains("expiresInSeconds")) return "-";
   return fmt::format("{:.0f}", std::ceil(view.at("expiresInSeconds").get<double>()));
}

}  // namespace

Json neighbor(const std::string& port, const Json& remoteSystem, double now) {
   const Json& msap = remoteSystem.at("msap");
   Json view{{"port", Rex::printable(port)},
             {"index", remoteSystem.at("index").get<int>()},
             {"chassis", identifier(msap.at("chassisIdentifier"))},
             {"portId", identifier(msap.at("portIdentifier"))}};
   for (NeighborItems items : allItems()) putItems(view, items, remoteSystem);
   if (const Json& expiry = remoteSystem.at("expiryTime"); expiry.is_number()) {
      view["expiresInSeconds"] = secondsSince(now, expiry.get<double>());
   }
   putSince(view, "ageSeconds", remoteSystem.at("creationTime"), now);
   putSince(view, "sinceChangeSeconds", remoteSystem.at("lastChangeTime"), now);
   putSince(view, "sinceRefreshSeconds", remoteSystem.at("lastRefreshTime"), now);
   return view;
}

std::vector<Column> neighborColumns() {
   return {{"Port", Column::Kind::name},
           {"Neighbor"},
           {"Chassis ID"},
           {"Port ID"},
           {"Description"},
           {"Left/TTL", Column::Kind::number},
           {"Capabilities"}};
}

std::vector<std::string> neighborRow(const Json& neighbor) {
   std::string enabled;
   if (neighbor.contains("capabilities")) {
      enabled = listWords(neighbor.at("capabilities").at("enabled"));
   }
   return {neighbor.at("port"),
           neighborName(neighbor),
           neighbor.at("chassis").at("id"),
           neighbor.at("portId").at("id"),
           textOf(neighbor, "portDescription"),
           fmt::format("{}/{}", secondsLeft(neighbor), neighbor.at("ttl").get<unsigned>()),
           enabled};
}

Fields neighborFields(const Json& neighbor) {
   Fields fields{{"Chassis ID", identifierWords(neighbor.at("chassis"))},
                 {"Port ID", identifierWords(neighbor.at("portId"))}};
   for (NeighborItems items : allItems()) addItemLines(fields, items, neighbor);
   if (neighbor.contains("expiresInSeconds")) {
      fields.emplace_back("Time left", secondsLeft(neighbor) + " s");
   }
   addAge(fields, "Discovered", neighbor, "ageSeconds");
   addAge(fields, "Last change", neighbor, "sinceChangeSeconds");
   addAge(fields, "Last refresh", neighbor, "sinceRefreshSeconds");
   return fields;
}

std::string neighborName(const Json& neighbor) {
   std::string name = textOf(neighbor, "systemName");
   return name.empty() ? neighbor.at("chassis").at("id").get<std::string>() : name;
}

bool isOver(const Json& neighbor) {
   return neighbor.contains("expiresInSeconds") && neighbor.at("expiresInSeconds") == 0;
}

const NeighborItem* neighborItem(const std::string& attribute) {
   const NeighborItem* item = findItem(attribute, &NeighborItem::attribute);
   return item ? item : findItem(attribute, &NeighborItem::received);
}

Fields changedFields(const Json& neighbor, const Json& names) {
   Fields changed;
   for (const Json& name : names) {
      const NeighborItem* item = findItem(name.get<std::string>(), &NeighborItem::name);
      if (!item) continue;
      size_t before = changed.size();
      addItemLines(changed, {item, 1}, neighbor);
      if (changed.size() == before) changed.emplace_back(item->label, "no longer sent");
   }
   return changed;
}

}  // namespace LldpCli
