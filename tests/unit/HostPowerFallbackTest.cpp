// The operator's power fallback reaches a port that comes after it, or that LLDP was off for.
#include <gtest/gtest.h>

#include "host/PowerFallback.h"
#include "unit/HostStore.h"

TEST(HostPowerFallback, PortThatComesHasTheValueOfItsRow) {
   HostTest::Store store;
   auto config = store.at<Lldp::Config>("l2discovery/lldp/config");
   const Wirekit::IntfId early("Ethernet1");
   const Wirekit::IntfId late("Ethernet2");
   for (const auto& port : {early, late}) {
      store.cliConfig()->cliPortConfigIs(port)->poeAllocatedPowerFallbackIs(154);
   }
   config->portConfigIs(early);
   auto sm = Rex::make<Host::PowerFallback>(config, store.cliConfig());
   config->portConfigIs(late);
   auto other = config->portConfigIs(Wirekit::IntfId("Ethernet3"));
   EXPECT_EQ(config->portConfig(early)->poeAllocatedPowerFallback(), 154u);
   EXPECT_EQ(config->portConfig(late)->poeAllocatedPowerFallback(), 154u);
   EXPECT_EQ(other->poeAllocatedPowerFallback(), 0u);
   config->portConfigDel(late);
   config->portConfigIs(late);
   EXPECT_EQ(config->portConfig(late)->poeAllocatedPowerFallback(), 154u);
   store.cliConfig()->enabledIs(false);
   store.cliConfig()->cliPortConfig(early)->poeAllocatedPowerFallbackIs(0);
   store.cliConfig()->cliPortConfig(late)->poeAllocatedPowerFallbackIs(300);
   store.cliConfig()->enabledIs(true);
   EXPECT_EQ(config->portConfig(early)->poeAllocatedPowerFallback(), 0u);
   EXPECT_EQ(config->portConfig(late)->poeAllocatedPowerFallback(), 300u);
   sm->close();
}
