// The filter interpreter: the LLDP filter, the bounds of validity, and the kernel as the judge.
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <random>

#include "unit/LldpFilter.h"

namespace Wirekit {
namespace {

using Program = std::vector<SockFilterInstruction>;
using LldpFilter::Octets;

TEST(SockFilter, whatCannotRunIsNotValid) {
   const SockFilterInstruction end{BPF_RET | BPF_K, 0, 0, 1};
   const Program bad[] = {
       {{BPF_LD | BPF_W | BPF_ABS, 0, 0, 0}},  // runs over the end
       {{BPF_JMP | BPF_JA, 0, 0, 1}, end},     // jumps over the end
       {{BPF_JMP | BPF_JEQ | BPF_K, 0, 1, 0}, end},
       {{BPF_JMP | BPF_JEQ | BPF_K, 1, 0, 0}, end},
       {{BPF_JMP | BPF_JA, 0, 0, 0xFFFFFFFF}, end},
       {{BPF_ST, 0, 0, 16}, end},  // no such cell
       {{BPF_LD | BPF_MEM, 0, 0, 16}, end},
       {{BPF_ALU | BPF_DIV | BPF_K, 0, 0, 0}, end},
       {{BPF_ALU | BPF_MOD | BPF_K, 0, 0, 0}, end},
       {{BPF_ALU | BPF_LSH | BPF_K, 0, 0, 32}, end},
       {{BPF_ALU | 0xB0, 0, 0, 0}, end},           // no such operation
       {{BPF_LD | 0x18 | BPF_ABS, 0, 0, 0}, end},  // no such size
       {{BPF_LDX | BPF_W | BPF_ABS, 0, 0, 0}, end},
       {{0x8000 | BPF_RET, 0, 0, 0}, end},
   };
   for (const Program& program : bad) EXPECT_FALSE(sockFilterValid(program)) << &program - bad;
   EXPECT_TRUE(sockFilterValid({}));
   EXPECT_TRUE(sockFilterValid(LldpFilter::program().instructions()));
   EXPECT_EQ(sockFilterRun({}, LldpFilter::frame()), 0xFFFFFFFFu);
}

// A pair of local sockets whose receiver runs a filter in the kernel.
class KernelFilter {
 public:
   KernelFilter() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0, fds_.data()), 0); }
   ~KernelFilter() {
      for (int fd : fds_) close(fd);
   }
   bool attach(const Program& program) {
      std::vector<sock_filter> code;
      for (const auto& i : program) code.push_back({i.code, i.jt, i.jf, i.k});
      sock_fprog filter{static_cast<unsigned short>(code.size()), code.data()};
      return setsockopt(fds_[1], SOL_SOCKET, SO_ATTACH_FILTER, &filter, sizeof filter) == 0;
   }
   // How much of the octets arrives.
   size_t run(const Octets& octets) {
      EXPECT_EQ(send(fds_[0], octets.data(), octets.size(), 0),
                static_cast<ssize_t>(octets.size()));
      std::array<uint8_t, 256> buffer;
      ssize_t got = recv(fds_[1], buffer.data(), buffer.size(), 0);
      return got < 0 ? 0 : static_cast<size_t>(got);
   }

 private:
   std::array<int, 2> fds_{};
};

Program randomProgram(std::mt19937& random) {
   auto upTo = [&](uint32_t n) { return static_cast<uint32_t>(random() % (n + 1)); };
   // Codes of every class, their neighbours among them.
   constexpr uint16_t codes[] = {0x00, 0x20, 0x28, 0x30, 0x40, 0x48, 0x50, 0x60, 0x80, 0x01, 0x61,
                                 0x81, 0xB1, 0x02, 0x03, 0x04, 0x0C, 0x14, 0x1C, 0x24, 0x2C, 0x34,
                                 0x3C, 0x44, 0x4C, 0x54, 0x5C, 0x64, 0x6C, 0x74, 0x7C, 0x84, 0x94,
                                 0x9C, 0xA4, 0xAC, 0x05, 0x15, 0x1D, 0x25, 0x2D, 0x35, 0x3D, 0x45,
                                 0x4D, 0x07, 0x87, 0x06, 0x16, 0x08, 0x0E, 0x29, 0xB4};
   Program program;
   size_t size = 2 + upTo(10);
   for (size_t i = 0; i + 1 < size; ++i) {
      // Cells are mostly written before they are read: the kernel refuses the other order.
      uint16_t code =
          i < 2 && upTo(1) ? (i ? BPF_ST : BPF_LD | BPF_IMM) : codes[upTo(std::size(codes) - 1)];
      program.push_back({code, static_cast<uint8_t>(upTo(3)), static_cast<uint8_t>(upTo(3)),
                         upTo(3) ? upTo(40) : upTo(0x7FFFFFFF)});
   }
   program.push_back(
       {upTo(1) ? uint16_t{BPF_RET | BPF_A} : uint16_t{BPF_RET | BPF_K}, 0, 0, upTo(80)});
   return program;
}

TEST(SockFilter, agreesWithTheKernel) {
   std::mt19937 random(20240517);
   int accepted = 0, passed = 0;
   KernelFilter kernel;
   for (int round = 0; round < 20000; ++round) {
      Program program = randomProgram(random);
      if (!kernel.attach(program)) continue;
      ++accepted;
      ASSERT_TRUE(sockFilterValid(program)) << "round " << round;
      for (int i = 0; i < 3; ++i) {
         Octets octets(1 + random() % 64);
         for (uint8_t& octet : octets) octet = static_cast<uint8_t>(random());
         size_t expected = kernel.run(octets);
         ASSERT_EQ(std::min<size_t>(sockFilterRun(program, octets), octets.size()), expected)
             << "round " << round;
         passed += expected > 0;
      }
   }
   // The rounds mean something only if many programs could run and many frames passed.
   EXPECT_GT(accepted, 1000);
   EXPECT_GT(passed, 500);
}

}  // namespace
}  // namespace Wirekit
