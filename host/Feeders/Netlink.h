// A connection to the kernel's network (rtnetlink(7)).
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

struct nl_sock;
struct nlmsghdr;

namespace Host {

class Netlink {
 public:
   using Handler = std::function<void(const nlmsghdr&)>;
   enum class Read { some, nothing, lost };
   enum class Dump { done, unsupported, interrupted, failed };

   Netlink();
   ~Netlink();
   Netlink(const Netlink&) = delete;
   Netlink& operator=(const Netlink&) = delete;

   bool open() const { return bool(socket_); }
   int fd() const;

   // From here on news of `group` come, as long as the kernel has room for them.
   bool follow(int group);
   // Hands out the news of one datagram; does not wait. `lost`: the kernel dropped some before.
   Read read(const Handler& handler);

   // Asks for everything of a kind, and waits for it. `header` is that of the request.
   // `interrupted`: it changed meanwhile, and what was handed out may not fit together.
   Dump dump(int type, const void* header, size_t size, const Handler& handler);

 private:
   struct Close {
      void operator()(nl_sock* socket) const;
   };
   int receive(const Handler& handler);

   std::unique_ptr<nl_sock, Close> socket_;
};

}  // namespace Host
