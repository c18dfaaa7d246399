#include "Foreign/Toggle.h"

#include <fstream>

#include "Rex/Context.h"
#include "Rex/Json.h"

bool getToggleState(const char* name, const char* fileName, bool byDefault) {
   const Rex::Context& context = Rex::Context::current();
   if (auto at = context.toggles.find(name); at != context.toggles.end()) return at->second;
   std::ifstream file(context.runDir + "/" + fileName);
   // A file that is absent or broken leaves every toggle at its default.
   Rex::Json toggles = Rex::Json::parse(file, nullptr, false);
   if (!toggles.is_object()) return byDefault;
   auto at = toggles.find(name);
   return at != toggles.end() && at->is_boolean() ? at->get<bool>() : byDefault;
}
