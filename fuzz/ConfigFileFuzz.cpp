// Configuration files out of arbitrary octets: one that is refused changes nothing and says where
// it is wrong; one that is taken is saved to a file that loads to the same.
#include <memory>
#include <string>

#include "Rex/Assert.h"
#include "Rex/Context.h"
#include "host/ConfigFile.h"
#include "host/StartError.h"

namespace {

struct Store {
   // Whether the text was taken.
   bool load(const std::string& text) const {
      try {
         Host::ConfigFile::decode(text, "file", config)();
      } catch (const Host::StartError& error) {
         std::string words = error.what();
         REX_ASSERT(words.starts_with("file:") && words.find('\n') == std::string::npos);
         REX_ASSERT(std::stoul(words.substr(5)) >= 1);
         return false;
      }
      return true;
   }
   std::string saved() const { return Host::ConfigFile::encode(config); }
   // Everything that the entities hold, the defaults too.
   Rex::Json whole() const {
      Rex::Json all;
      for (const std::string& path : manager->paths()) {
         all[path] = entityToJson(*manager->getEntity(path));
      }
      return all;
   }

   Rex::Context context{Rex::make<Rex::Clock>(std::make_shared<Rex::ManualTime>())};
   Rex::ContextScope scope{context};
   Rex::Ptr<Statestore::EntityManager> manager = Rex::make<Statestore::EntityManager>();
   Host::OperatorConfig config{manager};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   Store first;
   if (!first.load({reinterpret_cast<const char*>(data), size})) {
      REX_ASSERT(first.saved() == "{}\n");
      return 0;
   }
   std::string saved = first.saved();
   Store second;
   REX_ASSERT(second.load(saved));
   REX_ASSERT(second.saved() == saved && second.whole() == first.whole());
   return 0;
}
