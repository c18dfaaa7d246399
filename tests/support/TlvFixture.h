// One optional TLV in a frame, and what becomes of it.
#pragma once

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "Rex/EntityType.h"
#include "support/CodecPort.h"
#include "support/FrameBuilder.h"
#include "support/TestContext.h"

namespace LldpTest {

enum Result { ok, unrecognized, error, fatal };

// Of an object what differs in `value`; of anything else all.
inline nlohmann::json difference(const nlohmann::json& value, const nlohmann::json& base) {
   if (!value.is_object() || !base.is_object()) return value;
   nlohmann::json differing = nlohmann::json::object();
   for (const auto& [name, field] : value.items()) {
      auto at = base.find(name);
      if (at == base.end()) {
         differing[name] = field;
      } else if (*at != field) {
         differing[name] = difference(field, *at);
      }
   }
   return differing;
}

// What a neighbour got of optional TLVs: the fields that differ from those of a bare neighbour.
inline nlohmann::json storedOf(const Lldp::RemoteSystem& neighbour) {
   auto json = [](const Lldp::RemoteSystem& n) {
      return nlohmann::json::parse(Rex::entityToJson(n).dump());
   };
   auto bare = Rex::make<Lldp::RemoteSystem>(neighbour.index(), neighbour.msap());
   auto stored = difference(json(neighbour), json(*bare));
   for (const char* other :
        {"ttl", "creationTime", "lastChangeTime", "lastRefreshTime", "expiryTime", "ethAddr"}) {
      stored.erase(other);
   }
   return stored;
}

class TlvFixture : public testing::Test {
 protected:
   TlvFixture() {
      for (const char* facility :
           {"LldpProtocol", "LldpExtDot1", "LldpExtDot3", "LldpExtCee", "LldpMed"}) {
         context.traceOn(facility);
      }
   }

   // Receives the TLVs with one behind them, and checks what becomes of them and of the frame, and
   // the words of an error. Returns what the neighbour got of them.
   nlohmann::json expect(const std::string& octets, Result result, const std::string& words = "") {
      CodecPort port;
      context.traces.clear();
      auto neighbour = port.receive(mandatory() + octets + tlv(5, "behind"));
      const auto& status = *port.portStatus;
      if (words.empty()) {
         EXPECT_THAT(context.traced(0), testing::IsEmpty());
      } else {
         EXPECT_THAT(context.traced(0), testing::ElementsAre(words));
      }
      EXPECT_EQ(bool(neighbour), result != fatal);
      EXPECT_EQ(status.rxTLVsUnrecognizedTotal(), result == unrecognized ? 1u : 0u);
      EXPECT_EQ(status.rxTLVsDiscardedTotal(), result == error ? 1u : 0u);
      EXPECT_EQ(status.rxFramesErrors(), result == error || result == fatal ? 1u : 0u);
      EXPECT_EQ(status.rxFramesDiscardedTotal(), result == fatal ? 1u : 0u);
      EXPECT_EQ(status.remoteSystems(), result == fatal ? 0u : 1u);
      if (!neighbour) return nullptr;
      EXPECT_EQ(neighbour->sysName().tlvInfo.value(), "behind");
      auto stored = storedOf(*neighbour);
      stored.erase("sysName");
      return stored;
   }

   TestContext context;
};

}  // namespace LldpTest
