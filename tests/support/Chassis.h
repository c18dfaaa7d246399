// A chassis of two supervisors, each with a management port of its own, two front ports that both
// can serve, and another switch at the other end of all cables. The supervisors' processes meet in
// a store; what they send to it and hear of it is on its way for a while.
#pragma once

#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/StoreProcess.h"
#include "support/SupervisorProcess.h"
#include "support/World.h"

namespace LldpTest {

class Chassis {
 public:
   struct Cable {
      const char* port;
      const char* peerPort;
      int cell;  // 0: both supervisors reach it
   };
   static constexpr std::array<Cable, 4> cables = {{{"Ethernet1/1", "Ethernet1", 0},
                                                    {"Ethernet1/2", "Ethernet2", 0},
                                                    {"Management1/1", "Ethernet3", 1},
                                                    {"Management2/1", "Ethernet4", 2}}};

   // Everything on its way takes a time, and overtakes what is not its own sender's, as the seed
   // says.
   explicit Chassis(World& world, unsigned seed = 1);
   ~Chassis();

   Supervisor& cell(int number) { return number == 1 ? first_ : second_; }
   // Null when it does not run.
   SupervisorProcess* process(int number) { return processes_[index(number)].get(); }

   // The process begins; the platform gives the supervisor that role, or where the store knows of
   // none, the process itself does.
   void start(int number, Redundancy::Mode mode);
   // The agent is stopped in order, and the process ends when it has said all; or both end now.
   void stop(int number);
   void kill(int number);
   // What the platform says, in one change: the role of one, or of both.
   void roleIs(int number, Redundancy::Mode mode);
   void activeIs(int number);
   // Takes a supervisor that does not run out of the chassis.
   void pull(int number);

   void run(double seconds);
   // Until nothing is on its way any more.
   void quiet();
   // What is wrong, in a quiet moment: who has something else than the store, or a merged table
   // that is not what the two statuses say; and who wrote what is for the active one to write.
   std::vector<std::string> check();

   SimulatedStore store;
   // An agent of the platform, which both supervisors hear.
   StoreProcess platform;

 private:
   static size_t index(int number) { return static_cast<size_t>(number - 1); }
   void begin(int number, Host::Role role);
   void turn();
   void witness(const Statestore::Change& change);

   World& world_;
   std::mt19937 random_;
   double nextStep_ = 0;
   Supervisor& first_;
   Supervisor& second_;
   std::array<std::unique_ptr<SupervisorProcess>, 2> processes_;
   int begun_ = 0;
   std::vector<std::string> trespasses_;

 public:
   Supervisor& peer;
};

}  // namespace LldpTest
