#include "host/ApiTarget.h"

#include "host/ApiMessage.h"

namespace Host {
namespace {

Statestore::Steps decoded(std::string_view text, const char* what) {
   auto steps = Statestore::decodePath(text);
   if (!steps) throw ApiError(400, std::string(what) + ": '%' without two hexadecimal digits");
   return *std::move(steps);
}

std::string decodedStep(std::string_view text) {
   Statestore::Steps steps = decoded(text, "parameter");
   return steps.empty() ? std::string() : steps.front();
}

}  // namespace

ApiTarget ApiTarget::parse(std::string_view target) {
   if (!target.starts_with('/')) throw ApiError(400, "the target has to begin with '/'");
   size_t mark = target.find('?');
   ApiTarget parsed;
   parsed.steps = decoded(target.substr(0, mark), "path");
   std::string_view rest =
       mark == std::string_view::npos ? std::string_view() : target.substr(mark + 1);
   while (!rest.empty()) {
      size_t end = rest.find('&');
      std::string_view one = rest.substr(0, end);
      rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
      size_t equals = one.find('=');
      std::string_view value =
          equals == std::string_view::npos ? std::string_view() : one.substr(equals + 1);
      parsed.parameters[decodedStep(one.substr(0, equals))] = decodedStep(value);
   }
   return parsed;
}

Statestore::Steps above(const Statestore::Steps& steps, size_t count) {
   return {steps.begin(), steps.end() - static_cast<std::ptrdiff_t>(count)};
}

void nothingAt(const Statestore::Steps& steps) {
   throw ApiError(404, "there is nothing at '" + Statestore::encodePath(steps) + "'");
}

std::string inQuotes(std::string_view text) {
   return Rex::Json(text).dump(-1, ' ', true, Rex::Json::error_handler_t::replace);
}

}  // namespace Host
