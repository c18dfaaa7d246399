#include "host/File.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "host/StartError.h"

namespace Host {

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

// Makes a change of a folder's entries durable. What cannot be synced is as durable as the file
// system makes it by itself.
static void syncFolder(const std::string& path) {
   std::string folder = std::filesystem::path(path).parent_path().string();
   int fd = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
   if (fd < 0) return;
   fsync(fd);
   close(fd);
}

void writeWhole(const std::string& path, const std::string& content) {
   std::string fresh = path + ".new";
   int fd = open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
   bool good = fd >= 0 &&
               write(fd, content.data(), content.size()) == static_cast<ssize_t>(content.size()) &&
               fsync(fd) == 0;
   int error = errno;
   if (fd >= 0) close(fd);
   if (good && rename(fresh.c_str(), path.c_str()) == 0) {
      syncFolder(path);
      return;
   }
   if (good) error = errno;
   unlink(fresh.c_str());
   throw StartError(path + " cannot be written: " + std::strerror(error));
}

}  // namespace Host
