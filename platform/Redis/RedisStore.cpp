#include "Redis/RedisStore.h"

#include <fmt/format.h>

#include <algorithm>

#include "Redis/Loading.h"
#include "Redis/Replies.h"
#include "Rex/System.h"

namespace Redis {
namespace {

using Statestore::ChangeResult;
using Statestore::Operation;

constexpr const char* changed = "state:changed";
constexpr const char* invalidate = "__redis__:invalidate";
constexpr const char* lifeKey = "state:life";

std::string_view nameOf(Operation::Kind kind) {
   switch (kind) {
      case Operation::Kind::set:
         return "set";
      case Operation::Kind::make:
         return "make";
      case Operation::Kind::remove:
         return "remove";
      case Operation::Kind::require:
         return "require";
   }
   return "";
}

ChangeResult resultOf(std::string_view answer) {
   if (answer == "otherLife") return ChangeResult::otherLife;
   if (answer == "rootStands") return ChangeResult::rootStands;
   if (answer == "unmet") return ChangeResult::unmet;
   return ChangeResult::made;
}

// The server is only about to start or busy with somebody else's script: no word on the change.
bool isForLater(const redisReply& reply) {
   return isError(reply, "LOADING") || isError(reply, "BUSY") || isError(reply, "MASTERDOWN");
}

std::string randomText() {
   std::random_device random;
   return fmt::format("{:08x}{:08x}", random(), random());
}

}  // namespace

RedisStore::RedisStore(Rex::Loop& loop, StoreUrl url, uint32_t seed)
    : loop_(loop),
      url_(std::move(url)),
      log_(url_.text()),
      random_(seed),
      turn_(Rex::Context::current().clock()) {}

void RedisStore::start(Statestore::StoreClient& client) {
   client_ = &client;
   connect();
}

void RedisStore::connect() {
   turn_.handlerIs(nullptr, [this] { breakOff("it does not become ready"); });
   turn_.timeMinIs(Rex::System::currentTime() + mostSilence);
   auto broken = [this](const std::string& why) { breakOff(why); };
   requests_ = std::make_unique<Connection>(loop_, url_, mostSilence, broken);
   news_ = std::make_unique<Connection>(loop_, url_, mostSilence, broken);
   logIn(*requests_);
   std::string database = std::to_string(url_.database);
   requests_->ask({"SELECT", database}, unlessError([this](const redisReply&) { listen(); }));
}

void RedisStore::logIn(Connection& connection) {
   if (url_.password.empty()) return;
   Words words{"AUTH"};
   if (!url_.user.empty()) words.push_back(url_.user);
   words.push_back(url_.password);
   connection.ask(words, unlessError([](const redisReply&) {}));
}

// The number of the second connection has to be asked for before it does nothing but listen.
void RedisStore::listen() {
   logIn(*news_);
   news_->ask({"CLIENT", "ID"}, unlessError([this](const redisReply& reply) {
                 subscribed_ = 0;
                 std::string listener = std::to_string(reply.integer);
                 news_->subscribe({changed, invalidate},
                                  [this, listener](const redisReply& message) {
                                     if (isError(message)) {
                                        breakOff(std::string(text(message)));
                                     } else if (subscribed_ == 2) {
                                        handleMessage(message);
                                     } else if (++subscribed_ == 2) {
                                        track(listener);
                                     }
                                  });
              }));
}

// From then on the server says when the store's life ends, without being asked.
void RedisStore::track(const std::string& listener) {
   requests_->ask({"CLIENT", "TRACKING", "ON", "REDIRECT", listener, "BCAST", "PREFIX", lifeKey},
                  unlessError([this](const redisReply&) { handleUp(); }));
}

void RedisStore::handleUp() {
   turn_.cancel();
   up_ = true;
   life_.clear();
   client_->handleUp();
}

void RedisStore::handleMessage(const redisReply& message) {
   if (message.type != REDIS_REPLY_ARRAY || message.elements < 2 || !up_) return;
   std::string_view channel = text(*message.element[1]);
   if (channel == changed) {
      client_->handleNews();
   } else if (channel == invalidate) {
      checkLife();
   }
}

// It may be the life of another database, or one that began only now.
void RedisStore::checkLife() {
   requests_->ask({"GET", lifeKey}, unlessError([this](const redisReply& reply) {
                     if (life_.empty() || text(reply) == life_) return;
                     life_.clear();
                     client_->handleEmptied();
                  }));
}

void RedisStore::load(const std::vector<std::string>& roots,
                      std::function<void(Statestore::Snapshot)> answer) {
   if (!up_) return;
   Loading::begin(
       *requests_, randomText(), roots,
       [this, answer](Statestore::Snapshot snapshot) {
          handleGood();
          life_ = snapshot.life;
          answer(std::move(snapshot));
       },
       [this](const std::string& why) { breakOff(why); });
}

void RedisStore::read(const std::string& life, const std::string& after,
                      std::function<void(std::optional<std::vector<Statestore::Change>>)> answer) {
   request(readScript, {life, after, entriesAtATime},
           unlessError([this, life, answer](const redisReply& reply) {
              if (text(reply) == "gone") {
                 handleGood();
                 return answer(std::nullopt);
              }
              auto changes = parseChanges(reply);
              if (!changes) return breakOff("it answers what is no list of changes");
              handleGood();
              life_ = life;
              malformedEntries_ += changes->malformed;
              if (changes->malformed) log_.malformed(changes->lastMalformed);
              answer(std::move(changes->changes));
           }));
}

void RedisStore::change(const std::string& life, const std::string& writer, uint64_t number,
                        const Statestore::Operations& operations,
                        std::function<void(ChangeResult)> answer) {
   std::string count = std::to_string(number);
   Words words{life, writer, count};
   words.reserve(words.size() + 4 * operations.size());
   for (const Operation& one : operations) {
      words.insert(words.end(), {nameOf(one.kind), one.row, one.field, one.value});
   }
   Next next = unlessError([this, answer](const redisReply& reply) {
      handleGood();
      log_.taken();
      answer(resultOf(text(reply)));
   });
   request(changeScript, words, [this, answer, next](const redisReply& reply) {
      if (!isError(reply) || isForLater(reply)) return next(reply);
      handleGood();
      log_.refused(std::string(text(reply)));
      answer(ChangeResult::refused);
   });
}

void RedisStore::request(const Script& script, const Words& arguments, Next next) {
   if (up_) requests_->run(script, arguments, std::move(next));
}

RedisStore::Next RedisStore::unlessError(Next next) {
   return [this, next = std::move(next)](const redisReply& reply) {
      if (isError(reply)) return breakOff(std::string(text(reply)));
      next(reply);
   };
}

// Only an answer to a real request shows that the store works, and that the next failure is a new
// one.
void RedisStore::handleGood() {
   retry_ = firstRetry;
   log_.works();
}

void RedisStore::breakOff(const std::string& why) {
   log_.broken(why, up_);
   requests_.reset();
   news_.reset();
   double spread = std::uniform_real_distribution<double>(0.5, 1)(random_);
   turn_.handlerIs(nullptr, [this] { connect(); });
   turn_.timeMinIs(Rex::System::currentTime() + retry_ * spread);
   retry_ = std::min(2 * retry_, longestRetry);
   if (!std::exchange(up_, false)) return;
   client_->handleDown();
}

}  // namespace Redis
