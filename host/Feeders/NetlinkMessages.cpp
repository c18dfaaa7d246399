#include "host/Feeders/NetlinkMessages.h"

#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/if_bridge.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <netlink/attr.h>
#include <netlink/msg.h>

#include <array>
#include <string>

namespace Host {
namespace {

constexpr uint16_t mostVlan = 4094;

// The attributes behind a message's own header, or within one of them; those up to `Most` by type.
template <int Most>
struct Attributes {
   template <class Header>
   static std::optional<Attributes> of(const nlmsghdr& message, const Header*& header) {
      auto* raw = const_cast<nlmsghdr*>(&message);
      Attributes found;
      if (nlmsg_parse(raw, sizeof(Header), found.at.data(), Most, nullptr) < 0) return std::nullopt;
      header = static_cast<const Header*>(nlmsg_data(raw));
      return found;
   }
   static Attributes in(nlattr* outer) {
      Attributes found;
      if (outer && nla_parse_nested(found.at.data(), Most, outer, nullptr) < 0) return {};
      return found;
   }

   nlattr* operator[](int type) const { return at[type]; }

   std::array<nlattr*, Most + 1> at{};
};

template <class Number>
Number number(nlattr* attribute) {
   Number value = 0;
   if (attribute) nla_memcpy(&value, attribute, sizeof(value));
   return value;
}

std::string text(nlattr* attribute) {
   if (!attribute) return {};
   std::string value(static_cast<const char*>(nla_data(attribute)),
                     static_cast<size_t>(nla_len(attribute)));
   return value.substr(0, value.find('\0'));
}

// The octets of an attribute that has as many as that; null for none.
const void* octets(nlattr* attribute, size_t size) {
   bool fits = attribute && static_cast<size_t>(nla_len(attribute)) == size;
   return fits ? nla_data(attribute) : nullptr;
}

void takeKind(Link& link, nlattr* linkInfo) {
   auto info = Attributes<IFLA_INFO_MAX>::in(linkInfo);
   link.kind = text(info[IFLA_INFO_KIND]);
   nlattr* data = info[IFLA_INFO_DATA];
   if (link.kind == "vlan") {
      link.vlanId = number<uint16_t>(Attributes<IFLA_VLAN_MAX>::in(data)[IFLA_VLAN_ID]);
      if (link.vlanId > mostVlan) link.vlanId = 0;
   } else if (link.kind == "bridge") {
      auto bridge = Attributes<IFLA_BR_MAX>::in(data);
      link.vlanAware = number<uint8_t>(bridge[IFLA_BR_VLAN_FILTERING]) != 0;
   }
}

}  // namespace

std::optional<Link> linkIn(const nlmsghdr& message) {
   const ifinfomsg* header = nullptr;
   auto found = Attributes<IFLA_MAX>::of(message, header);
   if (!found || header->ifi_family == AF_BRIDGE || (*found)[IFLA_WIRELESS]) return std::nullopt;
   Link link;
   link.ifIndex = header->ifi_index;
   link.name = text((*found)[IFLA_IFNAME]);
   link.alias = text((*found)[IFLA_IFALIAS]);
   takeKind(link, (*found)[IFLA_LINKINFO]);
   if (const void* value = octets((*found)[IFLA_ADDRESS], Wirekit::EthAddr::size)) {
      link.ethAddr = Wirekit::EthAddr::fromOctets(value);
   }
   link.mtu = number<uint32_t>((*found)[IFLA_MTU]);
   link.master = number<int32_t>((*found)[IFLA_MASTER]);
   link.ethernet = header->ifi_type == ARPHRD_ETHER;
   link.loopback = header->ifi_type == ARPHRD_LOOPBACK;
   link.adminUp = header->ifi_flags & IFF_UP;
   link.carrier = header->ifi_flags & IFF_LOWER_UP;
   link.operState = number<uint8_t>((*found)[IFLA_OPERSTATE]);
   return link;
}

std::optional<AddressNews> addressIn(const nlmsghdr& message) {
   const ifaddrmsg* header = nullptr;
   auto found = Attributes<IFA_MAX>::of(message, header);
   if (!found) return std::nullopt;
   AddressNews news;
   news.ifIndex = static_cast<int32_t>(header->ifa_index);
   news.gone = message.nlmsg_type == RTM_DELADDR;
   uint32_t flags = (*found)[IFA_FLAGS] ? number<uint32_t>((*found)[IFA_FLAGS]) : header->ifa_flags;
   // On a link with a peer the other one is the peer's.
   int own = (*found)[IFA_LOCAL] ? IFA_LOCAL : IFA_ADDRESS;
   if (header->ifa_family == AF_INET) {
      const void* value = octets((*found)[own], Wirekit::IpAddr::size);
      if (!value) return std::nullopt;
      Wirekit::IpAddrWithMask addr(Wirekit::IpAddr::fromOctets(value), header->ifa_prefixlen);
      const void* other = octets((*found)[IFA_ADDRESS], Wirekit::IpAddr::size);
      Wirekit::IpAddr peer = other ? Wirekit::IpAddr::fromOctets(other) : addr.addr();
      news.address = Ip4Address{addr, (flags & IFA_F_SECONDARY) != 0, header->ifa_scope, peer};
      return news;
   }
   const void* value = octets((*found)[own], Wirekit::Ip6Addr::size);
   if (header->ifa_family != AF_INET6 || !value) return std::nullopt;
   news.address =
       Wirekit::Ip6AddrWithMask(Wirekit::Ip6Addr::fromOctets(value), header->ifa_prefixlen);
   news.gone |= (flags & IFA_F_DADFAILED) || header->ifa_scope >= RT_SCOPE_HOST;
   return news;
}

int32_t vlanNewsIn(const nlmsghdr& message) {
   auto* raw = const_cast<nlmsghdr*>(&message);
   bool link = message.nlmsg_type == RTM_NEWLINK || message.nlmsg_type == RTM_DELLINK;
   if (link && nlmsg_valid_hdr(raw, sizeof(ifinfomsg))) {
      auto* header = static_cast<const ifinfomsg*>(nlmsg_data(raw));
      return header->ifi_family == AF_BRIDGE ? header->ifi_index : 0;
   }
   bool vlan = message.nlmsg_type == RTM_NEWVLAN || message.nlmsg_type == RTM_DELVLAN;
   if (!vlan || !nlmsg_valid_hdr(raw, sizeof(br_vlan_msg))) return 0;
   return static_cast<int32_t>(static_cast<const br_vlan_msg*>(nlmsg_data(raw))->ifindex);
}

void takeVlans(const nlmsghdr& message, std::map<int32_t, PortVlan>& vlans) {
   auto* raw = const_cast<nlmsghdr*>(&message);
   int32_t ifIndex = vlanNewsIn(message);
   if (message.nlmsg_type != RTM_NEWVLAN || !ifIndex) return;
   nlattr* entry = nullptr;
   int left = 0;
   nlmsg_for_each_attr(entry, raw, sizeof(br_vlan_msg), left) {
      if (nla_type(entry) != BRIDGE_VLANDB_ENTRY) continue;
      auto found = Attributes<BRIDGE_VLANDB_ENTRY_MAX>::in(entry);
      const void* value = octets(found[BRIDGE_VLANDB_ENTRY_INFO], sizeof(bridge_vlan_info));
      if (!value) continue;
      const auto& info = *static_cast<const bridge_vlan_info*>(value);
      bool native = (info.flags & BRIDGE_VLAN_INFO_PVID) && info.vid <= mostVlan;
      if (native) vlans[ifIndex].pvid = info.vid;
      if (!native || found[BRIDGE_VLANDB_ENTRY_RANGE]) vlans[ifIndex].others = true;
   }
}

}  // namespace Host
