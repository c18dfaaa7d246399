// The writing side of a ring trace file. Internal to this folder.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "RingLog/Format.h"
#include "RingLog/RingLog.h"

namespace RingLog {

class File {
 public:
   // Makes the file, whole and zeroed. Throws std::system_error.
   File(const std::string& path, const Sizes& kibibytes, unsigned mode);
   ~File();
   File(const File&) = delete;
   File& operator=(const File&) = delete;

   // Adds a statement to its level's ring and drops the oldest ones that are in its way.
   void append(int level, double time, std::string_view facility, std::string_view text);

   const std::string& path() const { return path_; }
   int lowestLevel = 0;
   std::size_t longest = Statement::room;

 private:
   RecordHeader& record(const Ring& ring, uint32_t offset) const;
   void makeRoom(Ring& ring, uint32_t size);
   void fillToEnd(Ring& ring);
   static void advance(Ring& ring, uint32_t size);

   const std::string path_;
   std::size_t size_ = 0;
   char* map_ = nullptr;
   FileHeader* header_ = nullptr;
};

// What a context has of the ring trace.
struct Service {
   std::unique_ptr<File> file;
};

}  // namespace RingLog
