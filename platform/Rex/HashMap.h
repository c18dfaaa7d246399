// Keyed collection without an order of its own: it is walked in the order of insertion.
//
// What a walk may rely on, here and in Rex/OrderedMap.h:
// - Any member may be deleted during the walk, the present one included, and so may the whole map.
// - A member that is deleted before the walk reached it is not seen; one that stays is seen once.
// - A member inserted during the walk is seen at its end (here), or if its key lies behind the
//   present one (ordered map).
// - What the walk hands out are copies, so that they outlive the member.
#pragma once

#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

#include "Rex/PoolAllocator.h"
#include "Rex/Value.h"

namespace Rex {

template <class K, class V>
struct MapItem {
   K key;
   V value;
};

template <class K, class V>
class HashMap {
   // Members stand in one vector; a deleted one leaves a gap that is closed when no walk is on.
   // Up to `linear` members are found by looking at each, more through `slots`, an open-addressed
   // table of positions + 1.
   struct Entry {
      V value;  // in front: who has fetched what find() gave has what it looks at
      size_t hash;
      bool live;
      K key;
   };
   struct Table {
      uint32_t references = 1;
      uint32_t walks = 0;
      uint32_t live = 0;
      std::vector<Entry, PoolAllocator<Entry>> entries;
      std::vector<uint32_t, PoolAllocator<uint32_t>> slots;
   };
   static constexpr size_t linear = 8;

 public:
   class Walk {
    public:
      using value_type = MapItem<K, V>;
      using difference_type = std::ptrdiff_t;
      explicit Walk(Table* table) : table_(table) {
         if (!table_) return;
         ++table_->references;
         ++table_->walks;
         skipGaps();
      }
      Walk(const Walk& other) : table_(other.table_), at_(other.at_) {
         if (!table_) return;
         ++table_->references;
         ++table_->walks;
      }
      Walk& operator=(const Walk&) = delete;
      ~Walk() {
         if (!table_) return;
         --table_->walks;
         // What was deleted during walks only would leave gaps for ever.
         closeGaps(*table_);
         HashMap::drop(table_);
      }
      MapItem<K, V> operator*() const {
         const Entry& entry = table_->entries[at_];
         return {entry.key, entry.value};
      }
      Walk& operator++() {
         ++at_;
         skipGaps();
         return *this;
      }
      friend bool operator==(const Walk& walk, std::default_sentinel_t) {
         return !walk.table_ || walk.at_ >= walk.table_->entries.size();
      }

    private:
      void skipGaps() {
         while (at_ < table_->entries.size() && !table_->entries[at_].live) ++at_;
      }
      Table* table_;
      size_t at_ = 0;
   };

   HashMap() = default;
   HashMap(const HashMap&) = delete;
   HashMap& operator=(const HashMap&) = delete;
   ~HashMap() {
      if (!table_) return;
      Table* table = std::exchange(table_, nullptr);
      letGo(table);
      drop(table);
   }

   size_t size() const { return table_ ? table_->live : 0; }
   bool empty() const { return size() == 0; }
   Walk begin() const { return Walk(table_); }
   std::default_sentinel_t end() const { return {}; }

   // The value under a key, or null. Valid until the map changes.
   const V* find(const K& key) const {
      if (!table_ || !table_->live) return nullptr;
      size_t at = position(key, hashOf(key));
      return at == none ? nullptr : &table_->entries[at].value;
   }

   // The same, for a caller that may know the value by itself: where `isMeant` says that a value is
   // the key's, the keys are not compared.
   template <class IsMeant>
   const V* find(const K& key, IsMeant&& isMeant) const {
      if (!table_ || !table_->live) return nullptr;
      size_t at = position(hashOf(key), [&](const Entry& entry) {
         return isMeant(entry.value) || entry.key == key;
      });
      return at == none ? nullptr : &table_->entries[at].value;
   }

   // For a caller that has other work to do before it looks for `key` in a large map: begins to
   // fetch what find() looks at first.
   void prefetch(const K& key) const {
      if (!table_ || table_->slots.empty()) return;
      __builtin_prefetch(&table_->slots[spread(hashOf(key)) & (table_->slots.size() - 1)]);
   }

   // Adds or replaces.
   void insert(const K& key, V value) {
      if (!table_) table_ = makeTable();
      size_t hash = hashOf(key);
      size_t at = position(key, hash);
      if (at != none) {
         std::swap(table_->entries[at].value, value);  // the old value goes last, at the brace
         return;
      }
      table_->entries.push_back({std::move(value), hash, true, key});
      ++table_->live;
      if (table_->slots.empty() ? table_->entries.size() > linear
                                : table_->entries.size() * 2 > table_->slots.size()) {
         rebuild(*table_);
      } else if (!table_->slots.empty()) {
         occupy(*table_, hash, table_->entries.size() - 1);
      }
   }

