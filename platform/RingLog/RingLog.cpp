#include "RingLog/RingLog.h"

#include <unistd.h>

#include <cstdlib>

#include "Rex/Assert.h"
#include "Rex/Context.h"
#include "Rex/System.h"
#include "RingLog/File.h"

namespace RingLog {
namespace {

File* present() {
   return Rex::Context::current().service<Service>().file.get();
}

std::string pathOf(const Rex::String& fileName, const char* folder) {
   if (!folder) folder = std::getenv("RINGLOGDIR");
   std::string path = folder ? folder : Rex::Context::current().runDir;
   path += "/" + fileName.stdString();
   if (size_t at = path.rfind("%d"); at != std::string::npos) {
      path.replace(at, 2, std::to_string(getpid()));
   }
   return path;
}

}  // namespace

void initialize(const Rex::String& fileName, const Sizes& sizes, const char* folder,
                int lowestLevel, int recordHeader, unsigned mode, bool keepLast, int longest) {
   REX_ASSERT(recordHeader == sizeof(RecordHeader));
   std::string path = pathOf(fileName, folder);
   // A process that died may still have the file open in its core; it gets out of the way whole.
   if (keepLast) {
      rename(path.c_str(), (path + ".last").c_str());
   } else {
      unlink(path.c_str());
   }
   auto file = std::make_unique<File>(path, sizes, mode ? mode : 0640);
   file->lowestLevel = lowestLevel;
   file->longest = static_cast<std::size_t>(longest);
   Rex::Context::current().service<Service>().file = std::move(file);
}

Rex::String path() {
   File* file = present();
   return file ? Rex::String(file->path()) : Rex::String();
}

Statement::Statement(const Rex::TraceHandle& handle, int level, Outlets outlets)
    : handle_(handle),
      level_(level),
      file_(present()),
      trace_(outlets == ringAndTrace && handle.isOn(level)),
      out_(nullptr) {
   setp(text_.data(), text_.data() + text_.size());
   out_.rdbuf(this);
}

Statement::~Statement() {
   if (file_) {
      double now = Rex::System::currentTime();
      file_->append(level_, now, handle_.facility(), text());
   }
   if (trace_) Rex::TraceStatement(handle_, level_) << text();
}

}  // namespace RingLog
