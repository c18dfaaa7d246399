// The basic TLVs in the JSON that scripts read, made from the agent's JSON, and in an operator's
// words, made from the former. Their names are those of IEEE Std 802.1AB-2016, 8.5.
#pragma once

#include <string>

#include "cli/NeighborItem.h"

namespace LldpCli {

// {"subtype": "macAddress", "id": "aa:bb:cc:dd:ee:ff"}, from a chassis or port identifier.
Json identifier(const Json& from);
// aa:bb:cc:dd:ee:ff (MAC address)
std::string identifierWords(const Json& identifier);

// {"supported": ["Bridge", "Router"], "enabled": ["Bridge"]}, from two bit maps.
Json capabilities(const Json& supported, const Json& enabled);

// {"family": "ipv4", "familyNumber": 1, "address": "10.0.0.1", "interfaceNumbering": "ifIndex",
// "interfaceNumber": 3, "oid": "1.3.6"}; no "oid" when the neighbour gave none.
Json managementAddress(const Json& from);
// 10.0.0.1 (IPv4), interface index 3, OID 1.3.6
std::string managementAddressWords(const Json& address);

NeighborItems basicItems();

}  // namespace LldpCli
