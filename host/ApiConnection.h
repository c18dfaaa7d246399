// One client of the management API: HTTP/1.1 over a stream socket that never waits. Requests are
// served one after the other, at most one in a turn of the loop; while an answer is on its way
// nothing more is read.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Rex/Timer.h"
#include "host/ApiMessage.h"

namespace Host {

class ApiResources;

struct ApiLimits {
   uint32_t headerBytes = 16 * 1024;         // request line and header fields
   uint64_t bodyBytes = 1024 * 1024;         // of a request
   uint64_t answerBytes = 64 * 1024 * 1024;  // body of an answer
   double requestSeconds = 10;               // from a request's first octet to its answer's last
   size_t clients = 32;
};

class ApiConnection {
 public:
   // Takes over the socket, which does not block.
   ApiConnection(int fd, const ApiLimits& limits, ApiResources& resources);
   ~ApiConnection();
   ApiConnection(const ApiConnection&) = delete;
   ApiConnection& operator=(const ApiConnection&) = delete;

   int fd() const { return fd_; }
   // Does one turn of what can be done without waiting.
   void serve(double now);
   // What to wait for, as epoll's events.
   uint32_t events() const;
   // When the present exchange has to be over; infinity between two.
   double deadline() const { return deadline_; }
   // When the last exchange was over.
   double idleSince() const { return idleSince_; }
   bool done() const { return state_ == State::done; }

 private:
   enum class State {
      reading,    // a request, or waiting for one
      pending,    // octets that have arrived wait for their turn
      answering,  // the answer is being sent
      draining,   // refused; what the client still sends is thrown away until it has read why
      done,
   };
   struct Http;

   void read();
   void parse();
   void refuse(unsigned status, const std::string& words);
   void answer(const ApiAnswer& answer, bool keepAlive);
   void send();
   void sent();
   void drain();

   const int fd_;
   const ApiLimits& limits_;
   ApiResources& resources_;
   std::unique_ptr<Http> http_;
   State state_ = State::reading;
   double now_ = 0;
   double deadline_ = Rex::never;
   double idleSince_ = 0;
};

}  // namespace Host
