// One connection to the server of the state store. Requests go out in order and are answered in
// order. While one waits, the server may stay silent for a time only.
//
// hiredis writes with write(2): the process has to ignore SIGPIPE.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Redis/LoopAdapter.h"
#include "Redis/Script.h"
#include "Redis/StoreUrl.h"
#include "Rex/Timer.h"

namespace Redis {

using Words = std::vector<std::string_view>;

class Connection {
 public:
   using Answer = std::function<void(const redisReply& reply)>;

   // Begins to connect to a resolved URL. `broken` is told once why the connection is at its end,
   // and never from within a call. It and every answer may delete the connection.
   Connection(Rex::Loop& loop, const StoreUrl& url, double mostSilence,
              std::function<void(const std::string&)> broken);

   void ask(const Words& words, Answer answer);
   void run(const Script& script, const Words& arguments, Answer answer);
   // The last request of a connection: from now on it only hears what is said on the channels.
   // `heard` also gets the confirmation of each.
   void subscribe(const Words& channels, Answer heard);

 private:
   bool send(redisCallbackFn* callback, const Words& words);
   static void handleAnswer(redisAsyncContext* redis, void* reply, void* data);
   static void handleMessage(redisAsyncContext* redis, void* reply, void* data);
   void expectWithin();
   void breakOff(const std::string& why);

   const double mostSilence_;
   std::function<void(const std::string&)> broken_;
   std::unique_ptr<LoopAdapter> adapter_;  // null when not even a beginning was possible
   Rex::Timer limit_;                      // armed while a request waits
   std::string failure_;                   // of that beginning, told when the timer runs
   std::deque<Answer> answers_;            // of the requests that wait
   Answer heard_;
};

}  // namespace Redis
