// Writes down every change of the entities it watches, in the order of delivery, each as
// "Type.attribute" with the key of a collection in brackets.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Rex/EntityType.h"
#include "Rex/StateMachine.h"

namespace LldpTest {

class ChangeLog : public Rex::StateMachine {
 public:
   explicit ChangeLog(std::vector<Rex::Ptr<const Rex::Entity>> entities) {
      for (const auto& entity : entities) onAny(entity, &ChangeLog::handleChange);
   }
   std::vector<std::string> take() { return std::exchange(changes_, {}); }

 private:
   void handleChange(const Rex::Change& change) {
      const Rex::EntityType& type = change.entity.entityType();
      const Rex::Member* member = type.member(change.attribute);
      std::string text = type.name().substr(type.name().rfind(':') + 1) + "." + member->name;
      if (change.key.has()) text += "[" + member->keyText(change.key) + "]";
      changes_.push_back(text);
   }
   std::vector<std::string> changes_;
};

}  // namespace LldpTest
