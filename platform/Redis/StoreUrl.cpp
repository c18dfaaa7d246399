#include "Redis/StoreUrl.h"

#include <netdb.h>
#include <sys/un.h>

#include <charconv>
#include <memory>
#include <optional>

#include "Rex/Printable.h"
#include "Statestore/Path.h"

namespace Redis {
namespace {

constexpr std::string_view forms =
    "expected redis://[[user]:password@]host[:port][/database] or unix:/path[?database=N]";
constexpr size_t longestPath = sizeof(sockaddr_un::sun_path) - 1;
// What a server can have at most is a signed int; what it has, it says itself.
constexpr unsigned mostDatabase = 2147483647;

unsigned number(std::string_view text, unsigned least, unsigned most, const char* what) {
   unsigned value = 0;
   auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
   if (error != std::errc() || end != text.data() + text.size() || value < least || value > most) {
      throw StoreUrlError(std::string(what) + " " + Rex::printable(text) +
                          ": expected a number from " + std::to_string(least) + " to " +
                          std::to_string(most));
   }
   return value;
}

// A user or a password. It may hold any octet but is never told in an error.
std::string decoded(std::string_view text) {
   if (text.find('/') != std::string_view::npos) {
      throw StoreUrlError("a slash in user or password is written %2F");
   }
   auto steps = Statestore::decodePath(text);
   if (!steps) throw StoreUrlError("a percent sign in user or password is written %25");
   return steps->empty() ? "" : steps->front();
}

// Cuts off what stands behind the first `mark`; nothing when there is none.
std::optional<std::string_view> cutBehind(std::string_view& text, char mark) {
   size_t at = text.find(mark);
   if (at == std::string_view::npos) return std::nullopt;
   std::string_view behind = text.substr(at + 1);
   text = text.substr(0, at);
   return behind;
}

StoreUrl parseUnix(std::string_view text) {
   StoreUrl url;
   if (auto query = cutBehind(text, '?')) {
      constexpr std::string_view name = "database=";
      if (!query->starts_with(name)) throw StoreUrlError(std::string(forms));
      url.database = number(query->substr(name.size()), 0, mostDatabase, "database");
   }
   if (!text.starts_with('/')) throw StoreUrlError("the path of the socket has to be absolute");
   if (text.size() > longestPath || text.find('\0') != std::string_view::npos) {
      throw StoreUrlError("expected a path of at most " + std::to_string(longestPath) + " octets");
   }
   url.path = text;
   return url;
}

void takeAuthority(StoreUrl& url, std::string_view text) {
   if (text.starts_with('[')) {
      auto behind = cutBehind(text, ']');
      if (!behind || (!behind->empty() && !behind->starts_with(':'))) {
         throw StoreUrlError("an IPv6 address is written [address]");
      }
      url.host = text.substr(1);
      if (!behind->empty()) url.port = number(behind->substr(1), 1, 65535, "port");
   } else {
      auto port = cutBehind(text, ':');
      url.host = text;
      if (port) url.port = number(*port, 1, 65535, "port");
   }
   if (url.host.empty() || url.host.find('\0') != std::string::npos) {
      throw StoreUrlError(std::string(forms));
   }
}

StoreUrl parseTcp(std::string_view text) {
   StoreUrl url;
   if (size_t at = text.rfind('@'); at != std::string_view::npos) {
      std::string_view user = text.substr(0, at);
      text.remove_prefix(at + 1);
      auto password = cutBehind(user, ':');
      if (password) url.password = decoded(*password);
      url.user = decoded(user);
   }
   auto database = cutBehind(text, '/');
   if (database && !database->empty())
      url.database = number(*database, 0, mostDatabase, "database");
   takeAuthority(url, text);
   return url;
}

}  // namespace

StoreUrl StoreUrl::parse(std::string_view text) {
   constexpr std::string_view tcp = "redis://";
   constexpr std::string_view local = "unix:";
   if (text.starts_with(tcp)) return parseTcp(text.substr(tcp.size()));
   if (text.starts_with(local)) return parseUnix(text.substr(local.size()));
   throw StoreUrlError(std::string(forms));
}

void StoreUrl::passwordIs(std::string_view fileContent) {
   std::string_view line = fileContent.substr(0, fileContent.find_first_of("\r\n"));
   if (line.empty()) throw StoreUrlError("expected the password in the first line");
   if (!password.empty()) throw StoreUrlError("the URL has a password already; leave one out");
   password = line;
}

std::string StoreUrl::text() const {
   if (!path.empty()) {
      std::string query = database ? "?database=" + std::to_string(database) : "";
      return "unix:" + Rex::printable(path) + query;
   }
   bool literal6 = host.find(':') != std::string::npos;
   std::string name = literal6 ? "[" + host + "]" : host;
   return "redis://" + Rex::printable(user.empty() ? name : user + "@" + name) + ":" +
          std::to_string(port) + "/" + std::to_string(database);
}

StoreUrl StoreUrl::resolved() const {
   if (!path.empty()) return *this;
   // As servers listen by default, the address of the older kind comes first.
   for (int family : {AF_INET, AF_INET6}) {
      addrinfo wanted{};
      wanted.ai_family = family;
      wanted.ai_socktype = SOCK_STREAM;
      addrinfo* found = nullptr;
      if (getaddrinfo(host.c_str(), nullptr, &wanted, &found) != 0) continue;
      std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found, freeaddrinfo);
      char address[NI_MAXHOST];
      if (getnameinfo(found->ai_addr, found->ai_addrlen, address, sizeof(address), nullptr, 0,
                      NI_NUMERICHOST) != 0) {
         continue;
      }
      StoreUrl literal = *this;
      literal.host = address;
      return literal;
   }
   throw StoreUrlError("the host " + Rex::printable(host) +
                       " has no address; name one, or the literal address");
}

}  // namespace Redis
