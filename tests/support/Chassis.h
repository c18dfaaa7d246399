// A chassis of two supervisors, each with a management port of its own, two front ports that both
// can serve, and another switch at the other end of all cables.
#pragma once

#include <array>
#include <string>

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

   explicit Chassis(World& world) : supervisors_(world.chassis("switch", store)) {
      for (const Cable& cable : cables) {
         auto wire = world.wire();
         peer.port(cable.peerPort).plug(wire);
         for (int number : {1, 2}) {
            Port& port = cell(number).port(cable.port);
            if (!cable.cell || cable.cell == number) port.plug(wire);
         }
      }
   }

   Supervisor& cell(int number) { return number == 1 ? supervisors_.first : supervisors_.second; }
   void roleIs(int number, Redundancy::Mode mode) {
      cell(number).redundancyIs(Redundancy::protocolHotStandby, mode);
   }
   void start(int number, Redundancy::Mode mode) {
      roleIs(number, mode);
      cell(number).start();
   }

   ChassisStore store;

 private:
   std::pair<Supervisor&, Supervisor&> supervisors_;

 public:
   Supervisor& peer = cell(1).world().agent("peer");
};

}  // namespace LldpTest
