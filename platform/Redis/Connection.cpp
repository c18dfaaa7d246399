#include "Redis/Connection.h"

#include <fmt/format.h>

#include "Rex/System.h"

namespace Redis {
namespace {

redisAsyncContext* open(const StoreUrl& url) {
   if (!url.path.empty()) return redisAsyncConnectUnix(url.path.c_str());
   return redisAsyncConnect(url.host.c_str(), url.port);
}

}  // namespace

Connection::Connection(Rex::Loop& loop, const StoreUrl& url, double mostSilence,
                       std::function<void(const std::string&)> broken)
    : mostSilence_(mostSilence),
      broken_(std::move(broken)),
      limit_(Rex::Context::current().clock()) {
   limit_.handlerIs(nullptr, [this] {
      breakOff(failure_.empty() ? fmt::format("no answer for {} s", mostSilence_) : failure_);
   });
   redisAsyncContext* redis = open(url);
   if (!redis || redis->err) {
      failure_ = redis ? redis->errstr : "out of memory";
      if (redis) redisAsyncFree(redis);
      limit_.timeMinIs(0);
      return;
   }
   // Tells of a dead peer also while nothing is asked.
   if (url.path.empty()) redisEnableKeepAlive(&redis->c);
   redis->data = this;
   adapter_ = std::make_unique<LoopAdapter>(
       loop, redis, [this] { expectWithin(); }, [this](const std::string& why) { breakOff(why); });
}

void Connection::ask(const Words& words, Answer answer) {
   if (!send(handleAnswer, words)) return;
   answers_.push_back(std::move(answer));
   if (answers_.size() == 1) expectWithin();
}

// The server knows a script's text once it has run it, until it is restarted or told to forget.
void Connection::run(const Script& script, const Words& arguments, Answer answer) {
   std::string owned;
   std::vector<size_t> lengths;
   Words words{"EVALSHA", script.sha, "0"};
   words.insert(words.end(), arguments.begin(), arguments.end());
   for (const std::string_view& word : arguments) {
      owned += word;
      lengths.push_back(word.size());
   }
   ask(words, [this, &script, answer = std::move(answer), owned = std::move(owned),
               lengths = std::move(lengths)](const redisReply& reply) {
      bool unknown = reply.type == REDIS_REPLY_ERROR &&
                     std::string_view(reply.str, reply.len).starts_with("NOSCRIPT");
      if (!unknown) return answer(reply);
      Words again{"EVAL", script.text, "0"};
      size_t at = 0;
      for (size_t length : lengths) {
         again.push_back(std::string_view(owned).substr(at, length));
         at += length;
      }
      ask(again, answer);
   });
}

void Connection::subscribe(const Words& channels, Answer heard) {
   heard_ = std::move(heard);
   Words words{"SUBSCRIBE"};
   words.insert(words.end(), channels.begin(), channels.end());
   send(handleMessage, words);
}

bool Connection::send(redisCallbackFn* callback, const Words& words) {
   if (!adapter_ || !adapter_->redis()) return false;
   std::vector<const char*> texts;
   std::vector<size_t> lengths;
   for (const std::string_view& word : words) {
      texts.push_back(word.data());
      lengths.push_back(word.size());
   }
   return redisAsyncCommandArgv(adapter_->redis(), callback, nullptr,
                                static_cast<int>(words.size()), texts.data(),
                                lengths.data()) == REDIS_OK;
}

// Without a connection, or without a reply, it is at its end: what waits gets no answer.
void Connection::handleAnswer(redisAsyncContext* redis, void* reply, void* /*data*/) {
   auto* self = static_cast<Connection*>(redis->data);
   if (!self || !reply || self->answers_.empty()) return;
   Answer answer = std::move(self->answers_.front());
   self->answers_.pop_front();
   self->expectWithin();
   answer(*static_cast<redisReply*>(reply));
}

void Connection::handleMessage(redisAsyncContext* redis, void* reply, void* /*data*/) {
   auto* self = static_cast<Connection*>(redis->data);
   if (!self || !reply) return;
   Answer heard = self->heard_;
   heard(*static_cast<redisReply*>(reply));
}

void Connection::expectWithin() {
   if (answers_.empty()) {
      limit_.cancel();
   } else {
      limit_.timeMinIs(Rex::System::currentTime() + mostSilence_);
   }
}

void Connection::breakOff(const std::string& why) {
   limit_.cancel();
   answers_.clear();
   auto broken = std::move(broken_);
   std::string words = why;
   if (broken) broken(words);
}

}  // namespace Redis
