// An agent whose whole state is replicated through a Redis server on the same machine: what that
// costs while neighbours are refreshed and while nothing happens, how long another process takes to
// read it all, and how soon it hears of a change.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <memory>
#include <random>
#include <vector>

#include "Lldp/LldpAgent/Agent.h"
#include "Redis/RedisStore.h"
#include "Rex/Loop.h"
#include "Rex/Pool.h"
#include "Statestore/EntityManager.h"
#include "Statestore/Replica.h"
#include "bench/NumberedFrame.h"
#include "support/Engine.h"
#include "support/FrameBuilder.h"
#include "support/RedisServer.h"

namespace {

constexpr uint32_t neighbours = 10'000;
constexpr int ports = 512;
constexpr double refreshInterval = 30;
constexpr const char* probePath = "bench/probe";

double now() {
   return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
       .count();
}
struct RealTime : Rex::TimeSource {
   double now() const override { return ::now(); }
};

double cpuSeconds() {
   rusage used{};
   getrusage(RUSAGE_SELF, &used);
   auto seconds = [](const timeval& time) { return double(time.tv_sec) + time.tv_usec * 1e-6; };
   return seconds(used.ru_utime) + seconds(used.ru_stime);
}

// The heap and the pool, which takes its memory elsewhere.
size_t memory() {
   return mallinfo2().uordblks + mallinfo2().hblkhd + Rex::Pool::inUse();
}

// Octets of this process's memory, by the kernel's name for the figure.
double memoryStatus(const std::string& name) {
   std::ifstream file("/proc/self/status");
   for (std::string line; std::getline(file, line);) {
      if (line.starts_with(name + ":")) return 1024 * std::stod(line.substr(name.size() + 1));
   }
   return 0;
}

// A loop on real time, with what runs at an interval.
class Turns {
 public:
   Turns() : context(Rex::make<Rex::Clock>(std::make_shared<RealTime>())) {
      signal(SIGPIPE, SIG_IGN);
      context.logSink = nullptr;
   }

   // Runs the loop; `tick` at each interval, until it says that it is enough.
   void every(double interval, const std::function<bool()>& tick) {
      int timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
      auto nanoseconds = static_cast<long>(interval * 1e9);
      itimerspec each{{0, nanoseconds}, {0, nanoseconds}};
      timerfd_settime(timer, 0, &each, nullptr);
      loop.descriptorIs(
          timer, EPOLLIN,
          [&](uint32_t) {
             uint64_t ticks = 0;
             if (read(timer, &ticks, sizeof(ticks)) < 0) return;
             while (ticks--) {
                if (!tick()) return loop.stop();
             }
          },
          Rex::Loop::Serve::outside);
      loop.run(context);
      loop.descriptorDel(timer);
      close(timer);
   }
   void until(const std::function<bool()>& done) {
      every(0.005, [&] { return !done(); });
   }
   // Lets the loop alone for a while. Returns how often it woke.
   uint64_t idle(double seconds) {
      Rex::Timer end(context.clock());
      end.handlerIs(nullptr, [&] { loop.stop(); });
      end.timeMinIs(now() + seconds);
      uint64_t before = loop.wakeups();
      loop.run(context);
      return loop.wakeups() - before - 1;
   }

   Rex::Context context;
   Rex::Loop loop;
};

// What connects the tree of the present context to the server.
struct Shared {
   Shared(Rex::Loop& loop, const std::string& socket, const std::string& writer)
       : store(loop, Redis::StoreUrl::parse("unix:" + socket).resolved(), 1),
         replica(store, writer) {}

   Redis::RedisStore store;
   Statestore::Replica replica;
};

// A whole agent with all its ports, on a store of its own or a shared one.
class Switch {
 public:
   explicit Switch(bool isShared) : scope_(turns.context) {
      auto& context = turns.context;
      context.runDir = testing::TempDir();
      context.serviceIs<Interface::PamMaker>(devices_);
      if (isShared) {
         server.start();
         shared = std::make_unique<Shared>(turns.loop, server.socket, "agent");
      }
      at<System::NetStatus>(probePath);
      at<System::NetStatus>("cell/1/sys/net/status")->hostnameIs("switch");
      at<Bridging::Config>("bridging/config")->bridgeMacAddrIs({2, 0, 0, 0, 1, 0});
      agent_ = Lldp::Agent::agentFactory("bench");
      for (int i = 1; i <= ports; ++i) plug(i);
      Rex::Dispatcher::run([this] { agent_->doInit(); });
      turns.until([this] { return agent_->mountsComplete() && pam(ports); });
      for (int i = 1; i <= ports; ++i) {
         auto config = at<Lldp::Config>("l2discovery/lldp/config")->portConfig(intf(i));
         config->rxRateLimitEnabledIs(false);
         pams_.push_back(pam(i));
      }
      settle();
   }
   ~Switch() {
      Rex::Dispatcher::run([this] { agent_->doCleanup(); });
   }

