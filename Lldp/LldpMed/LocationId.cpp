#include "Lldp/LldpMed/LocationId.h"

#include <algorithm>

#include "Lldp/LldpMed/Trace.h"

namespace Lldp::Agent::LocationId {
namespace {

using Location = Lldp::LocationId;
using Scratch = Rex::Ptr<Lldp::RemoteSystem>;

constexpr int coordinateLen = 16;
constexpr int civicHeaderLen = 4;  // length, what, country code
constexpr int civicLengthOfNone = 3;
constexpr uint8_t whatClient = 2;
constexpr int shortestElinLen = 10;
constexpr int longestElinLen = 25;

// Two's complement of `bits` bits.
int64_t signedOf(uint64_t value, int bits) {
   uint64_t sign = uint64_t{1} << (bits - 1);
   return static_cast<int64_t>((value ^ sign) - sign);
}

// A resolution of 6 bits, then a number of 34, in five octets (RFC 3825).
void getDegrees(const char* at, uint8_t* resolution, int64_t* degrees) {
   *resolution = get8(at) >> 2;
   *degrees = signedOf(uint64_t{get8(at) & 0x03u} << 32 | get32(at + 1), 34);
}

TlvParseResult parseCoordinateBasedLCI(int dataLen, const char* data, const Scratch& remoteSystem) {
   if (dataLen < coordinateLen) {
      TRACE(medTrace, 0,
            "Error: LLDP-MED Location ID Coordinate Based TLV size is invalid ( "
            "coordinateDataLen = "
                << dataLen << ")");
      return TlvParseResultFatalError;
   }
   Location::CoordinateBasedLCI lci;
   getDegrees(data, &lci.latitudeResolution, &lci.latitude);
   getDegrees(data + 5, &lci.longitudeResolution, &lci.longitude);
   uint16_t altitudeHead = get16(data + 10);  // type 4 bits, resolution 6, altitude's first 6
   lci.altitudeType = static_cast<uint8_t>(altitudeHead >> 12);
   lci.altitudeResolution = altitudeHead >> 6 & 0x3F;
   lci.altitude = static_cast<int32_t>(signedOf(get32(data + 11) & 0x3FFFFFFF, 30));
   lci.datum = get8(data + 15);
   lci.valid = true;

   Location location = remoteSystem->locationId();
   location.coordinateBasedLCI = lci;
   remoteSystem->locationIdIs(location);
   TRACE(medTrace, 6, "Received LLDP-MED Coordinate-based LCI: " << lci);
   return TlvParseResultOk;
}

// Reads the elements, and returns how many octets of `remaining` were left over.
int getCaElements(const char* at, int remaining, Location::CivicAddressLCI* lci) {
   uint8_t number = 0;
   while (remaining >= 2) {
      uint8_t caType = get8(at);
      int caLength = get8(at + 1);
      remaining -= 2;
      if (caLength > remaining) {
         // The octets of the element's own header are left over with it, but not for the first.
         if (number > 0) remaining += 2;
         break;
      }
      lci->caElementsIs(++number,
                        {caType, BoundedString255(at + 2, static_cast<size_t>(caLength))});
      at += 2 + caLength;
      remaining -= caLength;
   }
   return remaining;
}

// The misspelling in the words is what log readers look for.
TlvParseResult parseCivicAddressLCI(int dataLen, const char* data, const Scratch& remoteSystem) {
   if (dataLen < civicHeaderLen) {
      TRACE(
          medTrace, 0,
          "Error: LLDP-MED Civic Adreess LCI size is invalid (addressDataLen: " << dataLen << ")");
      return TlvParseResultFatalError;
   }
   Location::CivicAddressLCI lci;
   lci.lciLength = get8(data);
   if (lci.lciLength + 1 > dataLen || lci.lciLength + 1 < civicHeaderLen) {
      TRACE(medTrace, 0,
            "Error: LLDP-MED Civic Adreess LCI length is invalid (lciLength: "
                << lci.lciLength << ", addressDataLen: " << dataLen << ")");
      return TlvParseResultFatalError;
   }
   lci.what = get8(data + 1);
   lci.countryCode = Rex::String(data + 2, 2);
   if (lci.what != whatClient) {
      TRACE(medTrace, 6,
            "Warning: LLDP-MED Civic Adreess LCI What field value is unexpected: " << lci.what);
   }
   int remaining = getCaElements(data + civicHeaderLen, lci.lciLength - civicLengthOfNone, &lci);
   if (remaining > 0) {
      TRACE(medTrace, 6,
            "Warning: LLDP-MED Civic Adreess LCI not completely processed.Remaining size: "
                << remaining);
   }
   lci.valid = true;

   Location location = remoteSystem->locationId();
   location.civicAddressLCI = lci;
   remoteSystem->locationIdIs(location);
   TRACE(medTrace, 6, "Received LLDP-MED Civic Address LCI: " << lci);
   return TlvParseResultOk;
}

TlvParseResult parseEcsElin(int dataLen, const char* data, const Scratch& remoteSystem) {
   if (dataLen < shortestElinLen || dataLen > longestElinLen) {
      TRACE(medTrace, 6, "Warning: LLDP-MED ECS ELIN size is invalid: " << dataLen);
   }
   Rex::String number(data, static_cast<size_t>(std::min(dataLen, longestElinLen)));
   if (number.view().find_first_not_of("0123456789") != std::string_view::npos) {
      TRACE(medTrace, 6, "Warning: LLDP-MED ECS ELIN Number has non digit chars");
   }
   Location::EcsElin elin{decltype(Location::EcsElin::elin)(number), true};

   Location location = remoteSystem->locationId();
   location.ecsElin = elin;
   remoteSystem->locationIdIs(location);
   TRACE(medTrace, 6, "Received LLDP-MED ECS ELIN Number: " << elin);
   return TlvParseResultOk;
}

}  // namespace

TlvParseResult parseTlv(int orgDefInfoLen, const char* orgDefInfo,
                        const Rex::Ptr<Lldp::RemoteSystem>& remoteSystem) {
   if (orgDefInfoLen < 1) {
      TRACE(medTrace, 0,
            "Error: LLDP-MED Location ID TLV is too short (orgDefInfoLen=" << orgDefInfoLen << ")");
      return TlvParseResultFatalError;
   }
   int dataLen = orgDefInfoLen - 1;
   const char* data = orgDefInfo + 1;
   uint8_t format = get8(orgDefInfo);
   switch (static_cast<Lldp::LocationIdDataFormat>(format)) {
      case Lldp::LocationIdDataFormat::coordinateBasedLCI:
         return parseCoordinateBasedLCI(dataLen, data, remoteSystem);
      case Lldp::LocationIdDataFormat::civicAddressLCI:
         return parseCivicAddressLCI(dataLen, data, remoteSystem);
      case Lldp::LocationIdDataFormat::ecsElin:
         return parseEcsElin(dataLen, data, remoteSystem);
   }
   TRACE(medTrace, 8, "Unrecognized LLDP-MED Location Data Format: " << format);
   return TlvParseResultUnrecognized;
}

}  // namespace Lldp::Agent::LocationId