   // Removes; false if the key was absent. The value is destroyed last, when the map is sound.
   bool erase(const K& key) {
      if (!table_ || !table_->live) return false;
      size_t at = position(key, hashOf(key));
      if (at == none) return false;
      Table* table = table_;
      ++table->references;  // the value's own end may let this map go
      {
         Entry& entry = table->entries[at];
         [[maybe_unused]] K oldKey = std::move(entry.key);
         [[maybe_unused]] V oldValue = std::move(entry.value);
         entry.live = false;
         entry.key = K();
         entry.value = V();
         --table->live;
         vacate(*table, entry.hash, at);
         closeGaps(*table);
      }
      drop(table);
      return true;
   }

 private:
   static constexpr size_t none = SIZE_MAX;

   static Table* makeTable() { return new (Pool::allocate(sizeof(Table))) Table(); }
   static void drop(Table* table) {
      if (--table->references) return;
      table->~Table();
      Pool::release(table, sizeof(Table));
   }
   // Empties a table that walks may still stand in.
   static void letGo(Table* table) {
      table->live = 0;
      table->slots.clear();
      for (size_t i = 0; i < table->entries.size(); ++i) {
         Entry& entry = table->entries[i];
         entry.live = false;
         [[maybe_unused]] V oldValue = std::move(entry.value);
         entry.value = V();
      }
   }

   size_t position(const K& key, size_t hash) const {
      return position(hash, [&](const Entry& entry) { return entry.key == key; });
   }
   template <class Matches>
   size_t position(size_t hash, Matches&& matches) const {
      const auto& entries = table_->entries;
      if (table_->slots.empty()) {
         for (size_t i = 0; i < entries.size(); ++i) {
            if (entries[i].live && entries[i].hash == hash && matches(entries[i])) return i;
         }
         return none;
      }
      size_t mask = table_->slots.size() - 1;
      for (size_t slot = spread(hash) & mask; table_->slots[slot]; slot = (slot + 1) & mask) {
         const Entry& entry = entries[table_->slots[slot] - 1];
         if (entry.live && entry.hash == hash && matches(entry)) return table_->slots[slot] - 1;
      }
      return none;
   }

   // Small integers hash to themselves; the table is indexed by low bits that all of them stir.
   static size_t spread(size_t hash) {
      hash *= 0x9E3779B97F4A7C15ull;
      return hash ^ hash >> 32;
   }
   static void occupy(Table& table, size_t hash, size_t at) {
      size_t mask = table.slots.size() - 1;
      size_t slot = spread(hash) & mask;
      while (table.slots[slot]) slot = (slot + 1) & mask;
      table.slots[slot] = static_cast<uint32_t>(at + 1);
   }
   // What stands behind moves up, so that a key that comes and goes leaves no trail to be searched.
   static void vacate(Table& table, size_t hash, size_t at) {
      auto& slots = table.slots;
      if (slots.empty()) return;
      size_t mask = slots.size() - 1;
      size_t hole = spread(hash) & mask;
      while (slots[hole] != at + 1) hole = (hole + 1) & mask;
      for (size_t next = (hole + 1) & mask; slots[next]; next = (next + 1) & mask) {
         size_t home = spread(table.entries[slots[next] - 1].hash) & mask;
         if (((next - home) & mask) < ((next - hole) & mask)) continue;
         slots[hole] = slots[next];
         hole = next;
      }
      slots[hole] = 0;
   }
   static void rebuild(Table& table) {
      auto& entries = table.entries;
      if (!table.walks) {
         std::erase_if(entries, [](const Entry& entry) { return !entry.live; });
      }
      table.slots.clear();
      if (entries.size() <= linear) return;
      size_t size = 32;
      while (size < entries.size() * 4) size *= 2;
      table.slots.resize(size);
      for (size_t i = 0; i < entries.size(); ++i) {
         if (entries[i].live) occupy(table, entries[i].hash, i);
      }
   }
   static void closeGaps(Table& table) {
      if (table.walks) return;
      size_t gaps = table.entries.size() - table.live;
      if (gaps > table.live + linear || (gaps && !table.live)) rebuild(table);
   }

   Table* table_ = nullptr;  // null until the first insertion
};

}  // namespace Rex
