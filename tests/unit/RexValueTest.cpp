// Value types: hash, printed form, JSON, bounds. What holds for one described type holds for all.
#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <utility>

#include "Rex/Json.h"
#include "Rex/Utf8.h"
#include "Rex/Value.h"
#include "support/Refusal.h"

namespace RexValueTest {

enum class Kind : uint8_t { none, some = 4 };
BOOST_DESCRIBE_ENUM(Kind, none, some)

struct ShortWords {
   static constexpr const char* text = "Short::value::bytes > 4 not allowed";
};
using Short = Rex::BoundedText<4, ShortWords>;
struct SmallWords {
   static constexpr const char* text = "Small::value > 9 not allowed";
};
using Small = Rex::BoundedNumber<uint16_t, 2, 9, SmallWords>;

// A type with a text of its own, whose empty one means none.
struct Name {
   Rex::String text;
   Rex::String stringValue() const { return text; }
   static bool fromText(std::string_view from, Name& name) {
      if (from.empty() || from.front() != 'n') return false;
      name.text = Rex::String(from);
      return true;
   }
   static constexpr const char* textForm = "a name that begins with n";
   bool operator==(const Name&) const = default;
   friend size_t hash_value(const Name& name) { return hash_value(name.text); }
};

struct Inner {
   Kind kind = Kind::none;
   Short brief;
   bool operator==(const Inner&) const = default;
};
BOOST_DESCRIBE_STRUCT(Inner, (), (kind, brief))

struct Outer {
   bool flag = false;
   int8_t small = 0;
   uint64_t wide = 0;
   double when = 0;
   Rex::String text;
   Small bounded;
   Name name;
   Inner inner;
   bool operator==(const Outer&) const = default;
};
BOOST_DESCRIBE_STRUCT(Outer, (), (flag, small, wide, when, text, bounded, name, inner))

// Values that differ from each other in one field each.
std::vector<Outer> outers() {
   std::vector<Outer> all(1);
   auto add = [&](auto set) { set(all.emplace_back()); };
   add([](Outer& o) { o.flag = true; });
   add([](Outer& o) { o.small = -128; });
   add([](Outer& o) { o.wide = std::numeric_limits<uint64_t>::max(); });
   add([](Outer& o) { o.when = 1234567.125; });
   add([](Outer& o) { o.when = std::numeric_limits<double>::infinity(); });
   add([](Outer& o) { o.text = "plain"; });
   add([](Outer& o) { o.text = Rex::String("\xc3\x28\0", 3); });
   add([](Outer& o) { o.bounded = 9; });
   add([](Outer& o) { o.name.text = "n1"; });
   add([](Outer& o) { o.inner.kind = Kind::some; });
   add([](Outer& o) { o.inner.brief = Short("\xff\xfe", 2); });
   return all;
}

}  // namespace RexValueTest

using namespace RexValueTest;
using LldpTest::refusal;

TEST(RexValue, HashAgreesWithEqualityAndSeesEveryField) {
   std::set<size_t> hashes;
   for (const Outer& value : outers()) {
      Outer copy = value;
      EXPECT_EQ(Rex::hashOf(copy), Rex::hashOf(value));
      hashes.insert(Rex::hashOf(value));
   }
   EXPECT_EQ(hashes.size(), outers().size());

   Outer minus;
   minus.when = -0.0;
   EXPECT_EQ(minus, Outer());
   EXPECT_EQ(Rex::hashOf(minus), Rex::hashOf(Outer()));
}

TEST(RexValue, JsonGoesRound) {
   for (const Outer& value : outers()) {
      Rex::Json json = Rex::Json::parse(Rex::toJson(value).dump());
      Outer back;
      back.text = "must go";
      Rex::fromJson(json, back, "");
      EXPECT_EQ(back, value) << json;
   }
}

TEST(RexValue, WrongJsonIsRefusedWithItsPlaceAndChangesNothing) {
   struct {
      const char* json;
      const char* words;
   } cases[] = {
       {R"({"flag":1})", "x.flag: expected true or false, got 1"},
       {R"({"small":128})", "x.small: expected a whole number from -128 to 127, got 128"},
       {R"({"small":1.0})", "x.small: expected a whole number from -128 to 127, got 1.0"},
       {R"({"wide":-1})", "x.wide: expected a whole number from 0 to 18446744073709551615, got -1"},
       {R"({"when":"soon"})", "x.when: expected a number, got \"soon\""},
       {R"({"text":{"octets":"0g"}})",
        "x.text: expected pairs of hexadecimal digits, got {\"octets\":\"0g\"}"},
       {R"({"text":{"octets":"0"}})",
        "x.text: expected pairs of hexadecimal digits, got {\"octets\":\"0\"}"},
       {R"({"bounded":1})", "x.bounded: expected a whole number from 2 to 9, got 1"},
       {R"({"name":"m"})", "x.name: expected a name that begins with n, got \"m\""},
       {R"({"inner":{"kind":"all"}})", "x.inner.kind: expected one of none, some, got \"all\""},
       {R"({"inner":{"kind":3}})", "x.inner.kind: expected one of none, some, got 3"},
       {R"({"inner":{"brief":"fives"}})",
        "x.inner.brief: expected text of at most 4 octets, got \"fives\""},
       {R"({"inner":{"long":1}})", "x.inner.long: no such field"},
       {R"({"flag":true,"inner":[]})", "x.inner: expected an object, got []"},
       {R"(null)", "x: expected an object, got null"},
   };
   for (const auto& bad : cases) {
      Outer value;
      auto read = [&] { Rex::fromJson(Rex::Json::parse(bad.json), value, "x"); };
      EXPECT_EQ(refusal<Rex::JsonError>(read), bad.words) << bad.json;
      EXPECT_EQ(value, Outer());
   }
}

