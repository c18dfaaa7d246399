#include "cli/Client.h"

#include <fmt/format.h>

#include <algorithm>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <cerrno>
#include <charconv>
#include <utility>

#include "Rex/Printable.h"
#include "cli/Failure.h"

namespace LldpCli {
namespace http = boost::beast::http;

namespace {

constexpr size_t receiveSize = 64 * 1024;
constexpr unsigned busy = 429;
constexpr long long longestPause = 10;  // seconds

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

// Which of several changes an error is about.
std::optional<size_t> errorChange(const std::string& body) {
   Json json = Json::parse(body, nullptr, false);
   if (!json.is_object() || !json.contains("error")) return std::nullopt;
   const Json& error = json["error"];
   if (!error.is_object() || !error.contains("change")) return std::nullopt;
   const Json& change = error["change"];
   return change.is_number_unsigned() ? std::optional(change.get<size_t>()) : std::nullopt;
}

// Where there is a socket for those who may only read.
std::string besides(const std::string& socketPath) {
   return socketPath.substr(0, socketPath.rfind('/') + 1) + "read.sock";
}

std::string requestText(const std::string& method, const std::string& target,
                        const std::string& body) {
   std::string head = fmt::format("{} {} HTTP/1.1\r\nHost: switch\r\n", method, target);
   if (method == "GET") return head + "\r\n";
   if (body.empty()) return head + "Content-Length: 0\r\n\r\n";
   return fmt::format("{}Content-Type: application/json\r\nContent-Length: {}\r\n\r\n{}", head,
                      body.size(), body);
}

}  // namespace

Client::Client(const std::string& socketPath, Patience patience)
    : socket_(socketPath), readSocket_(besides(socketPath)), patience_(std::move(patience)) {}

std::optional<Json> Client::find(const std::string& target) {
   Answer answer = exchange("GET", target, {});
   if (answer.status == 404) return std::nullopt;
   if (answer.status != 200) refuse(target, answer);
   return decoded(answer.body);
}

Json Client::get(const std::string& target) {
   std::optional<Json> found = find(target);
   if (!found) throw Failure(fmt::format("the agent at {} has no {}", socket_.path(), target));
   return *std::move(found);
}

Json Client::change(const std::string& method, const std::string& target, const Json& body) {
   // Octets that are no UTF-8 came from the command line, and are for the agent to refuse.
   std::string text =
       body.is_null() ? "" : body.dump(-1, ' ', true, Json::error_handler_t::replace);
   Answer answer = exchange(method, target, text);
   if (answer.status < 200 || answer.status > 299) refuse(target, answer);
   return answer.body.empty() ? Json() : decoded(answer.body);
}

void Client::stream(const std::string& target, const Sink& sink) {
   Answer answer = exchange("GET", target, {}, sink);
   if (answer.status != 200) refuse(target, answer);
   throw Failure(fmt::format("the agent at {} is gone", Rex::printable(open_->path())));
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

void Client::refuse(const std::string& target, const Answer& answer) const {
   if (answer.status == busy) {
      throw Failure("the agent is kept busy by this user's requests; try again in a moment");
   }
   std::string words = errorWords(answer.body);
   if (words.empty() && (answer.status == 401 || answer.status == 403)) open_->fail(EACCES);
   throw Refused(fmt::format("the agent refuses {}: {} ({})", target, words, answer.status),
                 errorChange(answer.body));
}

Client::Answer Client::exchange(const std::string& method, const std::string& target,
                                const std::string& body, const Sink& sink) {
   bool reading = method == "GET";
   std::string request = requestText(method, target, body);
   Answer answer = exchangeOnce(request, reading, sink);
   if (answer.status != busy) return answer;
   patience_.pause(std::chrono::seconds(std::clamp(answer.retryAfter, 1LL, longestPause)));
   return exchangeOnce(request, reading, sink);
}

Client::Answer Client::exchangeOnce(const std::string& request, bool reading, const Sink& sink) {
   connect(reading);
   open_->send(request);
   Answer answer = receive(sink);
   if (!answer.keepAlive) open_->close();
   return answer;
}

void Client::connect(bool reading) {
   bool fits = open_ && open_->isOpen() && (reading || open_ == &socket_);
   if (fits) return;
   open_ = &socket_;
   try {
      socket_.open(patience_.answer);
   } catch (const NoRight&) {
      if (!reading) throw;
      try {
         readSocket_.open(patience_.answer);
      } catch (const Failure&) {
         socket_.fail(EACCES);  // the socket that was asked for is the one to tell of
      }
      open_ = &readSocket_;
   }
}

Client::Answer Client::receive(const Sink& sink) {
   http::response_parser<http::string_body> parser;
   parser.eager(true);
   parser.body_limit(boost::none);
   boost::beast::flat_buffer buffer;
   boost::beast::error_code error;
   bool streaming = false;
   while (!parser.is_done()) {
      auto space = buffer.prepare(receiveSize);
      size_t got = open_->receive(space.data(), space.size());
      if (got == 0) {
         parser.put_eof(error);
         if (streaming) break;
         if (error || !parser.is_done()) open_->fail(ECONNRESET);
         break;
      }
      buffer.commit(got);
      buffer.consume(parser.put(buffer.data(), error));
      if (error && error != http::error::need_more) {
         throw Failure(fmt::format("{} does not speak HTTP: {}", Rex::printable(open_->path()),
                                   error.message()));
      }
      if (sink && parser.is_header_done() && parser.get().result_int() == 200) {
         if (!std::exchange(streaming, true)) open_->patienceIs(std::chrono::milliseconds(0));
         sink(std::exchange(parser.get().body(), {}));
      }
   }
   Answer answer{parser.get().result_int(), parser.keep_alive() && !streaming, 1,
                 std::move(parser.get().body())};
   auto after = parser.get()[http::field::retry_after];
   std::from_chars(after.data(), after.data() + after.size(), answer.retryAfter);
   return answer;
}

}  // namespace LldpCli
