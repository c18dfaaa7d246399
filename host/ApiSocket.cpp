#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "host/ApiServer.h"
#include "host/StartError.h"

namespace Host {
namespace {

[[noreturn]] void fail(const std::string& path, int error) {
   throw StartError("cannot serve the management API at " + path + ": " + std::strerror(error));
}

[[noreturn]] void taken(const std::string& path) {
   throw StartError("another process serves the management API at " + path);
}

sockaddr_un addressOf(const std::string& path) {
   sockaddr_un address{};
   address.sun_family = AF_UNIX;
   if (path.empty() || path.size() >= sizeof(address.sun_path)) fail(path, ENAMETOOLONG);
   std::copy(path.begin(), path.end(), address.sun_path);
   return address;
}

// Held as long as the process lives, so that of two that start at once only one goes on.
int lockOf(const std::string& path) {
   std::error_code error;
   std::filesystem::path folder = std::filesystem::path(path).parent_path();
   if (!folder.empty()) std::filesystem::create_directories(folder, error);
   if (error) fail(path, error.value());
   std::string file = path + ".lock";
   int fd = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
   if (fd < 0) fail(path, errno);
   if (flock(fd, LOCK_EX | LOCK_NB) < 0) {
      int why = errno;
      close(fd);
      if (why == EWOULDBLOCK) taken(path);
      fail(path, why);
   }
   return fd;
}

// What stands at the path: a socket that nobody serves is removed, anything else stays.
void clear(const std::string& path, const sockaddr_un& address) {
   struct stat there;
   if (lstat(path.c_str(), &there) < 0) {
      if (errno == ENOENT) return;
      fail(path, errno);
   }
   if (!S_ISSOCK(there.st_mode)) fail(path, EEXIST);
   int probe = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
   if (probe < 0) fail(path, errno);
   bool dead = connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) < 0 &&
               errno == ECONNREFUSED;
   close(probe);
   if (!dead) taken(path);
   if (unlink(path.c_str()) < 0) fail(path, errno);
}

}  // namespace

ApiSocket::ApiSocket(const std::string& path, std::optional<gid_t> group) : path_(path), lock_(-1) {
   sockaddr_un address = addressOf(path);
   lock_ = lockOf(path);
   try {
      clear(path, address);
      fd_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
      if (fd_ < 0) fail(path, errno);
      mode_t before = umask(0117);
      int bound = bind(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
      umask(before);
      if (bound < 0) fail(path, errno);
      if (group && chown(path.c_str(), static_cast<uid_t>(-1), *group) < 0) fail(path, errno);
      if (::listen(fd_, 64) < 0) fail(path, errno);
   } catch (const StartError&) {
      if (fd_ >= 0) close(fd_);
      close(lock_);
      throw;
   }
}

ApiSocket::~ApiSocket() {
   unlink(path_.c_str());
   close(fd_);
   close(lock_);
}

}  // namespace Host
