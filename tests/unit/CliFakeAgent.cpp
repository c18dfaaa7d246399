#include "unit/CliFakeAgent.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>

#include "Rex/EntityType.h"
#include "cli/Client.h"

CliFakeAgent::CliFakeAgent(double now) : folder_(testing::TempDir() + "cliXXXXXX") {
   EXPECT_TRUE(mkdtemp(folder_.data()));
   socketPath_ = folder_ + "/api.sock";
   answer("/v1/agent", "200 OK", fmt::format(R"({{"cell": 1, "time": {}}})", now));
}

CliFakeAgent::~CliFakeAgent() {
   if (thread_.joinable()) {
      shutdown(listener_, SHUT_RDWR);
      thread_.join();
      close(listener_);
   }
   unlink(socketPath_.c_str());
   rmdir(folder_.c_str());
}

void CliFakeAgent::serve(const std::string& path, const Rex::Entity& entity) {
   std::string target = "/v1/entity/" + path;
   for (int depth : {0, 1}) {
      answer(fmt::format("{}?depth={}", target, depth), "200 OK",
             Rex::entityToJson(entity, depth).dump());
   }
   for (const auto& member : entity.entityType().members()) {
      for (const std::string& key : member->keys(entity)) {
         auto child = member->child(entity, key);
         std::string below = target + "/" + member->name + "/" + LldpCli::Client::step(key);
         if (child) answer(below, "200 OK", Rex::entityToJson(*child).dump());
      }
   }
}

void CliFakeAgent::answer(const std::string& target, const std::string& status,
                          const std::string& body) {
   answers_[target] =
       fmt::format("HTTP/1.1 {}\r\nContent-Length: {}\r\n\r\n{}", status, body.size(), body);
}

void CliFakeAgent::start() {
   sockaddr_un address{};
   address.sun_family = AF_UNIX;
   ASSERT_LT(socketPath_.size(), sizeof(address.sun_path));
   std::copy(socketPath_.begin(), socketPath_.end(), address.sun_path);
   listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
   ASSERT_EQ(bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
   ASSERT_EQ(listen(listener_, 5), 0);
   thread_ = std::thread([this] { run(); });
}

void CliFakeAgent::run() {
   for (int connection = 0; (connection = accept(listener_, nullptr, nullptr)) >= 0;) {
      converse(connection);
      close(connection);
   }
}

void CliFakeAgent::converse(int connection) {
   std::string request;
   char octets[4096];
   for (ssize_t got = 0; (got = recv(connection, octets, sizeof(octets), 0)) > 0;) {
      request.append(octets, static_cast<size_t>(got));
      if (request.find("\r\n\r\n") == std::string::npos) continue;
      std::string reply = always_.empty() ? replyTo(request) : always_;
      send(connection, reply.data(), reply.size(), MSG_NOSIGNAL);
      if (!always_.empty()) return;
      request.clear();
   }
}

std::string CliFakeAgent::replyTo(const std::string& request) const {
   size_t begin = request.find(' ') + 1;
   auto found = answers_.find(request.substr(begin, request.find(' ', begin) - begin));
   if (found != answers_.end()) return found->second;
   return "HTTP/1.1 404 Not Found\r\nContent-Length: 13\r\n\r\n{\"error\": {}}";
}
