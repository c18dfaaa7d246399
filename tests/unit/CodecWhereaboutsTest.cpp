// What is known of the places of senders: a matter of speed alone, which nobody else would see
// fail.
#include <gtest/gtest.h>

#include <vector>

#include "Lldp/LldpProtocol/Whereabouts.h"
#include "support/FrameBuilder.h"

using Lldp::Agent::Whereabouts;

namespace {

Whereabouts::Sender sender(uint32_t n) {
   return Whereabouts::senderOf(LldpTest::mandatory(n));
}
Lldp::RemoteSystem::Ptr neighbour() {
   return Rex::make<Lldp::RemoteSystem>(1, Lldp::RemoteSystem::Msap{});
}

TEST(CodecWhereabouts, AnyNumberOfNeighboursIsKnownAfterAWhile) {
   for (uint32_t count : {1u, 100u, 5'000u}) {
      Whereabouts whereabouts;
      std::vector<Lldp::RemoteSystem::Ptr> neighbours;
      auto known = [&] {
         size_t all = 0;
         for (uint32_t n = 0; n < count; ++n) {
            all += whereabouts.fetch(sender(n)) == neighbours[n].get();
         }
         return all;
      };
      for (uint32_t n = 0; n < count; ++n) neighbours.push_back(neighbour());
      EXPECT_EQ(known(), 0u);
      for (int round = 0; round < 12; ++round) {
         for (uint32_t n = 0; n < count; ++n) {
            whereabouts.note(sender(n), *neighbours[n], neighbours[n]);
         }
      }
      EXPECT_GE(known(), count - count / 16) << count;
      EXPECT_LE(whereabouts.places(), 12 * count + 200) << count;
   }
}

TEST(CodecWhereabouts, WhoComesInTheSendersPlaceIsTakenForIt) {
   Whereabouts whereabouts;
   for (auto next : {neighbour(), neighbour()}) {
      whereabouts.note(sender(1), *next, next);
      EXPECT_EQ(whereabouts.fetch(sender(1)), next.get());
   }
}

TEST(CodecWhereabouts, NewcomersDoNotMakeTheTableGrowForEver) {
   Whereabouts whereabouts;
   auto one = neighbour();
   size_t places = whereabouts.places();
   for (uint32_t day = 0; day < 10'000; ++day) {
      for (int frame = 0; frame < 20; ++frame) whereabouts.note(sender(day), *one, one);
   }
   EXPECT_EQ(whereabouts.places(), places);
   EXPECT_TRUE(whereabouts.fetch(sender(9'999)));
   // Nor without bounds where nobody is heard twice.
   for (size_t n = 1; n < 2'000'000; ++n) {
      whereabouts.note(Whereabouts::Sender{n * 0x9E3779B97F4A7C15}, *one, one);
   }
   EXPECT_LE(whereabouts.places() * 64 / 3, size_t{8} << 20);
}

TEST(CodecWhereabouts, SendersAreToldApartByTheirIdentifiersAlone) {
   using LldpTest::chassisId, LldpTest::portId, LldpTest::tlv;
   const std::string chassis = chassisId(7, std::string(200, 'x'));
   auto of = [](const std::string& lldpdu) { return Whereabouts::senderOf(lldpdu); };
   EXPECT_EQ(of(chassis + portId(7, "1") + tlv(5, "a")),
             of(chassis + portId(7, "1") + tlv(5, "b")));
   EXPECT_NE(of(chassis + portId(7, "1")), of(chassis + portId(7, "2")));
   EXPECT_NE(of(chassisId(7, "x") + portId(7, "1")), of(chassis + portId(7, "1")));
   // Every prefix has its answer, though no sender.
   for (size_t length = 0; length <= chassis.size(); ++length) of(chassis.substr(0, length));
}

}  // namespace