   void settle() {
      turns.until([this] { return !shared || shared->replica.idle(); });
   }
   void learn() {
      size_t before = memory();
      std::vector<uint32_t> order(neighbours);
      for (uint32_t n = 0; n < neighbours; ++n) order[n] = n;
      std::shuffle(order.begin(), order.end(), random_);
      for (uint32_t n : order) receive(n);
      settle();
      octetsPerNeighbour = double(memory() - before) / neighbours;
   }
   void receiveAny() { receive(static_cast<uint32_t>(random_() % neighbours)); }
   template <class T>
   Rex::Ptr<T> at(const std::string& path) {
      return Rex::dynamicPtr<T>(tree().entityIs(path, T::staticType().name()));
   }
   Statestore::Tree& tree() { return turns.context.service<Statestore::Tree>(); }
   size_t known() const {
      size_t all = 0;
      for (auto [intfId, port] : agent_->lldpStatusLocal()->portStatus()) {
         all += port->remoteSystems();
      }
      return all;
   }
   double serverCpuSeconds() {
      double sum = 0;
      if (!shared) return sum;
      std::string info = server.ask({"INFO", "cpu"});
      for (const char* name : {"used_cpu_sys:", "used_cpu_user:"}) {
         sum += std::stod(info.substr(info.find(name) + std::string_view(name).size()));
      }
      return sum;
   }

   LldpTest::RedisServer server;
   Turns turns;
   std::unique_ptr<Shared> shared;
   double octetsPerNeighbour = 0;

 private:
   static Wirekit::IntfId intf(int i) {
      return Wirekit::IntfId(("Ethernet" + std::to_string(i)).c_str());
   }
   // What each process has for itself.
   template <class T>
   Rex::Ptr<T> own(const std::string& path) {
      return Rex::dynamicPtr<T>(
          agent_->entityManager()->localEntityIs(path, T::staticType().name()));
   }
   Wirekit::Pam::Ptr pam(int i) {
      return agent_->protocolRoot()->pamCollection()->intfPam(intf(i));
   }

   void plug(int i) {
      auto phy = Rex::make<Interface::EthPhyIntfStatus>(intf(i));
      phy->ethAddrIs({2, 0, 1, 0, static_cast<uint8_t>(i >> 8), static_cast<uint8_t>(i)});
      phy->maxMtuIs(1500);
      phy->forwardingModelIs(Interface::intfForwardingBridged);
      phy->linkStatusIs(Interface::linkUp);
      auto status = Rex::make<Interface::IntfStatus>(intf(i));
      status->ifIndexIs(i);
      status->deviceNameIs(intf(i).stringValue());
      own<Interface::AllIntfStatusDir>("interface/status/all")->intfStatusIs(status);
      own<Interface::AllIntfStatusLocalDir>("cell/1/interface/status/local")->intfStatusIs(status);
      own<Interface::AllEthPhyIntfStatusDir>("interface/status/eth/phy/all")->intfStatusIs(phy);
      devices_->plug(intf(i).stringValue(), Rex::make<Interface::Segment>(turns.context.clock()));
   }
   void receive(uint32_t n) {
      Bench::chassisNumberIs(frame_, n);
      Rex::Dispatcher::run([&] { pams_[n % ports]->rxFrameIs(LldpTest::octetsOf(frame_), {}); });
   }

   Rex::ContextScope scope_;
   const std::shared_ptr<Interface::SegmentPamMaker> devices_ =
       std::make_shared<Interface::SegmentPamMaker>();
   Lldp::Agent::Agent::Ptr agent_;
   std::vector<Wirekit::Pam::Ptr> pams_;
   std::string frame_ = LldpTest::ethFrame(LldpTest::typicalLldpdu());
   std::mt19937 random_{1};
};

// Another process on the same store, which is here for all roots.
class Reader {
 public:
   explicit Reader(Switch& of) : context_(of.turns.context.clock()) {
      context_.logSink = nullptr;
      Rex::ContextScope scope(context_);
      auto& tree = context_.service<Statestore::Tree>();
      shared_ = std::make_unique<Shared>(of.turns.loop, of.server.socket, "reader");
      auto paths = of.tree().paths();
      for (const std::string& path : paths) {
         tree.entityIs(path,
                       of.tree().find(Statestore::splitPath(path)).entity->entityType().name());
      }
      shared_->replica.loaded(paths, [this](bool) { loaded = true; });
   }
   template <class T>
   Rex::Ptr<T> at(const std::string& path) {
      return Rex::dynamicPtr<T>(
          context_.service<Statestore::Tree>().entityIs(path, T::staticType().name()));
   }
   size_t known() {
      size_t all = 0;
      auto status = at<Rex::Dir>("l2discovery/lldp/status/local")->entityPtr("1");
      for (auto [intfId, port] : Rex::dynamicPtr<Lldp::Status>(status)->portStatus()) {
         all += port->remoteSystems();
      }
      return all;
   }
   const Statestore::Replica& replica() const { return shared_->replica; }
   Rex::Context& context() { return context_; }

   bool loaded = false;

 private:
   Rex::Context context_;
   std::unique_ptr<Shared> shared_;
};

// Notes how long after its writing each value of the probe arrives.
class ProbeSm : public Rex::StateMachine {
 public:
   explicit ProbeSm(const System::NetStatus::Ptr& probe) : probe_(probe) {
      on(probe_, System::NetStatus::hostnameAttr, &ProbeSm::handleHostname);
   }
   std::vector<double> delays;

