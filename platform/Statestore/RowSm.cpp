#include "Statestore/RowSm.h"

#include "Statestore/Place.h"
#include "Statestore/RowTable.h"

namespace Statestore {

RowSm::RowSm(RowTable& table, Rex::Ptr<Rex::Entity> entity, RowSm* holder, std::string path,
             State state)
    : table_(table),
      entity_(std::move(entity)),
      holder_(holder),
      path_(std::move(path)),
      state_(state),
      authored_(state == State::fresh ? ~uint64_t{0} : 0) {
   onAny(entity_, &RowSm::handleAny);

   handleInitialized();
}

void RowSm::handleInitialized() {
   table_.rowIs(*this);
   for (const auto& member : entity_->entityType().members()) {
      if (member->kind == Rex::MemberKind::pointer) follow(*member, {}, state_);
      if (member->kind != Rex::MemberKind::children) continue;
      for (const std::string& key : member->keys(*entity_)) follow(*member, key, state_);
   }
}

void RowSm::doClose() {
   children_.clear();
   table_.rowDel(*this);
   entity_ = nullptr;
}

std::string_view RowSm::field() const {
   std::string_view path(path_);
   if (holder_) path.remove_prefix(holder_->path_.size() + 1);
   return path;
}

void RowSm::allStatesIs(State state) {
   state_ = state;
   for (auto [field, row] : children_.all()) row->allStatesIs(state);
}

bool RowSm::authored(const Rex::Member& member) const {
   if (!(authored_ & bit(member))) return false;
   return changed_ & bit(member) || !isDefault(member);
}

void RowSm::authoredIs(const Rex::Member& member, bool authored) {
   if (authored) {
      authored_ |= bit(member);
      changed_ |= bit(member);
   } else {
      authored_ &= ~bit(member);
   }
}

bool RowSm::isDefault(const Rex::Member& member) const {
   const Rex::EntityType& type = entity_->entityType();
   std::vector<Rex::Json> keys;
   for (const auto& key : type.members()) {
      if (key->kind == Rex::MemberKind::key) keys.push_back(key->toJson(*entity_));
   }
   auto fresh = type.create(keys);
   return fresh && Rex::memberToJson(member, *fresh, 0) == Rex::memberToJson(member, *entity_, 0);
}

void RowSm::handleAny(const Rex::Change& change) {
   const Rex::Member* member = entity_->entityType().member(change.attribute);
   if (!member) return;
   switch (member->kind) {
      case Rex::MemberKind::children:
         if (!follow(*member, member->keyText(change.key), State::fresh)) return;
         break;
      case Rex::MemberKind::pointer:
         follow(*member, {}, State::fresh);
         break;
      default:
         break;
   }
   if (table_.applying.ended(*this, *member, change.key)) {
      // What was made here below it is known by itself.
      if (member->kind == Rex::MemberKind::children) authoredIs(*member, false);
      return;
   }
   authoredIs(*member, true);
   // A fresh row goes out whole.
   if (state_ != State::fresh && root().loaded()) table_.note(*this, *member, change.key);
}

bool RowSm::follow(const Rex::Member& member, const std::string& key, State fresh) {
   auto target = member.child(*entity_, key);
   const Rex::String field(fieldOf(*entity_, member, key));
   auto standing = children_.get(field);
   if (standing && standing->entity() == target) return false;
   children_.erase(field);
   if (!target || !table_.owns(*this, member, *target)) return true;
   std::string path = path_ + '/' + field.stdString();
   State state = table_.applying.puts(*target)   ? State::standing
                 : table_.takeUnwritten(*target) ? State::unwritten
                                                 : fresh;
   children_.make(field, table_, target, this, path, state);
   return state != State::unwritten;
}

}  // namespace Statestore
