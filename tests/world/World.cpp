#include "support/World.h"

#include <stdlib.h>

#include <algorithm>
#include <filesystem>

namespace LldpTest {
namespace {

Wirekit::EthAddr portAddr(int supervisor, int ifIndex) {
   return {2, 0, 1, static_cast<uint8_t>(supervisor), 0, static_cast<uint8_t>(ifIndex)};
}

}  // namespace

std::string tlvIn(const Interface::Segment::Frame& frame, unsigned type) {
   const auto& octets = frame.octets;
   for (size_t at = 14; at + 2 <= octets.size();) {
      unsigned header = octets[at] << 8 | octets[at + 1];
      size_t length = header & 0x1FF;
      if (header >> 9 == type) return {octets.begin() + at + 2, octets.begin() + at + 2 + length};
      at += 2 + length;
   }
   return "none";
}

Port::Port(Supervisor& supervisor, const std::string& name, int ifIndex)
    : supervisor_(supervisor), intfId_(name.c_str()), ifIndex_(ifIndex) {
   plug(supervisor_.world().wire());
   enter();
}

Wire& Port::joins(Port& other) {
   auto wire = supervisor_.world().wire();
   plug(wire);
   other.plug(wire);
   return *wire;
}

void Port::plug(const Rex::Ptr<Wire>& wire) {
   wire_ = wire;
   heardIs(true);
}

void Port::heardIs(bool heard) {
   supervisor_.devices().plug(intfId_.stringValue(), heard ? wire_ : nullptr);
}

void Port::linkIs(bool up) {
   phy_->linkStatusIs(up ? Interface::linkUp : Interface::linkDown);
}

Port::Dirs Port::dirs() const {
   return {supervisor_.at<Interface::AllIntfStatusDir>("interface/status/all"),
           supervisor_.at<Interface::AllIntfStatusLocalDir>(
               supervisor_.cellPath("interface/status/local")),
           supervisor_.at<Interface::AllEthPhyIntfStatusDir>("interface/status/eth/phy/all")};
}

void Port::enter(int rotation) {
   phy_ = Rex::make<Interface::EthPhyIntfStatus>(intfId_);
   phy_->ethAddrIs(portAddr(supervisor_.number(), ifIndex_));
   phy_->maxMtuIs(1500);
   phy_->forwardingModelIs(Interface::intfForwardingBridged);
   phy_->linkStatusIs(Interface::linkUp);
   rowsIs(rotation);
}

void Port::rowsIs(int rotation) {
   auto intf = Rex::make<Interface::IntfStatus>(intfId_);
   intf->ifIndexIs(ifIndex_);
   intf->deviceNameIs(intfId_.stringValue());
   Dirs dir = dirs();
   for (int i = 0; i < 3; ++i) {
      int row = (rotation + i) % 3;
      if (row == 0) dir.all->intfStatusIs(intf);
      if (row == 1) dir.local->intfStatusIs(intf);
      if (row == 2) dir.phy->intfStatusIs(phy_);
   }
}

void Port::leave(int rotation) {
   Dirs dir = dirs();
   for (int i = 0; i < 3; ++i) {
      int row = (rotation + i) % 3;
      if (row == 0) dir.phy->intfStatusDel(intfId_);
      if (row == 1) dir.local->intfStatusDel(intfId_);
      if (row == 2) dir.all->intfStatusDel(intfId_);
   }
   phy_ = nullptr;
}

Lldp::PortConfig::Ptr Port::config() const {
   return supervisor_.config()->portConfig(intfId_);
}

Lldp::LocalPort::Ptr Port::local() const {
   return supervisor_.localSystem()->localPort(intfId_);
}

Lldp::PortStatus::Ptr Port::status() const {
   auto status = supervisor_.status();
   return status ? status->portStatus(intfId_) : nullptr;
}

std::vector<std::string> Port::neighbors() const {
   std::vector<std::string> texts;
   if (auto port = status()) {
      for (auto [index, neighbor] : port->remoteSystem()) {
         texts.push_back(neighbor->sysName().tlvInfo.value().stdString() + " " +
                         neighbor->msap().portIdentifier.value.value().stdString());
      }
   }
   std::sort(texts.begin(), texts.end());
   return texts;
}

Lldp::RemoteSystem::Ptr Port::neighbor() const {
   auto port = status();
   if (!port || port->remoteSystems() != 1) return nullptr;
   return (*port->remoteSystem().begin()).value;
}

Supervisor::Supervisor(World& world, const std::string& name, int cell)
    : world_(world),
      name_(name),
      number_(static_cast<int>(world.supervisors().size()) + 1),
      cell_(cell),
      devices_(std::make_shared<Interface::SegmentPamMaker>()) {
   processIs();
   netStatus()->hostnameIs(Rex::String(name));
   intfsIs();
}

void Supervisor::processIs() {
   context_ = std::make_unique<Rex::Context>(world_.clock());
   context_->cellId = cell_;
   context_->runDir = world_.folder();
   context_->toggles["LldpKeepNbrClassificationIntfDown"] = true;
   context_->serviceIs<Interface::PamMaker>(devices_);
   context_->logSink = [this](const Rex::LogEvent& event) {
      logs_.push_back(std::string(event.name) + ": " + event.text);
   };
}

void Supervisor::intfsIs() {
   // Whoever fills the directories has to come before the agent, which else has them for itself.
   at<Interface::AllIntfStatusDir>("interface/status/all");
   at<Interface::AllIntfStatusLocalDir>(cellPath("interface/status/local"));
   at<Interface::AllEthPhyIntfStatusDir>("interface/status/eth/phy/all");
   at<Interface::AllEthPhyIntfConfigDir>("interface/config/eth/phy/all");
   at<Interface::EthLagIntfStatusDir>("interface/status/eth/lag");
   for (const auto& [name, port] : ports_) {
      if (port->present()) port->rowsIs();
   }
}

Supervisor::~Supervisor() {
   stop();
}

void Supervisor::start() {
   Rex::ContextScope scope(*context_);
   std::string ringName = name_ + std::to_string(cell_);
   agent_ = Lldp::Agent::agentFactory(Rex::String(ringName));
   Rex::Dispatcher::run([this] { agent_->doInit(); });
}

void Supervisor::stop() {
   if (!agent_) return;
   Rex::ContextScope scope(*context_);
   Rex::Dispatcher::run([this] { agent_->doCleanup(); });
   agent_ = nullptr;
}

void Supervisor::kill() {
   for (const auto& [name, port] : ports_) port->heardIs(false);
   stop();
   for (const auto& [name, port] : ports_) port->heardIs(true);
}

Port& Supervisor::port(const std::string& name) {
   auto& port = ports_[name];
   if (!port) port = std::make_unique<Port>(*this, name, static_cast<int>(ports_.size()));
   return *port;
}

// The directory's entry, which the agent makes or waits for.
Lldp::Status::Ptr Supervisor::statusOf(int cell) {
   auto dir = at<Rex::Dir>("l2discovery/lldp/status/local");
   return Rex::dynamicPtr<Lldp::Status>(dir->entityPtr(Rex::format("%d", cell)));
}

void Supervisor::redundancyIs(Redundancy::Protocol protocol, Redundancy::Mode mode) {
   auto status = at<Redundancy::RedundancyStatus>(cellPath("redundancy/status"));
   status->modeIs(mode);
   status->protocolIs(protocol);
}

void Supervisor::clearNeighbors(double requestTime) {
   at<Lldp::RemTablesCliConfig>("l2discovery/lldp/remTablesCliConfig")
       ->remTablesClearRequestIs({requestTime, "admin", "vty1"});
}

World::World() {
   std::string folder = (std::filesystem::temp_directory_path() / "lldp-world-XXXXXX").string();
   if (!mkdtemp(folder.data())) throw std::runtime_error("no temporary folder");
   folder_ = folder;
}

World::~World() {
   for (const auto& supervisor : supervisors_) supervisor->stop();
   supervisors_.clear();
   std::error_code ignored;
   std::filesystem::remove_all(folder_, ignored);
}

Supervisor& World::supervisor(const std::string& name, int cell) {
   supervisors_.push_back(std::make_unique<Supervisor>(*this, name, cell));
   return *supervisors_.back();
}

Supervisor& World::agent(const std::string& name) {
   auto& made = supervisor(name);
   made.bridging()->bridgeMacAddrIs({2, 0, 0, 0, 0, static_cast<uint8_t>(made.number())});
   made.start();
   return made;
}

}  // namespace LldpTest
