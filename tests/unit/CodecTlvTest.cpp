// One TLV at a time, and object identifiers.
#include <gmock/gmock.h>

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
