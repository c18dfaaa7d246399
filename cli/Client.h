// HTTP over the Unix socket of the management API.
#pragma once

#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace LldpCli {

using Json = nlohmann::ordered_json;

class Client {
 public:
   // Connects at the first request. An agent that says nothing for `patience` counts as gone.
   explicit Client(std::string socketPath,
                   std::chrono::milliseconds patience = std::chrono::seconds(10));
   ~Client() { disconnect(); }
   Client(const Client&) = delete;
   Client& operator=(const Client&) = delete;

   // The resource at a target such as "/v1/agent", or nothing when the agent has no such resource.
   // Throws Failure when the agent cannot be reached or refuses.
   std::optional<Json> find(const std::string& target);
   // Likewise, but a missing resource is a Failure too.
   Json get(const std::string& target);

   // One step of a target's path: everything but letters, digits and "-._~" as %XX.
   static std::string step(std::string_view key);

 private:
   struct Answer {
      unsigned status = 0;
      bool keepAlive = false;
      std::string body;
   };
   Answer exchange(const std::string& target);
   void connect();
   void disconnect();
   void send(std::string_view octets);
   Answer receive();
   [[noreturn]] void fail(int error) const;

   std::string socketPath_;
   std::chrono::milliseconds patience_;
   int socket_ = -1;
};

}  // namespace LldpCli
