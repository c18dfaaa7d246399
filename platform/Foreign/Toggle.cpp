#include "Foreign/Toggle.h"

#include <fstream>
#include <mutex>

#include "Rex/Context.h"
#include "Rex/Json.h"
#include "Rex/Log.h"

namespace {

const Rex::LogHandle fileUnused(
    "TOGGLE_FILE_NOT_USED", 6, "Feature toggle %s keeps its default: %s %s",
    "There is no toggle file, or it holds no JSON object of names and booleans, or another value.",
    "Nothing, unless a toggle was to be turned: write the file and restart the agent.", 0, 1, 0);

bool readToggle(const std::string& path, const char* name, bool byDefault) {
   std::ifstream file(path);
   Rex::Json toggles = Rex::Json::parse(file, nullptr, false);
   if (!toggles.is_object()) {
      Rex::log(fileUnused, Rex::String(name), Rex::String(path),
               Rex::String(file.is_open() ? "is not a JSON object" : "cannot be read"));
      return byDefault;
   }
   auto at = toggles.find(name);
   if (at == toggles.end()) return byDefault;
   if (at->is_boolean()) return at->get<bool>();
   Rex::log(fileUnused, Rex::String(name), Rex::String(path),
            Rex::String("names it, but its value is no boolean"));
   return byDefault;
}

}  // namespace

bool getToggleState(const char* name, const char* fileName, bool byDefault) {
   static std::mutex mutex;
   std::lock_guard lock(mutex);
   Rex::Context& context = Rex::Context::current();
   auto at = context.toggles.find(name);
   if (at == context.toggles.end()) {
      std::string path = context.service<ToggleFolder>().path + "/" + fileName;
      at = context.toggles.emplace(name, readToggle(path, name, byDefault)).first;
   }
   return at->second;
}
