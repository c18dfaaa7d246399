// HTTP over the Unix socket of the management API.
#pragma once

#include <chrono>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "cli/Socket.h"

namespace LldpCli {

using Json = nlohmann::ordered_json;

struct Patience {
   // An agent that says nothing for so long counts as gone.
   std::chrono::milliseconds answer = std::chrono::seconds(10);
   // Lets time pass before the agent is asked once more.
   std::function<void(std::chrono::milliseconds)> pause = [](std::chrono::milliseconds) {};
};

class Client {
 public:
   // Connects at the first request. Where this user may not use the socket, what only reads goes
   // to `read.sock` in the same folder, if the agent has one there.
   explicit Client(const std::string& socketPath, Patience patience = {});

   // The resource at a target such as "/v1/agent", or nothing when the agent has no such resource.
   // Throws Failure when the agent cannot be reached, Refused when it refuses.
   std::optional<Json> find(const std::string& target);
   // Likewise, but a missing resource is a Failure too.
   Json get(const std::string& target);
   // A request that changes something, without a body if that is null. Null for an answer without
   // one.
   Json change(const std::string& method, const std::string& target, const Json& body = {});
   // The octets of an answer without end, as they come. Throws Failure when it ends.
   using Sink = std::function<void(std::string_view octets)>;
   [[noreturn]] void stream(const std::string& target, const Sink& sink);

   // One step of a target's path: everything but letters, digits and "-._~" as %XX.
   static std::string step(std::string_view key);

 private:
   struct Answer {
      unsigned status = 0;
      bool keepAlive = false;
      long long retryAfter = 1;  // seconds, where the agent is busy
      std::string body;
   };
   Json changed(const std::string& target, const Answer& answer) const;
   Answer exchange(const std::string& method, const std::string& target, const std::string& body,
                   const Sink& sink = {});
   Answer exchangeOnce(const std::string& request, bool reading, const Sink& sink);
   void connect(bool reading);
   Answer receive(const Sink& sink);
   void refuse(const std::string& target, const Answer& answer) const;

   Socket socket_;
   Socket readSocket_;
   Socket* open_ = nullptr;
   Patience patience_;
};

}  // namespace LldpCli
