// Requests to the management API out of arbitrary octets, over a store with the operator's
// entities. An input is a sequence of requests with a zero octet between; each is a method's
// letter, a target to the end of the line, and a body.
#include <map>
#include <memory>
#include <string_view>

#include "Rex/Context.h"
#include "Rex/Dir.h"
#include "host/ApiConfig.h"
#include "host/ApiEntities.h"
#include "model/CliConfig.h"

namespace {

const char* methodOf(char letter) {
   static const std::map<char, const char*> methods{
       {'G', "GET"}, {'P', "PATCH"}, {'U', "PUT"}, {'D', "DELETE"}, {'O', "POST"}};
   auto at = methods.find(letter);
   return at == methods.end() ? "HEAD" : at->second;
}

struct Store {
   Store() {
      config.cliPortConfigIs(Wirekit::IntfId("Ethernet1"));
      auto provider = Rex::make<Lldp::ExternalTlvConfig>();
      provider->externalTlvPortConfigIs(Wirekit::IntfId("Ethernet1"));
      tlvs.entityPtrIs("a", provider);
      entities.serveIn(resources);
      Host::serveConfig(resources, operatorConfig, file);
      before = everything();
   }

   template <class T>
   T& at(const char* path) {
      return static_cast<T&>(*manager->entityIs(path, T::staticType().name()));
   }
   std::string everything() const {
      std::string all;
      for (const Rex::Entity* one :
           {static_cast<Rex::Entity*>(&config), static_cast<Rex::Entity*>(&clear),
            static_cast<Rex::Entity*>(&tlvs)}) {
         all += entityToJson(*one).dump(-1, ' ', true, Rex::Json::error_handler_t::replace);
      }
      return all;
   }

   Rex::Ptr<Statestore::EntityManager> manager = Rex::make<Statestore::EntityManager>();
   Lldp::CliConfig& config = at<Lldp::CliConfig>("l2discovery/lldp/cliConfig");
   Lldp::RemTablesCliConfig& clear =
       at<Lldp::RemTablesCliConfig>("l2discovery/lldp/remTablesCliConfig");
   Rex::Dir& tlvs = at<Rex::Dir>("l2discovery/lldp/externalTlvs");
   Host::OperatorConfig operatorConfig{manager};
   Host::ConfigFile file{"/dev/null/no/such/file", false};  // every save is refused
   Host::ApiEntities entities{manager, Host::ApiAccess(manager, {})};
   Host::ApiResources resources;
   std::string before;  // everything before the next request
};

void checkError(const Rex::Json& body) {
   REX_ASSERT(body.is_object() && body.size() == 1 && body.contains("error"));
   const Rex::Json& error = body["error"];
   REX_ASSERT(error.is_object() && error.contains("path"));
   REX_ASSERT(error.contains("message") && !error["message"].get<std::string>().empty());
}

void request(Store& store, std::string_view text) {
   if (text.empty()) return;
   size_t end = std::min(text.find('\n'), text.size());
   std::string method = methodOf(text[0]);
   Host::ApiRequest request{method, std::string(text.substr(1, end - 1)),
                            std::string(text.substr(std::min(end + 1, text.size())))};
   Host::ApiAnswer answer = store.resources.serve(request);
   bool good = answer.status == 200 || answer.status == 201 || answer.status == 204;
   REX_ASSERT(good || (answer.status >= 400 && answer.status <= 405) || answer.status == 500);
   REX_ASSERT((answer.status == 405) == !answer.allow.empty());
   if (!good) checkError(answer.body);
   std::string after = store.everything();
   if (!good || method == "GET") REX_ASSERT(after == store.before);
   store.before = std::move(after);
   // Whatever came in, the timers keep to their ranges.
   REX_ASSERT(store.config.messageTxInterval() - 1 < 3600);
   REX_ASSERT(store.config.messageTxHoldTime() - 1 < 65535);
   REX_ASSERT(store.config.reinitDelay() - 1 < 10);
   // An answer can always be sent.
   answer.body.dump(-1, ' ', false, Rex::Json::error_handler_t::replace);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   Rex::Context context(Rex::make<Rex::Clock>(std::make_shared<Rex::ManualTime>()));
   Rex::ContextScope scope(context);
   Store store;
   std::string_view rest(reinterpret_cast<const char*>(data), size);
   while (!rest.empty()) {
      size_t end = std::min(rest.find('\0'), rest.size());
      request(store, rest.substr(0, end));
      rest.remove_prefix(std::min(end + 1, rest.size()));
   }
   return 0;
}
