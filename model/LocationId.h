// LLDP-MED Location Identification (ANSI/TIA-1057, 10.2.4): up to three locations side by side, one
// in each data format.
#pragma once

#include <boost/describe.hpp>
#include <cstdint>

#include "model/BoundedStrings.h"

namespace Lldp {

namespace words {
struct Elin {
   static constexpr const char* text = "EcsElin::elin::bytes > 25 not allowed";
};
}  // namespace words

enum class LocationIdDataFormat : uint8_t {
   coordinateBasedLCI = 1,
   civicAddressLCI = 2,
   ecsElin = 3,
};

struct LocationId {
   // RFC 3825. Latitude and longitude are degrees with 25 bits behind the point, the altitude
   // metres or floors with 8; each resolution is the number of leading bits that count.
   struct CoordinateBasedLCI {
      uint8_t latitudeResolution = 0;
      int64_t latitude = 0;
      uint8_t longitudeResolution = 0;
      int64_t longitude = 0;
      uint8_t altitudeType = 0;  // 1 metres, 2 floors
      uint8_t altitudeResolution = 0;
      int32_t altitude = 0;
      uint8_t datum = 0;  // 1 WGS 84, 2 NAD 83 with NAVD 88, 3 NAD 83 with MLLW
      bool valid = false;
      bool operator==(const CoordinateBasedLCI&) const = default;
   };

   // RFC 4776.
   struct CivicAddressLCI {
      struct CaElement {
         uint8_t caType = 0;
         BoundedString255 caValue;
         bool operator==(const CaElement&) const = default;
      };
      uint8_t lciLength = 0;  // octets from `what` on
      uint8_t what = 0;       // 2: the location of the client
      Rex::String countryCode;
      Rex::List<CaElement> caElements;  // in the order of the frame; number 1 stands first
      bool valid = false;

      // Writes the element of a number. Numbers are given one after the other.
      void caElementsIs(uint8_t number, const CaElement& element) {
         if (caElements.size() < number) caElements.resize(number);
         caElements.at(number - size_t{1}) = element;
      }
      bool operator==(const CivicAddressLCI&) const = default;
   };

   // The number to call an emergency service from.
   struct EcsElin {
      Rex::BoundedText<25, words::Elin> elin;
      bool valid = false;
      bool operator==(const EcsElin&) const = default;
   };

   CoordinateBasedLCI coordinateBasedLCI;
   CivicAddressLCI civicAddressLCI;
   EcsElin ecsElin;
   bool operator==(const LocationId&) const = default;
};
BOOST_DESCRIBE_STRUCT(LocationId::CoordinateBasedLCI, (),
                      (latitudeResolution, latitude, longitudeResolution, longitude, altitudeType,
                       altitudeResolution, altitude, datum, valid))
BOOST_DESCRIBE_STRUCT(LocationId::CivicAddressLCI::CaElement, (), (caType, caValue))
BOOST_DESCRIBE_STRUCT(LocationId::CivicAddressLCI, (),
                      (lciLength, what, countryCode, caElements, valid))
BOOST_DESCRIBE_STRUCT(LocationId::EcsElin, (), (elin, valid))
BOOST_DESCRIBE_STRUCT(LocationId, (), (coordinateBasedLCI, civicAddressLCI, ecsElin))

}  // namespace Lldp
