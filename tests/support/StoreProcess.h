// A process on a simulated store: a context with a tree of its own, and its replica.
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "Rex/Context.h"
#include "Rex/EntityType.h"
#include "Statestore/EntityManager.h"
#include "Statestore/Replica.h"
#include "support/SimulatedStore.h"

namespace LldpTest {

class StoreProcess {
 public:
   StoreProcess(SimulatedStore& store, const Rex::Ptr<Rex::Clock>& clock, const std::string& writer)
       : client(store.client()), context(clock) {
      Rex::ContextScope scope(context);
      manager = Rex::make<Statestore::EntityManager>();
      client.name = writer;
      replica = std::make_unique<Statestore::Replica>(client, writer);
      client.connect();
   }
   ~StoreProcess() { client.leave(); }

   // The entity at a path, asked for by this process.
   template <class T>
   Rex::Ptr<T> at(const std::string& path) {
      Rex::ContextScope scope(context);
      return Rex::dynamicPtr<T>(manager->entityIs(path, T::staticType().name()));
   }
   Statestore::Tree& tree() { return context.service<Statestore::Tree>(); }

   SimulatedStore::Client& client;
   Rex::Context context;
   Rex::Ptr<Statestore::EntityManager> manager;
   std::unique_ptr<Statestore::Replica> replica;
};

// Runs what is due and what is on its way until all is quiet.
inline void quiet(SimulatedStore& store, Rex::Clock& clock) {
   do {
      clock.runDue();
      store.settle();
   } while (clock.nextTime() <= clock.now());
}

// The JSON of an entity, in an order that does not tell in which it was written.
inline Rex::Json sorted(Rex::Json json) {
   if (!json.is_structured()) return json;
   for (auto& part : json) part = sorted(part);
   if (json.is_array()) {
      std::sort(json.begin(), json.end(),
                [](const Rex::Json& a, const Rex::Json& b) { return a.dump() < b.dump(); });
   } else if (json.is_object()) {
      std::map<std::string, Rex::Json> fields;
      for (auto& [name, value] : json.items()) fields[name] = value;
      json = Rex::Json::object();
      for (auto& [name, value] : fields) json[name] = value;
   }
   return json;
}

}  // namespace LldpTest
