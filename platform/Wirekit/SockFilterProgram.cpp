#include "Wirekit/SockFilterProgram.h"

#include <array>
#include <limits>
#include <optional>

namespace Wirekit {
namespace {

// The parts of an instruction's code: class, then what the class's operation is made of.
enum Class { ld = 0, ldx = 1, st = 2, stx = 3, alu = 4, jmp = 5, ret = 6, misc = 7 };
enum Size { word = 0x00, half = 0x08, byte = 0x10 };
enum Mode { imm = 0x00, abs = 0x20, ind = 0x40, mem = 0x60, len = 0x80, msh = 0xA0 };
enum Alu {
   add = 0x00,
   sub = 0x10,
   mul = 0x20,
   div = 0x30,
   bitOr = 0x40,
   bitAnd = 0x50,
   lsh = 0x60,
   rsh = 0x70,
   neg = 0x80,
   mod = 0x90,
   bitXor = 0xA0
};
enum Jmp { ja = 0x00, jeq = 0x10, jgt = 0x20, jge = 0x30, jset = 0x40 };
constexpr uint16_t fromX = 0x08;     // the operand is X, not the constant
constexpr uint16_t retFromA = 0x10;  // the result is A, not the constant
constexpr uint16_t tax = 0x00;
constexpr uint16_t txa = 0x80;
constexpr uint32_t cells = 16;

int classOf(uint16_t code) {
   return code & 0x07;
}
int sizeOf(uint16_t code) {
   return code & 0x18;
}
int modeOf(uint16_t code) {
   return code & 0xE0;
}
int operationOf(uint16_t code) {
   return code & 0xF0;
}

bool validLoad(const SockFilterInstruction& i) {
   bool toX = classOf(i.code) == ldx;
   switch (modeOf(i.code)) {
      case abs:
      case ind:
         return !toX && sizeOf(i.code) != 0x18;
      case imm:
      case len:
         return sizeOf(i.code) == word;
      case mem:
         return sizeOf(i.code) == word && i.k < cells;
      case msh:
         return toX && sizeOf(i.code) == byte;
      default:
         return false;
   }
}

bool validAlu(const SockFilterInstruction& i) {
   if (operationOf(i.code) > bitXor) return false;
   bool divides = operationOf(i.code) == div || operationOf(i.code) == mod;
   bool shifts = operationOf(i.code) == lsh || operationOf(i.code) == rsh;
   if (i.code & fromX) return true;
   return !(divides && i.k == 0) && !(shifts && i.k >= 32);
}

// `left` instructions follow this one.
bool validJump(const SockFilterInstruction& i, std::size_t left) {
   if (operationOf(i.code) == ja) return i.k < left;
   return operationOf(i.code) <= jset && i.jt < left && i.jf < left;
}

bool validInstruction(const SockFilterInstruction& i, std::size_t left) {
   if (i.code > 0xFF) return false;
   switch (classOf(i.code)) {
      case ld:
      case ldx:
         return validLoad(i);
      case st:
      case stx:
         return (i.code & ~0x07) == 0 && i.k < cells;
      case alu:
         return validAlu(i);
      case jmp:
         return validJump(i, left);
      case ret:
         return i.code == ret || i.code == (ret | retFromA);
      default:
         return i.code == (misc | tax) || i.code == (misc | txa);
   }
}

struct Machine {
   std::span<const uint8_t> frame;
   uint32_t a = 0;
   uint32_t x = 0;
   std::array<uint32_t, cells> cell{};

   // The number of `size` octets at `offset`, in network order; nothing beyond the frame's end.
   std::optional<uint32_t> at(uint64_t offset, int size) const {
      uint64_t octets = size == word ? 4 : size == half ? 2 : 1;
      if (offset + octets > frame.size()) return std::nullopt;
      uint32_t value = 0;
      for (uint64_t i = 0; i < octets; ++i) value = value << 8 | frame[offset + i];
      return value;
   }
   std::optional<uint32_t> loaded(const SockFilterInstruction& i) const {
      switch (modeOf(i.code)) {
         case imm:
            return i.k;
         case len:
            return static_cast<uint32_t>(frame.size());
         case mem:
            return cell[i.k];
         case abs:
            return at(i.k, sizeOf(i.code));
         case ind:
            return at(uint64_t{x} + i.k, sizeOf(i.code));
         default: {  // the header length of IPv4: four times the low half of an octet
            auto octet = at(i.k, byte);
            return octet ? std::optional<uint32_t>(4 * (*octet & 0x0F)) : std::nullopt;
         }
      }
   }
   // False for a division by 0, which refuses the frame. Shifts count modulo 32, as in the kernel.
   bool calculate(int operation, uint32_t by) {
      switch (operation) {
         case add:
            a += by;
            break;
         case sub:
            a -= by;
            break;
         case mul:
            a *= by;
            break;
         case bitOr:
            a |= by;
            break;
         case bitAnd:
            a &= by;
            break;
         case bitXor:
            a ^= by;
            break;
         case lsh:
            a <<= by & 31;
            break;
         case rsh:
            a >>= by & 31;
            break;
         case neg:
            a = 0 - a;
            break;
         default:
            if (by == 0) return false;
            a = operation == div ? a / by : a % by;
      }
      return true;
   }
   bool holds(int operation, uint32_t than) const {
      switch (operation) {
         case jeq:
            return a == than;
         case jgt:
            return a > than;
         case jge:
            return a >= than;
         default:
            return (a & than) != 0;
      }
   }
};

}  // namespace

bool sockFilterValid(std::span<const SockFilterInstruction> program) {
   for (std::size_t i = 0; i < program.size(); ++i) {
      if (!validInstruction(program[i], program.size() - 1 - i)) return false;
   }
   return program.empty() || classOf(program.back().code) == ret;
}

uint32_t sockFilterRun(std::span<const SockFilterInstruction> program,
                       std::span<const uint8_t> frame) {
   Machine m{frame};
   for (std::size_t next = 0; next < program.size();) {
      const SockFilterInstruction& i = program[next++];
      uint32_t operand = i.code & fromX ? m.x : i.k;
      switch (classOf(i.code)) {
         case ld:
         case ldx: {
            auto value = m.loaded(i);
            if (!value) return 0;
            (classOf(i.code) == ld ? m.a : m.x) = *value;
            break;
         }
         case st:
            m.cell[i.k] = m.a;
            break;
         case stx:
            m.cell[i.k] = m.x;
            break;
         case alu:
            if (!m.calculate(operationOf(i.code), operand)) return 0;
            break;
         case jmp:
            if (operationOf(i.code) == ja) {
               next += i.k;
            } else {
               next += m.holds(operationOf(i.code), operand) ? i.jt : i.jf;
            }
            break;
         case ret:
            return i.code & retFromA ? m.a : i.k;
         default:
            if (i.code & txa) {
               m.a = m.x;
            } else {
               m.x = m.a;
            }
      }
   }
   return std::numeric_limits<uint32_t>::max();
}

}  // namespace Wirekit
