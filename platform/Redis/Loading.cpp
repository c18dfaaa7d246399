#include "Redis/Loading.h"

#include <algorithm>

#include "Statestore/RowImages.h"

namespace Redis {
namespace {

using Statestore::Change;
using Statestore::Operation;
using Statestore::RowImages;

// Rows that are asked for at a time: what the server does in one piece.
constexpr size_t mostAsked = 128;

// A root below a directory is an entry of it as well.
Operation asEntry(const Operation& operation, const RowImages& images) {
   size_t cut = operation.field.rfind('/');
   if (!operation.row.empty() || cut == std::string::npos) return operation;
   std::string holder = operation.field.substr(0, cut);
   const Statestore::RowImage* image = images.at(holder);
   if (!image || image->type != "Rex::Dir") return operation;
   return {operation.kind, std::move(holder), operation.field.substr(cut + 1), operation.value};
}

}  // namespace

void Loading::begin(Connection& connection, std::string candidate, std::vector<std::string> roots,
                    Answer answer, Broken broken) {
   std::shared_ptr<Loading> loading(new Loading(connection, std::move(candidate), std::move(roots),
                                                std::move(answer), std::move(broken)));
   loading->start();
}

Loading::Loading(Connection& connection, std::string candidate, std::vector<std::string> roots,
                 Answer answer, Broken broken)
    : connection_(connection),
      candidate_(std::move(candidate)),
      roots_(std::move(roots)),
      answer_(std::move(answer)),
      broken_(std::move(broken)) {}

Connection::Answer Loading::then(Handler handler) {
   return [self = shared_from_this(), handler](const redisReply& reply) {
      if (isError(reply)) return self->broken_(std::string(text(reply)));
      (*self.*handler)(reply);
   };
}

void Loading::start() {
   snapshot_ = {};
   waiting_.assign(roots_.rbegin(), roots_.rend());
   known_ = {roots_.begin(), roots_.end()};
   connection_.run(lifeScript, {candidate_}, then(&Loading::handleLife));
}

void Loading::handleLife(const redisReply& reply) {
   if (reply.type != REDIS_REPLY_ARRAY || reply.elements != 2) {
      return broken_("it answers what is no state");
   }
   snapshot_.life = text(*reply.element[0]);
   snapshot_.last = text(*reply.element[1]);
   walk();
}

void Loading::walk() {
   for (; asked_ < mostAsked && !waiting_.empty(); ++asked_) {
      std::string path = std::move(waiting_.back());
      waiting_.pop_back();
      ask(path);
   }
   if (asked_ == 0) {
      connection_.ask({"XREVRANGE", "state:changes", "+", "-", "COUNT", "1"},
                      then(&Loading::handleNewest));
   }
}

void Loading::ask(const std::string& path) {
   connection_.ask({"HGETALL", "state:row:" + path},
                   [self = shared_from_this(), path](const redisReply& reply) {
                      self->handleRow(path, reply);
                   });
}

void Loading::handleRow(std::string path, const redisReply& reply) {
   // A key of another kind is no row.
   if (isError(reply) && !isError(reply, "WRONGTYPE")) return broken_(std::string(text(reply)));
   --asked_;
   if (auto row = parseRow(std::move(path), reply)) {
      for (const auto& [field, value] : row->fields) {
         if (!mayHoldRow(value)) continue;
         std::string below = row->path + '/' + field;
         if (known_.insert(below).second) waiting_.push_back(std::move(below));
      }
      snapshot_.rows.push_back(std::move(*row));
   }
   walk();
}

void Loading::handleNewest(const redisReply& reply) {
   newest_.clear();
   if (reply.type == REDIS_REPLY_ARRAY && reply.elements == 1 &&
       reply.element[0]->type == REDIS_REPLY_ARRAY && reply.element[0]->elements) {
      newest_ = text(*reply.element[0]->element[0]);
   }
   if (newest_ == snapshot_.last) return answer_(std::move(snapshot_));
   readChanges();
}

void Loading::readChanges() {
   connection_.run(readScript, {snapshot_.life, snapshot_.last, entriesAtATime},
                   then(&Loading::handleChanges));
}

// When the list does not reach back any more, or the store was emptied, all begins again.
void Loading::handleChanges(const redisReply& reply) {
   if (text(reply) == "gone") return start();
   auto changes = parseChanges(reply);
   if (!changes) return broken_("it answers what is no list of changes");
   if (changes->changes.empty()) return answer_(std::move(snapshot_));
   const auto& all = changes->changes;
   bool reached = std::any_of(all.begin(), all.end(),
                              [this](const Change& change) { return change.id == newest_; });
   replay(all);
   if (!reached) return readChanges();
   answer_(std::move(snapshot_));
}

// Some rows may have it already: what is done twice, and in order, ends alike.
void Loading::replay(const std::vector<Change>& changes) {
   snapshot_.last = changes.back().id;
   RowImages images(std::move(snapshot_.rows));
   for (const Change& change : changes) {
      for (const Operation& operation : change.operations) {
         if (holds(Statestore::pathBelow(operation.row, operation.field))) {
            images.apply(asEntry(operation, images));
         }
      }
   }
   snapshot_.rows = std::move(images).rows();
}

bool Loading::holds(const std::string& path) const {
   return std::any_of(roots_.begin(), roots_.end(), [&path](const std::string& root) {
      return Statestore::isWithin(path, root);
   });
}

}  // namespace Redis
