#include "Lldp/LldpProtocolSm/Frame.h"

#include <iterator>

namespace Lldp::Agent::Protocol {
namespace {

constexpr uint16_t load32 = 0x20;       // BPF_LD | BPF_W | BPF_ABS
constexpr uint16_t load16 = 0x28;       // BPF_LD | BPF_H | BPF_ABS
constexpr uint16_t jumpIfEqual = 0x15;  // BPF_JMP | BPF_JEQ | BPF_K
constexpr uint16_t answer = 0x06;       // BPF_RET | BPF_K

const Wirekit::SockFilterInstruction instructions[] = {
    {load32, 0, 0, 0x2},              //  0  destination, low four octets
    {jumpIfEqual, 0, 8, 0xC200000E},  //  1  else to 10
    {load16, 0, 0, 0x0},              //  2  destination, high two octets
    {jumpIfEqual, 0, 6, 0x180},       //  3  else to 10
    {load16, 0, 0, 0xC},              //  4  EtherType
    {jumpIfEqual, 3, 0, 0x88CC},      //  5  then to 9
    {jumpIfEqual, 0, 3, 0x8100},      //  6  else to 10
    {load16, 0, 0, 0x10},             //  7  EtherType behind the tag
    {jumpIfEqual, 0, 1, 0x88CC},      //  8  else to 10
    {answer, 0, 0, 0xFFFF},           //  9  accept
    {answer, 0, 0, 0x0},              // 10  refuse
};

}  // namespace

Wirekit::SockFilterProgram filterProgram() {
   return {std::size(instructions), instructions};
}

}  // namespace Lldp::Agent::Protocol
