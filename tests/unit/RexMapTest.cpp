// Collections by random operation sequences against a simple model, and what a sequence of bytes
// cannot say.
#include <gmock/gmock.h>

#include <random>

#include "unit/RexMapModel.h"

using namespace RexMapModel;
using testing::ElementsAre;

template <class Model>
struct RexMap : testing::Test {};
using Models = testing::Types<HashModel, OrderedModel>;
TYPED_TEST_SUITE(RexMap, Models);

TYPED_TEST(RexMap, AgreesWithItsModelOverRandomOperations) {
   for (unsigned seed = 1; seed <= 300; ++seed) {
      std::mt19937 random(seed);
      std::vector<uint8_t> bytes(4000);
      for (auto& byte : bytes) byte = static_cast<uint8_t>(random());
      ASSERT_EQ(Driver<TypeParam>(bytes).run(), "") << "seed " << seed;
   }
}

namespace {

// A value whose end reaches into the map that it stood in.
struct Meddler : Rex::PtrInterface {
   explicit Meddler(std::function<void()> meddle) : meddle(std::move(meddle)) {}
   ~Meddler() override { meddle(); }
   std::function<void()> meddle;
};

template <template <class, class> class Map>
void meddle() {
   auto map = std::make_unique<Map<int, Rex::Ptr<Meddler>>>();
   auto nothing = [] {};
   std::vector<size_t> sizes;
   auto insert = [&](int key, std::function<void()> end) {
      map->insert(key, Rex::make<Meddler>(std::move(end)));
   };
   for (int i = 10; i < 40; ++i) insert(i, nothing);
   insert(1, [&] {
      sizes.push_back(map->size());
      EXPECT_FALSE(map->find(1));
      map->erase(2);
      insert(3, nothing);
   });
   insert(2, [&] { sizes.push_back(map->size()); });
   map->erase(1);
   EXPECT_THAT(sizes, ElementsAre(31u, 30u));
   EXPECT_TRUE(map->find(3));

   // A replaced value is let go when the new one stands.
   bool replaced = false;
   insert(3, [&] {
      replaced = true;
      EXPECT_TRUE(map->find(3));
      map->erase(3);
   });
   insert(3, nothing);
   EXPECT_TRUE(replaced);
   EXPECT_FALSE(map->find(3));

   // The last member's end lets the map itself go.
   insert(4, [&] { map.reset(); });
   map->erase(4);
   EXPECT_FALSE(map);
}

}  // namespace

TEST(RexMap, AValuesEndMayChangeTheMapOrLetItGo) {
   meddle<Rex::HashMap>();
   meddle<Rex::OrderedMap>();
}

namespace {
struct NumberKey {
   int number = 0;
   bool sameAsNone = false;  // equal to no key, itself included
   bool operator==(const NumberKey& other) const {
      return !sameAsNone && !other.sameAsNone && number == other.number;
   }
   friend size_t hash_value(const NumberKey& key) { return static_cast<size_t>(key.number) % 3; }
};
}  // namespace

TEST(RexMap, IsSearchedByACallersOwnKnowledgeFirst) {
   for (int size : {6, 60}) {
      Rex::HashMap<NumberKey, int> map;
      for (int i = 0; i < size; ++i) map.insert({i}, i);
      for (int i = 0; i < size; ++i) {
         map.prefetch({i});
         EXPECT_EQ(map.find({i}, [](int) { return false; }), map.find({i}));
         EXPECT_EQ(map.find({i, true}, [&](int value) { return value == i; }), map.find({i}));
         EXPECT_EQ(map.find({i, true}, [](int) { return false; }), nullptr);
      }
   }
}

TEST(RexMap, StaysSmallUnderInsertionAndDeletionForever) {
   Rex::HashMap<int, int> map;
   for (int i = 0; i < 100; ++i) map.insert(i, i);
   size_t before = 0;
   for (int round = 0; round < 2000; ++round) {
      if (round == 1000) before = Rex::Pool::inUse();
      for (auto [key, value] : map) {
         map.erase(key);
         map.insert(key + 100, value);
         if (key % 100 == 99) break;
      }
   }
   EXPECT_LE(Rex::Pool::inUse(), before * 2);
   EXPECT_EQ(map.size(), 100u);
}
