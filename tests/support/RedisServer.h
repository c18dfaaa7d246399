// A Redis server of a test's own, on a Unix socket in a folder that is gone with it.
#pragma once

#include <gtest/gtest.h>
#include <hiredis/hiredis.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

namespace LldpTest {

class RedisServer {
 public:
   using Words = std::vector<std::string>;

   RedisServer() {
      std::string pattern = testing::TempDir() + "redis-XXXXXX";
      folder_ = mkdtemp(pattern.data());
      socket = folder_ + "/s";
   }
   ~RedisServer() {
      stop();
      std::filesystem::remove_all(folder_);
   }
   RedisServer(const RedisServer&) = delete;
   RedisServer& operator=(const RedisServer&) = delete;

   // Returns when it takes connections.
   void start(const Words& options = {}) {
      Words words{"redis-server", "--port", "0", "--unixsocket", socket, "--save", "", "--dir"};
      words.push_back(folder_);
      words.insert(words.end(), options.begin(), options.end());
      std::vector<char*> arguments;
      for (std::string& word : words) arguments.push_back(word.data());
      arguments.push_back(nullptr);
      std::array<int, 2> out;
      ASSERT_EQ(pipe(out.data()), 0);
      pid_ = fork();
      if (pid_ == 0) {
         prctl(PR_SET_PDEATHSIG, SIGKILL);
         dup2(out[1], STDOUT_FILENO);
         execvp(arguments[0], arguments.data());
         _exit(127);
      }
      close(out[1]);
      awaitReady(out[0]);
      close(out[0]);
   }
   // Without its farewell.
   void stop() {
      if (pid_ <= 0) return;
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
      pid_ = 0;
   }
   // Makes it hang, and go on.
   void hang() { kill(pid_, SIGSTOP); }
   void goOn() { kill(pid_, SIGCONT); }

   // What another client is answered: a text, an error's words, "nil", a number; lists in brackets.
   std::string ask(const Words& words, const Words& login = {}) {
      redisContext* client = redisConnectUnix(socket.c_str());
      if (!login.empty()) command(client, login);
      std::string answer = command(client, words);
      redisFree(client);
      return answer;
   }

   std::string socket;

 private:
   static std::string command(redisContext* client, const Words& words) {
      std::vector<const char*> texts;
      std::vector<size_t> lengths;
      for (const std::string& word : words) {
         texts.push_back(word.data());
         lengths.push_back(word.size());
      }
      auto* reply = static_cast<redisReply*>(
          redisCommandArgv(client, static_cast<int>(words.size()), texts.data(), lengths.data()));
      if (!reply) return client->errstr;
      std::string text = print(*reply);
      freeReplyObject(reply);
      return text;
   }
   static std::string print(const redisReply& reply) {
      if (reply.type == REDIS_REPLY_NIL) return "nil";
      if (reply.type == REDIS_REPLY_INTEGER) return std::to_string(reply.integer);
      if (reply.type != REDIS_REPLY_ARRAY) return {reply.str, reply.len};
      std::string all;
      for (size_t i = 0; i < reply.elements; ++i) {
         all += (i ? " " : "") + print(*reply.element[i]);
      }
      return "[" + all + "]";
   }
   static void awaitReady(int out) {
      std::string said;
      std::array<char, 4096> part;
      pollfd readable{out, POLLIN, 0};
      while (said.find("ready to accept connections") == std::string::npos) {
         ASSERT_EQ(poll(&readable, 1, 20000), 1) << said;
         ssize_t got = read(out, part.data(), part.size());
         ASSERT_GT(got, 0) << "redis-server ended:\n" << said;
         said.append(part.data(), static_cast<size_t>(got));
      }
   }

   std::string folder_;
   pid_t pid_ = 0;
};

}  // namespace LldpTest
