#include "host/Feeders/LinuxLinks.h"

#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/rtnetlink.h>
#include <netlink/cache.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/route/link.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>

#include "Rex/Context.h"
#include "Rex/Log.h"
#include "host/StartError.h"

namespace Host {
namespace {

const Rex::LogHandle newsLost(
    "HOST_LINK_NEWS_LOST", 4, "News of network devices were lost (%s); all of them are read anew",
    "More devices changed at the same time than the kernel had room to tell. Nothing is wrong "
    "afterwards, but a change and its return in between went unseen.",
    Rex::NoActionRequired, 60.0, 1.0, 0);

constexpr double firstPatience = 0.1;
constexpr double mostPatience = 30;
// Room for the news of some thousands of devices that change at the same time.
constexpr int newsMemory = 8 << 20;

std::string textOf(const char* text) {
   return text ? text : "";
}

Link linkOf(rtnl_link* from) {
   Link link;
   link.ifIndex = rtnl_link_get_ifindex(from);
   link.name = textOf(rtnl_link_get_name(from));
   link.kind = textOf(rtnl_link_get_type(from));
   link.alias = textOf(rtnl_link_get_ifalias(from));
   nl_addr* address = rtnl_link_get_addr(from);
   if (address && nl_addr_get_len(address) == Wirekit::EthAddr::size) {
      link.ethAddr = Wirekit::EthAddr::fromOctets(nl_addr_get_binary_addr(address));
   }
   link.mtu = rtnl_link_get_mtu(from);
   link.master = rtnl_link_get_master(from);
   link.ethernet = rtnl_link_get_arptype(from) == ARPHRD_ETHER;
   link.adminUp = rtnl_link_get_flags(from) & IFF_UP;
   link.carrier = rtnl_link_get_flags(from) & IFF_LOWER_UP;
   link.operState = rtnl_link_get_operstate(from);
   return link;
}

}  // namespace

void LinuxLinks::CloseSocket::operator()(nl_sock* socket) const {
   nl_socket_free(socket);
}

LinuxLinks::Socket LinuxLinks::connect() {
   Socket socket(nl_socket_alloc());
   if (!socket || nl_connect(socket.get(), NETLINK_ROUTE) < 0) return nullptr;
   return socket;
}

LinuxLinks::LinuxLinks(Rex::Loop& loop, Links& links)
    : loop_(loop),
      links_(links),
      news_(connect()),
      patience_(firstPatience),
      retry_(Rex::Context::current().clock()) {
   // A timer runs as a handler of the agent, in which a port that went and one that came under its
   // name would be told as one change. The socket has room as good as always: waiting for that is
   // how a turn outside is asked for.
   retry_.handlerIs(nullptr, [this] { waitFor(EPOLLIN | EPOLLOUT); });
   nl_sock* news = news_.get();
   // News are subscribed to before everything is read, so that nothing falls between the two.
   if (!news || nl_socket_add_membership(news, RTNLGRP_LINK) < 0 ||
       nl_socket_set_nonblocking(news) < 0) {
      throw StartError("the kernel's network devices cannot be followed (netlink)");
   }
   nl_socket_disable_seq_check(news);
   // Beyond the system's limit, which a process without the right to that stays within.
   int fd = nl_socket_get_fd(news);
   if (setsockopt(fd, SOL_SOCKET, SO_RCVBUFFORCE, &newsMemory, sizeof(newsMemory)) < 0) {
      nl_socket_set_buffer_size(news, newsMemory, 0);
   }
   nl_socket_modify_cb(news, NL_CB_VALID, NL_CB_CUSTOM, &LinuxLinks::handleMessage, this);
   if (!readAll()) throw StartError("the kernel's network devices cannot be read (netlink)");
   waitFor(EPOLLIN);
}

LinuxLinks::~LinuxLinks() {
   loop_.descriptorDel(nl_socket_get_fd(news_.get()));
}

void LinuxLinks::waitFor(uint32_t events) {
   loop_.descriptorIs(
       nl_socket_get_fd(news_.get()), events, [this](uint32_t ready) { handleReady(ready); },
       Rex::Loop::Serve::outside);
}

void LinuxLinks::handleReady(uint32_t events) {
   if (events & EPOLLOUT) {
      waitFor(EPOLLIN);
      return recover();
   }
   handleReadable();
}

void LinuxLinks::handleReadable() {
   for (int i = 0; i < messagesPerTurn; ++i) {
      int result = nl_recvmsgs_default(news_.get());
      if (result == -NLE_AGAIN) return;
      // The kernel dropped news for want of memory: what we know may be wrong anywhere.
      if (result < 0) {
         Rex::log(newsLost, Rex::String(nl_geterror(result)));
         return recover();
      }
   }
}

int LinuxLinks::handleMessage(nl_msg* message, void* self) {
   nlmsghdr* header = nlmsg_hdr(message);
   if (!nlmsg_valid_hdr(header, sizeof(ifinfomsg))) return NL_OK;
   // A bridge tells about its members in messages that look like news of the device itself. The
   // library's object does not show it: that of a bridge is always of this family.
   if (static_cast<const ifinfomsg*>(nlmsg_data(header))->ifi_family == AF_BRIDGE) return NL_OK;
   // Events of wireless devices come in the same form, with little of the device in them.
   if (nlmsg_find_attr(header, sizeof(ifinfomsg), IFLA_WIRELESS)) return NL_OK;
   auto parsed = [](nl_object* object, void* links) {
      auto* from = reinterpret_cast<rtnl_link*>(object);
      if (nl_object_get_msgtype(object) == RTM_DELLINK) {
         static_cast<Links*>(links)->linkDel(rtnl_link_get_ifindex(from));
      } else {
         static_cast<Links*>(links)->linkIs(linkOf(from));
      }
   };
   nl_msg_parse(message, parsed, &static_cast<LinuxLinks*>(self)->links_);
   return NL_OK;
}

bool LinuxLinks::readAll() {
   Socket socket = connect();
   nl_cache* cache = nullptr;
   if (!socket || rtnl_link_alloc_cache(socket.get(), AF_UNSPEC, &cache) < 0) return false;
   std::vector<Link> all;
   for (nl_object* at = nl_cache_get_first(cache); at; at = nl_cache_get_next(at)) {
      all.push_back(linkOf(reinterpret_cast<rtnl_link*>(at)));
   }
   nl_cache_free(cache);
   std::sort(all.begin(), all.end(),
             [](const Link& a, const Link& b) { return a.ifIndex < b.ifIndex; });
   links_.linksAre(all);
   return true;
}

void LinuxLinks::recover() {
   // What waits is older than what is read now, and would take a port back for a moment.
   nl_socket_modify_cb(
       news_.get(), NL_CB_VALID, NL_CB_CUSTOM, [](nl_msg*, void*) -> int { return NL_OK; },
       nullptr);
   for (int i = 0; i < 100'000 && nl_recvmsgs_default(news_.get()) != -NLE_AGAIN; ++i) {
   }
   nl_socket_modify_cb(news_.get(), NL_CB_VALID, NL_CB_CUSTOM, &LinuxLinks::handleMessage, this);
   if (readAll()) {
      patience_ = firstPatience;
      return;
   }
   retry_.timeMinIs(Rex::Context::current().clock()->now() + patience_);
   patience_ = std::min(2 * patience_, mostPatience);
}

}  // namespace Host
