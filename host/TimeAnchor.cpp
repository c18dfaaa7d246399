#include "host/TimeAnchor.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>

#include "host/StartError.h"

namespace Host {
namespace {

class LockedFile {
 public:
   explicit LockedFile(const std::string& path) : path_(path) {
      fd_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
      // Two processes that start at once must not fix two times.
      if (fd_ < 0 || flock(fd_, LOCK_EX) < 0) fail();
   }
   ~LockedFile() {
      if (fd_ >= 0) close(fd_);
   }
   LockedFile(const LockedFile&) = delete;
   LockedFile& operator=(const LockedFile&) = delete;

   std::string content() const {
      std::array<char, 256> text;
      ssize_t got = pread(fd_, text.data(), text.size(), 0);
      if (got < 0) fail();
      return {text.data(), static_cast<size_t>(got)};
   }
   void contentIs(const std::string& content) const {
      if (ftruncate(fd_, 0) < 0 ||
          pwrite(fd_, content.data(), content.size(), 0) != static_cast<ssize_t>(content.size())) {
         fail();
      }
   }

 private:
   [[noreturn]] void fail() const {
      throw StartError("the time anchor " + path_ + " cannot be kept: " + std::strerror(errno));
   }
   const std::string path_;
   int fd_;
};

// The offset that a file of this boot holds.
std::optional<double> offsetIn(const std::string& content, const std::string& bootId) {
   std::istringstream in(content);
   std::string boot;
   double offset = 0;
   // The end tells a whole line from one that was cut short.
   std::string end;
   if (in >> boot >> offset >> end && boot == bootId && end == "end" && std::isfinite(offset)) {
      return offset;
   }
   return std::nullopt;
}

}  // namespace

std::optional<double> standingAnchor(const std::string& file, const std::string& bootId) {
   std::string content;
   std::getline(std::ifstream(file), content);
   return offsetIn(content, bootId);
}

double timeAnchor(const std::string& file, const std::string& bootId, double fresh) {
   LockedFile kept(file);
   if (auto offset = offsetIn(kept.content(), bootId)) return *offset;
   kept.contentIs(fmt::format("{} {:.9f} end\n", bootId, fresh));
   return fresh;
}

}  // namespace Host
