#include "Lldp/LldpExtCee.h"

#include <stdexcept>

#include "RingLog/RingLog.h"

namespace Lldp::Agent {
namespace {

const Rex::TraceHandle trace("LldpExtCee", false);

constexpr int controlSubtype = 2;
// In front of the sequence number: the sub-TLV's header (2) and the two versions (1 each).
constexpr unsigned sequenceNumberOffset = 4;

}  // namespace

uint8_t LldpExtCeeParser::octet() {
   if (offset >= size) throw std::out_of_range("beyond the TLV's end");
   return get8(data + offset++);
}

TlvParseResult LldpExtCeeParser::parse() {
   if (subtype != controlSubtype) {
      DualLog(trace, 8, "Unrecognized Cee TLV (subtype=" << subtype << ")");
      return TlvParseResultUnrecognized;
   }
   try {
      tlvName = "Cee Control TLV";
      offset += sequenceNumberOffset;
      uint32_t sequenceNumber = 0;
      for (int i = 0; i < 4; ++i) sequenceNumber = sequenceNumber << 8 | octet();
      portStatus->ceeSeqNumToAckIs(sequenceNumber);
      DualLog(trace, 6, "Cee Control Tlv received: " << portStatus->ceeSeqNumToAck());
      return TlvParseResultOk;
   } catch (const std::out_of_range&) {
      DualLog(trace, 0, "Error: " << tlvName << " is too short (length=" << size << ")");
      return TlvParseResultFatalError;
   }
}

TlvParseResult parseExtCeeTlv(int subtype, int orgDefInfoLen, const char* orgDefInfo,
                              Rex::Ptr<Lldp::PortStatus> portStatus) {
   LldpExtCeeParser parser;
   parser.size = static_cast<unsigned>(orgDefInfoLen);
   parser.data = orgDefInfo;
   parser.subtype = subtype;
   parser.portStatus = portStatus;
   return parser.parse();
}

}  // namespace Lldp::Agent
