#include "host/ApiServer.h"

#include <fmt/format.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "Rex/Context.h"

namespace Host {
namespace {
constexpr double patience = 1;  // seconds, when there are no more descriptors

// Whom the kernel says that the client is.
uid_t userOf(int fd) {
   ucred credentials{};
   socklen_t length = sizeof credentials;
   bool known = getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &length) == 0;
   return known ? credentials.uid : static_cast<uid_t>(-1);
}
}  // namespace

ApiServer::ApiServer(Rex::Loop& loop, int listener, ApiResources& resources, ApiRequestRate& rate,
                     ApiLimits limits, bool mayWrite)
    : loop_(loop),
      listener_(listener),
      resources_(resources),
      rate_(rate),
      limits_(limits),
      mayWrite_(mayWrite),
      clock_(Rex::Context::current().clock()),
      timer_(clock_) {
   timer_.handlerIs(nullptr, [this] { handleDeadline(); });
   listen();
}

ApiServer::~ApiServer() {
   loop_.descriptorDel(listener_);
   while (!clients_.empty()) remove(clients_.begin()->first);
}

void ApiServer::listen() {
   listenAgain_ = Rex::never;
   loop_.descriptorIs(
       listener_, EPOLLIN, [this](uint32_t) { handleConnect(); }, Rex::Loop::Serve::outside);
}

void ApiServer::handleConnect() {
   int fd = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
   if (fd >= 0) {
      admit(fd);
   } else if (errno != EAGAIN && errno != EINTR && errno != ECONNABORTED) {
      // The connection stays in the queue and would wake the loop for ever.
      loop_.descriptorDel(listener_);
      listenAgain_ = clock_->now() + patience;
   }
   rearm();
}

void ApiServer::admit(int fd) {
   if (clients_.size() >= limits_.clients && !makeRoom()) {
      static const std::string words =
          "{\"error\":{\"path\":\"\",\"message\":\"too many clients at a time\"}}\n";
      static const std::string busy = fmt::format(
          "HTTP/1.1 503 Service Unavailable\r\nContent-Type: application/json\r\n"
          "Content-Length: {}\r\nConnection: close\r\n\r\n{}",
          words.size(), words);
      ::send(fd, busy.data(), busy.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
      close(fd);
      return;
   }
   uid_t user = userOf(fd);
   auto connection = std::make_unique<ApiConnection>(
       fd, limits_, [this, user](const ApiRequest& request) { return answer(request, user); },
       [this, fd] { settle(*clients_.at(fd)); });
   settle(*connection);
   clients_.emplace(fd, std::move(connection));
}

// The one that has waited longest without asking for anything goes.
bool ApiServer::makeRoom() {
   auto longest = clients_.end();
   for (auto at = clients_.begin(); at != clients_.end(); ++at) {
      if (!at->second->idle()) continue;
      if (longest == clients_.end() || at->second->idleSince() < longest->second->idleSince()) {
         longest = at;
      }
   }
   if (longest == clients_.end()) return false;
   remove(longest->first);
   return true;
}

ApiAnswer ApiServer::answer(ApiRequest request, uid_t user) {
   if (!rate_.take(user, clock_->now())) {
      return ApiResources::refusal(
          request.target,
          ApiError(429, fmt::format("user {} asks more than {} times a second; wait a second", user,
                                    limits_.requestsPerSecond)));
   }
   if (request.unreadable) return ApiResources::refusal(request.target, *request.unreadable);
   request.mayWrite = mayWrite_;
   ApiAnswer answer = resources_.serve(request);
   if (!answer.stream || streams() < limits_.streams || endStalled()) return answer;
   return ApiResources::refusal(
       request.target,
       ApiError(503, fmt::format("there are {} streams already, and no more at a time",
                                 limits_.streams)));
}

// The stream goes whose reader has left what it was sent for longest.
bool ApiServer::endStalled() {
   auto longest = clients_.end();
   for (auto at = clients_.begin(); at != clients_.end(); ++at) {
      if (!at->second->stalled()) continue;
      if (longest == clients_.end() || at->second->sentTime() < longest->second->sentTime()) {
         longest = at;
      }
   }
   if (longest == clients_.end()) return false;
   if (longest->second->sentTime() + limits_.stallSeconds > clock_->now()) return false;
   remove(longest->first);
   return true;
}

size_t ApiServer::streams() const {
   return static_cast<size_t>(
       std::count_if(clients_.begin(), clients_.end(),
                     [](const auto& client) { return client.second->streaming(); }));
}

void ApiServer::serve(int fd, uint32_t events) {
   ApiConnection& connection = *clients_.at(fd);
   connection.serve(clock_->now(), events);
   if (connection.done()) {
      remove(fd);
   } else {
      settle(connection);
   }
   rearm();
}

void ApiServer::settle(ApiConnection& connection) {
   int fd = connection.fd();
   loop_.descriptorIs(
       fd, connection.events(), [this, fd](uint32_t events) { serve(fd, events); },
       Rex::Loop::Serve::outside);
}

void ApiServer::remove(int fd) {
   loop_.descriptorDel(fd);
   clients_.erase(fd);
}

void ApiServer::handleDeadline() {
   double now = clock_->now();
   std::vector<int> late;
   for (const auto& [fd, connection] : clients_) {
      if (connection->deadline() <= now) late.push_back(fd);
   }
   for (int fd : late) remove(fd);
   if (listenAgain_ <= now) listen();
   rearm();
}

void ApiServer::rearm() {
   double next = listenAgain_;
   for (const auto& [fd, connection] : clients_) next = std::min(next, connection->deadline());
   timer_.timeMinIs(next);
}

}  // namespace Host
