// Packets and their pool.
#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "Wirekit/Pkt.h"

namespace Wirekit {
namespace {

std::vector<uint8_t> octets(size_t n) {
   std::vector<uint8_t> made(n);
   std::iota(made.begin(), made.end(), uint8_t{0});
   return made;
}
std::vector<uint8_t> contentOf(const Pkt& pkt) {
   return {pkt.data().begin(), pkt.data().end()};
}

TEST(Pkt, aFrameIsBuiltFromTheBack) {
   Pkt::Manager packets;
   packets.maxSharedDataIs(10236);
   Pkt::Ptr pkt = packets.newPkt();
   ASSERT_TRUE(pkt);
   EXPECT_EQ(pkt->bytes(), 0u);
   EXPECT_EQ(pkt->maxSharedData(), 10236u);
   char* end = pkt->head();
   char* begin = pkt->newSharedHeadData(1500);
   EXPECT_EQ(end - begin, 1500);  // the content did not move: `end` is still good
   EXPECT_EQ(pkt->bytes(), 1500u);
   std::memcpy(begin, octets(300).data(), 300);
   pkt->delSharedTailData(1200);
   std::memset(pkt->newSharedHeadData(14), 0xEE, 14);
   std::vector<uint8_t> expected(14, 0xEE);
   for (uint8_t octet : octets(300)) expected.push_back(octet);
   EXPECT_EQ(contentOf(*pkt), expected);
   pkt->delSharedHeadData(14);
   EXPECT_EQ(contentOf(*pkt), octets(300));
}

TEST(Pkt, tooLittleRoomInFrontMovesTheContent) {
   Pkt::Manager packets;
   for (size_t size : {0u, 1u, 100u, 1984u, 1985u, 5000u}) {
      for (size_t more : {1u, 64u, 65u, 20000u}) {
         Pkt::Ptr pkt = packets.newPkt(octets(size));
         char* head = pkt->newSharedHeadData(more);
         std::memset(head, 0xEE, more);
         EXPECT_EQ(pkt->bytes(), size + more);
         pkt->delSharedHeadData(more);
         EXPECT_EQ(contentOf(*pkt), octets(size)) << size << " " << more;
      }
   }
   EXPECT_EQ(packets.memoryLeft(), packets.memoryLimit());
}

TEST(Pkt, theTagBesideTheFrameGoesWithItsPacket) {
   Pkt::Manager packets;
   Pkt::Ptr pkt = packets.newPkt(octets(60));
   EXPECT_FALSE(pkt->separateVlanTag());
   pkt->separateVlanTagIs({0x8100, 0x6064});
   EXPECT_EQ(pkt->separateVlanTag()->vlanId(), 0x064);
   Pkt* place = pkt.get();
   pkt = nullptr;
   pkt = packets.newPkt(octets(60));
   ASSERT_EQ(pkt.get(), place);  // recycled, and none the wiser
   EXPECT_FALSE(pkt->separateVlanTag());
}

TEST(Pkt, thePoolIsBoundedAndRecovers) {
   Pkt::Manager packets;
   packets.maxSharedDataIs(10000);
   packets.memoryLimitIs(35000);
   std::vector<Pkt::Ptr> out;
   while (Pkt::Ptr pkt = packets.newPkt()) out.push_back(pkt);
   EXPECT_EQ(out.size(), 3u);
   EXPECT_FALSE(packets.newPkt(octets(9000)));
   EXPECT_TRUE(packets.newPkt(octets(60)));
   out.pop_back();
   EXPECT_TRUE(packets.newPkt());
   // A size that is set anew does not bring old buffers back.
   packets.maxSharedDataIs(12000);
   out.clear();
   EXPECT_EQ(packets.newPkt()->maxSharedData(), 12000u);
   EXPECT_EQ(packets.memoryLeft(), 35000u);
}

}  // namespace
}  // namespace Wirekit
