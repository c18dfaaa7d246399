// What holds of a supervisor's tables after every step, whatever was done to it.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/World.h"

namespace LldpTest {

class Invariants {
 public:
   // Neighbours that a clear request is about to remove: no counter tells of them.
   void clearing(Supervisor& supervisor);
   // Checks everything, and compares with what stood at the last call. Returns what is broken.
   std::vector<std::string> check(Supervisor& supervisor);

 private:
   struct Seen {
      Lldp::PortStatus::Ptr port;  // held, so that its address is not another port's
      std::set<int> indexes;       // of the neighbours
      std::vector<uint32_t> counters;
   };
   void checkPort(const Lldp::PortStatus::Ptr& port, double now);
   void checkNeighbors(const Lldp::PortStatus::Ptr& port, double now);
   void checkRows(Supervisor& supervisor, Port& port);
   void checkMachine(Supervisor& supervisor, Port& port);
   void checkTable(Supervisor& supervisor);
   void must(bool holds, const char* what, const Wirekit::IntfId& intfId);

   std::vector<std::string> broken_;
   std::map<const Lldp::PortStatus*, Seen> seen_;
   std::vector<uint32_t> table_;
   uint32_t cleared_ = 0;
};

}  // namespace LldpTest