TEST(RexValue, PrintsByItsDescription) {
   Outer value;
   value.when = 2.5;
   value.text = "line\nbreak";
   value.inner.kind = static_cast<Kind>(3);
   EXPECT_EQ(Rex::valueToString(value).stdString(),
             "{flag: false, small: 0, wide: 0, when: 2.500000, text: line\\x0abreak, bounded: 2, "
             "name: , inner: {kind: 3, brief: }}");
   EXPECT_EQ(Rex::valueToString(Kind::some), "some");
   EXPECT_EQ(Rex::valueToStrep(Rex::String("a\"b")).stdString(), "\"a\"b\"");
}

TEST(RexValue, BoundsAreTheFieldsOwn) {
   EXPECT_EQ(refusal([] { Short("four"); }), "");
   EXPECT_EQ(refusal([] { Short("fives"); }), ShortWords::text);
   EXPECT_EQ(refusal([] { Small(2), Small(9); }), "");
   EXPECT_EQ(refusal([] { Small(1); }), SmallWords::text);
   EXPECT_EQ(refusal([] { Small(10); }), SmallWords::text);
}

TEST(RexValue, NothingThatAPeerSendsReachesATerminal) {
   struct {
      std::string octets;
      const char* printed;
   } cases[] = {
       {"plain text, ä€😀", "plain text, ä€😀"},
       {"\x1b[31m", "\\x1b[31m"},
       {"\x7f\xc2\x9b", "\\x7f\\xc2\\x9b"},
       {"a\\b", "a\\\\b"},
       {std::string("\0", 1), "\\x00"},
       {"\xe2\x80\xae"
        "evil",
        "\\xe2\\x80\\xaeevil"},              // right-to-left override
       {"\xef\xbb\xbf", "\\xef\\xbb\\xbf"},  // byte order mark
       {"\xff\xc3", "\\xff\\xc3"},
       {"\xc0\xaf", "\\xc0\\xaf"},                    // overlong
       {"\xed\xa0\x80", "\\xed\\xa0\\x80"},           // surrogate
       {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},  // above the last character
       {"\xe2\x82", "\\xe2\\x82"},                    // cut off
   };
   for (const auto& one : cases) EXPECT_EQ(Rex::printable(one.octets), one.printed);
   for (char32_t c : {0xADu, 0x34Fu, 0x61Cu, 0x200Bu, 0x200Eu, 0x200Fu, 0x2028u, 0x202Au, 0x202Du,
                      0x2060u, 0x2066u, 0x2069u, 0x3164u, 0xFE0Fu, 0xFEFFu}) {
      std::string octets{static_cast<char>(0xC0 | c >> 6)};
      if (c >= 0x800) octets = {char(0xE0 | c >> 12), char(0x80 | (c >> 6 & 0x3F))};
      octets += char(0x80 | (c & 0x3F));
      EXPECT_TRUE(Rex::printable(octets).starts_with("\\x")) << std::hex << static_cast<int>(c);
   }
}

// Two different texts never print alike, and what prints is harmless, whatever the octets.
TEST(RexValue, PrintableIsReversible) {
   std::set<std::string> printed;
   size_t count = 0;
   for (int a = 0; a < 256; ++a) {
      for (int b = 0; b < 256; b += 5) {
         std::string octets{static_cast<char>(a), static_cast<char>(b)};
         std::string text = Rex::printable(octets);
         EXPECT_TRUE(Rex::isUtf8(text));
         for (unsigned char c : text) EXPECT_TRUE(c >= 0x20 && c != 0x7F);
         printed.insert(text);
         ++count;
      }
   }
   EXPECT_EQ(printed.size(), count);
}

TEST(RexString, SharesItsTextAndKeepsAllOctets) {
   Rex::String a("abc\0def", 7);
   Rex::String b = a;
   EXPECT_EQ(a.charPtr(), b.charPtr());
   b += "!";
   EXPECT_EQ(a.bytes(), 7u);
   EXPECT_EQ(b.bytes(), 8u);
   EXPECT_TRUE(b.startsWith(a.view()));
   EXPECT_EQ(a.substr(2, 3), Rex::String("c\0d", 3));
   EXPECT_EQ(a.substr(7), "");
   EXPECT_EQ(a.substr(99, 1), "");
   EXPECT_EQ(a.substr(0).charPtr(), a.charPtr());
   EXPECT_LT(Rex::String("a"), Rex::String("b"));
   a += a;
   EXPECT_EQ(a.bytes(), 14u);
   a = std::as_const(a);
   EXPECT_EQ(a.bytes(), 14u);
   EXPECT_EQ(Rex::format("%s-%d", "x", 5), "x-5");
}
