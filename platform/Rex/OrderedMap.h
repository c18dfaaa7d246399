// Keyed collection in the order of its keys. What a walk may rely on stands in Rex/HashMap.h.
#pragma once

#include <iterator>
#include <map>
#include <optional>
#include <utility>

#include "Rex/HashMap.h"
#include "Rex/PoolAllocator.h"
#include "Rex/Ptr.h"

namespace Rex {

template <class K, class V>
class OrderedMap {
   using Map = std::map<K, V, std::less<K>, PoolAllocator<std::pair<const K, V>>>;
   struct Table : PtrInterface {
      Map map;
   };

 public:
   // Stands on a key, not on a member: the next step looks for the first key behind it.
   class Walk {
    public:
      using value_type = MapItem<K, V>;
      using difference_type = std::ptrdiff_t;
      explicit Walk(Ptr<Table> table) : table_(std::move(table)) {
         if (table_) take(table_->map.begin());
      }
      MapItem<K, V> operator*() const { return *item_; }
      Walk& operator++() {
         take(table_->map.upper_bound(item_->key));
         return *this;
      }
      friend bool operator==(const Walk& walk, std::default_sentinel_t) { return !walk.item_; }

    private:
      void take(typename Map::const_iterator at) {
         if (at == table_->map.end()) {
            item_.reset();
         } else {
            item_.emplace(MapItem<K, V>{at->first, at->second});
         }
      }
      Ptr<Table> table_;
      std::optional<MapItem<K, V>> item_;
   };

   OrderedMap() = default;
   OrderedMap(const OrderedMap&) = delete;
   OrderedMap& operator=(const OrderedMap&) = delete;
   ~OrderedMap() {
      if (table_) Map().swap(table_->map);
   }

   size_t size() const { return table_ ? table_->map.size() : 0; }
   bool empty() const { return size() == 0; }
   Walk begin() const { return Walk(table_); }
   std::default_sentinel_t end() const { return {}; }

   const V* find(const K& key) const {
      if (!table_) return nullptr;
      auto at = table_->map.find(key);
      return at == table_->map.end() ? nullptr : &at->second;
   }
   void insert(const K& key, V value) {
      if (!table_) table_ = make<Table>();
      auto [at, fresh] = table_->map.try_emplace(key, value);
      if (!fresh) std::swap(at->second, value);
   }
   bool erase(const K& key) {
      if (!table_) return false;
      Ptr<Table> table = table_;
      return !table->map.extract(key).empty();
   }

 private:
   Ptr<Table> table_;
};

}  // namespace Rex
