// What a client of the management API sends, out of arbitrary octets and in pieces of any length,
// from the socket through HTTP and JSON to the operator's entities. The first octet of an input
// tells how long the pieces are.
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "ApiStore.h"
#include "Rex/Assert.h"
#include "host/ApiConnection.h"

namespace {

// Small enough that the fuzzer's inputs get beyond them.
constexpr Host::ApiLimits limits{.headerBytes = 256, .bodyBytes = 512};

struct Client {
   Client() {
      std::array<int, 2> ends;
      REX_ASSERT(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends.data()) == 0);
      fd = ends[0];
      connection.emplace(
          ends[1], limits, [this](const Host::ApiRequest& request) { return answer(request); },
          [] {});
   }
   ~Client() { close(fd); }

   Host::ApiAnswer answer(const Host::ApiRequest& request) {
      ++answers;
      REX_ASSERT(request.body.size() <= limits.bodyBytes);
      if (request.unreadable) return Host::ApiResources::refusal({}, *request.unreadable);
      return store.resources.serve(request);
   }
   // As many turns as the connection asks for; it never asks without end.
   void turns() {
      for (int i = 0; !connection->done() && i < 1000; ++i) {
         uint32_t events = connection->events();
         connection->serve(0, events);
         bool idle = events == EPOLLIN && connection->events() == EPOLLIN;
         receive();
         if (idle) return;
      }
      REX_ASSERT(connection->done());
   }
   void send(std::string_view piece) {
      ::send(fd, piece.data(), piece.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
      turns();
   }
   void receive() {
      std::array<char, 65536> part;
      ssize_t got = 0;
      while ((got = recv(fd, part.data(), part.size(), MSG_DONTWAIT)) > 0) {
         received.append(part.data(), static_cast<size_t>(got));
      }
   }

   Fuzz::ApiStore store;
   int fd = -1;
   std::optional<Host::ApiConnection> connection;
   size_t answers = 0;
   std::string received;
};

size_t count(std::string_view text, std::string_view word) {
   size_t found = 0;
   for (size_t at = 0; (at = text.find(word, at)) != text.npos; at += word.size()) ++found;
   return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   if (size == 0) return 0;
   Client client;
   std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
   const size_t piece = data[0] ? data[0] : size;
   while (!rest.empty() && !client.connection->done()) {
      client.send(rest.substr(0, piece));
      rest.remove_prefix(std::min(piece, rest.size()));
   }
   REX_ASSERT(client.answers == 0 || client.received.starts_with("HTTP/1.1 "));
   REX_ASSERT(count(client.received, "HTTP/1.1 ") >= client.answers);
   client.store.checkSettings();
   return 0;
}
