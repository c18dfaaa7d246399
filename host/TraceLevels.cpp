#include "host/TraceLevels.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "Rex/Context.h"
#include "Rex/Printable.h"
#include "Rex/Trace.h"

namespace Host {
namespace {

constexpr int levels = 10;
constexpr uint16_t allLevels = (1 << levels) - 1;

std::string unknownFacility(const std::string& name) {
   std::string known;
   for (const std::string& facility : Rex::traceFacilities()) {
      known += (known.empty() ? "" : ", ") + facility;
   }
   return "no trace facility '" + Rex::printable(name) + "'; there are " + known;
}

bool isFacility(const std::string& name) {
   auto all = Rex::traceFacilities();
   return std::find(all.begin(), all.end(), name) != all.end();
}

uint16_t maskOf(const Rex::Json& json, const std::string& name) {
   const std::string wanted = "expected an array of levels from 0 to 9, got ";
   auto refuse = [&] {
      throw Rex::JsonError(name,
                           wanted + json.dump(-1, ' ', true, Rex::Json::error_handler_t::replace));
   };
   if (!json.is_array()) refuse();
   uint16_t mask = 0;
   for (const Rex::Json& level : json) {
      if (!level.is_number_unsigned() || level.get<uint64_t>() >= levels) refuse();
      mask |= static_cast<uint16_t>(1 << level.get<int>());
   }
   return mask;
}

}  // namespace

TraceSetting parseTrace(std::string_view text) {
   auto refuse = [&] {
      throw std::invalid_argument(
          "expected FACILITY=LEVELS with levels from 0 to 9, such as "
          "LldpProtocol=0,4,6, got '" +
          Rex::printable(text) + "'");
   };
   size_t equals = text.find('=');
   if (equals == 0 || equals == std::string_view::npos) refuse();
   TraceSetting setting{std::string(text.substr(0, equals)), 0};
   std::string_view rest = text.substr(equals + 1);
   if (rest == "all") {
      setting.mask = allLevels;
      return setting;
   }
   // Digits with a comma between each two.
   if (rest.size() % 2 == 0) refuse();
   for (size_t i = 0; i < rest.size(); ++i) {
      bool digit = rest[i] >= '0' && rest[i] <= '9';
      if (i % 2 == 0 ? !digit : rest[i] != ',') refuse();
      if (digit) setting.mask |= static_cast<uint16_t>(1 << (rest[i] - '0'));
   }
   return setting;
}

void traceIs(const TraceSetting& setting) {
   if (!isFacility(setting.facility)) {
      throw std::invalid_argument(unknownFacility(setting.facility));
   }
   Rex::Context::current().traceMaskIs(setting.facility, setting.mask);
}

Rex::Json traceToJson() {
   Rex::Json all = Rex::Json::object();
   auto facilities = Rex::traceFacilities();
   for (size_t i = 0; i < facilities.size(); ++i) {
      Rex::Json on = Rex::Json::array();
      for (int level = 0; level < levels; ++level) {
         if (Rex::traceMasks[i] >> level & 1) on.push_back(level);
      }
      all[facilities[i]] = std::move(on);
   }
   return all;
}

void traceFromJson(const Rex::Json& json, bool whole) {
   if (!json.is_object()) throw Rex::JsonError("", "expected an object of levels by facility");
   std::vector<TraceSetting> settings;
   for (const auto& [name, value] : json.items()) {
      if (!isFacility(name)) throw Rex::JsonError(name, unknownFacility(name));
      settings.push_back({name, maskOf(value, name)});
   }
   if (whole) {
      for (const std::string& name : Rex::traceFacilities()) {
         Rex::Context::current().traceMaskIs(name, 0);
      }
   }
   for (const TraceSetting& setting : settings) traceIs(setting);
}

ApiResource traceResource() {
   auto serve = [](const ApiRequest& request, const ApiTarget&) -> ApiAnswer {
      if (request.method == "GET") return {200, traceToJson(), {}};
      try {
         traceFromJson(jsonBody(request), request.method == "PUT");
      } catch (const Rex::JsonError& error) {
         throw ApiError(400, error.what(), error.path());
      }
      return {204, {}, {}};
   };
   return {"/v1/agent/trace", {"GET", "PATCH", "PUT"}, {}, serve};
}

}  // namespace Host
