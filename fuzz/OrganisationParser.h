// One organisation's parser over arbitrary TLVs of its own. An input is a sequence of TLVs: subtype
// (1), length (2), then the octets behind the subtype; one that is shorter is cut.
#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "Lldp/LldpProtocol/Compare.h"
#include "Lldp/LldpProtocol/Tlv.h"
#include "Rex/Assert.h"
#include "Rex/Context.h"
#include "Rex/EntityType.h"
#include "Rex/Trace.h"
#include "model/RemoteSystem.h"

namespace LldpFuzz {

// The longest that a TLV holds behind its subtype.
constexpr size_t mostOctets = Lldp::Agent::maxTlvInfoLen - Lldp::Agent::orgDefHeaderLen;

// `parse` gets subtype, length, octets and scratch neighbour. Whatever is not understood changes
// nothing of the neighbour, which can be printed and shown after all of it.
template <class Parse>
void runParser(const uint8_t* data, size_t size, const char* facility, Parse parse) {
   Rex::Context context(Rex::make<Rex::Clock>(std::make_shared<Rex::ManualTime>()));
   Rex::ContextScope scope(context);
   // Traced as well: the printed forms of foreign octets are code that a frame reaches.
   context.traceSink = [](const Rex::TraceRecord&) {};
   context.traceMaskIs(facility, 0x3FF);
   auto scratch = Rex::make<Lldp::RemoteSystem>(1, Lldp::RemoteSystem::Msap{});
   auto before = Rex::make<Lldp::RemoteSystem>(1, Lldp::RemoteSystem::Msap{});
   while (size >= 3) {
      int subtype = data[0];
      size_t length = std::min<size_t>({size_t{data[1]} << 8 | data[2], size - 3, mostOctets});
      // In a block of its own, so that a sanitizer sees every read past its end.
      std::vector<char> octets(data + 3, data + 3 + length);
      octets.shrink_to_fit();
      data += 3 + length;
      size -= 3 + length;
      Lldp::Agent::TlvParseResult result =
          parse(subtype, static_cast<int>(length), octets.data(), scratch);
      REX_ASSERT(result >= Lldp::Agent::TlvParseResultOk &&
                 result <= Lldp::Agent::TlvParseResultFatalError);
      bool changed = Lldp::Agent::copyChanges(*scratch, *before);
      REX_ASSERT(!changed || result == Lldp::Agent::TlvParseResultOk);
   }
   Rex::entityToJson(*scratch).dump();
}

}  // namespace LldpFuzz
