#include "support/SimulatedStore.h"

#include <algorithm>

namespace LldpTest {

using namespace Statestore;

void SimulatedStore::Client::load(const std::vector<std::string>& roots,
                                  std::function<void(Snapshot)> answer) {
   asked_.push_back([this, roots, answer] {
      told_.push_back([answer, snapshot = store_.snapshot(roots)] { answer(snapshot); });
   });
}

void SimulatedStore::Client::read(const std::string& life, const std::string& after,
                                  std::function<void(std::optional<std::vector<Change>>)> answer) {
   asked_.push_back([this, life, after, answer] {
      const auto& all = store_.changes_;
      auto at = std::find_if(all.begin(), all.end(),
                             [&](const Change& change) { return change.id == after; });
      std::optional<std::vector<Change>> found;
      if (life == store_.life_ && at != all.end()) {
         ++at;
         size_t many = std::min<size_t>(store_.piece, static_cast<size_t>(all.end() - at));
         found.emplace(at, at + static_cast<std::ptrdiff_t>(many));
      }
      told_.push_back([answer, found] { answer(found); });
   });
}

void SimulatedStore::Client::change(const std::string& life, const std::string& writer,
                                    uint64_t number, const Operations& operations,
                                    std::function<void(ChangeResult)> answer) {
   ++changes;
   this->operations += operations.size();
   asked_.push_back([this, life, writer, number, operations, answer] {
      bool stands = std::any_of(operations.begin(), operations.end(), [&](const Operation& one) {
         return one.kind == Operation::Kind::make && one.row.empty() &&
                store_.rows_.contains(one.field);
      });
      bool unmet = std::any_of(operations.begin(), operations.end(), [&](const Operation& one) {
         return one.kind == Operation::Kind::require && !store_.meets(one);
      });
      ChangeResult result = life != store_.life_ ? ChangeResult::otherLife
                            : store_.refuses     ? ChangeResult::refused
                            : unmet              ? ChangeResult::unmet
                            : stands             ? ChangeResult::rootStands
                                                 : ChangeResult::made;
      if (result == ChangeResult::made) {
         if (store_.witness) store_.witness({"", writer, number, operations});
         Change made{"", writer, number, {}};
         for (const Operation& one : operations) {
            if (store_.apply(one)) made.operations.push_back(one);
         }
         store_.add(std::move(made));
      }
      told_.push_back([answer, result] { answer(result); });
   });
}

void SimulatedStore::Client::connect() {
   if (up_ || !client_) return;
   up_ = true;
   client_->handleUp();
}

void SimulatedStore::Client::cut(bool done) {
   if (!up_) return;
   while (done && serve()) {
   }
   asked_.clear();
   told_.clear();
   up_ = false;
   client_->handleDown();
}

void SimulatedStore::Client::leave() {
   asked_.clear();
   told_.clear();
   up_ = false;
   client_ = nullptr;
}

bool SimulatedStore::Client::serve() {
   if (asked_.empty()) return false;
   auto ask = std::move(asked_.front());
   asked_.pop_front();
   ask();
   return true;
}

bool SimulatedStore::Client::hear() {
   if (told_.empty()) return false;
   auto told = std::move(told_.front());
   told_.pop_front();
   told();
   return true;
}

bool SimulatedStore::step() {
   std::vector<std::pair<Client*, bool>> possible;
   for (Client& client : clients_) {
      if (!client.asked_.empty() && !client.askedWaits) possible.emplace_back(&client, true);
      if (!client.told_.empty() && !client.toldWaits) possible.emplace_back(&client, false);
   }
   if (possible.empty()) return false;
   auto [client, serves] = possible[random_() % possible.size()];
   return serves ? client->serve() : client->hear();
}

void SimulatedStore::settle() {
   while (step()) {
   }
}

void SimulatedStore::empty() {
   rows_.clear();
   changes_.clear();
   life_.clear();
   for (Client& client : clients_) {
      if (client.up_) client.told_.push_back([&client] { client.client_->handleEmptied(); });
   }
}

void SimulatedStore::restart(Kept kept) {
   rows_ = std::move(kept.rows);
   changes_ = std::move(kept.changes);
   life_ = std::move(kept.life);
}

void SimulatedStore::trim(size_t stay) {
   while (changes_.size() > stay) changes_.pop_front();
}

void SimulatedStore::born() {
   if (!life_.empty()) return;
   life_ = "life" + std::to_string(++lives_);
   add({});
}

void SimulatedStore::add(Change change) {
   change.id = std::to_string(++ids_);
   changes_.push_back(std::move(change));
   for (Client& client : clients_) {
      if (client.up_) client.told_.push_back([&client] { client.client_->handleNews(); });
   }
}

Snapshot SimulatedStore::snapshot(const std::vector<std::string>& roots) {
   born();
   Snapshot snapshot{life_, changes_.back().id, {}};
   for (const auto& [place, row] : rows_) {
      const std::string& path = place;
      bool asked = std::any_of(roots.begin(), roots.end(), [&](const std::string& root) {
         return path == root || path.starts_with(root + '/');
      });
      if (!asked) continue;
      snapshot.rows.push_back({path, row.type, {row.fields.begin(), row.fields.end()}});
   }
   return snapshot;
}

void SimulatedStore::wipe(const std::string& path) {
   std::erase_if(rows_, [&](const auto& row) {
      return row.first == path || row.first.starts_with(path + '/');
   });
}

// Fields of a row that are rows hold their type, as a text.
bool SimulatedStore::meets(const Operation& one) const {
   auto row = rows_.find(one.row);
   if (row == rows_.end()) return true;
   auto field = row->second.fields.find(one.field);
   return field == row->second.fields.end() || field->second == one.value;
}

bool SimulatedStore::apply(const Operation& one) {
   std::string row = one.row, field = one.field;
   const std::string path = row.empty() ? field : row + '/' + field;
   if (!row.empty() && !rows_.contains(row)) return false;
   if (row.empty()) {
      // An entry of a directory, if there is one.
      size_t cut = path.rfind('/');
      if (cut != std::string::npos) {
         auto holder = rows_.find(path.substr(0, cut));
         if (holder != rows_.end() && holder->second.type == "Rex::Dir") {
            row = path.substr(0, cut);
            field = path.substr(cut + 1);
         }
      }
   }
   switch (one.kind) {
      case Operation::Kind::require:
         return false;
      case Operation::Kind::set:
         rows_[row].fields[field] = one.value;
         return true;
      case Operation::Kind::make:
         wipe(path);
         rows_[path].type = one.value;
         if (!row.empty()) rows_[row].fields[field] = '"' + one.value + '"';
         return true;
      case Operation::Kind::remove: {
         bool stood = rows_.contains(path);
         wipe(path);
         if (!row.empty()) stood |= rows_[row].fields.erase(field) > 0;
         return stood;
      }
   }
   return false;
}

}  // namespace LldpTest
