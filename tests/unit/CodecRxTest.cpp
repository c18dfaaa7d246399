// A whole LLDPDU on its way into the tables.
#include <gmock/gmock.h>

#include <limits>

#include "support/ChangeLog.h"
#include "support/CodecPort.h"
#include "support/FrameBuilder.h"
#include "support/TestContext.h"

using namespace LldpTest;
using testing::ElementsAre;

namespace {

struct Counters {
   uint32_t frames = 0, framesDiscarded = 0, framesErrors = 0, tlvsDiscarded = 0,
            tlvsUnrecognized = 0, inserts = 0, deletes = 0, drops = 0;
   bool operator==(const Counters&) const = default;
};
BOOST_DESCRIBE_STRUCT(Counters, (),
                      (frames, framesDiscarded, framesErrors, tlvsDiscarded, tlvsUnrecognized,
                       inserts, deletes, drops))
void PrintTo(const Counters& counters, std::ostream* out) {
   Rex::print(*out, counters);
}

class CodecRx : public testing::Test {
 protected:
   CodecRx() { context.traceOn("LldpProtocol"); }

   static Counters counters(const CodecPort& port) {
      const auto& p = *port.portStatus;
      const auto& s = *port.status;
      return {p.rxFramesTotal(),        p.rxFramesDiscardedTotal(),  p.rxFramesErrors(),
              p.rxTLVsDiscardedTotal(), p.rxTLVsUnrecognizedTotal(), s.remTablesInserts(),
              s.remTablesDeletes(),     s.remTablesDrops()};
   }
   // Which times bear the present moment.
   std::string timesMoved(const CodecPort& port, int index) const {
      std::string moved;
      double now = context.now();
      if (auto n = port.neighbour(index)) {
         if (n->creationTime() == now) moved += "creation ";
         if (n->lastRefreshTime() == now) moved += "refresh ";
         if (n->expiryTime() == now + n->ttl()) moved += "expiry ";
         if (n->lastChangeTime() == now) moved += "change ";
      }
      if (port.status->remTablesLastChangeTime() == now) moved += "tablesChange ";
      if (port.status->lastPacketParsedTime() == now) moved += "parsed ";
      return moved;
   }

