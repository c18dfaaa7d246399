// One TLV at a time, and object identifiers.
#include <gmock/gmock.h>

#include <array>
#include <cstring>

#include "Lldp/LldpProtocol/Oid.h"
#include "Lldp/LldpProtocol/Tlv.h"
#include "support/FrameBuilder.h"
#include "support/TestContext.h"

using namespace Lldp::Agent;
using namespace LldpTest;
using testing::ElementsAre;

namespace {

class CodecTlv : public testing::Test {
 protected:
   CodecTlv() { context.traceOn("LldpProtocol"); }
   TestContext context;
};

TEST_F(CodecTlv, IsWrittenWholeOrNotAtAll) {
   const std::string info = "abc";
   for (int room = 0; room <= 6; ++room) {
      context.traces.clear();
      std::string buffer(6, '#');
      char* cursor = buffer.data();
      bool fits = putTlv(&cursor, buffer.data() + room, 5, 3, info.data());
      EXPECT_EQ(fits, room >= 5) << room;
      if (fits) {
         EXPECT_EQ(buffer, tlv(5, info) + "#");
         EXPECT_EQ(cursor, buffer.data() + 5);
         EXPECT_THAT(context.traced(8),
                     ElementsAre("Added TLV (type=5, infoLen=3); remaining space " +
                                 std::to_string(room - 5) + " bytes"));
      } else {
         EXPECT_EQ(buffer, "######");
         EXPECT_EQ(cursor, buffer.data());
         EXPECT_THAT(context.traced(2),
                     ElementsAre("No room for TLV (type=5, infoLen=3); remaining space " +
                                 std::to_string(room) + " bytes"));
      }
   }
}

TEST_F(CodecTlv, LengthBeyondTheFieldIsNoRoomInAShortBufferAndAFaultInALongOne) {
   std::string info(512, 'x');
   std::string buffer(1000, '#');
   char* cursor = buffer.data();
   EXPECT_FALSE(putTlv(&cursor, buffer.data() + 513, 9, 512, info.data()));
   EXPECT_TRUE(putTlv(&cursor, buffer.data() + 513, 9, 511, info.data()));
   EXPECT_EQ(buffer.substr(0, 513), tlv(9, info.substr(0, 511)));
   cursor = buffer.data();
   EXPECT_DEATH(putTlv(&cursor, buffer.data() + 1000, 9, 512, info.data()), "infoLen & ~0x1ff");
}

TEST_F(CodecTlv, OrganisationTlvIsCompletedInPlace) {
   std::array<char, maxTlvInfoLen> scratch{};
   infoBuf = scratch.data();
   std::memcpy(scratch.data() + 4, "\x12\x34", 2);
   std::string buffer(8, '#');
   char* cursor = buffer.data();
   EXPECT_TRUE(putOrgDefTlv(&cursor, buffer.data() + 8, dot1Oui, 1, 2, scratch.data() + 4));
   EXPECT_EQ(buffer, std::string("\xFE\x06\x00\x80\xC2\x01\x12\x34", 8));
   EXPECT_DEATH(putOrgDefTlv(&cursor, buffer.data() + 8, dot1Oui, 1, 2, scratch.data() + 5),
                "info == infoBuf");
   infoBuf = nullptr;
}

TEST_F(CodecTlv, IsReadFromWhatIsThere) {
   const std::string whole = tlv(42, "abc");
   const std::string atHeader = "Error: frame ended during (or before) TLV header";
   const std::string atInfo =
       "Error: frame ended during TLV information string (type=42, infoLen=3)";
   for (size_t length = 0; length <= whole.size(); ++length) {
      context.traces.clear();
      const char* begin = whole.data();
      const char* cursor = begin;
      const char* info = nullptr;
      int type = -1;
      int infoLen = -1;
      bool read = extractTlv(&cursor, begin + length, &type, &infoLen, &info);
      EXPECT_EQ(read, length == whole.size());
      if (length < 2) {
         EXPECT_EQ(cursor, begin);
         EXPECT_EQ(type, -1);
         EXPECT_EQ(infoLen, -1);
         EXPECT_THAT(context.traced(0), ElementsAre(atHeader));
         continue;
      }
      // What the header told stands, also when the rest is missing.
      EXPECT_EQ(type, 42);
      EXPECT_EQ(infoLen, 3);
      EXPECT_EQ(info, begin + 2);
      EXPECT_EQ(cursor, begin + 5);
      if (!read) {
         EXPECT_THAT(context.traced(0), ElementsAre(atInfo));
      }
   }
}

TEST_F(CodecTlv, MandatoryOneHasTypeAndSize) {
   struct {
      std::string octets;
      std::vector<std::string> words;
   } cases[] = {
       {tlv(2, "ab"), {}},
       {tlv(2, "abcd"), {}},
       {"",
        {"Error: frame ended during (or before) TLV header",
         "Error: frame ended during mandatory TLV"}},
       {tlvOfLength(2, 3, "ab"),
        {"Error: frame ended during TLV information string (type=2, infoLen=3)",
         "Error: frame ended during mandatory TLV"}},
       {tlv(3, ""), {"Error: TLV was not of the expected type (type=3)"}},
       {tlv(2, ""), {"Error: size of TLV out of range (infoLen=0)"}},
       {tlv(2, "a"), {"Error: size of TLV out of range (infoLen=1)"}},
       {tlv(2, "abcde"), {"Error: size of TLV out of range (infoLen=5)"}},
   };
   for (const auto& row : cases) {
      context.traces.clear();
      const char* cursor = row.octets.data();
      const char* info = nullptr;
      int infoLen = 0;
      EXPECT_EQ(extractMandatoryTlv(&cursor, cursor + row.octets.size(), 2, 4, &infoLen, &info),
                row.words.empty());
      EXPECT_EQ(context.traced(0), row.words);
   }
}

TEST_F(CodecTlv, ObjectIdentifiersAreDecoded) {
   const std::string invalid = "Invalid OID string";
   std::string ones;
   for (int i = 0; i < 128; ++i) ones += ".1";
   struct {
      std::string octets;
      std::string text;
      std::string words;
   } cases[] = {
       {be8(0x00), "0.0", ""},
       {be8(0x27), "0.39", ""},
       {be8(0x28), "1.0", ""},
       {be8(0x2B), "1.3", ""},
       {be8(0x50), "2.0", ""},
       {"\x88\x37", "2.999", ""},
       {"\x2B\x06\x01\x04\x01", "1.3.6.1.4.1", ""},
       {"\x2B\x8F\xFF\xFF\xFF\x7F", "1.3.4294967295", ""},
       {"\x2B\x90\x80\x80\x80" + be8(0), "", invalid},  // above 32 bits
       {"\x2B\x86", "", invalid},                       // ends inside a sub-identifier
       {std::string(128, '\x01'), "0" + ones, ""},
       {std::string(129, '\x01'), "", invalid},  // one sub-identifier too many
       {std::string(257, '\x01'), "", "Excess bytes at end of OID string"},
   };
   for (const auto& row : cases) {
      context.traces.clear();
      testing::internal::CaptureStderr();
      auto oid = decodeOid(Rex::String(row.octets));
      EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
      EXPECT_EQ(oid.text.stdString(), row.text);
      if (row.words.empty()) {
         EXPECT_THAT(context.traced(8), ElementsAre("Valid OID string"));
      } else {
         EXPECT_THAT(context.traced(0), ElementsAre(row.words));
      }
   }
}

TEST_F(CodecTlv, OnlyTheEmptyObjectIdentifierIsEncoded) {
   EXPECT_TRUE(encodeOid({}).empty());
   EXPECT_DEATH(encodeOid({"1.3.6.1"}), "!oid");
}

}  // namespace
