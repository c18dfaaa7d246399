#include "host/File.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "host/StartError.h"

namespace Host {

namespace {

struct Descriptor {
   explicit Descriptor(int fd) : fd(fd) {}
   ~Descriptor() {
      if (fd >= 0) close(fd);
   }
   Descriptor(const Descriptor&) = delete;
   Descriptor& operator=(const Descriptor&) = delete;

   const int fd;
};

}  // namespace

void writableFolder(const std::string& folder, const std::string& purpose) {
   std::error_code error;
   std::filesystem::create_directories(folder, error);
   if (!error && !std::filesystem::is_directory(folder, error) && !error) {
      error = std::make_error_code(std::errc::not_a_directory);
   }
   if (!error && access(folder.c_str(), W_OK | X_OK) < 0) {
      error = std::error_code(errno, std::generic_category());
   }
   if (error) {
      throw StartError(purpose + " " + folder + " cannot be written to: " + error.message());
   }
}

// Throws what errno says.
[[noreturn]] static void fail(const std::string& path, const char* what) {
   throw StartError(path + " cannot be " + what + ": " + std::strerror(errno));
}

// Makes a change of a folder's entries durable. On a file system that cannot sync one, they are as
// durable as it makes them by itself.
static void syncFolder(const std::string& path) {
   std::string folder = std::filesystem::path(path).parent_path().string();
   Descriptor dir(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
   bool good = dir.fd >= 0 && fsync(dir.fd) == 0;
   if (!good && (dir.fd < 0 || (errno != EINVAL && errno != ENOTSUP))) fail(path, "made durable");
}

// The file that a chain of links stands for, whether it is there or not.
static std::string behindLinks(const std::string& path) {
   constexpr int mostLinks = 40;  // as many as the kernel follows
   std::filesystem::path target = path;
   std::error_code none;
   for (int i = 0; std::filesystem::is_symlink(target, none); ++i) {
      if (i == mostLinks) {
         errno = ELOOP;
         fail(path, "written");
      }
      target = target.parent_path() / std::filesystem::read_symlink(target, none);
   }
   return target.string();
}

std::optional<std::string> readWhole(const std::string& path, size_t maxBytes) {
   // Opening a pipe would wait for its writer.
   Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
   if (file.fd < 0 && errno == ENOENT) return std::nullopt;
   struct stat status {};
   if (file.fd < 0 || fstat(file.fd, &status) < 0) fail(path, "read");
   if (!S_ISREG(status.st_mode)) throw StartError(path + " cannot be read: it is no plain file");
   std::string content;
   char part[16 * 1024];
   ssize_t got;
   while ((got = read(file.fd, part, sizeof part)) > 0) {
      content.append(part, static_cast<size_t>(got));
      if (content.size() > maxBytes) {
         throw StartError(path + " cannot be read: it is longer than " + std::to_string(maxBytes) +
                          " octets");
      }
   }
   if (got < 0) fail(path, "read");
   return content;
}

static bool writeAll(int fd, std::string_view content) {
   while (!content.empty()) {
      ssize_t gone = write(fd, content.data(), content.size());
      if (gone < 0 && errno != EINTR) return false;
      if (gone > 0) content.remove_prefix(static_cast<size_t>(gone));
   }
   return true;
}

// Owner and permissions of the file at `path`, if there is one. An owner that only root could give
// stays away.
static bool adopt(int fd, const std::string& path) {
   struct stat old {};
   if (stat(path.c_str(), &old) < 0) return errno == ENOENT;
   if (fchown(fd, old.st_uid, old.st_gid) < 0 && errno != EPERM) return false;
   return fchmod(fd, old.st_mode & 07777) == 0;
}

void writeWhole(const std::string& path, const std::string& content) {
   const std::string target = behindLinks(path);
   std::string fresh = target + ".new";
   unlink(fresh.c_str());  // what a crash has left
   Descriptor file(open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
   bool good = file.fd >= 0 && adopt(file.fd, target) && writeAll(file.fd, content) &&
               fsync(file.fd) == 0 && rename(fresh.c_str(), target.c_str()) == 0;
   if (good) return syncFolder(target);
   int error = errno;
   if (file.fd >= 0) unlink(fresh.c_str());
   errno = error;
   fail(path, "written");
}

}  // namespace Host
