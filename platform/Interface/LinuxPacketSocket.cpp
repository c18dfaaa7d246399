#include "Interface/LinuxPacketSocket.h"

#include <linux/filter.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace Interface {
namespace {

constexpr size_t tagOffset = 2 * Wirekit::EthAddr::size;

[[noreturn]] void fail(const char* what) {
   throw std::system_error(errno, std::generic_category(), what);
}

template <class T>
bool tryOption(int fd, int level, int name, const T& value) {
   return setsockopt(fd, level, name, &value, sizeof value) == 0;
}
template <class T>
void option(int fd, int level, int name, const T& value, const char* what) {
   if (!tryOption(fd, level, name, value)) fail(what);
}

// The tag that the kernel or the device took out of the frame (tpacket_auxdata).
std::optional<Wirekit::VlanTag> tagOf(msghdr& message) {
   for (cmsghdr* part = CMSG_FIRSTHDR(&message); part; part = CMSG_NXTHDR(&message, part)) {
      if (part->cmsg_level != SOL_PACKET || part->cmsg_type != PACKET_AUXDATA) continue;
      tpacket_auxdata aux;
      std::memcpy(&aux, CMSG_DATA(part), sizeof aux);
      if (!(aux.tp_status & TP_STATUS_VLAN_VALID)) return std::nullopt;
      bool named = aux.tp_status & TP_STATUS_VLAN_TPID_VALID;
      return Wirekit::VlanTag{named ? aux.tp_vlan_tpid : Wirekit::dot1QTpid, aux.tp_vlan_tci};
   }
   return std::nullopt;
}

}  // namespace

// Where the frames of one batch are laid, with room in front to put a tag back in line.
struct LinuxPacketSocket::Slots {
   struct Slot {
      sockaddr_ll from;
      iovec part;
      alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(tpacket_auxdata))> control;
   };
   explicit Slots(size_t frameSize)
       : stride(Wirekit::VlanTag::wireSize + frameSize), octets(new uint8_t[batch * stride]) {
      for (size_t i = 0; i < batch; ++i) slot[i].part = {frame(i), frameSize};
   }
   uint8_t* frame(size_t i) { return &octets[i * stride + Wirekit::VlanTag::wireSize]; }
   void reset() {
      for (size_t i = 0; i < batch; ++i) {
         msghdr& header = message[i].msg_hdr;
         header = {};
         header.msg_name = &slot[i].from;
         header.msg_namelen = sizeof slot[i].from;
         header.msg_iov = &slot[i].part;
         header.msg_iovlen = 1;
         header.msg_control = slot[i].control.data();
         header.msg_controllen = slot[i].control.size();
      }
   }
   // Moves the addresses to the front and writes the tag behind them.
   std::span<const uint8_t> tagged(size_t i, size_t length, const Wirekit::VlanTag& tag) {
      uint8_t* head = frame(i) - Wirekit::VlanTag::wireSize;
      std::memmove(head, frame(i), tagOffset);
      uint16_t inLine[] = {htons(tag.tpid), htons(tag.tci)};
      std::memcpy(head + tagOffset, inLine, sizeof inLine);
      return {head, length + Wirekit::VlanTag::wireSize};
   }

   const size_t stride;
   std::unique_ptr<uint8_t[]> octets;
   std::array<Slot, batch> slot{};
   std::array<mmsghdr, batch> message{};
};

LinuxPacketSocket::LinuxPacketSocket(const PamConfig& config)
    : config_(config),
      // No protocol yet: the socket hears nothing until it is bound.
      fd_(socket(AF_PACKET, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)),
      slots_(std::make_unique<Slots>(config.maxRxPktData)) {
   if (fd_ < 0) fail("packet socket");
   try {
      if (!attachFilter()) fail("SO_ATTACH_FILTER");
      option(fd_, SOL_PACKET, PACKET_AUXDATA, 1, "PACKET_AUXDATA");
      option(fd_, SOL_PACKET, PACKET_IGNORE_OUTGOING, 1, "PACKET_IGNORE_OUTGOING");
      option(fd_, SOL_SOCKET, SO_PRIORITY, config_.sockPrio, "SO_PRIORITY");
      // The kernel doubles the figure. Without the right to go beyond the system's limit, what the
      // limit leaves has to do.
      constexpr int half = receiveMemory / 2;
      if (!tryOption(fd_, SOL_SOCKET, SO_RCVBUFFORCE, half)) {
         option(fd_, SOL_SOCKET, SO_RCVBUF, half, "SO_RCVBUF");
      }
      sockaddr_ll all{};
      all.sll_family = AF_PACKET;
      all.sll_protocol = htons(config_.ethProtocol);
      if (bind(fd_, reinterpret_cast<sockaddr*>(&all), sizeof all) < 0) fail("bind");
   } catch (...) {
      ::close(fd_);
      throw;
   }
}

