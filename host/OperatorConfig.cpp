#include "host/OperatorConfig.h"

#include <algorithm>

#include "Rex/Dispatcher.h"
#include "host/Settings.h"

namespace Host {
namespace {

// What the operator keeps. Requests, and what other agents ask for, are no configuration.
struct Root {
   const char* path;
   const char* type;
   const char* except = nullptr;  // an attribute that is none
};
constexpr Root roots[] = {
    {"l2discovery/lldp/cliConfig", "Lldp::CliConfig"},
    {"identity/nbrClassification/cliConfig", "Identity::NbrClassification::CliConfig",
     "clearRequest"},
};

Rex::Json differences(const Rex::Entity& entity, Rex::Entity& fresh);

Rex::Json rowDifferences(const Rex::Member& member, const Rex::Entity& entity, Rex::Entity& fresh) {
   Rex::Json rows = Rex::Json::object();
   for (const std::string& key : member.keys(entity)) {
      auto row = member.child(entity, key);
      auto freshRow = member.makeChild(fresh, key);
      if (row && freshRow) rows[key] = differences(*row, *freshRow);
   }
   return rows;
}

// Takes rows of its own into `fresh`, an entity of the same type that nobody has written to.
Rex::Json differences(const Rex::Entity& entity, Rex::Entity& fresh) {
   Rex::Json all = Rex::Json::object();
   for (const auto& member : entity.entityType().members()) {
      Rex::Json value;
      switch (member->kind) {
         case Rex::MemberKind::scalar:
         case Rex::MemberKind::values:
         case Rex::MemberKind::mapping:
            value = member->toJson(entity);
            if (value != member->toJson(fresh)) all[member->name] = std::move(value);
            break;
         case Rex::MemberKind::children:
            value = rowDifferences(*member, entity, fresh);
            if (!value.empty()) all[member->name] = std::move(value);
            break;
         case Rex::MemberKind::key:
         case Rex::MemberKind::pointer:
         case Rex::MemberKind::references:
            break;
      }
   }
   return all;
}

Rex::Member::Write decodeWhole(const Rex::EntityType& type, const Rex::Json& json,
                               const std::string& path);

Rex::Member::Write decodeRows(const Rex::Member& member, const Rex::Json& json,
                              const std::string& path) {
   const Rex::EntityType* type = member.madeType();
   if (!type) throw Rex::JsonError(path, "its members are not made here");
   if (!json.is_object()) throw Rex::JsonError(path, "expected an object of rows by key");
   if (size_t most = mostRows(member); json.size() > most) {
      throw Rex::JsonError(path, "expected at most " + std::to_string(most) + " rows, got " +
                                     std::to_string(json.size()));
   }
   std::vector<Rex::Member::Write> writes;
   for (const auto& [key, row] : json.items()) {
      const std::string place = Rex::fieldPath(path, key);
      std::string fault = keyFault(member, key);
      if (!fault.empty()) throw Rex::JsonError(place, fault);
      auto write = decodeWhole(*type, row, place);
      writes.push_back([&member, key = key, write](Rex::Entity& holder) {
         write(*member.makeChild(holder, key));
      });
   }
   return [writes](Rex::Entity& holder) {
      // Each as one reaction, so that a new row is filled before its key is reported.
      for (const auto& write : writes) Rex::Dispatcher::run([&] { write(holder); });
   };
}

// An entity with its rows.
Rex::Member::Write decodeWhole(const Rex::EntityType& type, const Rex::Json& json,
                               const std::string& path) {
   if (!json.is_object()) throw Rex::JsonError(path, "expected an object of attributes");
   std::vector<Rex::Member::Write> writes;
   for (const auto& [name, value] : json.items()) {
      const Rex::Member* member = type.member(name);
      bool rows = member && member->kind == Rex::MemberKind::children;
      writes.push_back(rows ? decodeRows(*member, value, Rex::fieldPath(path, name))
                            : decodeSettings(type, {{name, value}}, path));
   }
   return [writes](Rex::Entity& entity) {
      for (const auto& write : writes) write(entity);
   };
}

std::string knownPaths() {
   std::string all;
   for (const Root& root : roots) all += std::string(all.empty() ? "" : ", ") + root.path;
   return all;
}

}  // namespace

OperatorConfig::OperatorConfig(Rex::Ptr<Statestore::EntityManager> entityManager)
    : entityManager_(std::move(entityManager)) {
   for (const Root& root : roots) REX_ASSERT(entityManager_->entityIs(root.path, root.type));
}

Rex::Json OperatorConfig::differences() const {
   Rex::Json all = Rex::Json::object();
   for (const Root& root : roots) {
      auto entity = entityManager_->getEntity(root.path);
      Rex::Json differing = Host::differences(*entity, *entity->entityType().create());
      if (root.except) differing.erase(root.except);
      if (!differing.empty()) all[root.path] = std::move(differing);
   }
   return all;
}

std::function<void()> OperatorConfig::decode(const Rex::Json& json) const {
   if (!json.is_object()) throw Rex::JsonError("", "expected an object by path of the store");
   std::vector<std::function<void()>> writes;
   for (const auto& [path, value] : json.items()) {
      auto root = std::ranges::find(roots, path, &Root::path);
      if (root == std::end(roots)) {
         throw Rex::JsonError(path, "no such configuration; there is " + knownPaths());
      }
      if (root->except && value.is_object() && value.contains(root->except)) {
         throw Rex::JsonError(Rex::fieldPath(path, root->except), "a request is no configuration");
      }
      auto entity = entityManager_->getEntity(path);
      writes.push_back(
          [entity, write = decodeWhole(entity->entityType(), value, path)] { write(*entity); });
   }
   return [writes] {
      for (const auto& write : writes) write();
   };
}

}  // namespace Host
