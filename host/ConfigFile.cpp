#include "host/ConfigFile.h"

#include "Rex/Printable.h"
#include "host/ConfigText.h"
#include "host/File.h"
#include "host/StartError.h"

namespace Host {

void ConfigFile::load(const OperatorConfig& config) const {
   auto text = readWhole(path_, maxBytes);
   if (text) {
      decode(*text, path_, config)();
   } else if (required_) {
      throw StartError("--config " + Rex::printable(path_) + ": there is no such file");
   }
}

void ConfigFile::save(const OperatorConfig& config) const {
   writeWhole(path_, encode(config));
}

std::function<void()> ConfigFile::decode(const std::string& text, const std::string& name,
                                         const OperatorConfig& config) {
   auto refuse = [&](size_t line, const std::string& words) {
      throw StartError(Rex::printable(name) + ":" + std::to_string(line) + ": " + words);
   };
   std::function<void()> write;
   try {
      ConfigText parsed(text);
      try {
         write = config.decode(parsed.json());
      } catch (const Rex::JsonError& error) {
         refuse(parsed.lineOf(error.path()), Rex::printable(error.what()));
      }
   } catch (const ConfigTextError& error) {
      refuse(error.line, error.what());
   }
   return write;
}

std::string ConfigFile::encode(const OperatorConfig& config) {
   return config.differences().dump(3) + "\n";
}

}  // namespace Host
