#include "cli/Gateway.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

#include "Rex/Printable.h"
#include "cli/Failure.h"
#include "cli/Session.h"

namespace LldpCli {
namespace {

constexpr const char* program = "lldp-agentd";
constexpr const char* variable = "LLDP_STORE";
// For what a gateway that ends has still to say.
constexpr std::chrono::milliseconds lastWords(100);

[[noreturn]] void fail(const std::string& what, int error) {
   throw Failure(fmt::format("cannot start {} for the state store: {}: {}", program, what,
                             std::strerror(error)));
}

// Closed at the end, and none of the standard ones, in whose place others are put.
class Descriptor {
 public:
   Descriptor(int fd, const char* what) : fd_(fd < 0 ? -1 : fcntl(fd, F_DUPFD_CLOEXEC, 3)) {
      int error = errno;
      if (fd >= 0) ::close(fd);
      if (fd_ < 0) fail(what, error);
   }
   ~Descriptor() {
      if (fd_ >= 0) ::close(fd_);
   }
   Descriptor(const Descriptor&) = delete;
   Descriptor& operator=(const Descriptor&) = delete;

   int get() const { return fd_; }
   int release() { return std::exchange(fd_, -1); }

 private:
   int fd_;
};

// A folder that nobody else can use, for a moment.
class Folder {
 public:
   Folder() {
      std::error_code error;
      path_ = (std::filesystem::temp_directory_path(error) / "lldp-XXXXXX").string();
      if (error) fail("the folder for temporary files", error.value());
      if (!mkdtemp(path_.data())) fail(path_, errno);
   }
   ~Folder() {
      unlink(socketPath().c_str());
      rmdir(path_.c_str());
   }
   Folder(const Folder&) = delete;
   Folder& operator=(const Folder&) = delete;

   std::string socketPath() const { return path_ + "/s"; }

 private:
   std::string path_;
};

void bindTo(int fd, const std::string& path) {
   sockaddr_un address{};
   address.sun_family = AF_UNIX;
   if (path.size() >= sizeof(address.sun_path)) fail(path, ENAMETOOLONG);
   std::copy(path.begin(), path.end(), address.sun_path);
   if (bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) < 0 ||
       listen(fd, SOMAXCONN) < 0) {
      fail(path, errno);
   }
}

// Beside this program, or where the shell finds it.
std::string programPath() {
   std::error_code error;
   auto beside = std::filesystem::read_symlink("/proc/self/exe", error).replace_filename(program);
   return !error && access(beside.c_str(), X_OK) == 0 ? beside.string() : program;
}

// In the environment nobody else sees the password that a URL may hold.
std::vector<std::string> environmentWith(const std::string& url) {
   std::vector<std::string> all{fmt::format("{}={}", variable, url)};
   for (char** word = environ; *word; ++word) {
      if (!std::string_view(*word).starts_with(std::string(variable) + "=")) all.push_back(*word);
   }
   return all;
}

std::vector<char*> pointers(std::vector<std::string>& words) {
   std::vector<char*> all;
   for (std::string& word : words) all.push_back(word.data());
   all.push_back(nullptr);
   return all;
}

pid_t spawn(const StoreAddress& store, int listener, int control) {
   std::vector<std::string> words{program, "--gateway"};
   if (!store.passwordFile.empty()) {
      words.insert(words.end(), {"--store-password-file", store.passwordFile});
   }
   std::vector<std::string> environment = environmentWith(store.url);
   posix_spawn_file_actions_t actions;
   posix_spawn_file_actions_init(&actions);
   posix_spawn_file_actions_adddup2(&actions, listener, STDIN_FILENO);
   posix_spawn_file_actions_adddup2(&actions, control, STDOUT_FILENO);
   posix_spawn_file_actions_adddup2(&actions, control, STDERR_FILENO);
   pid_t process = -1;
   int error = posix_spawnp(&process, programPath().c_str(), &actions, nullptr,
                            pointers(words).data(), pointers(environment).data());
   posix_spawn_file_actions_destroy(&actions);
   if (error == ENOENT) {
      throw Failure(
          fmt::format("--store needs the program {}, which is neither beside lldp nor in "
                      "a folder of PATH",
                      program));
   }
   if (error != 0) fail(program, error);
   return process;
}

}  // namespace