 private:
   void handleHostname() { delays.push_back(now() - std::stod(probe_->hostname().stdString())); }
   System::NetStatus::Ptr probe_;
};

double percentile(std::vector<double> of, double share) {
   if (of.empty()) return 0;
   std::sort(of.begin(), of.end());
   return of[std::min(of.size() - 1, static_cast<size_t>(share * double(of.size())))];
}

// Kept for the benchmarks that run one after the other.
Switch& switchWithNeighbours(bool isShared) {
   static std::unique_ptr<Switch> standing;
   static bool standingShared = false;
   if (!standing || standingShared != isShared) {
      standing.reset();
      standing = std::make_unique<Switch>(isShared);
      standingShared = isShared;
      standing->learn();
   }
   return *standing;
}

// All neighbours are refreshed once in their interval, a frame in a turn of the loop.
void storeRefresh(benchmark::State& state) {
   constexpr double duration = 10;
   Switch& with = switchWithNeighbours(state.range(0) != 0);
   auto frames = static_cast<size_t>(duration * neighbours / refreshInterval);
   for (auto _ : state) {
      double cpu = cpuSeconds(), serverCpu = with.serverCpuSeconds(), begin = now();
      size_t left = frames;
      with.turns.every(refreshInterval / neighbours, [&] {
         with.receiveAny();
         return --left > 0;
      });
      cpu = cpuSeconds() - cpu;
      serverCpu = with.serverCpuSeconds() - serverCpu;
      double took = now() - begin;
      state.counters["usPerFrame"] = cpu * 1e6 / double(frames);
      state.counters["percentOfCore"] = 100 * cpu / took;
      state.counters["serverPercent"] = 100 * serverCpu / took;
   }
   state.counters["octetsPerNeighbour"] = with.octetsPerNeighbour;
   if (with.known() != neighbours) state.SkipWithError("neighbours lost");
}
BENCHMARK(storeRefresh)->ArgName("shared")->Arg(0)->Arg(1)->Iterations(1);

// Another process reads all.
void storeLoad(benchmark::State& state) {
   Switch& with = switchWithNeighbours(true);
   for (auto _ : state) {
      std::ofstream("/proc/self/clear_refs") << "5";  // forgets the highest so far
      double memoryBefore = memoryStatus("VmRSS"), serverCpu = with.serverCpuSeconds();
      double begin = now(), cpu = cpuSeconds();
      Reader reader(with);
      with.turns.until([&] { return reader.loaded; });
      state.counters["seconds"] = now() - begin;
      state.counters["cpuSeconds"] = cpuSeconds() - cpu;
      state.counters["serverSeconds"] = with.serverCpuSeconds() - serverCpu;
      state.counters["megabytesAtMost"] = (memoryStatus("VmHWM") - memoryBefore) / 1e6;
      state.counters["megabytes"] = (memoryStatus("VmRSS") - memoryBefore) / 1e6;
      if (reader.known() != neighbours || reader.replica().refused()) {
         state.SkipWithError("not all was read");
      }
   }
}
BENCHMARK(storeLoad)->Iterations(1);

// How soon another process's handler runs after a value was written; both share this one core.
void storeLatency(benchmark::State& state) {
   constexpr double duration = 10;
   Switch& with = switchWithNeighbours(true);
   Reader reader(with);
   with.turns.until([&] { return reader.loaded && reader.replica().idle(); });
   Rex::ContextScope scope(reader.context());
   Rex::Ptr<ProbeSm> probe = Rex::make<ProbeSm>(reader.at<System::NetStatus>(probePath));
   auto written = with.at<System::NetStatus>(probePath);
   for (auto _ : state) {
      double end = now() + duration;
      int tick = 0;
      with.turns.every(refreshInterval / neighbours, [&] {
         if (state.range(0)) with.receiveAny();
         if (++tick % 10 == 0) written->hostnameIs(Rex::String(std::to_string(now())));
         return now() < end;
      });
   }
   probe->close();
   state.counters["medianMs"] = 1000 * percentile(probe->delays, 0.5);
   state.counters["p99Ms"] = 1000 * percentile(probe->delays, 0.99);
   state.counters["changes"] = double(probe->delays.size());
}
BENCHMARK(storeLatency)->ArgName("loaded")->Arg(0)->Arg(1)->Iterations(1);

// An agent without neighbours: what wakes its loop.
void storeIdle(benchmark::State& state) {
   constexpr double duration = 60;
   Switch with(state.range(0) != 0);
   with.turns.idle(5);
   for (auto _ : state) {
      double cpu = cpuSeconds();
      state.counters["wakeupsPerSecond"] = double(with.turns.idle(duration)) / duration;
      state.counters["percentOfCore"] = 100 * (cpuSeconds() - cpu) / duration;
   }
}
BENCHMARK(storeIdle)->ArgName("shared")->Arg(0)->Arg(1)->Iterations(1);

}  // namespace
