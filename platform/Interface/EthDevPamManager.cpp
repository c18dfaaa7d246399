#include "Interface/EthDevPamManager.h"

#include <algorithm>

#include "Rex/Log.h"
#include "Rex/System.h"
#include "Rex/Trace.h"

namespace Interface {
namespace {

const Rex::TraceHandle trace("EthDevPamManager", false);

const Rex::LogHandle openFailed(
    "INTERFACE_PACKET_ACCESS_FAILED", 4, "Packet access to interface %s (device %s) failed: %s",
    "Frames of a protocol can neither be received nor sent on the interface. It is tried again "
    "after a while.",
    "Check that the device exists and that the process may open packet sockets.", 60.0, 1.0, 0);

constexpr double firstPatience = 1;
constexpr double mostPatience = 32;

}  // namespace

EthDevPamManager::EthDevPamManager(Rex::Ptr<PamDesiredIntfDir const> desiredIntfDir,
                                   Rex::Ptr<EthDevPamCollection> pamCollection,
                                   Rex::Ptr<DeviceIntfStatusDir const> deviceIntfStatusDir)
    : desiredIntfDir_(std::move(desiredIntfDir)),
      pamCollection_(std::move(pamCollection)),
      deviceIntfStatusDir_(std::move(deviceIntfStatusDir)),
      turn_(context().clock()),
      retry_(context().clock()),
      patience_(firstPatience) {
   on(desiredIntfDir_, PamDesiredIntfDir::intfDesiredAttr, &EthDevPamManager::handleIntf);
   on(deviceIntfStatusDir_, DeviceIntfStatusDir::intfStatusAttr, &EthDevPamManager::handleIntf);
   on(turn_, &EthDevPamManager::handleTurn);
   on(retry_, &EthDevPamManager::handleRetry);
}

void EthDevPamManager::filterProgramIs(const Wirekit::SockFilterProgram& program) {
   auto instructions = program.instructions();
   REX_ASSERT(Wirekit::sockFilterValid(instructions));
   config_.filter.assign(instructions.begin(), instructions.end());
}

void EthDevPamManager::enabledIs(bool enabled) {
   if (enabled_ == enabled || closed()) return;
   enabled_ = enabled;
   // What was switched off is opened anew, also when it is switched on again before the turn: the
   // users of packet access start over.
   if (!enabled) {
      for (auto& [intfId, device] : opened_) device = {};
   }
   handleAll();
}

void EthDevPamManager::handleIntf(Wirekit::IntfId intfId) {
   due_.insert(intfId);
   turn_.timeMinIs(0);
}

void EthDevPamManager::handleAll() {
   for (auto [intfId, pam] : pamCollection_->intfPam()) handleIntf(intfId);
   for (auto [intfId, desired] : desiredIntfDir_->intfDesired()) handleIntf(intfId);
}

void EthDevPamManager::handleTurn() {
   std::set<Wirekit::IntfId> due;
   due.swap(due_);
   for (const auto& intfId : due) settle(intfId);
   if (failed_.empty()) {
      retry_.cancel();
      patience_ = firstPatience;
   } else if (!retry_.armed()) {
      retry_.timeMinIs(Rex::System::currentTime() + patience_);
      patience_ = std::min(2 * patience_, mostPatience);
   }
}

void EthDevPamManager::handleRetry() {
   due_.insert(failed_.begin(), failed_.end());
   handleTurn();
}

void EthDevPamManager::settle(const Wirekit::IntfId& intfId) {
   failed_.erase(intfId);
   DeviceIntfStatus device = deviceIntfStatusDir_->intfStatus(intfId);
   bool wanted = enabled_ && desiredIntfDir_->intfDesired(intfId) &&
                 deviceIntfStatusDir_->intfStatusHas(intfId);
   auto opened = opened_.find(intfId);
   if (opened == opened_.end()) {
      if (wanted) open(device);
   } else if (!wanted || opened->second != device) {
      shut(intfId);
      if (wanted) handleIntf(intfId);
   }
}

void EthDevPamManager::open(const DeviceIntfStatus& device) {
   auto [pam, error] = context().service<PamMaker>().make(device, config_);
   if (!pam) {
      failed_.insert(device.intfId);
      TRACE(trace, 0, "No packet access to " << device.intfId << ": " << error);
      Rex::log(openFailed, device.intfId, device.deviceName, error);
      return;
   }
   TRACE(trace, 4, "Packet access to " << device.intfId << " on " << device.deviceName);
   opened_.emplace(device.intfId, device);
   pamCollection_->intfPamIs(pam);
}

void EthDevPamManager::shut(const Wirekit::IntfId& intfId) {
   TRACE(trace, 4, "No more packet access to " << intfId);
   opened_.erase(intfId);
   if (auto pam = pamCollection_->intfPam(intfId)) pam->close();
   pamCollection_->intfPamDel(intfId);
}

void EthDevPamManager::doClose() {
   enabled_ = false;
   due_.clear();
   failed_.clear();
   for (auto [intfId, pam] : pamCollection_->intfPam()) shut(intfId);
}

}  // namespace Interface
