// Where the state store is, as the operator writes it:
//
//    redis://[[user]:password@]host[:port][/database]
//    unix:/path[?database=N]
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Redis {

// Says what is wrong and what would be right.
class StoreUrlError : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

struct StoreUrl {
   std::string path;  // of the Unix socket; empty for TCP
   std::string host;  // name or literal address
   uint16_t port = 6379;
   unsigned database = 0;
   std::string user;  // empty: the server's default one
   std::string password;

   // Throws StoreUrlError. User and password may hold %XX.
   static StoreUrl parse(std::string_view text);
   // Takes the password that a file holds: its first line. Throws StoreUrlError.
   void passwordIs(std::string_view fileContent);

   // The same without the password, for a log.
   std::string text() const;
   // The same with a literal address for the host. Asks the system's resolver, which may take its
   // time: for the start of a process. Throws StoreUrlError.
   StoreUrl resolved() const;
};

}  // namespace Redis
