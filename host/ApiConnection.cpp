#include "host/ApiConnection.h"

#include <linux/sockios.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <boost/beast/core/buffers_range.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/serializer.hpp>
#include <boost/beast/http/string_body.hpp>
#include <cerrno>
#include <optional>

#include "host/ApiResources.h"

namespace Host {
namespace http = boost::beast::http;

namespace {

constexpr size_t readBytes = 64 * 1024;
// What ends only with the connection has no length (RFC 9112, 6.3).
constexpr std::string_view streamHeader =
    "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nCache-Control: no-cache\r\n"
    "Connection: close\r\n\r\n";

bool wouldWait() {
   return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

ApiAnswer tooLong(const ApiLimits& limits, const std::string& advice) {
   return ApiResources::refusal(
       {}, ApiError(400, "the answer would be longer than " + std::to_string(limits.answerBytes) +
                             " octets; " + advice));
}

}  // namespace

struct ApiConnection::Http {
   using Response = http::response<http::string_body>;

   boost::beast::flat_buffer input;
   std::optional<http::request_parser<http::string_body>> parser;
   std::optional<Response> response;
   std::optional<http::response_serializer<http::string_body>> serializer;

   void expectRequest(const ApiLimits& limits) {
      parser.emplace();
      parser->eager(true);
      parser->header_limit(limits.headerBytes);
      parser->body_limit(limits.bodyBytes);
   }
   void respond(Response&& made) {
      serializer.reset();
      response.emplace(std::move(made));
      serializer.emplace(*response);
   }
};

ApiConnection::ApiConnection(int fd, const ApiLimits& limits, Serve serve,
                             std::function<void()> wake)
    : fd_(fd),
      limits_(limits),
      serve_(std::move(serve)),
      wake_(std::move(wake)),
      http_(std::make_unique<Http>()) {
   http_->expectRequest(limits_);
}

ApiConnection::~ApiConnection() {
   close(fd_);
}

uint32_t ApiConnection::events() const {
   // Nothing is read any more, but a client that hangs up is noticed.
   if (state_ == State::streaming) {
      return EPOLLRDHUP | (stream_->waiting().empty() ? 0u : uint32_t{EPOLLOUT});
   }
   // The socket has room as good as always, so waiting for it is how a turn is asked for.
   bool write = state_ == State::answering || state_ == State::pending;
   return write ? EPOLLOUT : EPOLLIN;
}

void ApiConnection::serve(double now, uint32_t events) {
   now_ = now;
   switch (state_) {
      case State::reading:
         read();
         break;
      case State::pending:
         parse();
         break;
      case State::answering:
         send();
         break;
      case State::streaming:
         stream(events);
         break;
      case State::draining:
         drain();
         break;
      case State::done:
         break;
   }
}

void ApiConnection::read() {
   auto space = http_->input.prepare(readBytes);
   ssize_t got = recv(fd_, space.data(), space.size(), MSG_DONTWAIT);
   if (got < 0 && wouldWait()) return;
   if (got <= 0) {
      state_ = State::done;
      return;
   }
   if (deadline_ == Rex::never) deadline_ = now_ + limits_.requestSeconds;
   http_->input.commit(static_cast<size_t>(got));
   parse();
}

void ApiConnection::parse() {
   auto& parser = *http_->parser;
   state_ = State::reading;
   boost::beast::error_code error;
   while (http_->input.size() && !parser.is_done()) {
      http_->input.consume(parser.put(http_->input.data(), error));
      if (error == http::error::need_more) break;
      if (error == http::error::header_limit) {
         return refuse(
             431, "the header is longer than " + std::to_string(limits_.headerBytes) + " octets");
      }
      if (error == http::error::body_limit) {
         return refuse(413,
                       "the body is longer than " + std::to_string(limits_.bodyBytes) + " octets");
      }
      if (error) return refuse(400, "no HTTP/1.1 request: " + error.message());
   }
   if (!parser.is_done()) {
      // The parser takes a body as it comes, but gathers a chunk's line or trailer without a limit.
      if (http_->input.size() <= limits_.headerBytes) return;
      return refuse(431, "a line of the chunked body is longer than " +
                             std::to_string(limits_.headerBytes) + " octets");
   }
   auto& request = parser.get();
   answer(serve_({std::string(request.method_string()), std::string(request.target()),
                  std::move(request.body())}),
          parser.keep_alive());
}

// What is left of the input cannot be told apart any more, so the connection ends with the answer.
void ApiConnection::refuse(unsigned status, const std::string& words) {
   answer(serve_({.unreadable = ApiError(status, words)}), false);
}

void ApiConnection::answer(const ApiAnswer& answer, bool keepAlive) {
   if (answer.stream) return begin(answer);
   Http::Response response(static_cast<http::status>(answer.status), 11);
   if (!answer.body.is_null()) {
      response.set(http::field::content_type, "application/json");
      response.body() = answer.body.dump(-1, ' ', true, Rex::Json::error_handler_t::replace);
      response.body() += '\n';
   }
   if (response.body().size() > limits_.answerBytes) {
      return this->answer(tooLong(limits_, "ask for a member, or with ?depth=1"), keepAlive);
   }
   if (!answer.allow.empty()) response.set(http::field::allow, answer.allow);
   if (answer.status == 429) response.set(http::field::retry_after, "1");
   response.keep_alive(keepAlive);
   // Where there can be no content, not even its length is told (RFC 9110, 8.6).
   if (response.result() != http::status::no_content) response.prepare_payload();
   // The answer to HEAD is that header alone (RFC 9110, 9.3.2).
   if (http_->parser->get().method() == http::verb::head) response.body().clear();
   http_->respond(std::move(response));
   state_ = State::answering;
   send();
}

void ApiConnection::send() {
   auto& serializer = *http_->serializer;
   while (!serializer.is_done()) {
      ssize_t gone = 0;
      boost::beast::error_code error;
      serializer.next(error, [&](boost::beast::error_code&, const auto& buffers) {
         std::array<iovec, 16> parts;
         size_t count = 0;
         for (auto buffer : boost::beast::buffers_range_ref(buffers)) {
            if (count == parts.size()) break;
            parts[count++] = {const_cast<void*>(buffer.data()), buffer.size()};
         }
         msghdr message{};
         message.msg_iov = parts.data();
         message.msg_iovlen = count;
         gone = sendmsg(fd_, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
      });
      if (gone < 0 && wouldWait()) return;
      if (gone < 0 || error) {
         state_ = State::done;
         return;
      }
      serializer.consume(static_cast<size_t>(gone));
   }
   sent();
}

void ApiConnection::sent() {
   bool goesOn = http_->response->keep_alive();
   http_->serializer.reset();
   http_->response.reset();
   if (!goesOn) {
      // The deadline goes on: the client has until then to read the answer and to hang up.
      shutdown(fd_, SHUT_WR);
      state_ = State::draining;
      return;
   }
   http_->expectRequest(limits_);
   bool more = http_->input.size() > 0;
   state_ = more ? State::pending : State::reading;
   deadline_ = more ? now_ + limits_.requestSeconds : Rex::never;
   idleSince_ = now_;
   if (!more) http_->input.shrink_to_fit();
}

void ApiConnection::begin(const ApiAnswer& answer) {
   auto made = std::make_unique<ApiStream>(limits_.streamBytes, wake_);
   made->beginIs(streamHeader);
   auto source = answer.stream(*made);
   if (made->waiting().size() > limits_.answerBytes) {
      source.reset();
      return this->answer(tooLong(limits_, "ask without ?standing=1"), false);
   }
   stream_ = std::move(made);
   source_ = std::move(source);
   sentTime_ = now_;
   state_ = State::streaming;
   deadline_ = Rex::never;
   // Of the request nothing is needed any more, and no other one comes.
   http_.reset();
}

// One call in a turn, so that a reader who keeps up does not hold up the others.
void ApiConnection::stream(uint32_t events) {
   if (events & (EPOLLRDHUP | EPOLLHUP | EPOLLERR)) {
      state_ = State::done;
      return;
   }
   std::string_view octets = stream_->waiting();
   ssize_t gone = ::send(fd_, octets.data(), octets.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
   if (gone < 0 && wouldWait()) return;
   if (gone < 0) {
      state_ = State::done;
      return;
   }
   stream_->sent(static_cast<size_t>(gone));
   sentTime_ = now_;
   if (stream_->over()) state_ = State::done;
}

bool ApiConnection::stalled() const {
   int unread = 0;
   return streaming() && ioctl(fd_, SIOCOUTQ, &unread) == 0 && unread > 0;
}

void ApiConnection::drain() {
   std::array<char, 4096> lost;
   ssize_t got = recv(fd_, lost.data(), lost.size(), MSG_DONTWAIT);
   if (got == 0 || (got < 0 && !wouldWait())) state_ = State::done;
}

}  // namespace Host
