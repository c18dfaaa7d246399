#include "host/ConfigFile.h"

#include "Rex/Printable.h"
#include "host/File.h"
#include "host/JsonText.h"
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

bool ConfigFile::holds(const OperatorConfig& config) const {
   try {
      return readWhole(path_, maxBytes) == encode(config);
   } catch (const StartError&) {
      return false;  // what is in the way, saving finds out
   }
}

void ConfigFile::save(const OperatorConfig& config) const {
   std::string text = encode(config);
   if (text.size() > maxBytes) {
      throw StartError(path_ + " cannot be written: the configuration takes " +
                       std::to_string(text.size()) + " octets, and no start reads more than " +
                       std::to_string(maxBytes));
   }
   writeWhole(path_, text);
}

std::function<void()> ConfigFile::decode(const std::string& text, const std::string& name,
                                         const OperatorConfig& config) {
   auto refuse = [&](size_t line, const std::string& words) {
      throw StartError(Rex::printable(name) + ":" + std::to_string(line) + ": " + words);
   };
   std::function<void()> write;
   try {
      JsonText parsed(text, JsonText::Comments::allowed);
      try {
         write = config.decode(parsed.json());
      } catch (const Rex::JsonError& error) {
         refuse(parsed.lineOf(error.path()), Rex::printable(error.what()));
      }
   } catch (const JsonTextError& error) {
      refuse(error.line, error.what());
   }
   return write;
}

std::string ConfigFile::encode(const OperatorConfig& config) {
   return config.differences().dump(3) + "\n";
}

}  // namespace Host
