// What one received frame costs an agent on devices of Linux, from the waiting socket to the end of
// all that the frame sets off: the loop's wakeup, the reading and the engine's work. Skipped
// without the right to make a network namespace.
#include <benchmark/benchmark.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <memory>
#include <random>
#include <system_error>
#include <vector>

#include "Interface/LinuxPamMaker.h"
#include "Rex/Loop.h"
#include "Rex/StateMachine.h"
#include "bench/NumberedFrame.h"
#include "bench/Wires.h"
#include "support/Engine.h"
#include "support/FrameBuilder.h"

namespace {

using Seconds = std::chrono::duration<double>;

struct RealTime : Rex::TimeSource {
   double now() const override {
      return Seconds(std::chrono::steady_clock::now().time_since_epoch()).count();
   }
};

// Stops the loop when the engine has read so many frames.
class CounterSm : public Rex::StateMachine {
 public:
   CounterSm(const Lldp::Status::Ptr& status, Rex::Loop& loop) : status_(status), loop_(loop) {
      on(status_, Lldp::Status::lastPacketParsedTimeAttr, &CounterSm::handleFrame);
   }
   size_t wanted = 0;

 private:
   void handleFrame() {
      if (--wanted == 0) loop_.stop();
   }
   const Lldp::Status::Ptr status_;
   Rex::Loop& loop_;
};

// An engine on one end of each wire, and its neighbours, any number of them, on the other.
class Receiver {
 public:
   Receiver(uint32_t neighbours, int ports) : neighbours_(neighbours), ports_(ports) {
      context_.logSink = nullptr;
      context_.serviceIs<Interface::PamMaker>(std::make_shared<Interface::LinuxPamMaker>(loop_));
      engine_.open();
      for (int i = 0; i < ports; ++i) plug(i);
      counter_ = Rex::make<CounterSm>(engine_.status, loop_);
      context_.clock()->runDue();
      std::vector<uint32_t> order(neighbours);
      for (uint32_t n = 0; n < neighbours; ++n) order[n] = n;
      std::shuffle(order.begin(), order.end(), random_);
      // Afterwards all are known for some time, as they are to an agent that has run for minutes.
      constexpr int rounds = 10;
      for (int round = 0; round < rounds; ++round) {
         for (uint32_t n : order) {
            send(n);
            receive(1);
         }
      }
   }
   ~Receiver() {
      counter_->close();
      engine_.close();
      close(sender_);
   }

   void sendAny() { send(static_cast<uint32_t>(random_() % neighbours_)); }
   // Runs the loop until so many frames were read.
   void receive(size_t frames) {
      counter_->wanted = frames;
      loop_.run(context_);
   }
   bool whole() const {
      size_t known = 0;
      for (auto [intfId, port] : engine_.status->portStatus()) known += port->remoteSystems();
      return known == neighbours_;
   }

 private:
   void plug(int i) {
      LldpTest::Engine::Port port;
      port.intfId = Wirekit::IntfId(("Ethernet" + std::to_string(i + 1)).c_str());
      port.ethPhyIntfStatus = Rex::make<Interface::EthPhyIntfStatus>(port.intfId);
      port.ethPhyIntfStatus->linkStatusIs(Interface::linkUp);
      engine_.ethPhyIntfStatusDir->intfStatusIs(port.ethPhyIntfStatus);
      auto intfStatus = Rex::make<Interface::IntfStatus>(port.intfId);
      intfStatus->deviceNameIs(Bench::device(2 * i));
      intfStatus->ifIndexIs(Bench::deviceIndex(2 * i));
      engine_.allIntfStatusLocalDir->intfStatusIs(intfStatus);
      engine_.makeRows(port);
      port.portConfig->maxRemoteSystemsIs(neighbours_);
      port.portConfig->rxRateLimitEnabledIs(false);
      peers_.push_back(Bench::deviceIndex(2 * i + 1));
   }
   void send(uint32_t n) {
      Bench::chassisNumberIs(frame_, n);
      sockaddr_ll to{};
      to.sll_family = AF_PACKET;
      to.sll_ifindex = peers_[n % peers_.size()];
      auto* address = reinterpret_cast<sockaddr*>(&to);
      if (sendto(sender_, frame_.data(), frame_.size(), 0, address, sizeof to) < 0) {
         throw std::system_error(errno, std::generic_category(), "sendto");
      }
   }

   const uint32_t neighbours_;
   const int ports_;
   Rex::Context context_{Rex::make<Rex::Clock>(std::make_shared<RealTime>())};
   Rex::ContextScope scope_{context_};
   Rex::Loop loop_;
   LldpTest::Engine engine_;
   Rex::Ptr<CounterSm> counter_;
   std::vector<int> peers_;  // the indices of the neighbours' devices
   const int sender_ = socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0);
   std::string frame_ = LldpTest::ethFrame(LldpTest::typicalLldpdu());
   std::mt19937 random_{1};
};

// Arguments: neighbours, ports, frames that have arrived when the loop wakes. The time is that of
// one frame; to be compared along the first.
void receivedFrame(benchmark::State& state) {
   auto ports = static_cast<int>(state.range(1));
   if (!Bench::makeDevices(2 * ports)) return state.SkipWithError("no network namespace");
   static std::unique_ptr<Receiver> receiver;  // kept between the runs of one set of arguments
   static std::pair<int64_t, int64_t> made;
   if (!receiver || made != std::pair(state.range(0), state.range(1))) {
      receiver.reset();
      receiver = std::make_unique<Receiver>(static_cast<uint32_t>(state.range(0)), ports);
      made = {state.range(0), state.range(1)};
   }
   auto frames = static_cast<size_t>(state.range(2));
   for (auto _ : state) {
      for (size_t i = 0; i < frames; ++i) receiver->sendAny();
      auto begin = std::chrono::steady_clock::now();
      receiver->receive(frames);
      Seconds took = std::chrono::steady_clock::now() - begin;
      state.SetIterationTime(took.count() / double(frames));
   }
   if (!receiver->whole()) state.SkipWithError("neighbours lost");
}
BENCHMARK(receivedFrame)->ArgsProduct({{10, 1000, 100000}, {1, 48, 512}, {1, 32}})->UseManualTime();

}  // namespace
