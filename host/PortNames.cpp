#include "host/PortNames.h"

#include "Rex/Printable.h"
#include "Wirekit/EthIntfId.h"
#include "Wirekit/MgmtIntfId.h"
#include "host/File.h"
#include "host/JsonText.h"
#include "host/StartError.h"

namespace Host {

using Wirekit::IntfId;

namespace {

constexpr size_t maxBytes = 1024 * 1024;

// A port has one name: Ethernet01 would be another than Ethernet1.
bool hasLeadingZero(std::string_view text) {
   auto digitAt = [text](size_t i) { return i < text.size() && text[i] >= '0' && text[i] <= '9'; };
   for (size_t i = text.find('0'); i < text.size(); i = text.find('0', i + 1)) {
      if (digitAt(i + 1) && !(i > 0 && digitAt(i - 1))) return true;
   }
   return false;
}

}  // namespace

PortNames::PortNames(std::map<std::string, IntfId> given, const std::string& file)
    : given_(std::move(given)), file_(file) {
   for (const auto& [device, name] : given_) reserved_.insert(name);
   load();
}

bool PortNames::isPortName(std::string_view text) {
   IntfId name;
   if (!IntfId::fromText(text, name) || hasLeadingZero(text)) return false;
   if (Wirekit::EthIntfId::isUnconnected(name)) return false;
   return Wirekit::EthIntfId::isEthIntfId(name) || Wirekit::MgmtIntfId::isMgmtIntfId(name);
}

void PortNames::load() {
   auto text = readWhole(file_, maxBytes);
   if (!text) return;
   auto refuse = [this](const std::string& why) {
      throw StartError("the port names in " + file_ + " cannot be read (" + why +
                       "); mend the file, or remove it to number the ports anew");
   };
   Rex::Json json;
   try {
      json = JsonText(*std::move(text), JsonText::Comments::refused).json();
   } catch (const JsonTextError& error) {
      refuse("line " + std::to_string(error.line) + ": " + error.what());
   }
   if (!json.is_object()) refuse("no JSON object");
   for (const auto& [identity, value] : json.items()) {
      if (!value.is_string() || !isPortName(value.get<std::string>())) {
         refuse("'" + Rex::printable(identity) + "' has no port name");
      }
      IntfId name(value.get<std::string>());
      if (!identities_.emplace(name, identity).second) {
         refuse("two devices are named " + name.stringValue().stdString());
      }
      byIdentity_.emplace(identity, name);
   }
}

std::vector<IntfId> PortNames::namesOf(const std::vector<PortDevice>& devices) {
   size_t fresh = 0;
   for (const PortDevice& device : devices) {
      if (auto at = given_.find(device.name); at != given_.end()) {
         take(device, at->second);
      } else if (IntfId own(device.name); isPortName(device.name) && !reserved_.contains(own)) {
         take(device, own);
      } else {
         forgetReserved(device.identity);
      }
   }
   for (const PortDevice& device : devices) fresh += !byIdentity_.contains(device.identity);
   bool slots = byIdentity_.size() + fresh > flatPorts;
   std::vector<IntfId> names;
   for (const PortDevice& device : devices) {
      auto at = byIdentity_.find(device.identity);
      if (at == byIdentity_.end()) {
         take(device, nextFree(slots));
         at = byIdentity_.find(device.identity);
      }
      names.push_back(at->second);
   }
   return names;
}

// A name that the operator has given to another device is lost.
void PortNames::forgetReserved(const std::string& identity) {
   auto at = byIdentity_.find(identity);
   if (at == byIdentity_.end() || !reserved_.contains(at->second)) return;
   identities_.erase(at->second);
   byIdentity_.erase(at);
   changed_ = true;
}

void PortNames::take(const PortDevice& device, const IntfId& name) {
   auto [at, first] = byIdentity_.try_emplace(device.identity, name);
   if (!first && at->second == name && identities_[name] == device.identity) return;
   changed_ = true;
   if (!first) {
      identities_.erase(at->second);
      at->second = name;
   }
   // Whoever bore the name before gets another when it is seen next.
   auto [owner, free] = identities_.try_emplace(name, device.identity);
   if (!free && owner->second != device.identity) {
      byIdentity_.erase(owner->second);
      owner->second = device.identity;
   }
}

bool PortNames::taken(const IntfId& name) const {
   return reserved_.contains(name) || identities_.contains(name);
}

IntfId PortNames::nextFree(bool slots) {
   for (size_t i = slots ? next_ : 0;; ++i) {
      size_t slot = i / flatPorts + 1;
      size_t port = i % flatPorts + 1;
      std::string name =
          slots ? std::to_string(slot) + "/" + std::to_string(port) : std::to_string(i + 1);
      IntfId made("Ethernet" + name);
      if (taken(made)) continue;
      if (slots) next_ = i + 1;
      return made;
   }
}

void PortNames::save() {
   if (!changed_) return;
   Rex::Json json = Rex::Json::object();
   for (const auto& [name, identity] : identities_) json[identity] = name.stringValue().stdString();
   writeWhole(file_, json.dump(3, ' ', false, Rex::Json::error_handler_t::replace) + "\n");
   changed_ = false;
}

}  // namespace Host
