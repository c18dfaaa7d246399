// Whole agents on the embedded store, joined by simulated wires, with time that is moved by hand.
//
//   World world;
//   auto& a = world.agent("a");
//   auto& b = world.agent("b");
//   a.port("Ethernet1").joins(b.port("Ethernet2"));
//   world.run(3);
//   EXPECT_THAT(a.port("Ethernet1").neighbors(), ElementsAre("b Ethernet2"));
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Interface/Segment.h"
#include "Interface/SegmentPam.h"
#include "Lldp/LldpAgent/Agent.h"
#include "Rex/EntityType.h"
#include "Statestore/Tree.h"
#include "support/TestContext.h"

namespace LldpTest {

class Supervisor;
class World;

// A wire that keeps what was sent on it.
class Wire : public Interface::Segment {
 public:
   explicit Wire(const Rex::Ptr<Rex::Clock>& clock) : Segment(clock) {
      tap = [this](const Frame& frame) { frames.push_back(frame); };
   }
   std::vector<Frame> frames;
};

// What a frame's first TLV of a type holds; "none" without one.
std::string tlvIn(const Interface::Segment::Frame& frame, unsigned type);

// An interface of a supervisor: its rows, as the switch would write them, and its cable. Both stay
// when the supervisor's process begins anew.
class Port {
 public:
   Port(Supervisor& supervisor, const std::string& name, int ifIndex);

   const Wirekit::IntfId& intfId() const { return intfId_; }
   // A new wire between the two.
   Wire& joins(Port& other);
   void plug(const Rex::Ptr<Wire>& wire);
   // The cable seems pulled to the process, or is what was plugged in again.
   void heardIs(bool heard);
   void linkIs(bool up);
   void forwardingModelIs(Interface::IntfForwardingModel model) { phy_->forwardingModelIs(model); }
   // The interface's rows come, with the link up, or go. In which order is for the switch to say:
   // `rotation` is the row that is the first, of 3.
   void enter(int rotation = 0);
   void leave(int rotation = 0);
   // The rows come, in a process that has none of them.
   void rowsIs(int rotation = 0);
   bool present() const { return bool(phy_); }
   const Interface::EthPhyIntfStatus::Ptr& phy() const { return phy_; }

   Lldp::PortConfig::Ptr config() const;
   Lldp::LocalPort::Ptr local() const;
   Lldp::PortStatus::Ptr status() const;
   // "<system name> <port>" of each neighbour, in order.
   std::vector<std::string> neighbors() const;
   // The only neighbour; null when there is none, or more than one.
   Lldp::RemoteSystem::Ptr neighbor() const;

 private:
   struct Dirs {
      Interface::AllIntfStatusDir::Ptr all;
      Interface::AllIntfStatusLocalDir::Ptr local;
      Interface::AllEthPhyIntfStatusDir::Ptr phy;
   };
   Dirs dirs() const;

   Supervisor& supervisor_;
   const Wirekit::IntfId intfId_;
   const int ifIndex_;
   Rex::Ptr<Wire> wire_;
   Interface::EthPhyIntfStatus::Ptr phy_;
};

// A supervisor with its process, and its agent in it. The process's tree outlives the agent.
class Supervisor {
 public:
   Supervisor(World& world, const std::string& name, int cell);
   ~Supervisor();

   // Another process, with nothing in its tree: what the one before had is gone with it.
   void processIs();
   // The tables of interfaces come, with what is in them.
   void intfsIs();

   // Makes the agent and lets it ask for its mounts, which are done as soon as the world runs.
   void start();
   // Stops the agent in order and lets go of it.
   void stop();
   // The agent goes, and nobody on a cable hears of it.
   void kill();
   Lldp::Agent::Agent* agent() const { return agent_.get(); }

   // The interface of that name; it is made, and its rows come, at the first mention.
   Port& port(const std::string& name);
   const std::map<std::string, std::unique_ptr<Port>>& ports() const { return ports_; }

   // The entity at a path of the store; it is made at the first mention.
   template <class T>
   Rex::Ptr<T> at(const Rex::String& path) {
      return Rex::dynamicPtr<T>(
          context_->service<Statestore::Tree>().entityIs(path.view(), T::staticType().name()));
   }
   Rex::String cellPath(const char* path) const { return Rex::format("cell/%d/%s", cell_, path); }
   Lldp::CliConfig::Ptr cli() { return at<Lldp::CliConfig>("l2discovery/lldp/cliConfig"); }
   Lldp::CliPortConfig::Ptr cli(const std::string& port) {
      return cli()->cliPortConfigIs(Wirekit::IntfId(port));
   }
   Lldp::Config::Ptr config() { return at<Lldp::Config>("l2discovery/lldp/config"); }
   Lldp::LocalSystem::Ptr localSystem() {
      return at<Lldp::LocalSystem>("l2discovery/lldp/localSystem");
   }
   Lldp::Status::Ptr status() { return statusOf(cell_); }
   Bridging::Config::Ptr bridging() { return at<Bridging::Config>("bridging/config"); }
   System::NetStatus::Ptr netStatus() { return at<System::NetStatus>(cellPath("sys/net/status")); }
   Identity::Dot1x::Status::Ptr dot1x() {
      return at<Identity::Dot1x::Status>("identity/dot1x/status");
   }
   void redundancyIs(Redundancy::Protocol protocol, Redundancy::Mode mode);
   Lldp::AllStatus::Ptr allStatus() { return at<Lldp::AllStatus>("l2discovery/lldp/status/all"); }
   // The status of any cell as this supervisor sees it.
   Lldp::Status::Ptr statusOf(int cell);
   void clearNeighbors(double requestTime);

   // In the world, from 1; it stands in the MAC addresses of the switch and its ports.
   int number() const { return number_; }
   Rex::Context& context() { return *context_; }
   World& world() { return world_; }
   Interface::SegmentPamMaker& devices() { return *devices_; }
   // "<name>: <text>" of each event so far, which are forgotten.
   std::vector<std::string> takeLogs() { return std::exchange(logs_, {}); }

 private:
   World& world_;
   const std::string name_;
   const int number_;
   const int cell_;
   const std::shared_ptr<Interface::SegmentPamMaker> devices_;
   std::unique_ptr<Rex::Context> context_;
   std::vector<std::string> logs_;
   std::map<std::string, std::unique_ptr<Port>> ports_;
   Lldp::Agent::Agent::Ptr agent_;
};

class World {
 public:
   World();
   ~World();

   // A switch of one supervisor, whose host and system name is `name`; its agent starts.
   Supervisor& agent(const std::string& name);
   // One that has not started.
   Supervisor& supervisor(const std::string& name, int cell = 1);
   Rex::Ptr<Wire> wire() { return Rex::make<Wire>(base_.context().clock()); }

   void run(double seconds) { base_.advance(seconds); }
   void runTo(double time) { base_.advanceTo(time); }
   double now() const { return base_.now(); }
   const Rex::Ptr<Rex::Clock>& clock() { return base_.context().clock(); }
   const std::string& folder() const { return folder_; }
   const std::vector<std::unique_ptr<Supervisor>>& supervisors() const { return supervisors_; }

 private:
   TestContext base_;
   std::string folder_;
   std::vector<std::unique_ptr<Supervisor>> supervisors_;
};

// Two switches joined by one wire.
struct TwoSwitches : testing::Test {
   World world;
   Supervisor& a = world.agent("a");
   Supervisor& b = world.agent("b");
   Port& left = a.port("Ethernet1");
   Port& right = b.port("Ethernet2");
   Wire& wire = left.joins(right);
};

}  // namespace LldpTest