   TestContext context;
};

TEST_F(CodecRx, EveryPrefixOfTheMandatoryTlvsIsRefused) {
   const std::string frame = mandatory();
   for (size_t length = 0; length < frame.size(); ++length) {
      CodecPort port;
      EXPECT_FALSE(port.receive(frame.substr(0, length))) << length;
      EXPECT_EQ(counters(port), (Counters{.frames = 1, .framesDiscarded = 1, .framesErrors = 1}));
   }
}

// A neighbour's last frame is kept, and the same again is not compared by what it says. The first
// 256 octets of it stand apart from the rest.
TEST_F(CodecRx, AFrameRepeatsAnotherOnlyToItsLastOctet) {
   CodecPort port;
   for (size_t length : {1, 100, 229, 230, 231, 255}) {
      SCOPED_TRACE(length);
      for (char end : {'a', 'b', 'a'}) {
         port.receive(mandatory() + tlv(5, std::string(length - 1, 'x') + end));
         EXPECT_EQ(port.neighbour(1)->sysName().tlvInfo.view(), std::string(length - 1, 'x') + end);
      }
      std::string name(length, 'y');
      port.receive(mandatory() + tlv(5, name) + tlv(6, std::string(100, 'd')));
      port.receive(mandatory() + tlv(5, name));
      EXPECT_FALSE(port.neighbour(1)->sysDesc().tlvReceived);
   }
}

TEST_F(CodecRx, CountersAndTimesOfEachOutcome) {
   const std::string bad = organization(0xABCDEF, 0, "");
   const std::string fatal = timeToLive(5);
   struct {
      const char* label;
      std::string frame;
      Counters counters;
      const char* times;
   } rows[] = {
       {"known", mandatory(1), {.frames = 1}, "refresh expiry parsed "},
       {"known, changed TTL only", mandatory(1, 7), {.frames = 1}, "refresh expiry parsed "},
       {"known, changed",
        mandatory(1) + tlv(5, "new"),
        {.frames = 1},
        "refresh expiry change tablesChange parsed "},
       {"known, bad TLV",
        mandatory(1) + bad,
        {.frames = 1, .framesErrors = 1, .tlvsDiscarded = 1},
        "refresh expiry change tablesChange parsed "},
       {"known, fatal",
        mandatory(1, 7) + tlv(5, "new") + fatal,
        {.frames = 1, .framesDiscarded = 1, .framesErrors = 1},
        ""},
       {"new", mandatory(2), {.frames = 1, .inserts = 1}, "tablesChange parsed "},
       {"new, at the limit",
        mandatory(3) + bad,
        {.frames = 1, .framesDiscarded = 1, .tlvsDiscarded = 1},
        ""},
       {"known, at the limit", mandatory(1), {.frames = 1}, "refresh expiry parsed "},
       {"shutdown, unknown", mandatory(9, 0), {.frames = 1}, ""},
       {"shutdown, with garbage behind",
        mandatory(1, 0) + "\xFF\xFF\xFF",
        {.frames = 1, .deletes = 1},
        "tablesChange "},
   };
   CodecPort port;
   port.portConfig->maxRemoteSystemsIs(2);
   port.receive(mandatory(1));
   for (const auto& row : rows) {
      SCOPED_TRACE(row.label);
      context.advance(1);
      Counters before = counters(port);
      auto old = port.neighbour(1);
      double expiry = old->expiryTime();
      auto result = port.receive(row.frame);
      Counters after = counters(port);
      Counters moved{after.frames - before.frames,
                     after.framesDiscarded - before.framesDiscarded,
                     after.framesErrors - before.framesErrors,
                     after.tlvsDiscarded - before.tlvsDiscarded,
                     after.tlvsUnrecognized - before.tlvsUnrecognized,
                     after.inserts - before.inserts,
                     after.deletes - before.deletes,
                     after.drops - before.drops};
      EXPECT_EQ(moved, row.counters);
      EXPECT_EQ(timesMoved(port, 1), row.times);
      EXPECT_EQ(bool(result), std::string_view(row.times).find("parsed") != std::string::npos);
      if (!result) {
         EXPECT_EQ(old->expiryTime(), expiry);
      }
      EXPECT_EQ(port.portStatus->remoteSystems(), port.portStatus->remoteSystemByMsaps());
   }
   EXPECT_FALSE(port.neighbour(1));
   EXPECT_TRUE(port.neighbour(2));
}

TEST_F(CodecRx, NewNeighbourBearsAllItsTimes) {
   CodecPort port;
   auto neighbour = port.receive(mandatory(1, 65535));
   EXPECT_EQ(timesMoved(port, 1), "creation refresh expiry change tablesChange parsed ");
   EXPECT_EQ(neighbour->expiryTime(), context.now() + 65535);
   EXPECT_EQ(neighbour->ethAddr(), port.srcAddr);
}

// Other agents see one change at a time, in this order.
TEST_F(CodecRx, WritesComeInOrder) {
   CodecPort port;
   auto tables =
       Rex::make<ChangeLog>(std::vector<Rex::Ptr<const Rex::Entity>>{port.status, port.portStatus});
   std::string full = mandatory(1) + tlv(4, "desc") + tlv(5, "name") + tlv(9, "old") +
                      tlv(10, "same") + managementAddress(1, "\x0A\x01\x02\x03", 7);
   auto neighbour = port.receive(full);
   EXPECT_THAT(
       tables->take(),
       ElementsAre("PortStatus.rxFramesTotal", "PortStatus.rxTLVsUnrecognizedTotal",
                   "PortStatus.rxTLVsUnrecognizedTotal", "PortStatus.nextRemoteSystemIndex",
                   "PortStatus.remoteSystem[1]",
                   testing::StartsWith("PortStatus.remoteSystemByMsap["), "Status.remTablesInserts",
                   "Status.remTablesLastChangeTime", "Status.lastPacketParsedTime"));

   auto all = Rex::make<ChangeLog>(
       std::vector<Rex::Ptr<const Rex::Entity>>{port.status, port.portStatus, neighbour});
   tables->close();
   port.receive(full);
   EXPECT_THAT(all->take(),
               ElementsAre("PortStatus.rxFramesTotal", "PortStatus.rxTLVsUnrecognizedTotal",
                           "PortStatus.rxTLVsUnrecognizedTotal", "Status.lastPacketParsedTime"));

   context.advance(1);
   port.srcAddr = Wirekit::EthAddr(2, 0, 0, 0, 0, 9);
   port.receive(mandatory(1, 60) + tlv(4, "desc") + tlv(5, "other") + tlv(10, "same") +
                tlv(11, "new") + systemCapabilities(1, 2));
   EXPECT_THAT(all->take(),
               ElementsAre("PortStatus.rxFramesTotal", "PortStatus.rxTLVsUnrecognizedTotal",
                           "PortStatus.rxTLVsUnrecognizedTotal", "PortStatus.rxTLVsDiscardedTotal",
                           "RemoteSystem.ttl", "RemoteSystem.sysName",
                           testing::StartsWith("RemoteSystem.managementAddress["),
                           "RemoteSystem.unknownTlv[9]", "RemoteSystem.unknownTlv[11]",
                           "RemoteSystem.ethAddr", "RemoteSystem.lastRefreshTime",
                           "RemoteSystem.expiryTime", "RemoteSystem.lastChangeTime",
                           "Status.remTablesLastChangeTime", "Status.lastPacketParsedTime",
                           "PortStatus.rxFramesErrors"));

   port.receive(mandatory(1, 0));
   EXPECT_THAT(all->take(), ElementsAre("PortStatus.rxFramesTotal",
                                        testing::StartsWith("PortStatus.remoteSystemByMsap["),
                                        "PortStatus.remoteSystem[1]", "Status.remTablesDeletes",
                                        "Status.remTablesLastChangeTime"));
   all->close();
}

TEST_F(CodecRx, NeighboursAreToldApartByIdentifiers) {
   struct {
      const char* label;
      std::string frame;
      int index;
      std::vector<std::string> words;
   } rows[] = {
       {"first", chassisId(4, "abc") + portId(5, "p"), 1, {}},
       {"other port", chassisId(4, "abc") + portId(5, "q"), 2, {}},
       {"other port subtype", chassisId(4, "abc") + portId(7, "p"), 3, {}},
       {"subtype 0 stays", chassisId(0, "abc") + portId(5, "p"), 4, {}},
       {"subtype 9", chassisId(9, "abc") + portId(5, "p"), 5, {"Unknown chassid ID subtype 9"}},
       {"200 is the same",
        chassisId(200, "abc") + portId(5, "p"),
        5,
        {"Unknown chassid ID subtype 200"}},
       {"8 is the same", chassisId(8, "abc") + portId(5, "p"), 5, {"Unknown chassid ID subtype 8"}},
       {"port 255", chassisId(4, "abc") + portId(255, "p"), 6, {"Unknown port ID subtype 255"}},
       {"longest", chassisId(7, std::string(255, 'c')) + portId(7, std::string(255, 'p')), 7, {}},
       {"first again", chassisId(4, "abc") + portId(5, "p"), 1, {}},
   };
   CodecPort port;
   for (const auto& row : rows) {
      SCOPED_TRACE(row.label);
      context.traces.clear();
      auto neighbour = port.receive(row.frame + timeToLive(9));
      ASSERT_TRUE(neighbour);
      EXPECT_EQ(neighbour->index(), row.index);
      EXPECT_EQ(context.traced(0), row.words);
   }
   EXPECT_EQ(port.neighbour(4)->chassisId().subtype, Lldp::ChassisIdSubtype(0));
   EXPECT_EQ(port.neighbour(5)->chassisId().subtype, Lldp::ChassisIdSubtype(8));
   EXPECT_FALSE(port.receive(chassisId(7, std::string(256, 'c')) + portId(7, "p") + timeToLive(9)));
}

TEST_F(CodecRx, MandatoryTlvsStandFirstAndInOrder) {
   struct {
      std::string frame;
      std::vector<std::string> words;
   } rows[] = {
       {portId(5, "p") + chassisId(4, "c") + timeToLive(9),
        {"Error: TLV was not of the expected type (type=2)", "Error in first mandatory TLV"}},
       {chassisId(4, "c") + timeToLive(9) + portId(5, "p"),
        {"Error: TLV was not of the expected type (type=3)", "Error in second mandatory TLV"}},
       {chassisId(4, "c") + portId(5, "p") + endOfLldpdu(),
        {"Error: TLV was not of the expected type (type=0)", "Error in third mandatory TLV"}},
       {chassisId(4, "") + portId(5, "p") + timeToLive(9),
        {"Error: size of TLV out of range (infoLen=1)", "Error in first mandatory TLV"}},
       {mandatory() + chassisId(4, "c"), {"Error: frame contains duplicate TLV of type 1"}},
       {mandatory() + portId(4, "c"), {"Error: frame contains duplicate TLV of type 2"}},
       {mandatory() + tlv(3, ""), {"Error: frame contains duplicate TLV of type 3"}},
   };
   for (const auto& row : rows) {
      CodecPort port;
      context.traces.clear();
      EXPECT_FALSE(port.receive(row.frame));
      EXPECT_EQ(context.traced(0), row.words);
      EXPECT_EQ(counters(port), (Counters{.frames = 1, .framesDiscarded = 1, .framesErrors = 1}));
   }
   // Only the first two octets of a TTL count.
   CodecPort port;
   auto neighbour = port.receive(chassisId(4, "c") + portId(5, "p") + tlv(3, be16(300) + "tail"));
   ASSERT_TRUE(neighbour);
   EXPECT_EQ(neighbour->ttl(), 300);
}

TEST_F(CodecRx, IndicesWrapToOneAndPassOverTheLiving) {
   CodecPort port;
   EXPECT_EQ(port.receive(mandatory(1))->index(), 1);
   port.portStatus->nextRemoteSystemIndexIs(std::numeric_limits<int32_t>::max() - 1);
   EXPECT_EQ(port.receive(mandatory(2))->index(), std::numeric_limits<int32_t>::max());
   context.traces.clear();
   auto third = port.receive(mandatory(3));
   EXPECT_EQ(third->index(), 2);
   EXPECT_EQ(port.neighbour(1)->msap(), port.receive(mandatory(1))->msap());
   EXPECT_EQ(port.portStatus->remoteSystems(), 3u);
   EXPECT_THAT(context.traced(2), ElementsAre("Index for RemoteSystem tables has wrapped"));
}

TEST_F(CodecRx, OperatorIsToldOfNeighboursThatComeAndGo) {
   CodecPort port;
   std::string ids = chassisId(4, "\x02\x03\x04\x05\x06\x07") + portId(5, "Ethernet1");
   port.receive(ids + timeToLive(9));
   port.receive(ids + timeToLive(9));
   port.receive(ids + timeToLive(0));
   port.receive(ids + timeToLive(0));
   EXPECT_THAT(
       context.takeLogs(),
       ElementsAre("LLDP_NEIGHBOR_NEW: LLDP neighbor with chassisId 02:03:04:05:06:07 and portId "
                   "Ethernet1 added on interface Ethernet7",
                   "LLDP_NEIGHBOR_GONE: Received a shutdown frame from LLDP neighbor with "
                   "chassisId 02:03:04:05:06:07 and portId Ethernet1 on interface Ethernet7"));
}

}  // namespace
