#include "RingLog/File.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <system_error>

#include "Rex/Assert.h"
#include "Rex/System.h"

namespace RingLog {
namespace {

constexpr uint32_t roundUp(std::size_t size) {
   return static_cast<uint32_t>((size + 7) & ~std::size_t(7));
}

// The process may be killed between any two writes. What is mapped is what its successor finds, so
// that only the compiler has to keep the order.
void written() {
   std::atomic_signal_fence(std::memory_order_seq_cst);
}

[[noreturn]] void fail(int error, const std::string& path) {
   throw std::system_error(error, std::generic_category(), "ring trace " + path);
}

// Room is taken at once: a full file system must not show when a statement is written.
char* mapNewFile(const std::string& path, std::size_t size, unsigned mode) {
   int fd = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
   if (fd < 0) fail(errno, path);
   int error = posix_fallocate(fd, 0, static_cast<off_t>(size));
   void* map = MAP_FAILED;
   if (!error) {
      map = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
      if (map == MAP_FAILED) error = errno;
   }
   close(fd);
   if (!error) return static_cast<char*>(map);
   unlink(path.c_str());
   fail(error, path);
}

}  // namespace

File::File(const std::string& path, const Sizes& kibibytes, unsigned mode) : path_(path) {
   size_ = sizeof(FileHeader);
   for (uint32_t size : kibibytes) size_ += std::size_t(size) * 1024;
   map_ = mapNewFile(path, size_, mode);
   header_ = reinterpret_cast<FileHeader*>(map_);
   header_->headerSize = sizeof(FileHeader);
   header_->recordHeaderSize = sizeof(RecordHeader);
   header_->processId = static_cast<uint64_t>(getpid());
   header_->started = Rex::System::currentTime();
   uint32_t offset = sizeof(FileHeader);
   for (std::size_t i = 0; i < kibibytes.size(); ++i) {
      header_->ring[i] = {offset, kibibytes[i] * 1024, 0, 0};
      offset += kibibytes[i] * 1024;
   }
   written();
   header_->magic = FileHeader::right;
}

File::~File() {
   munmap(map_, size_);
}

RecordHeader& File::record(const Ring& ring, uint32_t offset) const {
   return *reinterpret_cast<RecordHeader*>(map_ + ring.offset + offset);
}

// Makes `size` octets free from `next` on, and always leaves some free behind them, so that a full
// ring does not look like an empty one.
void File::makeRoom(Ring& ring, uint32_t size) {
   auto free = [&] {
      return ring.oldest > ring.next ? ring.oldest - ring.next
                                     : ring.oldest + ring.size - ring.next;
   };
   while (free() <= size) {
      uint32_t oldest = ring.oldest + record(ring, ring.oldest).size;
      ring.oldest = oldest == ring.size ? 0 : oldest;
   }
   written();
}

void File::advance(Ring& ring, uint32_t size) {
   uint32_t next = ring.next + size;
   ring.next = next == ring.size ? 0 : next;
}

void File::fillToEnd(Ring& ring) {
   uint32_t left = ring.size - ring.next;
   makeRoom(ring, left);
   RecordHeader& end = record(ring, ring.next);
   end = {};
   end.size = left;
   end.level = RecordHeader::filler;
   written();
   advance(ring, left);
}

void File::append(int level, double time, std::string_view facility, std::string_view text) {
   if (level < lowestLevel || level < 0 || level >= rings) return;
   Ring& ring = header_->ring[static_cast<std::size_t>(level)];
   facility = facility.substr(0, 255);
   text = text.substr(0, longest);
   uint32_t size = roundUp(sizeof(RecordHeader) + facility.size() + text.size());
   if (size >= ring.size) return;
   if (ring.size - ring.next < size) fillToEnd(ring);
   // No room too small for a header may stay behind the record.
   if (uint32_t left = ring.size - ring.next; left - size < sizeof(RecordHeader)) size = left;
   makeRoom(ring, size);
   RecordHeader& header = record(ring, ring.next);
   header = {size,
             static_cast<uint16_t>(facility.size() + text.size()),
             static_cast<uint8_t>(facility.size()),
             static_cast<uint8_t>(level),
             header_->written,
             time};
   char* octets = reinterpret_cast<char*>(&header + 1);
   std::copy(facility.begin(), facility.end(), octets);
   std::copy(text.begin(), text.end(), octets + facility.size());
   written();
   ++header_->written;
   advance(ring, size);
}

}  // namespace RingLog
