#include "cli/Client.h"

#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <cerrno>
#include <cstring>
#include <utility>

#include "Rex/Printable.h"
#include "cli/Failure.h"

namespace LldpCli {
namespace http = boost::beast::http;

namespace {

constexpr size_t receiveSize = 64 * 1024;

Json decoded(const std::string& body) {
   Json json = Json::parse(body, nullptr, false);
   if (json.is_discarded()) throw Failure("the agent's answer is not JSON");
   return json;
}

// The words of {"error": ...}; the error itself when it has none.
std::string errorWords(const std::string& body) {
   Json json = Json::parse(body, nullptr, false);
   if (!json.is_object() || !json.contains("error")) return Rex::printable(body.substr(0, 200));
   const Json& error = json["error"];
   const Json& words = error.is_object() && error.contains("message") ? error["message"] : error;
   return Rex::printable(words.is_string() ? words.get<std::string>() : words.dump());
}

}  // namespace

Client::Client(std::string socketPath, std::chrono::milliseconds patience)
    : socketPath_(std::move(socketPath)), patience_(patience) {}

std::optional<Json> Client::find(const std::string& target) {
   Answer answer = exchange(target);
   if (answer.status == 404) return std::nullopt;
   if (answer.status == 401 || answer.status == 403) fail(EACCES);
   if (answer.status != 200) {
      throw Failure(fmt::format("the agent refuses {}: {} ({})", target, errorWords(answer.body),
                                answer.status));
   }
   return decoded(answer.body);
}

Json Client::get(const std::string& target) {
   std::optional<Json> found = find(target);
   if (!found) throw Failure(fmt::format("the agent at {} has no {}", socketPath_, target));
   return *std::move(found);
}

std::string Client::step(std::string_view key) {
   std::string out;
   for (unsigned char c : key) {
      bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                   std::string_view("-._~").find(static_cast<char>(c)) != std::string_view::npos;
      out += plain ? std::string(1, static_cast<char>(c)) : fmt::format("%{:02X}", c);
   }
   return out;
}

Client::Answer Client::exchange(const std::string& target) {
   if (socket_ < 0) connect();
   send(fmt::format("GET {} HTTP/1.1\r\nHost: switch\r\nAccept: application/json\r\n\r\n", target));
   Answer answer = receive();
   if (!answer.keepAlive) disconnect();
   return answer;
}

void Client::connect() {
   sockaddr_un address{};
   address.sun_family = AF_UNIX;
   if (socketPath_.empty() || socketPath_.size() >= sizeof(address.sun_path)) {
      throw Failure(fmt::format("'{}' is no socket path: it has 1 to {} octets",
                                Rex::printable(socketPath_), sizeof(address.sun_path) - 1));
   }
   std::copy(socketPath_.begin(), socketPath_.end(), address.sun_path);
   socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
   if (socket_ < 0) fail(errno);
   timeval patience{patience_.count() / 1000, patience_.count() % 1000 * 1000};
   setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
   setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof(patience));
   if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) < 0) {
      fail(errno);
   }
}

void Client::disconnect() {
   if (socket_ >= 0) close(std::exchange(socket_, -1));
}

void Client::send(std::string_view octets) {
   while (!octets.empty()) {
      ssize_t sent = ::send(socket_, octets.data(), octets.size(), MSG_NOSIGNAL);
      if (sent < 0 && errno == EINTR) continue;
      if (sent < 0) fail(errno);
      octets.remove_prefix(static_cast<size_t>(sent));
   }
}

Client::Answer Client::receive() {
   http::response_parser<http::string_body> parser;
   parser.eager(true);
   parser.body_limit(boost::none);
   boost::beast::flat_buffer buffer;
   boost::beast::error_code error;
   while (!parser.is_done()) {
      auto space = buffer.prepare(receiveSize);
      ssize_t got = recv(socket_, space.data(), space.size(), 0);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) fail(errno);
      if (got == 0) {
         parser.put_eof(error);
         if (error || !parser.is_done()) fail(ECONNRESET);
         break;
      }
      buffer.commit(static_cast<size_t>(got));
      buffer.consume(parser.put(buffer.data(), error));
      if (error && error != http::error::need_more) {
         throw Failure(fmt::format("{} does not speak HTTP: {}", Rex::printable(socketPath_),
                                   error.message()));
      }
   }
   return {parser.get().result_int(), parser.keep_alive(), std::move(parser.get().body())};
}

void Client::fail(int error) const {
   std::string path = Rex::printable(socketPath_);
   switch (error) {
      case ENOENT:
      case ENOTDIR:
      case ECONNREFUSED:
         throw Failure(
             fmt::format("no agent answers at {}; start one with 'lldp-agentd', or name "
                         "its socket with --socket PATH",
                         path));
      case EACCES:
      case EPERM:
         throw Failure(
             fmt::format("no right to use {}; run lldp as root or as a user whom the "
                         "socket's permissions admit",
                         path));
      case EAGAIN:
         throw Failure(fmt::format("the agent at {} does not answer", path));
      case ECONNRESET:
      case EPIPE:
         throw Failure(fmt::format("the agent at {} broke off its answer", path));
      default:
         throw Failure(fmt::format("cannot use {}: {}", path, std::strerror(error)));
   }
}

}  // namespace LldpCli
