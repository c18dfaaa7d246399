// One packet socket for all ports (packet(7)): frames of every device come in through it, and each
// frame names the device's index. Why one: docs/decisions/packet-intake.md.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "Interface/PamMaker.h"
#include "Wirekit/EthHdr.h"

namespace Interface {

class LinuxPacketSocket {
 public:
   // Octets of memory that the kernel may hold for frames that nobody has taken yet. Every frame
   // counts with its whole buffer: about 2 KiB for an ordinary frame, 4 KiB on some devices.
   static constexpr int receiveMemory = 64 << 20;
   // Frames that one call of receive() hands out at most.
   static constexpr unsigned batch = 32;

   // Throws std::system_error. The filter is in force before the first frame can be queued.
   explicit LinuxPacketSocket(const PamConfig& config);
   ~LinuxPacketSocket();
   LinuxPacketSocket(const LinuxPacketSocket&) = delete;
   LinuxPacketSocket& operator=(const LinuxPacketSocket&) = delete;

   int fd() const { return fd_; }

   // Asks a device for frames to the listen address, and no longer. join() throws
   // std::system_error, also for a device that is gone; leave() takes that for done.
   void join(int ifIndex);
   void leave(int ifIndex);
   // Lets the kernel refuse a device's frames before they take up memory, or take them again.
   void mutedIs(int ifIndex, bool muted);

   // Hands out what has arrived, at most `batch` frames, without waiting. The octets are valid
   // during the call. Returns how many were taken; less than `batch` means that none is left.
   using Taker = std::function<void(int ifIndex, std::span<const uint8_t> frame,
                                    const std::optional<Wirekit::VlanTag>& separateTag)>;
   unsigned receive(const Taker& taker);
   // False if the frame was lost.
   bool send(int ifIndex, std::span<const uint8_t> frame);

   // Frames that the kernel dropped for want of memory since the last call.
   uint64_t takeKernelDrops();

 private:
   struct Slots;
   void membershipIs(int option, int ifIndex, bool mayFail);
   bool attachFilter();

   const PamConfig config_;
   int fd_;
   std::set<int> muted_;
   std::unique_ptr<Slots> slots_;
};

}  // namespace Interface
