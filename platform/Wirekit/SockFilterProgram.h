// Classic Berkeley packet filter programs, in the layout of Linux's socket filter, and the
// interpreter that runs them where there is no kernel to do it.
#pragma once

#include <cstdint>
#include <span>

namespace Wirekit {

// One instruction; the codes are those of Linux's <linux/bpf_common.h>.
struct SockFilterInstruction {
   uint16_t code;
   uint8_t jt;  // instructions to skip if the comparison holds
   uint8_t jf;  // and if not
   uint32_t k;  // the constant
   bool operator==(const SockFilterInstruction&) const = default;
};
static_assert(sizeof(SockFilterInstruction) == 8);

// A count and a pointer to that many instructions, which stay the maker's.
struct SockFilterProgram {
   uint16_t count = 0;
   const SockFilterInstruction* instruction = nullptr;

   std::span<const SockFilterInstruction> instructions() const { return {instruction, count}; }
};

// Whether the program can be run: known codes, jumps and scratch cells within bounds, no division
// by the constant 0, a return at the end.
bool sockFilterValid(std::span<const SockFilterInstruction> program);

// How many octets of the frame the program accepts; 0 refuses it. A load from beyond the frame
// refuses it, as in the kernel. The empty program accepts everything; `program` has to be valid.
uint32_t sockFilterRun(std::span<const SockFilterInstruction> program,
                       std::span<const uint8_t> frame);

}  // namespace Wirekit
