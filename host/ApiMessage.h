// One request to the management API and its answer, apart from how they travel.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include "Rex/Json.h"

namespace Host {

struct ApiRequest {
   std::string method;  // "GET", ...
   std::string target;  // path and query, as they came
   std::string body;
};

struct ApiAnswer {
   unsigned status = 200;
   Rex::Json body;     // null: no content
   std::string allow;  // the methods that would do, with status 405
};

// A request that is refused. Nothing has changed.
class ApiError : public std::runtime_error {
 public:
   ApiError(unsigned status, const std::string& words, const std::string& field = {},
            const std::string& allow = {})
       : std::runtime_error(words), status(status), field(field), allow(allow) {}

   const unsigned status;
   const std::string field;  // the attribute at fault, if it is one
   const std::string allow;  // the methods that would do, with status 405

   // The change at fault, where a request holds several.
   struct Change {
      size_t index;
      std::string path;
   };
   std::optional<Change> change;
};

}  // namespace Host
