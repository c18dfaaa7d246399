// What a neighbour says, item by item: where it stands in the agent's entity, how it looks in the
// JSON for scripts, and the lines that an operator reads, made from that JSON alone.
#pragma once

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "cli/Client.h"
#include "cli/Table.h"

namespace LldpCli {

struct NeighborItem {
   const char* attribute;  // in the agent's entity
   const char* received;   // its flag there; null where the value itself tells whether it was sent
   const char* name;       // in the JSON
   const char* label;      // what the labels of its lines begin with
   Json (*view)(const Json& attribute);  // null if it was not sent
   void (*addLines)(Fields& lines, const char* label, const Json& view);
};
using NeighborItems = std::span<const NeighborItem>;

// Into the JSON what was sent of these items, and the lines of those that are in it.
void putItems(Json& neighbor, NeighborItems items, const Json& remoteSystem);
void addItemLines(Fields& lines, NeighborItems items, const Json& neighbor);

// {"tlvReceived": true, "tlvInfo": "text"}
Json tlvTextView(const Json& tlv);
Json textView(const Json& text);
Json numberView(const Json& number);

template <std::string (*words)(const Json& view)>
void addLine(Fields& lines, const char* label, const Json& view) {
   lines.emplace_back(label, words(view));
}
std::string textWords(const Json& text);
std::string numberWords(const Json& number);

// Members in an order that stays from one command to the next: that of their first fields.
template <Json (*viewOfOne)(const Json&)>
Json listView(const Json& members) {
   std::vector<Json> made;
   for (const Json& member : members) made.push_back(viewOfOne(member));
   std::sort(made.begin(), made.end(), [](const Json& a, const Json& b) {
      return std::vector<Json>(a.begin(), a.end()) < std::vector<Json>(b.begin(), b.end());
   });
   return made;
}
template <std::string (*words)(const Json& view)>
void addLineEach(Fields& lines, const char* label, const Json& members) {
   for (const Json& member : members) lines.emplace_back(label, words(member));
}

}  // namespace LldpCli
