// A Unix stream socket to the agent, with words for what can go wrong with it.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace LldpCli {

class Socket {
 public:
   explicit Socket(std::string path) : path_(std::move(path)) {}
   ~Socket() { close(); }
   Socket(const Socket&) = delete;
   Socket& operator=(const Socket&) = delete;

   const std::string& path() const { return path_; }
   bool isOpen() const { return descriptor_ >= 0; }
   // All throw Failure, NoRight where the user may not. An agent that says nothing for `patience`
   // counts as gone.
   void open(std::chrono::milliseconds patience);
   // Zero waits for ever.
   void patienceIs(std::chrono::milliseconds patience);
   void send(std::string_view octets);
   // 0 at the end.
   size_t receive(void* room, size_t size);
   void close();

   [[noreturn]] void fail(int error) const;

 private:
   std::string path_;
   int descriptor_ = -1;
};

}  // namespace LldpCli
