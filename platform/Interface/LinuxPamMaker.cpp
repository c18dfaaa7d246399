#include "Interface/LinuxPamMaker.h"

#include <sys/epoll.h>

#include <system_error>

#include "Rex/Log.h"

namespace Interface {
namespace {

const Rex::LogHandle framesDropped(
    "INTERFACE_PACKETS_DROPPED", 4,
    "%d received frames dropped: they came faster than they were taken",
    "The kernel's buffer for received frames of the protocol was full.",
    "Look for a neighbor that floods the switch with frames of the protocol, or for a network "
    "loop.",
    60.0, 1.0, 0);

}  // namespace

LinuxPamMaker::~LinuxPamMaker() {
   while (!pams_.empty()) pams_.begin()->second->close();
}

PamMaker::Made LinuxPamMaker::make(const DeviceIntfStatus& device, const PamConfig& config) {
   if (pams_.contains(device.ifIndex)) return {nullptr, "the device serves another interface"};
   try {
      if (!socket_) {
         socket_ = std::make_unique<LinuxPacketSocket>(config);
         loop_.descriptorIs(socket_->fd(), EPOLLIN, [this](uint32_t) { handleReadable(); });
      }
      socket_->join(device.ifIndex);
   } catch (const std::system_error& error) {
      if (pams_.empty()) shutSocket();
      return {nullptr, error.what()};
   }
   auto pam = Rex::make<LinuxPam>(device, *this);
   pams_[device.ifIndex] = pam.get();
   return {pam, Rex::String()};
}

void LinuxPamMaker::shutSocket() {
   if (!socket_) return;
   kernelDrops();
   loop_.descriptorDel(socket_->fd());
   socket_.reset();
}

void LinuxPamMaker::remove(const LinuxPam& pam) {
   pams_.erase(pam.ifIndex());
   socket_->leave(pam.ifIndex());
   if (pams_.empty()) shutSocket();
}

uint64_t LinuxPamMaker::kernelDrops() {
   if (socket_) kernelDrops_ += socket_->takeKernelDrops();
   return kernelDrops_;
}

void LinuxPamMaker::handleReadable() {
   // Frames only wait at their port here, so no port comes or goes in the walk.
   auto taker = [this](int ifIndex, std::span<const uint8_t> frame,
                       const std::optional<Wirekit::VlanTag>& tag) {
      auto found = pams_.find(ifIndex);
      if (found == pams_.end()) return;
      // A port that holds its share would only cost the others time and memory.
      if (!found->second->rxFrameIs(frame, tag)) socket_->mutedIs(ifIndex, true);
   };
   int batches = 0;
   while (batches < batchesPerRun && socket_->receive(taker) == LinuxPacketSocket::batch) ++batches;
   if (batches == batchesPerRun) reportDrops();
}

// Only who cannot keep up loses frames, so a socket that was emptied is not asked.
void LinuxPamMaker::reportDrops() {
   uint64_t before = kernelDrops_;
   uint64_t dropped = kernelDrops() - before;
   if (dropped) Rex::log(framesDropped, dropped);
}

LinuxPam::LinuxPam(const DeviceIntfStatus& device, LinuxPamMaker& maker)
    : Pam(device.intfId), ifIndex_(device.ifIndex), maker_(maker) {}

LinuxPam::~LinuxPam() {
   close();
}

void LinuxPam::doTransmit(Wirekit::Pkt& pkt) {
   maker_.socket_->send(ifIndex_, pkt.data());
}

void LinuxPam::doClose() {
   maker_.remove(*this);
}

void LinuxPam::handleRoom() {
   maker_.socket_->mutedIs(ifIndex_, false);
}

}  // namespace Interface
