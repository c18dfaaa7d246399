// The simulated wire: what arrives where, when and how.
#include <gtest/gtest.h>

#include <string>

#include "Interface/SegmentPam.h"
#include "Wirekit/EthHdr.h"
#include "unit/LldpFilter.h"
#include "unit/RexFixture.h"

namespace Interface {
namespace {

using LldpFilter::Octets;
using Wirekit::IntfId;

class SegmentTest : public RexFixture {
 protected:
   SegmentTest() {
      auto instructions = LldpFilter::program().instructions();
      config.filter.assign(instructions.begin(), instructions.end());
      config.separateDot1QHdr = true;
      for (const char* name : {"a", "b", "c"}) maker.plug(name, wire);
   }
   Rex::Ptr<Wirekit::Pam> open(const char* device) {
      return maker.make({IntfId(device), device, 1}, config).pam;
   }
   static void send(const Rex::Ptr<Wirekit::Pam>& pam, uint8_t mark) {
      pam->txPktIs(Wirekit::globalPktManager().newPkt(LldpFilter::frame(0x88CC, {}, 60, mark)));
   }
   // Lets the time pass and gives the marks of what a port has received.
   static std::string marks(const Rex::Ptr<Wirekit::Pam>& pam) {
      std::string text;
      while (auto pkt = pam->rxPkt()) text += pkt->tail()[-1];
      return text;
   }

   Segment::Ptr wire = Rex::make<Segment>(context.clock());
   SegmentPamMaker maker;
   PamConfig config;
};

TEST_F(SegmentTest, aFrameReachesEveryOtherPortAfterTheSend) {
   auto a = open("a"), b = open("b"), c = open("c");
   send(a, 'x');
   EXPECT_EQ(b->rxFrames(), 0u);
   pass();
   EXPECT_EQ(marks(a), "");
   EXPECT_EQ(marks(b), "x");
   EXPECT_EQ(marks(c), "x");
   wire->frameIs(LldpFilter::frame(0x88CC, {}, 60, 'y'));
   pass();
   EXPECT_EQ(marks(a), "y");
}

TEST_F(SegmentTest, whatArrivesPassedTheFilterAndTheDevice) {
   struct Case {
      const char* what;
      bool untags, separate;
      Octets sent;
      int bytes;  // -1: nothing arrives
      int vlan;   // -1: no tag beside the frame
   };
   const Case cases[] = {
       {"plain", true, true, LldpFilter::frame(), 60, -1},
       {"another protocol", true, true, LldpFilter::frame(0x0800), -1, -1},
       {"too long", true, true, LldpFilter::frame(0x88CC, {}, 1519), -1, -1},
       {"runt", true, true, Octets(5), -1, -1},
       {"tag beside the frame", true, true, LldpFilter::frame(0x88CC, 100), 56, 100},
       {"tag not asked for", true, false, LldpFilter::frame(0x88CC, 100), 60, -1},
       {"device keeps tags", false, true, LldpFilter::frame(0x88CC, 100), 60, -1},
       {"other protocol tagged", true, true, LldpFilter::frame(0x0800, 100), -1, -1},
   };
   for (const Case& c : cases) {
      maker.untags = c.untags;
      config.separateDot1QHdr = c.separate;
      auto port = open("a");
      wire->frameIs(c.sent);
      pass();
      auto pkt = port->rxPkt();
      ASSERT_EQ(bool(pkt), c.bytes >= 0) << c.what;
      port->close();
      if (!pkt) continue;
      EXPECT_EQ(static_cast<int>(pkt->bytes()), c.bytes) << c.what;
      EXPECT_EQ(pkt->separateVlanTag() ? pkt->separateVlanTag()->vlanId() : -1, c.vlan) << c.what;
      const auto* header = reinterpret_cast<const Wirekit::EthHdr*>(pkt->head());
      EXPECT_EQ(header->etherType(), c.vlan >= 0 || c.sent[12] == 0x88 ? 0x88CC : 0x8100) << c.what;
   }
}

}  // namespace
}  // namespace Interface