LinuxPacketSocket::~LinuxPacketSocket() {
   ::close(fd_);
}

bool LinuxPacketSocket::attachFilter() {
   std::vector<sock_filter> program;
   if (!muted_.empty()) {
      constexpr auto ifIndex = static_cast<uint32_t>(SKF_AD_OFF + SKF_AD_IFINDEX);
      program.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, ifIndex));
      for (int muted : muted_) {
         program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(muted), 0, 1));
         program.push_back(BPF_STMT(BPF_RET | BPF_K, 0));
      }
   }
   for (const auto& i : config_.filter) program.push_back({i.code, i.jt, i.jf, i.k});
   if (config_.filter.empty()) program.push_back(BPF_STMT(BPF_RET | BPF_K, UINT32_MAX));
   sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
   return tryOption(fd_, SOL_SOCKET, SO_ATTACH_FILTER, filter);
}

void LinuxPacketSocket::mutedIs(int ifIndex, bool muted) {
   bool changed = muted ? muted_.insert(ifIndex).second : muted_.erase(ifIndex) > 0;
   // With more muted devices than the kernel has room for in a filter, the one before stands, and
   // the last flood is refused at its port's queue instead.
   if (changed && !attachFilter() && muted) muted_.erase(ifIndex);
}

void LinuxPacketSocket::membershipIs(int name, int ifIndex, bool mayFail) {
   if (config_.listenAddr.isZero()) return;
   packet_mreq member{};
   member.mr_ifindex = ifIndex;
   member.mr_type = PACKET_MR_MULTICAST;
   member.mr_alen = Wirekit::EthAddr::size;
   std::memcpy(member.mr_address, config_.listenAddr.octets(), Wirekit::EthAddr::size);
   if (!tryOption(fd_, SOL_PACKET, name, member) && !mayFail) fail("PACKET_ADD_MEMBERSHIP");
}

void LinuxPacketSocket::join(int ifIndex) {
   membershipIs(PACKET_ADD_MEMBERSHIP, ifIndex, false);
}

void LinuxPacketSocket::leave(int ifIndex) {
   membershipIs(PACKET_DROP_MEMBERSHIP, ifIndex, true);
   mutedIs(ifIndex, false);
}

unsigned LinuxPacketSocket::receive(const Taker& taker) {
   slots_->reset();
   int received = recvmmsg(fd_, slots_->message.data(), batch, 0, nullptr);
   // EAGAIN, or the error of a device that went down, which the socket reports once.
   if (received <= 0) return 0;
   for (int i = 0; i < received; ++i) {
      mmsghdr& message = slots_->message[i];
      size_t length = message.msg_len;
      bool whole = !(message.msg_hdr.msg_flags & MSG_TRUNC) && length >= sizeof(Wirekit::EthHdr);
      if (!whole) continue;
      std::span<const uint8_t> frame(slots_->frame(i), length);
      std::optional<Wirekit::VlanTag> tag = tagOf(message.msg_hdr);
      if (tag && !config_.separateDot1QHdr) {
         frame = slots_->tagged(i, length, *tag);
         tag.reset();
      }
      taker(slots_->slot[i].from.sll_ifindex, frame, tag);
   }
   return static_cast<unsigned>(received);
}

bool LinuxPacketSocket::send(int ifIndex, std::span<const uint8_t> frame) {
   if (frame.size() < sizeof(Wirekit::EthHdr)) return false;
   const auto* header = reinterpret_cast<const Wirekit::EthHdr*>(frame.data());
   sockaddr_ll to{};
   to.sll_family = AF_PACKET;
   to.sll_protocol = header->type;
   to.sll_ifindex = ifIndex;
   to.sll_halen = Wirekit::EthAddr::size;
   std::memcpy(to.sll_addr, header->dst, Wirekit::EthAddr::size);
   return sendto(fd_, frame.data(), frame.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to) ==
          static_cast<ssize_t>(frame.size());
}

uint64_t LinuxPacketSocket::takeKernelDrops() {
   tpacket_stats stats{};
   socklen_t size = sizeof stats;
   if (getsockopt(fd_, SOL_PACKET, PACKET_STATISTICS, &stats, &size) < 0) return 0;
   return stats.tp_drops;
}

}  // namespace Interface
