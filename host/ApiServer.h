// The management API's sockets and their clients.
#pragma once

#include <sys/types.h>

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "Rex/Loop.h"
#include "Rex/Timer.h"
#include "host/ApiConnection.h"
#include "host/ApiRequestRate.h"
#include "host/ApiResources.h"

namespace Host {

// The Unix socket at a path. Only one process holds it; a socket that a dead one left is replaced.
class ApiSocket {
 public:
   // Throws StartError. The process's owner may connect and the group, which is the process's own
   // where none is given, nobody else.
   explicit ApiSocket(const std::string& path, std::optional<gid_t> group = std::nullopt);
   // Takes the socket away from the path.
   ~ApiSocket();
   ApiSocket(const ApiSocket&) = delete;
   ApiSocket& operator=(const ApiSocket&) = delete;

   int fd() const { return fd_; }

 private:
   const std::string path_;
   int lock_;
   int fd_ = -1;
};

// Serves a listening socket from the loop. An exchange that takes too long ends the connection. A
// client that only waits has no timer, and gives way to a new one when there are too many. One that
// listens to a stream has none either, and stays, unless all streams are taken and it does not
// read.
class ApiServer {
 public:
   // Who comes through this socket may change something only if `mayWrite`.
   ApiServer(Rex::Loop& loop, int listener, ApiResources& resources, ApiRequestRate& rate,
             ApiLimits limits = {}, bool mayWrite = true);
   ~ApiServer();
   ApiServer(const ApiServer&) = delete;
   ApiServer& operator=(const ApiServer&) = delete;

   size_t clients() const { return clients_.size(); }
   size_t streams() const;

 private:
   void listen();
   void handleConnect();
   void handleDeadline();
   void admit(int fd);
   void serve(int fd, uint32_t events);
   ApiAnswer answer(ApiRequest request, uid_t user);
   void settle(ApiConnection& connection);
   void remove(int fd);
   bool makeRoom();
   bool endStalled();
   void rearm();

   Rex::Loop& loop_;
   const int listener_;
   ApiResources& resources_;
   ApiRequestRate& rate_;
   const ApiLimits limits_;
   const bool mayWrite_;
   Rex::Ptr<Rex::Clock> clock_;
   std::map<int, std::unique_ptr<ApiConnection>> clients_;
   double listenAgain_ = Rex::never;  // after the process ran out of descriptors
   Rex::Timer timer_;
};

}  // namespace Host
