#include "cli/Neighbor.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "Rex/Printable.h"
#include "cli/Octets.h"
#include "cli/Times.h"
#include "cli/Tlvs.h"

namespace LldpCli {
namespace {

// What a neighbour says: in the agent's entity, in the JSON for scripts, and the word that its
// labels in a detailed text begin with.
struct Item {
   const char* attribute;
   const char* name;
   const char* label;
};

constexpr auto items = std::to_array<Item>({
    {"portDesc", "portDescription", "Port description"},
    {"sysName", "systemName", "System name"},
    {"sysDesc", "systemDescription", "System description"},
    {"systemCapabilities", "capabilities", "Capabilities"},
    {"managementAddress", "managementAddresses", "Management address"},
    {"unknownTlv", "unknownTlvs", "Unknown TLV"},
    {"unknownOrgDefTlv", "unknownOrganizationTlvs", "Organization TLV"},
    {"ttl", "ttl", "Time to live"},
    {"ethAddr", "sourceMac", "Source MAC"},
});

void putText(Json& view, const char* name, const Json& tlv) {
   if (tlv.at("tlvReceived").get<bool>()) view[name] = text(tlv.at("tlvInfo"));
}

// The members in an order that stays from one command to the next.
Json listOf(const Json& members, Json (*make)(const Json&)) {
   std::vector<Json> made;
   for (const Json& member : members) made.push_back(make(member));
   std::sort(made.begin(), made.end(), [](const Json& a, const Json& b) {
      return std::vector<Json>(a.begin(), a.end()) < std::vector<Json>(b.begin(), b.end());
   });
   return made;
}

std::string textOf(const Json& view, const char* name) {
   return view.value(name, std::string());
}

void addText(Fields& fields, const char* label, const Json& view, const char* name) {
   if (view.contains(name)) fields.emplace_back(label, textOf(view, name));
}

void addList(Fields& fields, const char* label, const Json& members,
             std::string (*words)(const Json&)) {
   for (const Json& member : members) fields.emplace_back(label, words(member));
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
   putText(view, "portDescription", remoteSystem.at("portDesc"));
   putText(view, "systemName", remoteSystem.at("sysName"));
   putText(view, "systemDescription", remoteSystem.at("sysDesc"));
   const Json& caps = remoteSystem.at("systemCapabilities");
   if (caps.at("tlvReceived").get<bool>()) {
      view["capabilities"] = capabilities(caps.at("supported"), caps.at("enabled"));
   }
   view["managementAddresses"] = listOf(remoteSystem.at("managementAddress"), managementAddress);
   view["unknownTlvs"] = listOf(remoteSystem.at("unknownTlv"), unknownTlv);
   view["unknownOrganizationTlvs"] =
       listOf(remoteSystem.at("unknownOrgDefTlv"), unknownOrganizationTlv);
   view["ttl"] = remoteSystem.at("ttl").get<unsigned>();
   if (const Json& expiry = remoteSystem.at("expiryTime"); expiry.is_number()) {
      view["expiresInSeconds"] = secondsSince(now, expiry.get<double>());
   }
   putSince(view, "ageSeconds", remoteSystem.at("creationTime"), now);
   putSince(view, "sinceChangeSeconds", remoteSystem.at("lastChangeTime"), now);
   putSince(view, "sinceRefreshSeconds", remoteSystem.at("lastRefreshTime"), now);
   view["sourceMac"] = text(remoteSystem.at("ethAddr"));
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
   addText(fields, "Port description", neighbor, "portDescription");
   addText(fields, "System name", neighbor, "systemName");
   addText(fields, "System description", neighbor, "systemDescription");
   if (neighbor.contains("capabilities")) {
      const Json& both = neighbor.at("capabilities");
      fields.emplace_back("Capabilities supported", listWords(both.at("supported")));
      fields.emplace_back("Capabilities enabled", listWords(both.at("enabled")));
   }
   addList(fields, "Management address", neighbor.at("managementAddresses"),
           managementAddressWords);
   addList(fields, "Unknown TLV", neighbor.at("unknownTlvs"), unknownTlvWords);
   addList(fields, "Organization TLV", neighbor.at("unknownOrganizationTlvs"),
           unknownOrganizationTlvWords);
   fields.emplace_back(
       "Time to live",
       fmt::format("{} s, {} s left", neighbor.at("ttl").get<unsigned>(), secondsLeft(neighbor)));
   addAge(fields, "Discovered", neighbor, "ageSeconds");
   addAge(fields, "Last change", neighbor, "sinceChangeSeconds");
   addAge(fields, "Last refresh", neighbor, "sinceRefreshSeconds");
   addText(fields, "Source MAC", neighbor, "sourceMac");
   return fields;
}

std::string neighborName(const Json& neighbor) {
   std::string name = textOf(neighbor, "systemName");
   return name.empty() ? neighbor.at("chassis").at("id").get<std::string>() : name;
}

bool isOver(const Json& neighbor) {
   return neighbor.contains("expiresInSeconds") && neighbor.at("expiresInSeconds") == 0;
}

std::string neighborItem(const std::string& attribute) {
   for (const Item& item : items) {
      if (attribute == item.attribute) return item.name;
   }
   return Rex::printable(attribute);
}

Fields changedFields(const Json& neighbor, const Json& names) {
   Fields changed;
   Fields all = neighborFields(neighbor);
   for (const Json& name : names) {
      auto item = std::ranges::find(items, name.get<std::string>(), &Item::name);
      if (item == items.end()) continue;
      size_t before = changed.size();
      for (const auto& field : all) {
         if (field.first.starts_with(item->label)) changed.push_back(field);
      }
      if (changed.size() == before) changed.emplace_back(item->label, "no longer sent");
   }
   return changed;
}

}  // namespace LldpCli
