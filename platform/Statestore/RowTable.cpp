#include "Statestore/RowTable.h"

namespace Statestore {

RowSm* RowTable::at(const std::string& path) const {
   auto found = byPath_.find(path);
   return found == byPath_.end() ? nullptr : found->second;
}

RowSm* RowTable::of(const Rex::Entity* entity) const {
   auto found = byEntity_.find(entity);
   return found == byEntity_.end() ? nullptr : found->second;
}

void RowTable::rowIs(RowSm& row) {
   byPath_.erase(row.path());
   byPath_.emplace(row.path(), &row);
   byEntity_.try_emplace(row.entity().get(), &row);
   references.handleCame(row.path());
}

void RowTable::rowDel(RowSm& row) {
   // One that takes its place may stand already.
   if (at(row.path()) == &row) byPath_.erase(row.path());
   if (of(row.entity().get()) == &row) byEntity_.erase(row.entity().get());
   references.handleGone(row.path(), row.entity());
   pending.handleClosed();
}

void RowTable::note(RowSm& row, const Rex::Member& member, const Rex::AnyKey& key) {
   pending.note(row, member, key);
   if (onNote) onNote();
}

bool RowTable::owns(const RowSm& row, const Rex::Member& member, const Rex::Entity& target) const {
   if (member.kind == Rex::MemberKind::references) return false;
   if (member.kind == Rex::MemberKind::pointer && !member.mayOwn()) return false;
   const RowSm* standing = of(&target);
   return !standing || standing->holder() == &row;
}

}  // namespace Statestore
