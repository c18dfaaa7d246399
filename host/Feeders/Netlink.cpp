#include "host/Feeders/Netlink.h"

#include <linux/netlink.h>
#include <netlink/errno.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/socket.h>
#include <sys/socket.h>

namespace Host {
namespace {

// Room for the news of some thousands of devices that change at the same time.
constexpr int newsMemory = 8 << 20;

}  // namespace

void Netlink::Close::operator()(nl_sock* socket) const {
   nl_socket_free(socket);
}

Netlink::Netlink() : socket_(nl_socket_alloc()) {
   if (socket_ && nl_connect(socket_.get(), NETLINK_ROUTE) < 0) socket_.reset();
}

Netlink::~Netlink() = default;

int Netlink::fd() const {
   return nl_socket_get_fd(socket_.get());
}

bool Netlink::follow(int group) {
   nl_sock* news = socket_.get();
   if (nl_socket_add_membership(news, group) < 0) return false;
   nl_socket_disable_seq_check(news);
   // Beyond the system's limit, which a process without the right to that stays within.
   if (setsockopt(fd(), SOL_SOCKET, SO_RCVBUFFORCE, &newsMemory, sizeof(newsMemory)) < 0) {
      nl_socket_set_buffer_size(news, newsMemory, 0);
   }
   return nl_socket_set_nonblocking(news) >= 0;
}

int Netlink::receive(const Handler& handler) {
   auto hand = [](nl_msg* message, void* to) -> int {
      (*static_cast<const Handler*>(to))(*nlmsg_hdr(message));
      return NL_OK;
   };
   nl_socket_modify_cb(socket_.get(), NL_CB_VALID, NL_CB_CUSTOM, hand,
                       const_cast<Handler*>(&handler));
   return nl_recvmsgs_default(socket_.get());
}

Netlink::Read Netlink::read(const Handler& handler) {
   int result = receive(handler);
   if (result == -NLE_AGAIN) return Read::nothing;
   return result < 0 ? Read::lost : Read::some;
}

Netlink::Dump Netlink::dump(int type, const void* header, size_t size, const Handler& handler) {
   if (!open()) return Dump::failed;
   auto* request = const_cast<void*>(header);
   if (nl_send_simple(socket_.get(), type, NLM_F_DUMP, request, size) < 0) return Dump::failed;
   int result = receive(handler);
   // A device that is no bridge port, or is gone, has nothing to tell.
   if (result == -NLE_OPNOTSUPP || result == -NLE_INVAL || result == -NLE_NODEV) {
      return Dump::unsupported;
   }
   if (result == -NLE_DUMP_INTR) return Dump::interrupted;
   return result < 0 ? Dump::failed : Dump::done;
}

}  // namespace Host
