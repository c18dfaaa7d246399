#include "Statestore/Pending.h"

namespace Statestore {

void Pending::note(RowSm& row, const Rex::Member& member, const Rex::AnyKey& key) {
   auto at = index_.find(Look{&row, &member, &key});
   if (at != index_.end()) {
      notes_.splice(notes_.end(), notes_, *at);
      return;
   }
   index_.insert(notes_.insert(notes_.end(), Note{Rex::Ptr<RowSm>(&row), &member, key}));
}

void Pending::noteFirst(RowSm& row, const Rex::Member& member, const Rex::AnyKey& key) {
   if (has(row, member, key)) return;
   index_.insert(notes_.insert(notes_.begin(), Note{Rex::Ptr<RowSm>(&row), &member, key}));
}

void Pending::drop(const RowSm& row, const Rex::Member& member, const Rex::AnyKey& key) {
   auto at = index_.find(Look{&row, &member, &key});
   if (at == index_.end()) return;
   Notes::iterator note = *at;
   index_.erase(at);
   notes_.erase(note);
}

bool Pending::has(const RowSm& row, const Rex::Member& member, const Rex::AnyKey& key) const {
   return index_.contains(Look{&row, &member, &key});
}

std::optional<Note> Pending::take() {
   while (!notes_.empty()) {
      index_.erase(notes_.begin());
      Note note = std::move(notes_.front());
      notes_.pop_front();
      if (!note.row->closed()) return note;
   }
   return std::nullopt;
}

void Pending::clear() {
   index_.clear();
   notes_.clear();
   closed_ = 0;
}

void Pending::handleClosed() {
   if (++closed_ <= notes_.size() / 8 + 1000) return;
   closed_ = 0;
   for (auto at = notes_.begin(); at != notes_.end();) {
      auto note = at++;
      if (!note->row->closed()) continue;
      index_.erase(note);
      notes_.erase(note);
   }
}

}  // namespace Statestore
