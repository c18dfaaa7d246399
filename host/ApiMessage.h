// One request to the management API and its answer, apart from how they travel.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "Rex/Json.h"

namespace Host {

class ApiStream;

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

struct ApiRequest {
   std::string method;  // "GET", ...
   std::string target;  // path and query, as they came
   std::string body;
   bool mayWrite = true;  // false: the client came through the socket for reading
   std::optional<ApiError> unreadable = {};  // why nothing else is known of the request
};

struct ApiAnswer {
   unsigned status = 200;
   Rex::Json body;     // null: no content
   std::string allow;  // the methods that would do, with status 405
   // Instead of a body, an answer that goes on: fills the stream, which outlives what it returns,
   // for as long as that is held. Called at most once, when the answer begins.
   std::function<std::shared_ptr<void>(ApiStream&)> stream = {};
};

}  // namespace Host
