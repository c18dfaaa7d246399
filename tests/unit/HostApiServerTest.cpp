// HTTP over the Unix socket: what clients do right, wrong, slowly and too often.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "host/StartError.h"
#include "support/Refusal.h"
#include "unit/HostApiFixture.h"

using namespace testing;

namespace {

using HostApiServer = HostTest::ApiFixture;
using HostTest::Client;
using HostTest::interval;

TEST_F(HostApiServer, OneConnectionServesOneRequestAfterTheOther) {
   serve();
   Client client(path);
   std::string answer = exchange(client, get(interval));
   EXPECT_THAT(answer, StartsWith("HTTP/1.1 200 OK\r\n"));
   EXPECT_THAT(answer, EndsWith("\r\n\r\n30\n"));
   EXPECT_THAT(answer, HasSubstr("Content-Type: application/json"));
   EXPECT_THAT(exchange(client, patch(R"({"messageTxInterval":5})")),
               StartsWith("HTTP/1.1 204 No Content\r\n"));
   EXPECT_THAT(exchange(client, get(interval)), EndsWith("\r\n\r\n5\n"));
   EXPECT_THAT(exchange(client, patch("{}")), Not(HasSubstr("Content-Length")));
   std::string head = exchange(client, "HEAD /v1/paths HTTP/1.1\r\n\r\n");
   EXPECT_THAT(head, StartsWith("HTTP/1.1 405"));
   EXPECT_THAT(head, EndsWith("\r\n\r\n")) << "no body, which would pass for the next answer";
   EXPECT_FALSE(client.ended);
   EXPECT_THAT(exchange(client, "GET /v1/paths HTTP/1.1\r\nConnection: close\r\n\r\n"),
               HasSubstr("200 OK"));
   EXPECT_TRUE(client.ended);
   client.hangUp();
   turns();
   EXPECT_EQ(server->clients(), 0u);
}

// A request is served outside any handler, so the machines see its changes as if each came alone.
TEST_F(HostApiServer, ARequestIsNoHandler) {
   serve();
   auto watcher = Rex::make<HostTest::Watcher>(store.cliConfig());
   Client client(path);
   exchange(client, patch(R"({"messageTxInterval":5,"messageTxHoldTime":20})"));
   EXPECT_THAT(watcher->seen, ElementsAre("5/120", "5/20"));
   watcher->close();
}

TEST_F(HostApiServer, PipelinedRequestsAreAnsweredInOrder) {
   serve();
   Client client(path);
   std::string answers = exchange(client, patch(R"({"messageTxInterval":5})") + get(interval) +
                                              patch(R"({"messageTxInterval":6})") + get(interval));
   EXPECT_THAT(answers, ContainsRegex("204.*\n\r\n.*200.*\n5\n.*204.*200.*\n6\n$"));
}

// A request may arrive in any pieces, and means nothing before it is whole.
TEST_F(HostApiServer, HalfRequestsWaitForTheirRest) {
   serve();
   const std::string request = patch(R"({"messageTxInterval":5})");
   Client whole(path);
   for (size_t i = 0; i + 1 < request.size(); ++i) {
      EXPECT_EQ(exchange(whole, request.substr(i, 1)), "");
      EXPECT_EQ(txInterval(), 30u);
   }
   EXPECT_THAT(exchange(whole, request.substr(request.size() - 1)), HasSubstr("204"));
   EXPECT_EQ(txInterval(), 5u);

   Client broken(path);
   broken.send(patch(R"({"messageTxInterval":7})").substr(0, 90));
   turns();
   broken.hangUp();
   turns();
   EXPECT_EQ(txInterval(), 5u);
   EXPECT_EQ(server->clients(), 1u);
}

TEST_F(HostApiServer, EachLimitHasItsAnswer) {
   limits.headerBytes = 512;
   limits.bodyBytes = 100;
   limits.answerBytes = 1000;
   serve();
   struct Case {
      std::string request;
      const char* answer;
   };
   const std::string post = "PATCH /v1/entity/x HTTP/1.1\r\n";
   const Case cases[] = {
       {get("/" + std::string(600, 'x')), "431"},
       {"GET / HTTP/1.1\r\nA: " + std::string(600, 'x') + "\r\n\r\n", "431"},
       {std::string(600, 'x'), "431"},
       {post + "Content-Length: 101\r\n\r\n", "413"},
       {post + "Content-Length: 99999999999\r\n\r\n", "413"},
       {post + "Content-Length: 99999999999999999999999\r\n\r\n", "400"},
       {post + "Content-Length: -1\r\n\r\n", "400"},
       {post + "Transfer-Encoding: chunked\r\n\r\n80\r\n" + std::string(128, ' '), "413"},
       {post + "Transfer-Encoding: chunked\r\n\r\n1;" + std::string(600, 'x'), "431"},
       {post + "Transfer-Encoding: chunked\r\n\r\n0\r\nA: " + std::string(600, 'x'), "431"},
       {"GET / HTTP/9.9\r\n\r\n", "400"},
       {std::string(64, '\0') + "\r\n\r\n", "400"},
       {get("/v1/agent"), "400"},  // longer than an answer may be
   };
   for (const Case& one : cases) {
      Client client(path);
      std::string answer = exchange(client, one.request);
      SCOPED_TRACE(one.request.substr(0, 60) + " -> " + answer);
      EXPECT_THAT(answer, StartsWith(std::string("HTTP/1.1 ") + one.answer));
      EXPECT_THAT(answer, HasSubstr(R"({"error":{)"));
   }
}

// The client may still be sending when it is refused; it has to be able to read why.
TEST_F(HostApiServer, ARefusedClientCanReadWhy) {
   limits.bodyBytes = 1000;
   serve();
   Client client(path);
   client.send("PUT /v1/entity/x HTTP/1.1\r\nContent-Length: 500000\r\n\r\n");
   turns();
   for (int i = 0; i < 5; ++i) {
      EXPECT_EQ(client.send(std::string(100'000, 'x')), 100'000u);
      turns(100);
   }
   EXPECT_THAT(client.receive(), StartsWith("HTTP/1.1 413"));
   EXPECT_EQ(server->clients(), 1u);
   store.test.timeIs(store.test.now() + limits.requestSeconds);
   turns();
   EXPECT_EQ(server->clients(), 0u) << "nobody is waited for without end";
}

TEST_F(HostApiServer, ALongAnswerWaitsForItsReader) {
   serve();
   Client client(path);
   std::string answer = exchange(client, get("/v1/agent"));
   EXPECT_LT(answer.size(), 3u << 20) << "the socket does not hold all of it";
   for (int i = 0; i < 1000 && answer.size() < (3 << 20); ++i) answer += exchange(client, "");
   EXPECT_THAT(answer, EndsWith("x\"\n"));
   EXPECT_THAT(exchange(client, get(interval)), EndsWith("30\n"));
}

TEST_F(HostApiServer, AnExchangeHasItsTimeAndAnIdleClientHasAll) {
   serve();
   auto later = [&](double seconds) {
      store.test.timeIs(store.test.now() + seconds);
      turns();
   };
   Client slow(path), idle(path), reader(path);
   exchange(idle, get(interval));
   slow.send("GET /v1");
   reader.send(get("/v1/agent"));
   turns();
   EXPECT_EQ(server->clients(), 3u);
   later(limits.requestSeconds - 1);
   slow.send("/paths");
   later(0.5);
   EXPECT_EQ(server->clients(), 3u);
   later(0.5);
   EXPECT_EQ(server->clients(), 1u) << "another octet buys no time";
   slow.receive();
   EXPECT_TRUE(slow.ended);
   EXPECT_EQ(store.test.context().clock()->nextTime(), Rex::never) << "no timer for who is idle";
   later(1e6);
   EXPECT_THAT(exchange(idle, get(interval)), EndsWith("30\n"));
}

TEST_F(HostApiServer, TooManyClientsMakeTheIdlestGiveWay) {
   limits.clients = 2;
   serve();
   Client first(path), second(path);
   exchange(first, get(interval));
   store.test.timeIs(store.test.now() + 1);
   exchange(second, get(interval));
   Client third(path);
   EXPECT_THAT(exchange(third, get(interval)), EndsWith("30\n"));
   first.receive();
   EXPECT_TRUE(first.ended);
   EXPECT_THAT(exchange(second, get(interval)), EndsWith("30\n"));

   second.send("GET");
   third.send("GET");
   turns();
   Client fourth(path);
   std::string answer = exchange(fourth, "");
   EXPECT_THAT(answer, StartsWith("HTTP/1.1 503"));
   EXPECT_TRUE(fourth.ended);
   size_t length = std::stoul(answer.substr(answer.find("Content-Length: ") + 16));
   EXPECT_EQ(answer.size() - answer.find("\r\n\r\n") - 4, length);
   EXPECT_EQ(server->clients(), 2u);
}

TEST_F(HostApiServer, OneProcessHoldsTheSocket) {
   struct stat there;
   ASSERT_EQ(stat(path.c_str(), &there), 0);
   EXPECT_EQ(there.st_mode & 0777, 0660u);
   auto second = [&] { Host::ApiSocket{path}; };
   EXPECT_THAT(LldpTest::refusal<Host::StartError>(second), HasSubstr(path));
   socket.reset();
   EXPECT_NE(stat(path.c_str(), &there), 0) << "gone with its process";
}

TEST_F(HostApiServer, ADeadSocketIsReplacedAndNothingElse) {
   const std::string other = folder.path + "/other";
   int dead = ::socket(AF_UNIX, SOCK_STREAM, 0);
   sockaddr_un address{};
   address.sun_family = AF_UNIX;
   std::copy(other.begin(), other.end(), address.sun_path);
   ASSERT_EQ(bind(dead, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
   ASSERT_EQ(listen(dead, 1), 0);
   EXPECT_THROW(Host::ApiSocket{other}, Host::StartError) << "somebody serves it";
   close(dead);
   Host::ApiSocket taken(other);
   Client client(other);

   const std::string file = folder.path + "/file";
   close(open(file.c_str(), O_CREAT | O_WRONLY, 0600));
   EXPECT_THROW(Host::ApiSocket{file}, Host::StartError);
   EXPECT_TRUE(std::filesystem::exists(file));
   EXPECT_THROW(Host::ApiSocket{folder.path + "/" + std::string(200, 'x')}, Host::StartError);
   EXPECT_THROW(Host::ApiSocket{file + "/below"}, Host::StartError);
}

}  // namespace
