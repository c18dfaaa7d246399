#include "Redis/Replies.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <span>

namespace Redis {
namespace {

using Statestore::Change;
using Statestore::Operation;

using Elements = std::span<redisReply* const>;

Elements elements(const redisReply& reply) {
   if (reply.type != REDIS_REPLY_ARRAY) return {};
   return {reply.element, reply.elements};
}

bool isTexts(Elements all) {
   for (const redisReply* one : all) {
      if (one->type != REDIS_REPLY_STRING) return false;
   }
   return true;
}

std::optional<Operation::Kind> kindOf(std::string_view name) {
   if (name == "set") return Operation::Kind::set;
   if (name == "make") return Operation::Kind::make;
   if (name == "remove") return Operation::Kind::remove;
   return std::nullopt;
}

// One entry of the list: a change, or a piece of one.
struct Entry {
   Change piece;
   bool more = false;  // the next entry goes on with it
};

bool takeOperations(Change& piece, Elements words) {
   if (words.size() % 4 != 0) return false;
   for (size_t i = 0; i < words.size(); i += 4) {
      auto kind = kindOf(text(*words[i]));
      if (!kind) return false;
      piece.operations.push_back({*kind, std::string(text(*words[i + 1])),
                                  std::string(text(*words[i + 2])),
                                  std::string(text(*words[i + 3]))});
   }
   return true;
}

std::optional<Entry> parseEntry(Elements words) {
   Entry entry;
   if (words.size() < 4 || !isTexts(words)) return std::nullopt;
   std::string_view number = text(*words[3]);
   auto [end, error] =
       std::from_chars(number.data(), number.data() + number.size(), entry.piece.number);
   if (text(*words[0]) != "w" || text(*words[2]) != "n" || error != std::errc() ||
       end != number.data() + number.size()) {
      return std::nullopt;
   }
   entry.piece.writer = text(*words[1]);
   words = words.subspan(4);
   if (words.size() >= 2 && text(*words[0]) == "m" && text(*words[1]) == "1") {
      entry.more = true;
      words = words.subspan(2);
   }
   if (!takeOperations(entry.piece, words)) return std::nullopt;
   return entry;
}

// Puts the pieces of changes together.
class Assembly {
 public:
   void add(std::string id, std::optional<Entry> entry) {
      bool fits = !open_ || (entry && entry->piece.writer == open_->writer &&
                             entry->piece.number == open_->number);
      if (!fits) giveUp();
      if (!entry) {
         skip(std::move(id));
         return;
      }
      if (!open_) {
         open_ = std::move(entry->piece);
      } else {
         auto& operations = entry->piece.operations;
         open_->operations.insert(open_->operations.end(), operations.begin(), operations.end());
      }
      open_->id = std::move(id);
      if (entry->more) return;
      made_.changes.push_back(std::move(*open_));
      open_.reset();
   }
   Changes end() {
      if (open_) giveUp();
      return std::move(made_);
   }

 private:
   void skip(std::string id) {
      ++made_.malformed;
      made_.lastMalformed = id;
      made_.changes.push_back({std::move(id), {}, 0, {}});
   }
   void giveUp() {
      skip(std::move(open_->id));
      open_.reset();
   }

   std::optional<Change> open_;
   Changes made_;
};

}  // namespace

std::string_view text(const redisReply& reply) {
   bool holdsText = reply.type == REDIS_REPLY_STRING || reply.type == REDIS_REPLY_STATUS ||
                    reply.type == REDIS_REPLY_ERROR;
   return holdsText ? std::string_view(reply.str, reply.len) : std::string_view();
}

bool isError(const redisReply& reply, std::string_view code) {
   return reply.type == REDIS_REPLY_ERROR && text(reply).starts_with(code);
}

std::optional<Statestore::Row> parseRow(std::string path, const redisReply& reply) {
   Elements pairs = elements(reply);
   if (pairs.size() % 2 != 0 || !isTexts(pairs)) return std::nullopt;
   Statestore::Row row{std::move(path), {}, {}};
   row.fields.reserve(pairs.size() / 2);
   for (size_t i = 0; i < pairs.size(); i += 2) {
      std::string_view field = text(*pairs[i]);
      std::string_view value = text(*pairs[i + 1]);
      if (field == ".type") {
         row.type = value;
      } else {
         row.fields.emplace_back(field, value);
      }
   }
   if (row.type.empty()) return std::nullopt;
   return row;
}

bool mayHoldRow(std::string_view value) {
   if (value.size() < 2 || value.front() != '"' || value.back() != '"') return false;
   value = value.substr(1, value.size() - 2);
   auto isNamePart = [](unsigned char c) { return std::isalnum(c) || c == '_' || c == ':'; };
   return value.find("::") != value.npos && std::all_of(value.begin(), value.end(), isNamePart);
}

std::optional<Changes> parseChanges(const redisReply& reply) {
   if (reply.type != REDIS_REPLY_ARRAY) return std::nullopt;
   Assembly assembly;
   for (const redisReply* one : elements(reply)) {
      Elements entry = elements(*one);
      if (entry.size() != 2 || text(*entry[0]).empty()) return std::nullopt;
      assembly.add(std::string(text(*entry[0])), parseEntry(elements(*entry[1])));
   }
   return assembly.end();
}

}  // namespace Redis
