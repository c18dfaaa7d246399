#include "Statestore/Replica.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Rex/Log.h"
#include "Rex/Trace.h"
#include "Statestore/Reconcile.h"

namespace Statestore {
namespace {

const Rex::TraceHandle trace("Statestore", false);

const Rex::LogHandle STATESTORE_CHANGE_UNMET(
    "STATESTORE_CHANGE_UNMET", 4,
    "What this process changes is not written: in the state store %s is not %s.",
    "The process writes only as long as it has its role. Its host begins it anew when it hears of "
    "another one.",
    "Nothing, if a switchover is under way. Else look at who has which role.", 60, 1, 0);
const Rex::LogHandle STATESTORE_OTHER_TYPE(
    "STATESTORE_OTHER_TYPE", 3, "The state store has a %s at %s, where this process has a %s.",
    "Two processes, maybe of different versions, mean different things by one path. This process "
    "goes on with its own, and nothing of it is replicated.",
    "Remove the path from the store, or the process that wrote it.", 0, 1, 0);

// More than one change of that many operations would keep the store from all others for long.
constexpr size_t mostOperations = 16'000;
// Past that it costs less to load all again.
constexpr size_t mostPending = 200'000;
constexpr double firstRetry = 1, lastRetry = 30;  // seconds

}  // namespace

Replica::Replica(Store& store, std::string writer)
    : context_(Rex::Context::current()),
      tree_(context_.service<Tree>()),
      store_(store),
      writer_(std::move(writer)),
      treeWriter_(table_),
      changeReader_(table_, treeWriter_),
      rowWriter_(table_),
      turn_(context_.clock()),
      retry_(context_.clock()) {
   table_.onNote = [this] { handleNote(); };
   turn_.handlerIs(nullptr, [this] { step(); });
   retry_.handlerIs(nullptr, [this] { step(); });
   tree_.replicaIs(this);
   for (const std::string& path : tree_.paths()) rootIs(path, tree_.find(splitPath(path)).entity);
   store_.start(*this);
}

Replica::~Replica() {
   detach();
   tree_.replicaIs(nullptr);
}

void Replica::guardIs(std::optional<Operation> guard) {
   guard_ = std::move(guard);
   yield();
}

void Replica::yieldAt(const std::string& path) {
   yields_.insert(path);
   yield();
}

// What was written there is in the store, or is this process's word only until it is.
void Replica::yield() {
   auto yieldRow = [this](const std::string& path) {
      RowSm* row = table_.at(path);
      if (!row || !row->authored()) return;
      for (const auto& member : row->entity()->entityType().members()) {
         if (table_.pending.has(*row, *member, {})) return;
         if (flight_ && flight_->covers(path, member->name)) return;
      }
      row->authoredNothing();
   };
   for (const std::string& path : yields_) yieldRow(path);
   if (guard_) yieldRow(guard_->row);
}

// A change on its way stays: what is being read may be compared with it.
void Replica::freeze() {
   if (detached_ || frozen_) return;
   frozen_ = true;
   // Else it is not known what is in the store.
   if (!reload_ && !life_.empty()) rest_ = rowWriter_.take(std::numeric_limits<size_t>::max());
   letGo();
   turn_.timeMinIs(0);
}

void Replica::detach() {
   detached_ = true;
   letGo();
}

void Replica::letGo() {
   turn_.cancel();
   retry_.cancel();
   waiters_.clear();
   for (auto& [path, root] : roots_) root.row.reset();
   table_.pending.clear();
}

bool Replica::idle() const {
   if (frozen_) return !(flight_ && flight_->state != Flight::State::made) && rest_.empty();
   return detached_ || (up_ && !busy_ && !reload_ && !news_ && !flight_ && table_.pending.empty() &&
                        rootPaths(true).empty());
}

void Replica::rootIs(const std::string& path, const Rex::Ptr<Rex::Entity>& entity) {
   if (detached_ || frozen_) return;
   Rex::ContextScope scope(context_);
   const std::string row = encodePath(splitPath(path));
   roots_[row].row.make(table_, entity, nullptr, row, RowSm::State::unwritten);
   handleNote();
}

void Replica::loaded(const std::vector<std::string>& paths, std::function<void(bool)> then) {
   Waiter waiter{{}, std::move(then)};
   for (const std::string& path : paths) {
      if (Found found = tree_.find(splitPath(path))) {
         waiter.roots.push_back(encodePath(splitPath(found.root)));
      }
   }
   waiters_.push_back(std::move(waiter));
   tellWaiters();
}

void Replica::tellWaiters() {
   for (size_t i = 0; i < waiters_.size();) {
      bool all = true, ofTheirTypes = true;
      for (const std::string& path : waiters_[i].roots) {
         const Root& root = roots_.at(path);
         if (root.otherType) {
            ofTheirTypes = false;
         } else {
            all = all && root.row.get() && root.row.get()->loaded();
         }
      }
      if (!all) {
         ++i;
         continue;
      }
      auto then = std::move(waiters_[i].then);
      waiters_.erase(waiters_.begin() + static_cast<std::ptrdiff_t>(i));
      Rex::Dispatcher::run([&] { then(ofTheirTypes); });
      i = 0;  // it may have waited for more
   }
}

std::vector<std::string> Replica::rootPaths(bool unreadOnly) const {
   std::vector<std::string> paths;
   for (const auto& [path, root] : roots_) {
      if (root.row.get() && !(unreadOnly && root.row.get()->loaded())) paths.push_back(path);
   }
   return paths;
}

void Replica::handleUp() {
   up_ = true;
   busy_ = false;
   news_ = true;
   // What was asked and not answered may have been done; what was done, the store may have lost
   // again, if it began anew with older data.
   if (flight_ && flight_->state == Flight::State::made) flight_->state = Flight::State::sent;
   step();
}

void Replica::handleDown() {
   up_ = busy_ = false;
   if (frozen_) flight_.reset();  // whether it was made is not to be found out any more
}

void Replica::handleNews() {
   news_ = true;
   step();
}

void Replica::handleEmptied() {
   reload_ = true;
   step();
}

void Replica::handleNote() {
   if (table_.pending.size() > mostPending && !reload_) {
      TRACE(trace, 2, "Too much is pending; all is loaded again");
      reload_ = true;
   }
   if (reload_) table_.pending.clear();
   if (up_ && !busy_ && !turn_.armed()) turn_.timeMinIs(0);
}

void Replica::step() {
   if (detached_ || !up_ || busy_) return;
   Rex::ContextScope scope(context_);
   if (frozen_) return stepFrozen();
   if (life_.empty() || reload_ || !rootPaths(true).empty()) return load();
   if (news_) return read();
   if (flight_ && flight_->state == Flight::State::waiting && !retry_.armed()) return send();
   if (flight_ || table_.pending.empty()) return;
   Operations operations = rowWriter_.take(mostOperations);
   if (operations.empty()) return;
   flight_.emplace(++number_, std::move(operations));
   send();
}

void Replica::stepFrozen() {
   if (flight_ && flight_->state == Flight::State::made) flight_.reset();
   if (!flight_ && !rest_.empty()) flight_.emplace(++number_, std::exchange(rest_, {}));
   if (flight_) send();
}

void Replica::load() {
   const bool all = life_.empty() || reload_;
   auto paths = rootPaths(!all);
   if (paths.empty()) return;
   busy_ = true;
   store_.load(paths, [this, paths, all](Snapshot snapshot) {
      busy_ = false;
      if (detached_) return;
      Rex::ContextScope scope(context_);
      if (!frozen_) handleLoaded(paths, all, std::move(snapshot));
      step();
   });
}

// What is on its way or pending is found again as a difference, but for removals.
std::set<References::PlaceName> Replica::takeUnsent() {
   std::set<References::PlaceName> removed;
   if (flight_) {
      for (const Operation& one : flight_->operations) {
         if (one.kind == Operation::Kind::remove) removed.emplace(one.row, one.field);
      }
   }
   flight_.reset();
   while (auto note = table_.pending.take()) {
      if (!note->key.has()) continue;
      const Rex::Entity& entity = *note->row->entity();
      const std::string key = note->member->keyText(note->key);
      if (valueAt(entity, {note->member, key}) != PlaceValue()) continue;
      removed.emplace(note->row->path(), fieldOf(entity, *note->member, key));
   }
   return removed;
}

void Replica::handleLoaded(const std::vector<std::string>& paths, bool all, Snapshot snapshot) {
   const bool otherLife = !life_.empty() && snapshot.life != life_;
   if (!all && (otherLife || reload_)) {
      reload_ = true;
      return;
   }
   // Also when another one who restores was first with a root, and all was loaded again.
   if (otherLife) restores_ = true;
   const bool restore = all && restores_;
   TRACE(trace, 4, "Loaded " << paths.size() << " roots, " << snapshot.rows.size() << " rows");
   std::set<References::PlaceName> removed;
   std::string ahead;
   if (all) {
      removed = takeUnsent();
      table_.references.endAllWaits();
      reload_ = false;
      life_ = snapshot.life;
      last_ = snapshot.last;
      news_ = true;
   } else if (snapshot.last != last_) {
      ahead = snapshot.last;
      news_ = true;
   }
   for (const std::string& path : paths) {
      if (RowSm* row = roots_.at(path).row.get().get()) {
         row->loadedIs(true);
         row->aheadIs(ahead);
      }
   }
   const RowImages images(std::move(snapshot.rows));
   for (const std::string& path : paths) {
      Root& root = roots_.at(path);
      const RowImage* image = images.at(path);
      if (!root.row.get()) continue;
      const std::string& type = root.row.get()->entity()->entityType().name();
      if (image && image->type != type) {
         Rex::log(STATESTORE_OTHER_TYPE, Rex::String(image->type), Rex::String(path),
                  Rex::String(type));
         root.otherType = true;
         root.row.reset();
         continue;
      }
      Reconcile(table_, treeWriter_, images, restore, removed).root(*root.row.get());
   }
   treeWriter_.settle();
   tellWaiters();
}

void Replica::read() {
   busy_ = true;
   news_ = false;
   store_.read(life_, last_, [this](std::optional<std::vector<Change>> changes) {
      busy_ = false;
      if (detached_) return;
      Rex::ContextScope scope(context_);
      if (!frozen_) handleRead(std::move(changes));
      step();
   });
}

void Replica::handleRead(std::optional<std::vector<Change>> changes) {
   if (!changes) {
      TRACE(trace, 4, "The store's changes do not reach back; all is loaded again");
      reload_ = true;
      return;
   }
   if (changes->empty()) {
      // What was sent before the connection went and is not in the list was not done.
      if (flight_ && flight_->state == Flight::State::sent) flight_->state = Flight::State::waiting;
      return;
   }
   // The list may go on behind what the store gives at a time.
   const Change& only = changes->front();
   bool own = changes->size() == 1 && only.writer == writer_ && only.operations.size() < 1000;
   if (!own) news_ = true;
   for (const Change& change : *changes) {
      apply(change);
      if (detached_ || frozen_) return;
   }
}

void Replica::apply(const Change& change) {
   if (change.writer == writer_ && flight_ && change.number == flight_->number) {
      flight_.reset();
      if (table_.pending.empty()) restores_ = false;
      yield();
      treeWriter_.settle();
   } else {
      changeReader_.apply(change, flight_ ? &*flight_ : nullptr);
   }
   last_ = change.id;
   for (auto& [path, root] : roots_) {
      if (root.row.get() && root.row.get()->ahead() == last_) root.row.get()->aheadIs({});
   }
}

// What this process itself says of the guard, and the store does not know yet, is not required.
Operations Replica::guarded(const Operations& operations) const {
   if (!guard_ || isOwnWord(*guard_)) return operations;
   Operations all{*guard_};
   all.insert(all.end(), operations.begin(), operations.end());
   return all;
}

void Replica::send() {
   busy_ = true;
   flight_->state = Flight::State::sent;
   store_.change(life_, writer_, flight_->number, guarded(flight_->operations),
                 [this](ChangeResult result) {
                    busy_ = false;
                    if (detached_) return;
                    Rex::ContextScope scope(context_);
                    handleSent(result);
                    step();
                 });
}

bool Replica::isOwnWord(const Operation& guard) const {
   if (flight_->covers(guard.row, guard.field)) return true;
   RowSm* row = table_.at(guard.row);
   const Rex::Member* member = row ? row->entity()->entityType().member(guard.field) : nullptr;
   return member && table_.pending.has(*row, *member, {});
}

void Replica::handleSent(ChangeResult result) {
   if (frozen_) {
      flight_.reset();
      if (result != ChangeResult::made) rest_.clear();
      return;
   }
   switch (result) {
      case ChangeResult::made:
         retryAfter_ = 0;
         flight_->state = Flight::State::made;
         news_ = true;
         return;
      case ChangeResult::otherLife:
      case ChangeResult::rootStands:
         reload_ = true;
         return;
      case ChangeResult::unmet:  // why is among the news
         if (guard_)
            Rex::log(STATESTORE_CHANGE_UNMET, Rex::String(guard_->row + ' ' + guard_->field),
                     Rex::String(guard_->value));
         news_ = true;
         flight_->state = Flight::State::waiting;
         retry_.timeMinIs(context_.clock()->now() + firstRetry);
         return;
      case ChangeResult::refused:  // the store tells the operator
         flight_->state = Flight::State::waiting;
         retryAfter_ = std::clamp(2 * retryAfter_, firstRetry, lastRetry);
         retry_.timeMinIs(context_.clock()->now() + retryAfter_);
         return;
   }
}

}  // namespace Statestore
