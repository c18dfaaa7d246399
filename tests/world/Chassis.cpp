#include "support/Chassis.h"

#include <algorithm>

#include "host/KnownPaths.h"
#include "support/StoreContents.h"

namespace LldpTest {
namespace {

constexpr const char* statuses = "l2discovery/lldp/status/local";

Host::Role roleOf(Redundancy::Mode mode) {
   return mode == Redundancy::modeActive ? Host::Role::active : Host::Role::standby;
}

}  // namespace

Chassis::Chassis(World& world, unsigned seed)
    : store(seed),
      platform(store, world.clock(), "platform"),
      world_(world),
      random_(seed),
      first_(world.supervisor("switch", 1)),
      second_(world.supervisor("switch", 2)),
      peer(world.agent("peer")) {
   for (const Cable& cable : cables) {
      auto wire = world.wire();
      peer.port(cable.peerPort).plug(wire);
      for (int number : {1, 2}) {
         Port& port = cell(number).port(cable.port);
         if (!cable.cell || cable.cell == number) port.plug(wire);
      }
   }
   for (const char* path : {"cell/1/redundancy/status", "cell/2/redundancy/status"}) {
      platform.at<Redundancy::RedundancyStatus>(path);
   }
   platform.at<Rex::Dir>("hardware/cellInfo");
   platform.at<Lldp::RemTablesCliConfig>("l2discovery/lldp/remTablesCliConfig");
   platform.at<Bridging::Config>("bridging/config")->bridgeMacAddrIs({2, 0, 0, 0, 1, 0});
   while (!platform.replica->idle()) run(0.001);
   store.witness = [this](const Statestore::Change& change) { witness(change); };
}

Chassis::~Chassis() = default;

void Chassis::begin(int number, Host::Role role) {
   auto& process = processes_[index(number)];
   process = nullptr;
   std::string name = std::to_string(number) + "." + std::to_string(++begun_);
   process = std::make_unique<SupervisorProcess>(cell(number), store, name, role);
}

void Chassis::start(int number, Redundancy::Mode mode) {
   auto status = platform.at<Redundancy::RedundancyStatus>(
       Rex::format("cell/%d/redundancy/status", number).stdString());
   if (status->protocol() != Redundancy::protocolUnknown) roleIs(number, mode);
   begin(number, roleOf(mode));
}

void Chassis::stop(int number) {
   if (process(number)) process(number)->stop();
}

void Chassis::kill(int number) {
   processes_[index(number)] = nullptr;
}

void Chassis::roleIs(int number, Redundancy::Mode mode) {
   auto status = platform.at<Redundancy::RedundancyStatus>(
       Rex::format("cell/%d/redundancy/status", number).stdString());
   status->modeIs(mode);
   status->protocolIs(Redundancy::protocolHotStandby);
}

void Chassis::activeIs(int number) {
   roleIs(3 - number, Redundancy::modeStandby);
   roleIs(number, Redundancy::modeActive);
}

void Chassis::pull(int number) {
   platform.at<Rex::Dir>("hardware/cellInfo")->deleteEntity(Rex::format("%d", number));
   // One is not inserted again before that is known.
   while (!platform.replica->idle()) run(0.001);
}

void Chassis::turn() {
   world_.run(0);
   for (int number : {1, 2}) {
      auto* one = process(number);
      if (!one) continue;
      one->turn();
      if (!one->over()) continue;
      auto role = one->restartAs();
      kill(number);
      if (role) begin(number, *role);
   }
   world_.run(0);
}

void Chassis::run(double seconds) {
   static constexpr std::array<double, 6> delays = {0, 0.0001, 0.0003, 0.001, 0.02, 0.3};
   const double end = world_.now() + seconds;
   for (;;) {
      turn();
      const double now = world_.now();
      bool moves = nextStep_ <= now && store.step();
      if (moves) {
         nextStep_ = now + delays[random_() % delays.size()];
         continue;
      }
      if (now >= end) return;
      double next = std::min(end, world_.clock()->nextTime());
      if (nextStep_ > now) next = std::min(next, nextStep_);
      world_.runTo(next);
   }
}

void Chassis::quiet() {
   auto ending = [this](int number) { return process(number) && process(number)->frozen(); };
   do {
      platform.client.connect();
      for (int number : {1, 2}) {
         if (!process(number)) continue;
         auto& client = process(number)->client();
         client.askedWaits = client.toldWaits = false;
         client.connect();
      }
      do {
         turn();
      } while (store.step());
      if (ending(1) || ending(2)) run(0.1);
   } while (ending(1) || ending(2) || world_.clock()->nextTime() <= world_.now());
}

std::vector<std::string> Chassis::check() {
   std::vector<std::string> broken = std::exchange(trespasses_, {});
   StoreProcess fresh(store, world_.clock(), "fresh" + std::to_string(++begun_));
   for (const auto& path : Host::knownPaths()) fresh.manager->entityIs(path.path, path.type);
   LldpTest::quiet(store, *world_.clock());
   const std::vector<std::string> paths = fresh.tree().paths();
   const Contents right = contents(fresh.tree(), paths);
   for (const std::string& words : rowFaults(store, fresh)) broken.push_back(words);
   for (int number : {1, 2}) {
      auto* one = process(number);
      if (!one) continue;
      auto say = [&](const std::string& words) {
         broken.push_back(words + ", as supervisor " + std::to_string(number) + " sees it");
      };
      if (!one->replica().idle()) say("not all is sent and read");
      if (one->replica().refused()) say("a value was refused");
      auto& tree = cell(number).context().service<Statestore::Tree>();
      if (auto text = differences(right, contents(tree, paths)); !text.empty()) say(text);
      for (int keeper : {1, 2}) {
         if (!process(keeper) || !process(keeper)->model()) continue;
         for (const auto& words : process(keeper)->model()->check(cell(number))) say(words);
      }
   }
   return broken;
}

// What a process that was active writes behind the change that took its role is its own, or stood
// nowhere. One that never was may restore what an emptied store lacks.
void Chassis::witness(const Statestore::Change& change) {
   const std::string cell = change.writer.substr(0, 1);
   if (cell != "1" && cell != "2") return;
   const auto* writer = process(std::stoi(cell));
   if (!writer || !writer->model()) return;
   auto row = store.rows().find("cell/" + cell + "/redundancy/status");
   if (row == store.rows().end()) return;
   auto mode = row->second.fields.find("mode");
   if (mode == row->second.fields.end() || mode->second == "\"modeActive\"") return;
   using Kind = Statestore::Operation::Kind;
   std::vector<std::string> made;
   for (const auto& one : change.operations) {
      const std::string path = one.row.empty() ? one.field : one.row + '/' + one.field;
      if (one.row.empty()) made.push_back(path);
      auto within = [&](const std::string& root) {
         return path == root || path.starts_with(root + '/');
      };
      // What changes nothing is no trespass.
      auto stands = store.rows().find(one.row);
      if (!one.row.empty() && stands != store.rows().end()) {
         const auto& fields = stands->second.fields;
         auto field = fields.find(one.field);
         bool none = field == fields.end();
         if (one.kind == Kind::remove ? none : !none && field->second == one.value) continue;
      }
      bool own = within(statuses + ('/' + cell)) || within("cell/" + cell) ||
                 within("hardware/cellInfo/" + cell) ||
                 std::any_of(made.begin(), made.end(), within);
      if (own) continue;
      trespasses_.push_back("standby " + change.writer + " wrote " + path + " " + one.value);
   }
}

}  // namespace LldpTest
