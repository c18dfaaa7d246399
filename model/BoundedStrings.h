// Texts of bounded length, and texts that a TLV may have brought.
#pragma once

#include <boost/describe.hpp>

#include "Rex/Value.h"

namespace Lldp {

namespace words {
struct String32 {
   static constexpr const char* text = "BoundedString32::value::bytes > 32 not allowed";
};
struct String255 {
   static constexpr const char* text = "BoundedString255::value::bytes > 255 not allowed";
};
struct String507 {
   static constexpr const char* text = "BoundedString507::value::bytes > 507 not allowed";
};
struct String511 {
   static constexpr const char* text = "BoundedString511::value::bytes > 511 not allowed";
};
}  // namespace words

// At most that many octets; a longer value throws a range exception with the type's words.
using BoundedString32 = Rex::BoundedText<32, words::String32>;
using BoundedString255 = Rex::BoundedText<255, words::String255>;
using BoundedString507 = Rex::BoundedText<507, words::String507>;
using BoundedString511 = Rex::BoundedText<511, words::String511>;

// A TLV's text with its presence: an empty text that was received differs from none.
template <class Text>
struct TextTlv {
   bool tlvReceived = false;
   Text tlvInfo;

   static TextTlv create(const Text& text) { return {true, text}; }
   bool operator==(const TextTlv&) const = default;
};
using BoundedString255Tlv = TextTlv<BoundedString255>;
using BoundedString32Tlv = TextTlv<BoundedString32>;
BOOST_DESCRIBE_STRUCT(BoundedString255Tlv, (), (tlvReceived, tlvInfo))
BOOST_DESCRIBE_STRUCT(BoundedString32Tlv, (), (tlvReceived, tlvInfo))

}  // namespace Lldp
