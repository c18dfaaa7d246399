// What a frame costs in memory: nothing from the system in steady state, little for a neighbour.
#include <gtest/gtest.h>

#include "Rex/Pool.h"
#include "support/AllocationCount.h"
#include "support/CodecSender.h"
#include "support/OrganisationTlvs.h"
#include "support/TestContext.h"

namespace {

using namespace LldpTest;

std::vector<std::string> frames() {
   std::string longest = mandatory(3);
   while (longest.size() < 1400) longest += organization(0xABCDEF, 7, std::string(20, 'x'));
   return {typicalLldpdu(1),
           mandatory(2) + managementAddress(1, "addr", 7, "\x2B\x06\x01\x04\x01") + tlv(99, "?"),
           longest, everyTlvLldpdu(4)};
}

TEST(CodecMemory, RefreshAllocatesNothing) {
   TestContext context;
   CodecPort port;
   auto receiveAll = [&](std::vector<std::string>& all) {
      for (auto& lldpdu : all) {
         Lldp::Agent::processRxLldpdu(lldpdu.data(), lldpdu.data() + lldpdu.size(), port.portConfig,
                                      port.status, port.portStatus, port.srcAddr);
      }
   };
   auto all = frames();
   // Long enough for the table of senders, which other tests have filled, to have its size.
   for (int i = 0; i < 10'000; ++i) receiveAll(all);
   size_t memory = Rex::Pool::inUse();
   size_t before = allocationCount();
   for (int i = 0; i < 1000; ++i) {
      context.timeIs(context.now() + 1);
      receiveAll(all);
   }
   EXPECT_EQ(allocationCount(), before);
   EXPECT_EQ(Rex::Pool::inUse(), memory);
   EXPECT_EQ(port.portStatus->rxFramesTotal(), 44'000u);
   EXPECT_EQ(port.portStatus->remoteSystems(), 4u);
}

TEST(CodecMemory, BuildingAllocatesNothing) {
   TestContext context;
   CodecSender sender;
   sender.sayBasics();
   sender.sayOrganisations();
   sender.external(0xABCDEF, 1, 1, "external");
   char buffer[1500];
   size_t before = 0;
   for (int i = 0; i < 100; ++i) {
      if (i == 1) before = allocationCount();
      sender.build(buffer, buffer + sizeof buffer);
   }
   EXPECT_EQ(allocationCount(), before);
}

TEST(CodecMemory, TypicalNeighbourFitsFourKibibytes) {
   ASSERT_EQ(typicalLldpdu().size(), 250u);
   TestContext context;
   CodecPort port;
   size_t before = Rex::Pool::inUse();
   for (uint32_t n = 0; n < 256; ++n) port.receive(typicalLldpdu(n));
   EXPECT_EQ(port.portStatus->remoteSystems(), 256u);
   EXPECT_LE((Rex::Pool::inUse() - before) / 256, 4096u);
   for (uint32_t n = 0; n < 256; ++n) port.receive(mandatory(n, 0));
   EXPECT_EQ(port.portStatus->remoteSystems(), 0u);
}

}  // namespace
