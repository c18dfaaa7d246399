// URLs of the state store out of arbitrary octets: what is taken is in bounds, and what is shown of
// it holds no password and means the same.
#include "Redis/StoreUrl.h"
#include "Rex/Assert.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   std::string text(reinterpret_cast<const char*>(data), size);
   Redis::StoreUrl url;
   try {
      url = Redis::StoreUrl::parse(text);
   } catch (const Redis::StoreUrlError& error) {
      REX_ASSERT(*error.what());
      return 0;
   }
   REX_ASSERT(url.path.empty() != url.host.empty() && url.path.size() < 108 && url.port > 0);
   REX_ASSERT(url.path.find('\0') == std::string::npos && url.host.find('\0') == std::string::npos);
   Redis::StoreUrl open = url;
   open.password.clear();
   REX_ASSERT(open.text() == url.text());
   return 0;
}
