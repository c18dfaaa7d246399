// Drives a collection and a simple model of it by a sequence of bytes, and says where they part.
// The unit tests feed it seeded random bytes, the fuzzer its own.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Rex/HashMap.h"
#include "Rex/OrderedMap.h"

namespace RexMapModel {

// A value that counts how many of its kind live.
struct Token : Rex::PtrInterface {
   explicit Token(int number) : number(number) { ++living; }
   ~Token() override { --living; }
   const int number;
   static inline int living = 0;
};
using Value = Rex::Ptr<Token>;
using Key = uint16_t;

// Members in the order of insertion; a walk is an index.
class HashModel {
   struct Entry {
      Key key;
      int number;
      bool live;
   };

 public:
   using Map = Rex::HashMap<Key, Value>;
   struct Walk {
      size_t at = 0;
   };
   void insert(Key key, int number) {
      if (auto* entry = find(key)) {
         entry->number = number;
      } else {
         entries_.push_back({key, number, true});
      }
   }
   bool erase(Key key) {
      auto* entry = find(key);
      if (entry) entry->live = false;
      return entry;
   }
   std::vector<std::pair<Key, int>> content() const {
      std::vector<std::pair<Key, int>> all;
      for (const auto& entry : entries_) {
         if (entry.live) all.emplace_back(entry.key, entry.number);
      }
      return all;
   }
   void start(Walk& walk) const { skip(walk); }
   void step(Walk& walk) const {
      ++walk.at;
      skip(walk);
   }
   std::optional<std::pair<Key, int>> at(const Walk& walk) const {
      if (walk.at >= entries_.size()) return std::nullopt;
      return std::pair(entries_[walk.at].key, entries_[walk.at].number);
   }

 private:
   Entry* find(Key key) {
      auto at = std::ranges::find_if(
          entries_, [key](const Entry& entry) { return entry.live && entry.key == key; });
      return at == entries_.end() ? nullptr : &*at;
   }
   void skip(Walk& walk) const {
      while (walk.at < entries_.size() && !entries_[walk.at].live) ++walk.at;
   }
   std::vector<Entry> entries_;
};

// A walk stands on a key.
class OrderedModel {
 public:
   using Map = Rex::OrderedMap<Key, Value>;
   struct Walk {
      std::optional<std::pair<Key, int>> at;
   };
   void insert(Key key, int number) { members_[key] = number; }
   bool erase(Key key) { return members_.erase(key); }
   std::vector<std::pair<Key, int>> content() const { return {members_.begin(), members_.end()}; }
   void start(Walk& walk) const { take(walk, members_.begin()); }
   void step(Walk& walk) const { take(walk, members_.upper_bound(walk.at->first)); }
   std::optional<std::pair<Key, int>> at(const Walk& walk) const { return walk.at; }

 private:
   void take(Walk& walk, std::map<Key, int>::const_iterator at) const {
      walk.at.reset();
      if (at != members_.end()) walk.at = *at;
   }
   std::map<Key, int> members_;
};

template <class Model>
class Driver {
 public:
   explicit Driver(std::span<const uint8_t> bytes) : bytes_(bytes) {}

   // Empty when collection and model agree to the end of the bytes; else what differed, and where.
   std::string run() {
      while (at_ < bytes_.size() && words_.empty()) {
         operation();
         same(map_->size() == model_->content().size(), "size");
         if (operations_++ % 16 == 0) compareAll();
      }
      if (words_.empty()) compareAll();
      walks_.clear();
      map_.reset();
      same(Token::living == 0, "a value outlived its collection");
      return words_;
   }

 private:
   struct OneWalk {
      typename Model::Map::Walk real;
      typename Model::Walk model;
      std::shared_ptr<Model> over;  // the model of the map it walks, also when that map is gone
      bool holderGone = false;
   };

