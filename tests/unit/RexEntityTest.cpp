// The declaration of entities, their collections, and their description.
#include <gtest/gtest.h>

#include "Rex/Register.h"
#include "support/Refusal.h"

namespace RexTest {

struct Point {
   uint8_t key = 0;
   Rex::String text;
   bool operator==(const Point&) const = default;
};
BOOST_DESCRIBE_STRUCT(Point, (), (key, text))

enum class Colour { red, green = 5 };
BOOST_DESCRIBE_ENUM(Colour, red, green)

struct Leaf : Rex::Entity {
   REX_ENTITY(Leaf, Rex::Entity)
   REX_KEY(int, number)
   REX_ATTRIBUTE(Colour, colour, Colour::green)
   REX_ENTITY_END()
   Leaf(const int& number) : number_(number) {}
};

struct Base : Rex::Entity {
   REX_ENTITY(Base, Rex::Entity)
   REX_COUNTER(uint32_t, total)
   REX_ENTITY_END()
};

struct Tree : Base {
   REX_ENTITY(Tree, Base)
   REX_ATTRIBUTE(double, when)
   REX_VALUES(Point, point, uint8_t, key)
   REX_MAPPING(Rex::String, int, rank)
   REX_CHILDREN(Leaf, leaf, int)
   REX_POINTERS(Leaf, byNumber, int, number)
   REX_ATTRIBUTE(Rex::Ptr<Leaf>, favourite)
   REX_ENTITY_END()
};

}  // namespace RexTest

REX_REGISTER(RexTest::Leaf)
REX_REGISTER(RexTest::Base)
REX_REGISTER(RexTest::Tree)

using namespace RexTest;

TEST(RexEntity, DescriptionGivesJsonInOrderOfDeclaration) {
   auto tree = Rex::make<Tree>();
   tree->totalInc(3);
   tree->pointIs({7, "seven"});
   tree->rankIs("b", 2);
   tree->rankIs("a", 1);
   tree->byNumberIs(tree->leafIs(4));
   tree->favouriteIs(tree->leaf(4));
   EXPECT_EQ(Rex::entityToJson(*tree).dump(),
             R"({"total":3,"when":0.0,"point":[{"key":7,"text":"seven"}],)"
             R"("rank":[{"key":"a","value":1},{"key":"b","value":2}],)"
             R"("leaf":{"4":{"number":4,"colour":"green"}},"byNumber":["4"],)"
             R"("favourite":"RexTest::Leaf"})");
}

TEST(RexEntity, DecodeChecksAllBeforeItWrites) {
   auto tree = Rex::make<Tree>();
   auto good = Rex::Json::parse(R"({"total":9,"point":[{"key":1,"text":"x"}]})");
   Rex::decodeEntity(tree->entityType(), good, "")(*tree);
   EXPECT_EQ(tree->total(), 9u);
   EXPECT_EQ(tree->point(1).text, "x");

   struct {
      const char* json;
      const char* words;
   } cases[] = {
       {R"({"total":1,"nothing":2})", "nothing: no such attribute of RexTest::Tree"},
       {R"({"total":-1})", "total: expected a whole number from 0 to 4294967295, got -1"},
       {R"({"point":[{"key":256}]})",
        "point[0].key: expected a whole number from 0 to 255, got 256"},
       {R"({"point":[{"kee":2}]})", "point[0].kee: no such field"},
       {R"({"point":[{"key":7},{"key":7}]})", "point[1]: there is one before it with the key 7"},
       {R"({"rank":[{"key":"a","value":1},{"key":"a","value":2}]})",
        "rank[1]: there is one before it with the key a"},
       {R"({"leaf":{}})", "leaf: cannot be written as a whole"},
       {R"([])", "expected an object of attributes"},
   };
   for (const auto& bad : cases) {
      auto decode = [&] { Rex::decodeEntity(tree->entityType(), Rex::Json::parse(bad.json), ""); };
      EXPECT_EQ(LldpTest::refusal<Rex::JsonError>(decode), bad.words) << bad.json;
   }
   EXPECT_EQ(tree->total(), 9u);
}

TEST(RexEntity, PathsLeadDownByMemberAndKey) {
   auto tree = Rex::make<Tree>();
   auto leaf = tree->leafIs(4);
   tree->favouriteIs(leaf);
   tree->byNumberIs(leaf);
   EXPECT_EQ(Rex::findBelow(tree, {"leaf", "4"}).get(), leaf.get());
   EXPECT_EQ(Rex::findBelow(tree, {"byNumber", "4"}).get(), leaf.get());
   EXPECT_EQ(Rex::findBelow(tree, {"favourite"}).get(), leaf.get());
   EXPECT_EQ(Rex::findBelow(tree, {"leaf", "5"}), nullptr);
   EXPECT_EQ(Rex::findBelow(tree, {"leaf"}), nullptr);
   EXPECT_EQ(Rex::findBelow(tree, {"leaf", "x"}), nullptr);
   EXPECT_EQ(Rex::findBelow(tree, {"total", "4"}), nullptr);
}
