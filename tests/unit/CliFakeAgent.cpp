#include "unit/CliFakeAgent.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>

#include "Rex/EntityType.h"
#include "cli/Client.h"

CliFakeAgent::CliFakeAgent(double now) : folder_(testing::TempDir() + "cliXXXXXX") {
   EXPECT_TRUE(mkdtemp(folder_.data()));
   EXPECT_EQ(chmod(folder_.c_str(), 0755), 0);
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
   unlink(listening_.c_str());
   rmdir(folder_.c_str());
}

void CliFakeAgent::serve(const std::string& path, const Rex::Entity& entity) {
   std::string target = "/v1/entity/" + path;
   for (int depth : {0, 1, 3}) {
      answer(fmt::format("{}?depth={}", target, depth), "200 OK",
             Rex::entityToJson(entity, depth).dump());
   }
   for (const auto& member : entity.entityType().members()) {
      for (const std::string& key : member->keys(entity)) {
         auto child = member->child(entity, key);
         std::string below = target + "/" + member->name + "/" + LldpCli::Client::step(key);
         if (!child) continue;
         answer(below, "200 OK", Rex::entityToJson(*child).dump());
         answer(below + "?depth=0", "200 OK", Rex::entityToJson(*child, 0).dump());
      }
   }
}

namespace {

std::string answerText(const std::string& status, const std::string& body,
                       const std::string& heads) {
   return fmt::format("HTTP/1.1 {}\r\nContent-Length: {}\r\n{}\r\n{}", status, body.size(), heads,
                      body);
}

}  // namespace

void CliFakeAgent::answer(const std::string& target, const std::string& status,
                          const std::string& body, const std::string& heads) {
   answers_[target] = answerText(status, body, heads);
}

void CliFakeAgent::answerOnce(const std::string& target, const std::string& status,
                              const std::string& body, const std::string& heads) {
   first_[target] = answerText(status, body, heads);
}

void CliFakeAgent::stream(const std::string& target, const std::string& octets) {
   answers_[target] = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\n" + octets;
}

std::vector<std::string> CliFakeAgent::requests() {
   std::lock_guard lock(mutex_);
   return requests_;
}

void CliFakeAgent::start(const std::string& name) {
   sockaddr_un address{};
   address.sun_family = AF_UNIX;
   listening_ = folder_ + "/" + name;
   ASSERT_LT(listening_.size(), sizeof(address.sun_path));
   std::copy(listening_.begin(), listening_.end(), address.sun_path);
   listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
   ASSERT_EQ(bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
   ASSERT_EQ(chmod(listening_.c_str(), 0666), 0);
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
      size_t head = request.find("\r\n\r\n");
      if (head == std::string::npos) continue;
      size_t length = request.find("Content-Length: ");
      size_t body = length < head ? std::stoul(request.substr(length + 16)) : 0;
      if (request.size() < head + 4 + body) continue;
      std::string reply = always_.empty() ? replyTo(request) : always_;
      send(connection, reply.data(), reply.size(), MSG_NOSIGNAL);
      bool ends = !always_.empty() || reply.find("event-stream") != std::string::npos;
      if (ends) return;
      request.clear();
   }
}

std::string CliFakeAgent::replyTo(const std::string& request) {
   std::string asked = request.substr(0, request.find(" HTTP/"));
   std::string body = request.substr(request.find("\r\n\r\n") + 4);
   {
      std::lock_guard lock(mutex_);
      requests_.push_back(body.empty() ? asked : asked + " " + body);
   }
   if (asked.starts_with("GET ")) asked.erase(0, 4);
   auto first = first_.find(asked);
   if (first != first_.end()) return first_.extract(first).mapped();
   auto found = answers_.find(asked);
   if (found != answers_.end()) return found->second;
   return "HTTP/1.1 404 Not Found\r\nContent-Length: 13\r\n\r\n{\"error\": {}}";
}
