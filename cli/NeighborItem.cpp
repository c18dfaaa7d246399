#include "cli/NeighborItem.h"

#include "cli/Octets.h"

namespace LldpCli {

void putItems(Json& neighbor, NeighborItems items, const Json& remoteSystem) {
   for (const NeighborItem& item : items) {
      if (item.received && !remoteSystem.at(item.received).get<bool>()) continue;
      Json view = item.view(remoteSystem.at(item.attribute));
      if (!view.is_null()) neighbor[item.name] = std::move(view);
   }
}

void addItemLines(Fields& lines, NeighborItems items, const Json& neighbor) {
   for (const NeighborItem& item : items) {
      if (neighbor.contains(item.name)) item.addLines(lines, item.label, neighbor.at(item.name));
   }
}

Json tlvTextView(const Json& tlv) {
   return tlv.at("tlvReceived").get<bool>() ? textView(tlv.at("tlvInfo")) : Json();
}

Json textView(const Json& text) {
   return LldpCli::text(text);
}

Json numberView(const Json& number) {
   return number.get<unsigned>();
}

std::string textWords(const Json& text) {
   return text.get<std::string>();
}

std::string numberWords(const Json& number) {
   return std::to_string(number.get<unsigned>());
}

}  // namespace LldpCli
