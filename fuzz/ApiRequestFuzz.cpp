// Requests to the management API out of arbitrary octets, over a store with the operator's
// entities. An input is a sequence of requests with a zero octet between; each is a method's
// letter, a target to the end of the line, and a body.
#include <map>
#include <string_view>

#include "ApiStore.h"
#include "Rex/Assert.h"

namespace {

const char* methodOf(char letter) {
   static const std::map<char, const char*> methods{
       {'G', "GET"}, {'P', "PATCH"}, {'U', "PUT"}, {'D', "DELETE"}, {'O', "POST"}};
   auto at = methods.find(letter);
   return at == methods.end() ? "HEAD" : at->second;
}

void checkError(const Rex::Json& body) {
   REX_ASSERT(body.is_object() && body.size() == 1 && body.contains("error"));
   const Rex::Json& error = body["error"];
   REX_ASSERT(error.is_object() && error.contains("path"));
   REX_ASSERT(error.contains("message") && !error["message"].get<std::string>().empty());
}

void request(Fuzz::ApiStore& store, std::string_view text) {
   if (text.empty()) return;
   size_t end = std::min(text.find('\n'), text.size());
   std::string method = methodOf(text[0]);
   Host::ApiRequest request{method, std::string(text.substr(1, end - 1)),
                            std::string(text.substr(std::min(end + 1, text.size())))};
   const std::string before = store.everything();
   Host::ApiAnswer answer = store.resources.serve(request);
   bool good = answer.status == 200 || answer.status == 201 || answer.status == 204;
   REX_ASSERT(good || (answer.status >= 400 && answer.status <= 405) || answer.status == 429 ||
              answer.status == 500);
   REX_ASSERT((answer.status == 405) == !answer.allow.empty());
   if (!good) checkError(answer.body);
   if (!good || method == "GET") REX_ASSERT(store.everything() == before);
   store.checkSettings();
   // An answer can always be sent.
   answer.body.dump(-1, ' ', false, Rex::Json::error_handler_t::replace);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   Fuzz::ApiStore store;
   std::string_view rest(reinterpret_cast<const char*>(data), size);
   while (!rest.empty()) {
      size_t end = std::min(rest.find('\0'), rest.size());
      request(store, rest.substr(0, end));
      rest.remove_prefix(std::min(end + 1, rest.size()));
   }
   return 0;
}
