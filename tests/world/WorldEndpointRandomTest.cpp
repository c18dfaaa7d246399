// Telephones and power requests: what is published after every step beside what plain passes over
// all ports and neighbours make of the same tables, with the toggle on and off.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "Rex/Dispatcher.h"
#include "support/Endpoints.h"
#include "support/FrameBuilder.h"
#include "support/Seeds.h"
#include "support/TestContext.h"

using namespace LldpTest;
using Identity::NbrClassification::ClearRequest;
using Identity::NbrClassification::Neighbor;
using Lldp::RemoteSystem;
using Wirekit::EthAddr;
using Wirekit::IntfId;

namespace {

constexpr int defaultSteps = 1500;
constexpr size_t portCount = 3;
constexpr size_t deviceCount = 6;

EthAddr addrOf(size_t n) {
   return {2, 0, 0, 0, 9, static_cast<uint8_t>(n)};
}

// The passes, each over everything, at the moments at which the machines are woken.
class PlainPasses : public Rex::StateMachine {
 public:
   PlainPasses(const Engine& engine, const Endpoints& endpoints, bool keeps)
       : engine_(engine), endpoints_(endpoints), keeps_(keeps) {
      Lldp::Status::PtrConst status(engine.status);
      on(status, Lldp::StatusBase::remTablesLastChangeTimeAttr, &PlainPasses::answerAll);
      on(status, Lldp::StatusBase::lastPacketParsedTimeAttr, &PlainPasses::classifyAll);
      on(endpoints.cliConfig, Identity::NbrClassification::CliConfig::neighborAttr,
         &PlainPasses::takeEntry);
      on(endpoints.cliConfig, Identity::NbrClassification::CliConfig::clearRequestAttr,
         &PlainPasses::clear);
   }

   std::map<EthAddr, Neighbor> neighbor;
   std::set<EthAddr> phone;
   std::set<Rex::String> done;
   // By the port's record, which is held so that no other takes its address.
   struct Answer {
      Lldp::LocalPortPoeInfo::PtrConst of;
      RemoteSystem::PtrConst remote;
   };
   std::map<const Lldp::LocalPortPoeInfo*, Answer> answered;

 private:
   static bool asks(const RemoteSystem& remote) {
      const auto& info = remote.powerViaMdiInfo();
      return remote.powerViaMdiTlvReceived() && info.tlvFormat != 0 &&
             (info.powerType == 1 || info.powerType == 3);
   }
   static RemoteSystem::PtrConst choose(const Lldp::PortStatus& port) {
      RemoteSystem::PtrConst best;
      for (auto [index, remote] : port.remoteSystem()) {
         if (!asks(*remote)) continue;
         if (best && best->ethAddr() != remote->ethAddr()) return nullptr;
         if (!best || remote->lastRefreshTime() > best->lastRefreshTime()) best = remote;
      }
      return best;
   }
   void answerAll() {
      for (auto [intfId, port] : engine_.status->portStatus()) {
         if (auto local = engine_.localSystem->localPort(intfId)) {
            const auto& info = local->localPortPoeInfo();
            answered[info.get()] = {info, choose(*port)};
         }
      }
   }

