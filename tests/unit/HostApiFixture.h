// The management API behind a socket, and clients that write and read its octets.
#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <utility>

#include "Rex/Loop.h"
#include "host/ApiEntities.h"
#include "host/ApiServer.h"
#include "unit/HostFeedersFolder.h"
#include "unit/HostStore.h"

namespace HostTest {

inline const std::string interval = "/v1/entity/l2discovery/lldp/cliConfig/messageTxInterval";

class Client {
 public:
   explicit Client(const std::string& path) : fd_(socket(AF_UNIX, SOCK_STREAM, 0)) {
      sockaddr_un address{};
      address.sun_family = AF_UNIX;
      std::copy(path.begin(), path.end(), address.sun_path);
      EXPECT_EQ(connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
   }
   ~Client() { hangUp(); }
   Client(const Client&) = delete;
   Client& operator=(const Client&) = delete;

   // How much of it went out.
   size_t send(const std::string& octets) {
      ssize_t sent = ::send(fd_, octets.data(), octets.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
      return sent < 0 ? 0 : static_cast<size_t>(sent);
   }
   // What has arrived; `ended` when the other side has hung up.
   std::string receive() {
      std::string all;
      std::array<char, 65536> part;
      ssize_t got = 0;
      while ((got = recv(fd_, part.data(), part.size(), MSG_DONTWAIT)) > 0) {
         all.append(part.data(), static_cast<size_t>(got));
      }
      ended = got == 0 || errno != EAGAIN;
      return all;
   }
   void hangUp() {
      if (fd_ >= 0) close(std::exchange(fd_, -1));
   }
   bool ended = false;

 private:
   int fd_;
};

struct ApiFixture : testing::Test {
   Host::TestFolder folder;
   Store store;
   Rex::Loop loop;
   Host::ApiEntities entities{store.manager, Host::ApiAccess(store.manager, {})};
   Host::ApiResources resources;
   Host::ApiLimits limits;
   std::optional<Host::ApiRequestRate> rate;
   std::string path = folder.path + "/api.sock";
   std::optional<Host::ApiSocket> socket{path};
   std::optional<Host::ApiServer> server;

   ApiFixture() {
      entities.serveIn(resources);
      auto large = [](const Host::ApiRequest&, const Host::ApiTarget&) {
         return Host::ApiAnswer{200, std::string(3 << 20, 'x'), {}};
      };
      resources.resourceIs({"/v1/agent", {"GET"}, {}, large});
   }

   void serve(bool mayWrite = true) {
      rate.emplace(limits);
      server.emplace(loop, socket->fd(), resources, *rate, limits, mayWrite);
   }
   // Lets the loop take turns without waiting.
   void turns(int count = 20) {
      Rex::Timer turn(store.test.context().clock());
      turn.handlerIs(nullptr, [&] {
         if (count-- > 0) {
            turn.timeMinIs(0);
         } else {
            loop.stop();
         }
      });
      turn.timeMinIs(0);
      loop.run(store.test.context());
   }
   std::string exchange(Client& client, const std::string& octets) {
      client.send(octets);
      turns();
      return client.receive();
   }
   static std::string get(const std::string& target) {
      return "GET " + target + " HTTP/1.1\r\nHost: switch\r\n\r\n";
   }
   static std::string patch(const std::string& body) {
      return "PATCH /v1/entity/l2discovery/lldp/cliConfig HTTP/1.1\r\nHost: switch\r\n"
             "Content-Length: " +
             std::to_string(body.size()) + "\r\n\r\n" + body;
   }
   uint32_t txInterval() { return store.cliConfig()->messageTxInterval(); }
};

}  // namespace HostTest
