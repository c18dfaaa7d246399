// What processes and a simulated store hold, to be compared.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "Rex/EntityType.h"
#include "support/StoreProcess.h"

namespace LldpTest {

// Every value of a tree, by its place.
using Contents = std::map<std::string, std::string>;

inline Contents contents(const Statestore::Tree& tree, const std::vector<std::string>& paths) {
   Contents all;
   for (const std::string& path : paths) {
      auto entity = tree.find(Statestore::splitPath(path)).entity;
      const Rex::Json values = sorted(Rex::entityToJson(*entity)).flatten();
      for (auto& [place, value] : values.items()) all[path + place] = value.dump();
   }
   return all;
}

inline std::string differences(const Contents& right, const Contents& got) {
   std::string text;
   for (auto& [place, value] : right) {
      auto at = got.find(place);
      if (at == got.end() || at->second != value) {
         text +=
             place + " is " + (at == got.end() ? "missing" : at->second) + ", not " + value + "\n";
      }
   }
   for (auto& [place, value] : got) {
      if (!right.contains(place)) text += place + " is " + value + ", not missing\n";
   }
   return text.substr(0, 2000);
}

// What the store has of a row is what the tree has.
inline std::vector<std::string> rowFaults(const SimulatedStore& store, StoreProcess& process) {
   std::vector<std::string> faults;
   for (const auto& [path, row] : store.rows()) {
      auto entity = process.manager->find(*Statestore::decodePath(path)).entity;
      if (!entity || row.type != entity->entityType().name()) {
         faults.push_back(path + " is no row");
         continue;
      }
      for (const auto& member : entity->entityType().members()) {
         if (member->kind != Rex::MemberKind::scalar) continue;
         auto field = row.fields.find(member->name);
         if (field == row.fields.end() || field->second != member->toJson(*entity).dump()) {
            faults.push_back(path + "/" + member->name + " of the row");
         }
      }
   }
   return faults;
}

}  // namespace LldpTest
