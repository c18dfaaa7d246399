// A store with the operator's and the agent's entities, for tests of the host.
#pragma once

#include <gtest/gtest.h>

#include "Rex/StateMachine.h"
#include "Statestore/EntityManager.h"
#include "model/CliConfig.h"
#include "model/Config.h"
#include "support/TestContext.h"

namespace HostTest {

struct Store : Statestore::Mounter {
   LldpTest::TestContext test;
   Rex::Ptr<Statestore::EntityManager> manager = Rex::make<Statestore::EntityManager>();

   Store() {
      auto group = manager->getMountGroup(this);
      group->doMount({"l2discovery/lldp/cliConfig", "Lldp::CliConfig", "r"});
      group->doMount({"l2discovery/lldp/remTablesCliConfig", "Lldp::RemTablesCliConfig", "r"});
      group->doMount({"l2discovery/lldp/externalTlvs", "Rex::Dir", "ri"});
      group->doMount({"l2discovery/lldp/config", "Lldp::Config", "w"});
      group->doClose(false, "", 0.0);
      test.settle();
   }
   void doMountsComplete(Statestore::MountStatus status,
                         const Rex::Ptr<Statestore::EntityManager>&) override {
      EXPECT_EQ(status, Statestore::mountSuccess_);
   }

   template <class T>
   Rex::Ptr<T> at(const char* path) {
      return Rex::dynamicPtr<T>(manager->getEntity(path));
   }
   Lldp::CliConfig::Ptr cliConfig() { return at<Lldp::CliConfig>("l2discovery/lldp/cliConfig"); }
};

// Notes each change of the operator's configuration with what stands at that moment.
struct Watcher : Rex::StateMachine {
   explicit Watcher(Lldp::CliConfig::Ptr config) : config(config) {
      on(config, Lldp::CliConfig::messageTxIntervalAttr, &Watcher::handleTiming);
      on(config, Lldp::CliConfig::messageTxHoldTimeAttr, &Watcher::handleTiming);
      on(config, Lldp::CliConfig::cliPortConfigAttr, &Watcher::handlePort);
   }
   void handleTiming() {
      seen.push_back(std::to_string(config->messageTxInterval()) + "/" +
                     std::to_string(config->messageTxHoldTime()));
   }
   void handlePort(Wirekit::IntfId intfId) {
      auto port = config->cliPortConfig(intfId);
      seen.push_back(intfId.stringValue().stdString() + " " +
                     (port ? Rex::enumeratorName(port->adminStatus()) : "gone"));
   }
   Lldp::CliConfig::Ptr config;
   std::vector<std::string> seen;
};

}  // namespace HostTest