   void classifyAll() {
      for (auto [intfId, port] : engine_.status->portStatus()) {
         for (auto [index, remote] : port->remoteSystem()) classify(*remote, intfId);
      }
      for (const auto& [ethAddr, entry] : std::map(lldp_)) {
         if (!survives(entry)) forget(ethAddr);
      }
      publish();
   }
   void classify(const RemoteSystem& remote, const IntfId& intfId) {
      const auto& capabilities = remote.systemCapabilities();
      bool telephone = capabilities.tlvReceived && capabilities.supported.value() & 32;
      Neighbor now{remote.ethAddr(), intfId, {telephone, 0}};
      auto old = lldp_.find(now.ethAddr);
      if (old == lldp_.end() ? !telephone : old->second == now) return;
      if (telephone) {
         lldp_[now.ethAddr] = now;
         auto phy = engine_.ethPhyIntfStatusDir->intfStatus(intfId);
         if (phy && watched_.emplace(intfId, phy).second) {
            on(phy, Interface::EthPhyIntfStatus::linkStatusAttr, &PlainPasses::handleLink);
         }
      } else {
         lldp_.erase(old);
         unwatchUnused(intfId);
      }
   }
   bool survives(const Neighbor& entry) const {
      if (keeps_ || endpoints_.dot1x->nbrClassificationCacheHas(entry.ethAddr)) return true;
      auto phy = engine_.ethPhyIntfStatusDir->intfStatus(entry.intfId);
      if (phy && phy->linkStatus() == Interface::linkUp) return true;
      auto port = engine_.status->portStatus(entry.intfId);
      if (!port) return false;
      for (auto [index, remote] : port->remoteSystem()) {
         if (remote->ethAddr() == entry.ethAddr) return true;
      }
      return false;
   }
   bool forget(const EthAddr& ethAddr) {
      auto at = lldp_.find(ethAddr);
      if (at == lldp_.end()) return false;
      IntfId intfId = at->second.intfId;
      lldp_.erase(at);
      unwatchUnused(intfId);
      return true;
   }
   void unwatchUnused(const IntfId& intfId) {
      for (const auto& [ethAddr, row] : neighbor) {
         if (row.intfId == intfId) return;
      }
      auto at = watched_.find(intfId);
      if (at == watched_.end()) return;
      unwatch(at->second);
      watched_.erase(at);
   }
   void handleLink(const Rex::Change& change) {
      const auto& phy = static_cast<const Interface::EthPhyIntfStatus&>(change.entity);
      if (keeps_ || phy.linkStatus() != Interface::linkDown) return;
      IntfId intfId = phy.intfId();
      for (const auto& [ethAddr, entry] : std::map(lldp_)) {
         if (entry.intfId != intfId) continue;
         if (!endpoints_.dot1x->nbrClassificationCacheHas(ethAddr)) forget(ethAddr);
      }
      publish();
   }
   void takeEntry(const EthAddr& ethAddr) {
      cli_.erase(ethAddr);
      Neighbor entry = endpoints_.cliConfig->neighbor(ethAddr);
      if (entry != Neighbor()) cli_[ethAddr] = entry;
      publish();
   }
   void clear(const Rex::String& reqId) {
      ClearRequest request = endpoints_.cliConfig->clearRequest(reqId);
      if (request == ClearRequest()) {
         done.erase(reqId);
      } else if (done.insert(reqId).second) {
         for (const auto& [ethAddr, entry] : std::map(lldp_)) {
            if (request.targetType == 1 && ethAddr.stringValue() != request.target) continue;
            if (request.targetType == 2 && entry.intfId.stringValue() != request.target) continue;
            forget(ethAddr);
         }
         publish();
      }
   }
   void publish() {
      auto rows = lldp_;
      for (const auto& [ethAddr, entry] : cli_) rows[ethAddr] = entry;
      neighbor = rows;
      phone.clear();
      for (const auto& [ethAddr, row] : rows) {
         if (row.classification.flags & 1) phone.insert(ethAddr);
      }
   }

   const Engine& engine_;
   const Endpoints& endpoints_;
   const bool keeps_;
   std::map<EthAddr, Neighbor> lldp_;
   std::map<EthAddr, Neighbor> cli_;
   std::map<IntfId, Interface::EthPhyIntfStatus::PtrConst> watched_;
};

class RandomEndpoints {
 public:
   RandomEndpoints(unsigned seed, bool keeps) : random_(seed) {
      context_.context().toggles["LldpKeepNbrClassificationIntfDown"] = keeps;
      engine_.open();
      for (size_t i = 0; i < portCount; ++i) {
         ports_.push_back(engine_.port("Ethernet" + std::to_string(i + 1)));
         ports_.back().localPort->initilizeLocalPortPoeInfo();
      }
      context_.settle();
      endpoints_.start();
      plain_ = Rex::make<PlainPasses>(engine_, endpoints_, keeps);
   }
   ~RandomEndpoints() { plain_->close(); }

   // A deed, some time, and what of the tables differs.
   std::vector<std::string> step() {
      size_t deed = pick(16);
      Rex::Dispatcher::run([&] { act(deed); });
      context_.settle();
      std::vector<std::string> broken = differences("deed " + std::to_string(deed));
      static constexpr std::array<double, 5> times = {0, 0, 0.5, 2, 11};
      context_.advance(times[pick(times.size())]);
      for (const auto& words : differences("time")) broken.push_back(words);
      return broken;
   }
   size_t changes() const { return changes_; }

 private:
   size_t pick(size_t count) { return random_() % count; }
   Engine::Port& anyPort() { return ports_[pick(ports_.size())]; }

