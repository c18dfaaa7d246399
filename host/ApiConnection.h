// One client of the management API: HTTP/1.1 over a stream socket that never waits. Requests are
// served one after the other, at most one in a turn of the loop; while an answer is on its way
// nothing more is read. An answer that is a stream goes on until one of the two has had enough.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Rex/Timer.h"
#include "host/ApiLimits.h"
#include "host/ApiMessage.h"
#include "host/ApiStream.h"

namespace Host {

class ApiConnection {
 public:
   using Serve = std::function<ApiAnswer(const ApiRequest&)>;
   // Takes over the socket, which does not block. `wake` is called when events() has become another
   // outside of serve().
   ApiConnection(int fd, const ApiLimits& limits, Serve serve, std::function<void()> wake);
   ~ApiConnection();
   ApiConnection(const ApiConnection&) = delete;
   ApiConnection& operator=(const ApiConnection&) = delete;

   int fd() const { return fd_; }
   // Does one turn of what can be done without waiting; `events` are those that have come.
   void serve(double now, uint32_t events);
   // What to wait for, as epoll's events.
   uint32_t events() const;
   // When the present exchange has to be over; infinity between two, and for a stream.
   double deadline() const { return deadline_; }
   // When the last exchange was over.
   double idleSince() const { return idleSince_; }
   // Whether it waits for the client to ask for something.
   bool idle() const { return state_ == State::reading && deadline_ == Rex::never; }
   bool streaming() const { return state_ == State::streaming; }
   // Whether the reader of a stream has not yet taken what has gone out to it.
   bool stalled() const;
   // When that went out.
   double sentTime() const { return sentTime_; }
   bool done() const { return state_ == State::done; }

 private:
   enum class State {
      reading,    // a request, or waiting for one
      pending,    // octets that have arrived wait for their turn
      answering,  // the answer is being sent
      streaming,  // the answer goes on; nothing more is read
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
   void begin(const ApiAnswer& answer);
   void stream(uint32_t events);
   void drain();

   const int fd_;
   const ApiLimits& limits_;
   const Serve serve_;
   const std::function<void()> wake_;
   std::unique_ptr<Http> http_;
   std::unique_ptr<ApiStream> stream_;
   std::shared_ptr<void> source_;  // of the stream; declared last of both, for it goes first
   State state_ = State::reading;
   double now_ = 0;
   double deadline_ = Rex::never;
   double idleSince_ = 0;
   double sentTime_ = 0;
};

}  // namespace Host
