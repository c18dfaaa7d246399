// One TLV at a time (IEEE Std 802.1AB-2016, 8.4): 7 bits of type and 9 bits of length, big-endian,
// then the information string of 0 to 511 octets.
//
// Cursors are byte pointers into a buffer that the caller owns; `end` lies one past its last octet.
#pragma once

#include "Lldp/LldpProtocol/Octets.h"
#include "model/Basic.h"

namespace Lldp::Agent {

// IEEE Std 802.1AB-2016, table 8-1. What lies between 8 and 127 is reserved.
enum TlvType : int {
   tlvEnd = 0,
   tlvChassisId = 1,
   tlvPortId = 2,
   tlvTimeToLive = 3,
   tlvPortDescription = 4,
   tlvSystemName = 5,
   tlvSystemDescription = 6,
   tlvSystemCapabilities = 7,
   tlvManagementAddress = 8,
   tlvOrganizationallySpecific = 127,
};

constexpr int maxTlvInfoLen = 511;

// What a parser makes of one TLV.
enum TlvParseResult : int {
   TlvParseResultEnd = 0,           // End of LLDPDU: the frame is complete
   TlvParseResultOk = 1,            // understood and stored
   TlvParseResultUnrecognized = 2,  // not understood; counted, and the frame goes on
   TlvParseResultError = 3,         // bad: this TLV alone is dropped
   TlvParseResultFatalError = 4,    // the frame cannot be trusted: it is dropped whole
};

constexpr Oui dot1Oui{0x0080C2};  // IEEE 802.1
constexpr Oui dot3Oui{0x00120F};  // IEEE 802.3
constexpr Oui tiaOui{0x0012BB};   // TIA TR-41: LLDP-MED
constexpr Oui ceeOui{0x001B21};   // Converged Enhanced Ethernet

// OUI and subtype in front of an organisation's own information string (8.6.1).
constexpr int orgDefHeaderLen = 4;

// Start of the frame builder's scratch buffer of `maxTlvInfoLen` octets while it adds organisation
// TLVs, null otherwise. Their builders compose at `infoBuf + orgDefHeaderLen`, so that
// putOrgDefTlv can complete the TLV in place and no payload is copied twice.
extern char* infoBuf;

// Writes one TLV and moves the cursor behind it. False, with nothing written, if it does not fit.
bool putTlv(char** cursor, char* end, int type, int infoLen, const char* info);

// The same for an Organizationally Specific TLV. `info` has to be `infoBuf + orgDefHeaderLen`; the
// four octets in front of it are written.
bool putOrgDefTlv(char** cursor, char* end, Oui oui, int subtype, int infoLen, const char* info);

// Reads one TLV and moves the cursor behind it. False if the frame ends first: inside the header
// nothing is changed; inside the information string all is set, and the cursor is past the end.
bool extractTlv(const char** cursor, const char* end, int* type, int* infoLen, const char** info);

// Reads a TLV that has to be of that type, with an information string of 2 to `maxInfoLen` octets.
bool extractMandatoryTlv(const char** cursor, const char* end, int expectedType, int maxInfoLen,
                         int* infoLen, const char** info);

}  // namespace Lldp::Agent