Gateway::Gateway(const StoreAddress& store, std::chrono::milliseconds patience) {
   Descriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
   Folder folder;
   bindTo(listener.get(), folder.socketPath());
   Descriptor place(open(folder.socketPath().c_str(), O_PATH | O_CLOEXEC), "socket");
   std::array<int, 2> ends{-1, -1};
   if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) < 0) fail("socket", errno);
   Descriptor control(ends[0], "socket");
   Descriptor theirs(ends[1], "socket");
   process_ = spawn(store, listener.get(), theirs.get());
   place_ = place.release();
   control_ = control.release();
   ::close(theirs.release());
   try {
      awaitReady(patience);
   } catch (const Failure&) {
      close();
      throw;
   }
}

Gateway::~Gateway() {
   close();
}

void Gateway::close() {
   if (place_ >= 0) ::close(std::exchange(place_, -1));
   if (control_ >= 0) ::close(std::exchange(control_, -1));
}

std::string Gateway::socketPath() const {
   return fmt::format("/proc/self/fd/{}", place_);
}

void Gateway::awaitReady(std::chrono::milliseconds patience) {
   for (;;) {
      switch (hear(patience)) {
         case Heard::line:
            if (line_ == "ready") return;
            break;
         case Heard::nothing:
            throw Failure(line_.empty() ? "the state store does not answer" : line_);
         case Heard::end:
            throw Failure(line_.empty() ? fmt::format("{} ended at once", program) : line_);
      }
   }
}

// Lines are the gateway's own words, and foreign text in them was made harmless there.
Gateway::Heard Gateway::hear(std::chrono::milliseconds patience) {
   constexpr size_t longest = 65536;
   for (size_t end; (end = pending_.find('\n')) == std::string::npos;) {
      pollfd readable{control_, POLLIN, 0};
      int ready = poll(&readable, 1, static_cast<int>(patience.count()));
      if (ready < 0 && errno == EINTR) continue;
      if (ready <= 0) return Heard::nothing;
      std::array<char, 4096> part;
      ssize_t got = recv(control_, part.data(), part.size(), 0);
      if (got <= 0 || pending_.size() > longest) return Heard::end;
      pending_.append(part.data(), static_cast<size_t>(got));
   }
   size_t end = pending_.find('\n');
   line_ = Rex::printable(pending_.substr(0, end));
   pending_.erase(0, end + 1);
   const std::string name = fmt::format("{}: ", program);
   if (line_.starts_with(name)) line_.erase(0, name.size());
   return Heard::line;
}

void Gateway::finish() {
   constexpr std::chrono::milliseconds longest(10000);
   shutdown(control_, SHUT_WR);
   bool taken = false;
   Heard heard;
   while ((heard = hear(longest)) == Heard::line) taken |= line_ == "taken";
   if (heard == Heard::end) waitpid(process_, nullptr, 0);
   if (taken) return;
   throw Failure("the state store may not have what was changed" +
                 (line_ == "ready" ? "" : ": " + line_));
}

std::optional<std::string> Gateway::fault() {
   Heard heard;
   while ((heard = hear(lastWords)) == Heard::line) {
   }
   if (heard != Heard::end) return std::nullopt;
   return fmt::format("{} --gateway ended{}", program, line_ == "ready" ? "" : ": " + line_);
}

std::string agentSocket(Session& session) {
   if (!session.store) return session.socketPath;
   if (!session.gateway) {
      session.gateway = std::make_shared<Gateway>(session.store, session.patience.answer);
   }
   return session.gateway->socketPath();
}

}  // namespace LldpCli
