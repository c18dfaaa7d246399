#include "host/Module.h"

#include <dlfcn.h>

#include <filesystem>

#include "host/StartError.h"

namespace Host {
namespace {

std::string ownModule() {
   constexpr const char* file = "liblldpagent.so";
   std::error_code error;
   auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
   auto beside = folder / file;
   return std::filesystem::exists(beside, error) ? beside.string()
                                                 : (folder.parent_path() / "lib" / file).string();
}

template <class Entry>
Entry entryOf(void* module, const char* name, const std::string& path) {
   void* found = dlsym(module, name);
   if (!found) throw StartError("the module " + path + " has no entry point " + name);
   return reinterpret_cast<Entry>(found);
}

}  // namespace

Module::Module(const std::string& path) {
   std::string file = path.empty() ? ownModule() : path;
   // A name without a slash would be looked for in the system's folders.
   if (file.find('/') == std::string::npos) file.insert(0, "./");
   void* module = dlopen(file.c_str(), RTLD_NOW | RTLD_GLOBAL);
   if (!module) throw StartError("the module " + file + " does not load: " + dlerror());
   agentFactory_ = entryOf<AgentFactory>(module, "agentFactory", file);
   doCleanup_ = entryOf<DoCleanup>(module, "doCleanup", file);
}

AgentBase::CAgent::Ptr Module::makeAgent(const char* name) const {
   return AgentBase::CAgent::Ptr::adopt(agentFactory_(name));
}

}  // namespace Host
