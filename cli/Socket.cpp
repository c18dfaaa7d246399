#include "cli/Socket.h"

#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "Rex/Printable.h"
#include "cli/Failure.h"

namespace LldpCli {

void Socket::open(std::chrono::milliseconds patience) {
   sockaddr_un address{};
   address.sun_family = AF_UNIX;
   if (path_.empty() || path_.size() >= sizeof(address.sun_path)) {
      throw Failure(fmt::format("'{}' is no socket path: it has 1 to {} octets",
                                Rex::printable(path_), sizeof(address.sun_path) - 1));
   }
   std::copy(path_.begin(), path_.end(), address.sun_path);
   close();
   descriptor_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
   if (descriptor_ < 0) fail(errno);
   patienceIs(patience);
   if (::connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) < 0) {
      int error = errno;
      close();
      fail(error);
   }
}

void Socket::patienceIs(std::chrono::milliseconds patience) {
   timeval time{patience.count() / 1000, patience.count() % 1000 * 1000};
   setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof(time));
   setsockopt(descriptor_, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof(time));
}

void Socket::send(std::string_view octets) {
   while (!octets.empty()) {
      ssize_t sent = ::send(descriptor_, octets.data(), octets.size(), MSG_NOSIGNAL);
      if (sent < 0 && errno == EINTR) continue;
      if (sent < 0) fail(errno);
      octets.remove_prefix(static_cast<size_t>(sent));
   }
}

size_t Socket::receive(void* room, size_t size) {
   ssize_t got = 0;
   do {
      got = recv(descriptor_, room, size, 0);
   } while (got < 0 && errno == EINTR);
   if (got < 0) fail(errno);
   return static_cast<size_t>(got);
}

void Socket::close() {
   if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
}

void Socket::fail(int error) const {
   std::string path = Rex::printable(path_);
   switch (error) {
      case ENOENT:
      case ENOTDIR:
      case ECONNREFUSED:
         throw Failure(
             fmt::format("no agent answers at {}; start one with 'lldp-agentd', or name "
                         "its socket with --socket PATH",
                         path));
      case EACCES:
      case EPERM:
         throw NoRight(
             fmt::format("no right to use {}; run lldp as root or as a user whom the "
                         "socket's permissions admit",
                         path));
      case EAGAIN:
         throw Failure(fmt::format("the agent at {} does not answer", path));
      case ECONNRESET:
      case EPIPE:
         throw Failure(fmt::format("the agent at {} broke off its answer", path));
      default:
         throw Failure(fmt::format("cannot use {}: {}", path, std::strerror(error)));
   }
}

}  // namespace LldpCli