   uint8_t next() { return at_ < bytes_.size() ? bytes_[at_++] : 0; }
   // Few keys collide often; now and then a wide one makes the table grow.
   Key key() {
      uint8_t low = next();
      return low < 192 ? low % 24 : static_cast<Key>(low << 8 | next());
   }
   void same(bool agrees, const char* what) {
      if (!agrees && words_.empty()) {
         words_ = std::string(what) + " after operation " + std::to_string(operations_) +
                  ", byte " + std::to_string(at_);
      }
   }

   void operation() {
      uint8_t choice = next() % 64;
      if (choice < 22) {
         insert();
      } else if (choice < 34) {
         Key k = key();
         same(map_->erase(k) == model_->erase(k), "erase");
      } else if (choice < 38) {
         startWalk();
      } else if (choice < 58) {
         stepWalk();
      } else if (choice < 60) {
         if (!walks_.empty()) walks_.erase(walks_.begin() + next() % walks_.size());
      } else if (choice < 62) {
         eraseAtWalk();
      } else if (choice == 62) {
         eraseAll();
      } else {
         loseHolder();
      }
   }
   void insert() {
      Key k = key();
      map_->insert(k, Rex::make<Token>(++numbers_));
      model_->insert(k, numbers_);
   }
   void startWalk() {
      if (walks_.size() >= 4) return;
      walks_.push_back(std::make_unique<OneWalk>(OneWalk{map_->begin(), {}, model_}));
      model_->start(walks_.back()->model);
      look(walks_.size() - 1);
   }
   void stepWalk() {
      if (walks_.empty()) return;
      size_t i = next() % walks_.size();
      ++walks_[i]->real;
      walks_[i]->over->step(walks_[i]->model);
      look(i);
   }
   // Compares what a walk has come to; one that is at its end is dropped.
   void look(size_t i) {
      OneWalk& walk = *walks_[i];
      bool ended = walk.real == std::default_sentinel;
      auto expected = walk.holderGone ? std::nullopt : walk.over->at(walk.model);
      same(ended == !expected, "end of a walk");
      if (!ended && expected) {
         auto item = *walk.real;
         same(item.key == expected->first, "key of a walk");
         same(item.value && item.value->number == expected->second, "value of a walk");
         item.value = nullptr;
      }
      if (ended) walks_.erase(walks_.begin() + static_cast<std::ptrdiff_t>(i));
   }
   // Deletes the very member that a walk stands on.
   void eraseAtWalk() {
      if (walks_.empty()) return;
      OneWalk& walk = *walks_[next() % walks_.size()];
      if (walk.holderGone) return;
      if (auto at = walk.over->at(walk.model)) {
         same(map_->erase(at->first) == model_->erase(at->first), "erase at a walk");
      }
   }
   void eraseAll() {
      for (auto [k, value] : *map_) {
         same(map_->erase(k) && model_->erase(k), "erase all");
      }
      same(map_->empty(), "empty");
   }
   void loseHolder() {
      map_ = std::make_unique<typename Model::Map>();
      model_ = std::make_shared<Model>();
      for (auto& walk : walks_) walk->holderGone = true;
   }
   void compareAll() {
      auto expected = model_->content();
      size_t i = 0;
      for (auto [k, value] : *map_) {
         same(i < expected.size() && expected[i] == std::pair<Key, int>(k, value->number),
              "content");
         ++i;
      }
      same(i == expected.size(), "length of content");
      for (auto [k, number] : expected) {
         const Value* found = map_->find(k);
         same(found && (*found)->number == number, "find");
      }
      same(!map_->find(0x1234) || model_->content().size(), "find of an absent key");
   }

   std::span<const uint8_t> bytes_;
   size_t at_ = 0;
   size_t operations_ = 0;
   int numbers_ = 0;
   std::unique_ptr<typename Model::Map> map_ = std::make_unique<typename Model::Map>();
   std::shared_ptr<Model> model_ = std::make_shared<Model>();
   std::vector<std::unique_ptr<OneWalk>> walks_;
   std::string words_;
};

}  // namespace RexMapModel