   void act(size_t deed) {
      switch (deed) {
         case 0:
            return clear();
         case 1:
            return enter();
         case 2:
            return setLink();
         case 3: {
            EthAddr ethAddr = addrOf(pick(deviceCount));
            auto& cache = *endpoints_.dot1x;
            return pick(2) ? cache.nbrClassificationCacheIs(ethAddr, true)
                           : cache.nbrClassificationCacheDel(ethAddr);
         }
         case 4:
            return comeOrGo(anyPort());
         default:
            for (size_t n = 1 + pick(4); n > 0; --n) receive();
            // All in this reaction, or each in one of its own.
            if (pick(2)) context_.settle();
      }
   }
   void clear() {
      Rex::String reqId = Rex::format("%d", static_cast<int>(pick(3)));
      if (pick(2)) return endpoints_.cliConfig->clearRequestDel(reqId);
      uint32_t type = static_cast<uint32_t>(pick(4));
      Rex::String target =
          type == 1 ? addrOf(pick(deviceCount)).stringValue() : anyPort().intfId.stringValue();
      endpoints_.cliConfig->clearRequestIs(reqId, {context_.now(), "admin", "vty1", type, target});
   }
   void enter() {
      EthAddr ethAddr = addrOf(pick(deviceCount));
      if (pick(2)) return endpoints_.cliConfig->neighborDel(ethAddr);
      uint32_t flags = static_cast<uint32_t>(pick(2));
      endpoints_.cliConfig->neighborIs(
          {ethAddr, pick(2) ? anyPort().intfId : IntfId(), {flags, 0}});
   }
   void setLink() {
      auto& port = anyPort();
      if (pick(4) == 0) {
         // The switch takes the interface's row away, or makes it anew.
         engine_.ethPhyIntfStatusDir->intfStatusDel(port.intfId);
         if (pick(2)) return;
         port.ethPhyIntfStatus = Rex::make<Interface::EthPhyIntfStatus>(port.intfId);
      }
      port.ethPhyIntfStatus->linkStatusIs(static_cast<Interface::LinkStatus>(pick(3)));
      engine_.ethPhyIntfStatusDir->intfStatusIs(port.ethPhyIntfStatus);
   }
   void comeOrGo(Engine::Port& port) {
      if (engine_.status->portStatusHas(port.intfId)) {
         engine_.dropRows(port.intfId);
         if (pick(2)) return;
      }
      engine_.makeRows(port);
      port.localPort->initilizeLocalPortPoeInfo();
   }

   // A device speaks: as before, or changed, there or elsewhere, by one of two addresses.
   void receive() {
      size_t device = pick(deviceCount);
      std::string& said = said_[device];
      if (said.empty() || pick(3)) said = saying(device);
      auto pam = engine_.pam(anyPort().intfId);
      if (pam) pam->rxFrameIs(octetsOf(said), {});
      context_.timeIs(context_.now() + 0.001);
   }
   std::string saying(size_t device) {
      static constexpr std::array<unsigned, 4> ttls = {0, 5, 30, 120};
      std::string lldpdu = mandatory(static_cast<uint32_t>(device), ttls[pick(ttls.size())]);
      if (pick(4)) lldpdu += systemCapabilities(pick(2) ? 0x24 : 0x04, pick(2) ? 0x24 : 0x04);
      if (pick(3)) {
         std::string info = octets("080205");
         if (pick(4)) info += be8(static_cast<unsigned>(pick(4)) << 6 | 0x22) + be32(0x00820082);
         lldpdu += organization(dot3, 2, info);
      }
      EthAddr src = addrOf((device + pick(2)) % deviceCount);
      return ethFrame(lldpdu + endOfLldpdu())
          .replace(6, 6, reinterpret_cast<const char*>(src.octets()), 6);
   }

   std::vector<std::string> differences(const std::string& after) {
      std::vector<std::string> broken;
      auto compare = [&](bool same, const char* what) {
         if (!same) broken.push_back(std::string(what) + " after " + after);
      };
      std::map<EthAddr, Neighbor> neighbor;
      for (auto [ethAddr, row] : endpoints_.status->neighbor()) neighbor[ethAddr] = row;
      compare(neighbor == plain_->neighbor, "neighbor");
      std::set<EthAddr> phone;
      for (auto [ethAddr, value] : endpoints_.status->phone()) phone.insert(ethAddr);
      compare(phone == plain_->phone, "phone");
      std::set<Rex::String> done;
      for (auto [reqId, time] : endpoints_.status->clearRequestTime()) done.insert(reqId);
      compare(done == plain_->done, "clearRequestTime");
      std::vector<RemoteSystem::PtrConst> answered;
      for (auto [intfId, local] : engine_.localSystem->localPort()) {
         Lldp::LocalPortPoeInfo::PtrConst info = local->localPortPoeInfo();
         compare(info->remoteSystem() == plain_->answered[info.get()].remote, "remoteSystem");
         answered.push_back(info->remoteSystem());
      }
      if (neighbor != lastNeighbor_) ++changes_;
      if (answered != lastAnswered_) ++changes_;
      lastNeighbor_ = neighbor;
      lastAnswered_ = answered;
      return broken;
   }

   std::mt19937 random_;
   TestContext context_;
   Engine engine_;
   Endpoints endpoints_{engine_};
   Rex::Ptr<PlainPasses> plain_;
   std::vector<Engine::Port> ports_;
   std::array<std::string, deviceCount> said_;
   std::map<EthAddr, Neighbor> lastNeighbor_;
   std::vector<RemoteSystem::PtrConst> lastAnswered_;
   size_t changes_ = 0;
};

void live(unsigned seed, int steps) {
   bool keeps = seed % 2;
   RandomEndpoints world(seed, keeps);
   for (int i = 0; i < steps; ++i) {
      ASSERT_THAT(world.step(), testing::IsEmpty()) << "step " << i << " toggle " << keeps;
   }
   // Where nothing changes there would be no difference.
   EXPECT_GT(world.changes(), static_cast<size_t>(steps / 4));
}

}  // namespace

TEST(WorldEndpointRandom, WorkOnWhatChangedHasTheResultOfAPassOverEverything) {
   liveSeeds(6, defaultSteps, live);
}
