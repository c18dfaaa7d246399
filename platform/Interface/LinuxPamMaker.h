// Packet access to the devices of Linux.
#pragma once

#include <map>
#include <memory>

#include "Interface/LinuxPacketSocket.h"
#include "Interface/PamMaker.h"
#include "Rex/Loop.h"

namespace Interface {

class LinuxPam;

class LinuxPamMaker : public PamMaker {
 public:
   // `loop` has to outlive the maker, and the maker the objects that it made.
   explicit LinuxPamMaker(Rex::Loop& loop) : loop_(loop) {}
   ~LinuxPamMaker() override;

   // The socket is opened with the first device, as `config` says then, and closed with the last.
   Made make(const DeviceIntfStatus& device, const PamConfig& config) override;

   // Frames that the kernel dropped for want of memory, of all devices together.
   uint64_t kernelDrops();

 private:
   friend class LinuxPam;
   // Batches taken in one run of the loop, so that timers and other descriptors have their turn.
   static constexpr int batchesPerRun = 8;

   void handleReadable();
   void reportDrops();
   void remove(const LinuxPam& pam);
   void shutSocket();

   Rex::Loop& loop_;
   std::unique_ptr<LinuxPacketSocket> socket_;
   std::map<int, LinuxPam*> pams_;  // by ifindex
   uint64_t kernelDrops_ = 0;
};

// One device.
class LinuxPam : public Wirekit::Pam {
 public:
   LinuxPam(const DeviceIntfStatus& device, LinuxPamMaker& maker);
   ~LinuxPam() override;

   int ifIndex() const { return ifIndex_; }

 private:
   void doTransmit(Wirekit::Pkt& pkt) override;
   void doClose() override;
   void handleRoom() override;

   const int ifIndex_;
   LinuxPamMaker& maker_;
};

}  // namespace Interface
