// The management API's socket and its clients.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "Rex/Loop.h"
#include "Rex/Timer.h"
#include "host/ApiConnection.h"
#include "host/ApiResources.h"

namespace Host {

// The Unix socket at a path. Only one process holds it; a socket that a dead one left is replaced.
class ApiSocket {
 public:
   // Throws StartError. Owner and group of the process may connect, nobody else.
   explicit ApiSocket(const std::string& path);
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
// client that only waits has no timer, and gives way to a new one when there are too many.
class ApiServer {
 public:
   ApiServer(Rex::Loop& loop, int listener, ApiResources& resources, ApiLimits limits = {});
   ~ApiServer();
   ApiServer(const ApiServer&) = delete;
   ApiServer& operator=(const ApiServer&) = delete;

   size_t clients() const { return clients_.size(); }

 private:
   void listen();
   void handleConnect();
   void handleDeadline();
   void admit(int fd);
   void serve(int fd);
   void settle(ApiConnection& connection);
   void remove(int fd);
   bool makeRoom();
   void rearm();

   Rex::Loop& loop_;
   const int listener_;
   ApiResources& resources_;
   const ApiLimits limits_;
   Rex::Ptr<Rex::Clock> clock_;
   std::map<int, std::unique_ptr<ApiConnection>> clients_;
   double listenAgain_ = Rex::never;  // after the process ran out of descriptors
   Rex::Timer timer_;
};

}  // namespace Host
