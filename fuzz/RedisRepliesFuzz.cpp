// Entries of the list of changes, as anybody may have put them there. Each line of the input is an
// entry, its words between tabs: the id, then fields and values. A word "#" is a reply of another
// kind than text.
#include <deque>
#include <string>
#include <vector>

#include "Redis/Replies.h"
#include "Rex/Assert.h"

namespace {

// Replies that own what they point to.
class Replies {
 public:
   redisReply* text(std::string_view word) {
      redisReply& made = replies_.emplace_back();
      made.type = word == "#" ? REDIS_REPLY_NIL : REDIS_REPLY_STRING;
      made.str = texts_.emplace_back(word).data();
      made.len = word.size();
      return &made;
   }
   redisReply* array(const std::vector<redisReply*>& elements) {
      redisReply& made = replies_.emplace_back();
      auto& kept = arrays_.emplace_back(elements);
      made.type = REDIS_REPLY_ARRAY;
      made.element = kept.data();
      made.elements = kept.size();
      return &made;
   }

 private:
   std::deque<redisReply> replies_;
   std::deque<std::string> texts_;
   std::deque<std::vector<redisReply*>> arrays_;
};

std::vector<std::string_view> split(std::string_view text, char mark) {
   std::vector<std::string_view> parts;
   for (size_t at = 0; at != std::string_view::npos;) {
      size_t end = text.find(mark, at);
      parts.push_back(text.substr(at, end == std::string_view::npos ? end : end - at));
      at = end == std::string_view::npos ? end : end + 1;
   }
   return parts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   Replies replies;
   std::vector<redisReply*> entries;
   size_t words = 0;
   for (std::string_view line : split({reinterpret_cast<const char*>(data), size}, '\n')) {
      std::vector<redisReply*> fields;
      for (std::string_view word : split(line, '\t')) fields.push_back(replies.text(word));
      words += fields.size();
      redisReply* id = fields.front();
      fields.erase(fields.begin());
      entries.push_back(replies.array({id, replies.array(fields)}));
   }
   redisReply* list = replies.array(entries);
   if (auto parsed = Redis::parseChanges(*list)) {
      size_t operations = 0;
      for (const auto& change : parsed->changes) {
         REX_ASSERT(!change.id.empty());
         operations += change.operations.size();
      }
      // Every entry is part of a change or passed over, the last one too.
      REX_ASSERT(parsed->changes.size() <= entries.size() + parsed->malformed);
      REX_ASSERT(parsed->changes.back().id == Redis::text(*entries.back()->element[0]));
      REX_ASSERT(operations * 4 <= words);
   }
   // The same as rows.
   for (redisReply* entry : entries) {
      auto row = Redis::parseRow(std::string(Redis::text(*entry->element[0])), *entry->element[1]);
      if (!row) continue;
      REX_ASSERT(!row->type.empty() && 2 * row->fields.size() < words);
      for (const auto& [field, value] : row->fields) Redis::mayHoldRow(value);
   }
   return 0;
}
