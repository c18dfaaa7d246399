// Change detection between a frame and what its neighbour is known by.
#include <gmock/gmock.h>

#include <iterator>
#include <sstream>

#include "Lldp/LldpProtocol/Compare.h"
#include "support/ChangeLog.h"
#include "support/CodecPort.h"
#include "support/OrganisationTlvs.h"
#include "support/TestContext.h"

using namespace LldpTest;
using Lldp::Agent::copyChanges;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Lldp::RemoteSystem::Ptr newNeighbour(int index) {
   return Rex::make<Lldp::RemoteSystem>(index, Lldp::RemoteSystem::Msap{});
}

// Everything that a frame can bring, other than its default.
Lldp::RemoteSystem::PtrConst fullNeighbour() {
   std::string lldpdu = everyTlvLldpdu();
   lldpdu.resize(lldpdu.size() - 2);
   return CodecPort().receive(lldpdu + tlv(9, "reserved") + organization(0xABCDEF, 1, "unknown"));
}

// The attributes in the order in which they are to be copied.
const std::vector<std::string> order = [] {
   std::istringstream words(
       "portDesc sysName sysDesc systemCapabilities managementAddress unknownTlv "
       "unknownOrgDefTlv portVlanId portVlanIdTlvReceived portAndProtocolVlan "
       "vlanName protocolIdentityInfo vidUsageDigest vidUsageDigestTlvReceived "
       "managementVid managementVidTlvReceived linkAggregationInfo "
       "linkAggregationTlvReceived macPhyConfigStatusInfo "
       "macPhyConfigStatusTlvReceived powerViaMdiInfo powerViaMdiTlvReceived "
       "medCapabilitiesTlvReceived medCapabilitiesInfo networkPolicyTlv locationId "
       "hardwareRevisionTlvInfo firmwareRevisionTlvInfo softwareRevisionTlvInfo "
       "serialNumberTlvInfo manufacturerNameTlvInfo modelNameTlvInfo assetIDTlvInfo "
       "maximumFrameSizeInfo maximumFrameSizeTlvReceived");
   return std::vector<std::string>(std::istream_iterator<std::string>(words), {});
}();

class CodecCompare : public testing::Test {
 protected:
   CodecCompare() { context.traceOn("LldpProtocol"); }

   // Copies, and returns the names of the attributes that were written, without their keys.
   std::vector<std::string> written(const Lldp::RemoteSystem& scratch,
                                    const Lldp::RemoteSystem::Ptr& stored) {
      context.traces.clear();
      auto log = Rex::make<ChangeLog>(std::vector<Rex::Ptr<const Rex::Entity>>{stored});
      changed = copyChanges(scratch, *stored);
      std::vector<std::string> names;
      for (const auto& change : log->take()) {
         size_t dot = change.find('.') + 1;
         names.push_back(change.substr(dot, change.find('[') - dot));
      }
      log->close();
      return names;
   }

   TestContext context;
   bool changed = false;
};

TEST_F(CodecCompare, AllAttributesAreCopiedInOrderAndRemovedInOrder) {
   auto full = fullNeighbour();
   auto stored = newNeighbour(5);
   EXPECT_EQ(written(*full, stored), order);
   EXPECT_TRUE(changed);
   EXPECT_EQ(context.traced(8).size(), order.size());
   EXPECT_EQ(context.traced(8)[0],
             "Attribute portDesc changed (was: {tlvReceived: false, tlvInfo: }, now: "
             "{tlvReceived: true, tlvInfo: Uplink to the distribution layer, row 7})");
   EXPECT_EQ(context.traced(8)[5], "Member 9 of collection unknownTlv added/updated");

   EXPECT_THAT(written(*full, stored), IsEmpty());
   EXPECT_FALSE(changed);
   EXPECT_THAT(context.traced(8), IsEmpty());

   EXPECT_EQ(written(*newNeighbour(1), stored), order);
   EXPECT_TRUE(changed);
   EXPECT_EQ(context.traced(8)[5], "Member 9 of collection unknownTlv deleted");
   EXPECT_THAT(written(*newNeighbour(1), stored), IsEmpty());
}

TEST_F(CodecCompare, OnlyTheMemberThatDiffersIsWritten) {
   auto address = [](const char* octets, uint32_t ifNumber) {
      Lldp::ManagementAddress made;
      made.key = {1, Lldp::ManAddress(octets, 4)};
      made.ifNumber = ifNumber;
      return made;
   };
   auto stored = newNeighbour(5);
   auto scratch = newNeighbour(1);
   for (const char* octets : {"gone", "same", "diff"}) {
      stored->managementAddressIs(address(octets, 1));
   }
   scratch->managementAddressIs(address("same", 1));
   scratch->managementAddressIs(address("diff", 2));
   scratch->managementAddressIs(address("new.", 3));
   EXPECT_EQ(written(*scratch, stored).size(), 3u);
   auto words = [](const char* octets, const char* what) {
      return "Member " +
             Rex::valueToString(Lldp::ManagementAddress::Key{1, Lldp::ManAddress(octets, 4)})
                 .stdString() +
             " of collection managementAddress " + what;
   };
   EXPECT_THAT(context.traced(8),
               ElementsAre(words("gone", "deleted"), words("diff", "added/updated"),
                           words("new.", "added/updated")));
   EXPECT_EQ(stored->managementAddresss(), 3u);
   EXPECT_EQ(stored->managementAddress({1, Lldp::ManAddress("diff", 4)}).ifNumber, 2u);
}

TEST_F(CodecCompare, TimesAndAddressAreNoContent) {
   auto scratch = newNeighbour(1);
   scratch->ttlIs(9);
   scratch->ethAddrIs(Wirekit::EthAddr(2, 0, 0, 0, 0, 1));
   scratch->creationTimeIs(1);
   scratch->lastChangeTimeIs(1);
   scratch->lastRefreshTimeIs(1);
   scratch->expiryTimeIs(1);
   EXPECT_THAT(written(*scratch, newNeighbour(5)), IsEmpty());
   EXPECT_FALSE(changed);
}

// The memory of this module's promise: whoever adds an attribute that a frame brings has to compare
// it, too.
TEST_F(CodecCompare, EveryAttributeIsComparedOrKnownNotToBe) {
   std::vector<std::string> others = {"index",        "msap",           "ttl",
                                      "creationTime", "lastChangeTime", "lastRefreshTime",
                                      "expiryTime",   "ethAddr"};
   std::vector<std::string> all = order;
   all.insert(all.end(), others.begin(), others.end());
   std::vector<std::string> declared;
   for (const auto& member : Lldp::RemoteSystem::staticType().members()) {
      declared.push_back(member->name);
   }
   EXPECT_THAT(declared, testing::UnorderedElementsAreArray(all));
}

}  // namespace
