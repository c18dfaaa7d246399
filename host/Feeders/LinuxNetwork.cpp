#include "host/Feeders/LinuxNetwork.h"

#include <linux/if_bridge.h>
#include <linux/rtnetlink.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "Rex/Context.h"
#include "Rex/Log.h"
#include "host/Feeders/NetlinkMessages.h"
#include "host/StartError.h"

namespace Host {
namespace {

const Rex::LogHandle newsLost(
    "HOST_LINK_NEWS_LOST", 4,
    "News of network devices or their addresses were lost; all of them are read anew",
    "More changed at the same time than the kernel had room to tell. Nothing is wrong afterwards, "
    "but a change and its return in between went unseen.",
    Rex::NoActionRequired, 60.0, 1.0, 0);

constexpr double firstPatience = 0.1;
constexpr double mostPatience = 30;
constexpr int mostAttempts = 5;  // to read what changes all the time meanwhile

bool isLink(const nlmsghdr& message) {
   return message.nlmsg_type == RTM_NEWLINK || message.nlmsg_type == RTM_DELLINK;
}
bool isAddress(const nlmsghdr& message) {
   return message.nlmsg_type == RTM_NEWADDR || message.nlmsg_type == RTM_DELADDR;
}

// Everything of a kind, put together by `take(message, all)`; nothing when the kernel could not
// tell it whole.
template <class All, class Request, class Take>
std::optional<All> readWhole(int type, const Request& request, Take take) {
   for (int attempt = 0; attempt < mostAttempts; ++attempt) {
      All all;
      auto done = Netlink().dump(type, &request, sizeof(request),
                                 [&](const nlmsghdr& message) { take(message, all); });
      if (done == Netlink::Dump::failed) break;
      if (done != Netlink::Dump::interrupted) return all;
   }
   return std::nullopt;
}

auto readLinks() {
   return readWhole<std::map<int32_t, Link>>(RTM_GETLINK, ifinfomsg{},
                                             [](const nlmsghdr& message, auto& all) {
                                                if (auto link = linkIn(message))
                                                   all[link->ifIndex] = *link;
                                             });
}

auto readAddresses() {
   return readWhole<std::map<int32_t, DeviceAddresses>>(
       RTM_GETADDR, ifaddrmsg{}, [](const nlmsghdr& message, auto& all) {
          auto news = addressIn(message);
          if (!news || news->gone) return;
          DeviceAddresses& addresses = all[news->ifIndex];
          if (auto* ip4 = std::get_if<Ip4Address>(&news->address)) {
             put(addresses, *ip4);
          } else {
             addresses.ip6.insert(std::get<Wirekit::Ip6AddrWithMask>(news->address));
          }
       });
}

// Those of one device, or with 0 of all. A kernel without VLANs on bridges has none to tell.
auto readVlans(int32_t ifIndex) {
   br_vlan_msg request{};
   request.family = AF_BRIDGE;
   request.ifindex = static_cast<uint32_t>(ifIndex);
   return readWhole<std::map<int32_t, PortVlan>>(RTM_GETVLAN, request, takeVlans);
}

}  // namespace

LinuxNetwork::LinuxNetwork(Rex::Loop& loop, Network& network)
    : loop_(loop),
      network_(network),
      patience_(firstPatience),
      retry_(Rex::Context::current().clock()) {
   // A timer runs as a handler of the agent, in which a port that went and one that came under its
   // name would be told as one change. The socket has room as good as always: waiting for that is
   // how a turn outside is asked for.
   retry_.handlerIs(nullptr, [this] { waitFor(EPOLLIN | EPOLLOUT); });
   // News are subscribed to before everything is read, so that nothing falls between the two. One
   // socket for all of them keeps their order: an address goes before its device does.
   bool follows = news_.open();
   for (int group : {RTNLGRP_LINK, RTNLGRP_IPV4_IFADDR, RTNLGRP_IPV6_IFADDR}) {
      follows = follows && news_.follow(group);
   }
   if (!follows) throw StartError("the kernel's network devices cannot be followed (netlink)");
   news_.follow(RTNLGRP_BRVLAN);  // not every kernel has it
   if (!readAll()) throw StartError("the kernel's network devices cannot be read (netlink)");
   waitFor(EPOLLIN);
}

LinuxNetwork::~LinuxNetwork() {
   loop_.descriptorDel(news_.fd());
}

void LinuxNetwork::waitFor(uint32_t events) {
   loop_.descriptorIs(
       news_.fd(), events, [this](uint32_t ready) { handleReady(ready); },
       Rex::Loop::Serve::outside);
}

void LinuxNetwork::handleReady(uint32_t events) {
   if (events & EPOLLOUT) {
      waitFor(EPOLLIN);
      return recover();
   }
   handleReadable();
}

void LinuxNetwork::handleReadable() {
   auto handler = [this](const nlmsghdr& message) { handleMessage(message); };
   auto read = Netlink::Read::some;
   for (int i = 0; i < messagesPerTurn && read == Netlink::Read::some; ++i) {
      read = news_.read(handler);
   }
   // The kernel dropped news for want of memory: what we know may be wrong anywhere.
   if (read == Netlink::Read::lost) Rex::log(newsLost);
   if (read == Netlink::Read::lost || !finishTurn()) recover();
}

void LinuxNetwork::handleMessage(const nlmsghdr& message) {
   if (int32_t ifIndex = vlanNewsIn(message)) {
      vlanNews_.insert(ifIndex);
   } else if (isLink(message)) {
      handleLink(message);
   } else if (isAddress(message)) {
      handleAddress(message);
   }
}

void LinuxNetwork::handleLink(const nlmsghdr& message) {
   auto link = linkIn(message);
   if (!link) return;
   if (message.nlmsg_type == RTM_NEWLINK) {
      const Link* before = network_.links.at(link->ifIndex);
      bool joins = link->master && (!before || before->master != link->master);
      bool bridge = link->vlanAware && (!before || !before->vlanAware);
      if (joins || bridge) vlanNews_.insert(link->ifIndex);
      return network_.links.linkIs(*link);
   }
   network_.addresses.deviceDel(link->ifIndex);
   network_.links.linkDel(link->ifIndex);
   network_.vlans.vlanIs(link->ifIndex, {});
}

void LinuxNetwork::handleAddress(const nlmsghdr& message) {
   auto news = addressIn(message);
   if (!news) return;
   Addresses& addresses = network_.addresses;
   if (auto* ip4 = std::get_if<Ip4Address>(&news->address)) {
      if (news->gone) return addresses.ip4Del(news->ifIndex, *ip4);
      return addresses.ip4Is(news->ifIndex, *ip4);
   }
   const auto& ip6 = std::get<Wirekit::Ip6AddrWithMask>(news->address);
   if (news->gone) return addresses.ip6Del(news->ifIndex, ip6);
   addresses.ip6Is(news->ifIndex, ip6);
}

bool LinuxNetwork::finishTurn() {
   for (int32_t ifIndex : std::exchange(vlanNews_, {})) {
      auto vlans = readVlans(ifIndex);
      if (!vlans) return false;
      network_.vlans.vlanIs(ifIndex, (*vlans)[ifIndex]);
   }
   network_.addresses.tell();
   return true;
}

bool LinuxNetwork::readAll() {
   auto links = readLinks();
   auto vlans = links ? readVlans(0) : std::nullopt;
   auto addresses = vlans ? readAddresses() : std::nullopt;
   if (!addresses) return false;
   network_.links.linksAre(*links);
   network_.vlans.vlansAre(*vlans);
   network_.addresses.addressesAre(std::move(*addresses));
   network_.addresses.tell();
   return true;
}

void LinuxNetwork::recover() {
   // What waits is older than what is read now, and would take a port back for a moment.
   auto ignored = [](const nlmsghdr&) {};
   for (int i = 0; i < 100'000 && news_.read(ignored) != Netlink::Read::nothing; ++i) {
   }
   vlanNews_.clear();
   if (readAll()) {
      patience_ = firstPatience;
      return;
   }
   retry_.timeMinIs(Rex::Context::current().clock()->now() + patience_);
   patience_ = std::min(2 * patience_, mostPatience);
}

}  // namespace Host
