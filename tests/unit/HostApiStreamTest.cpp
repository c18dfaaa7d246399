// Answers that go on: how they travel, what bounds them, and what a client that breaks a bound
// gets.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "support/EventReader.h"
#include "unit/HostApiFixture.h"

using namespace testing;

namespace {

using HostTest::Client;
using HostTest::interval;

constexpr const char* header =
    "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nCache-Control: no-cache\r\n"
    "Connection: close\r\n\r\n";

struct HostApiStream : HostTest::ApiFixture {
   // Streams that are listened to. They end with the server, which outlives this part of the
   // fixture.
   const std::shared_ptr<std::vector<Host::ApiStream*>> listened =
       std::make_shared<std::vector<Host::ApiStream*>>();
   std::vector<Host::ApiStream*>& streams = *listened;
   std::string begin;

   HostApiStream() {
      auto serve = [this](const Host::ApiRequest&, const Host::ApiTarget&) {
         Host::ApiAnswer answer;
         answer.stream = [this](Host::ApiStream& stream) -> std::shared_ptr<void> {
            stream.beginIs(begin);
            streams.push_back(&stream);
            return {&stream, [all = listened](void* gone) { std::erase(*all, gone); }};
         };
         return answer;
      };
      resources.resourceIs({"/v1/ticks", {"GET"}, {}, serve});
   }
   void tick(int number, size_t octets = 0) {
      Rex::Json data{{"n", number}, {"ballast", std::string(octets, 'x')}};
      std::string text = Host::eventText("tick", data, static_cast<uint64_t>(number));
      for (Host::ApiStream* stream : streams) stream->eventIs(text);
   }
   double nextTimer() { return store.test.context().clock()->nextTime(); }
   void later(double seconds) {
      store.test.timeIs(store.test.now() + seconds);
      turns();
   }
};

TEST_F(HostApiStream, GoesOnBesideOtherClientsAndCostsNothingWhileNothingHappens) {
   serve();
   Client listener(path), other(path);
   EXPECT_EQ(exchange(listener, get("/v1/ticks")), header);
   ASSERT_THAT(streams, SizeIs(1));
   EXPECT_EQ(nextTimer(), Rex::never);
   later(1e6);
   tick(1);
   tick(2);
   EXPECT_THAT(exchange(other, get(interval)), EndsWith("\r\n\r\n30\n"));
   EXPECT_EQ(listener.receive(),
             "id: 1\nevent: tick\ndata: {\"n\":1,\"ballast\":\"\"}\n\n"
             "id: 2\nevent: tick\ndata: {\"n\":2,\"ballast\":\"\"}\n\n");
   // What a listener still says is not read, and wakes nobody.
   listener.send(std::string(1000, 'x'));
   turns(1);
   uint64_t before = loop.wakeups();
   turns(50);
   EXPECT_EQ(loop.wakeups() - before, 50u) << "one for each turn of the test's own timer";

   listener.hangUp();
   turns();
   EXPECT_THAT(streams, IsEmpty());
   EXPECT_EQ(server->clients(), 1u);
   tick(3);
}

TEST_F(HostApiStream, EndsAfterItsLastEvent) {
   serve();
   Client listener(path);
   exchange(listener, get("/v1/ticks"));
   streams.front()->endIs(Host::eventText("gone", {}));
   EXPECT_EQ(exchange(listener, ""), "event: gone\ndata: null\n\n");
   EXPECT_TRUE(listener.ended);
   EXPECT_THAT(streams, IsEmpty());
}

// The socket holds what it holds, then the stream its room; the rest is missed.
TEST_F(HostApiStream, ASlowReaderIsToldWhatItMissedAndAFastOneGetsAll) {
   constexpr int count = 3000;
   limits.streamBytes = 100'000;
   serve();
   Client slow(path), fast(path);
   exchange(slow, get("/v1/ticks"));
   exchange(fast, get("/v1/ticks"));
   std::string all;
   for (int n = 1; n <= count; ++n) {
      tick(n, 1000);
      if (n % 10 == 0) all += exchange(fast, "");
   }
   auto whole = LldpTest::takeEvents(all);
   ASSERT_EQ(whole.size(), static_cast<size_t>(count));
   for (int n = 1; n <= count; ++n) EXPECT_EQ(whole[n - 1].data["n"], n);

   later(limits.requestSeconds + 1);
   std::string late;
   for (int i = 0; i < 100; ++i) late += exchange(slow, "");
   EXPECT_FALSE(slow.ended) << "slowness is no reason to cut a stream";
   tick(count + 1);
   late += exchange(slow, "");
   int next = 1, gaps = 0;
   for (const auto& event : LldpTest::takeEvents(late)) {
      if (event.name == "missed") {
         next += event.data["events"].get<int>();
         ++gaps;
      } else {
         EXPECT_EQ(event.data["n"], next++);
      }
   }
   EXPECT_EQ(next, count + 2) << "each is told or counted, in its place";
   EXPECT_EQ(gaps, 1);
}

TEST_F(HostApiStream, AnEventAboveAllRoomIsMissedAtOnce) {
   limits.streamBytes = 1000;
   serve();
   Client listener(path);
   exchange(listener, get("/v1/ticks"));
   tick(1, 2000);
   tick(2);
   EXPECT_THAT(exchange(listener, ""),
               StartsWith("event: missed\ndata: {\"events\":1}\n\nid: 2\n"));
}

TEST_F(HostApiStream, StreamsHaveALimitAndStayWhenIdleClientsGiveWay) {
   limits.streams = 2;
   limits.clients = 4;
   serve();
   Client first(path), second(path), third(path);
   exchange(first, get("/v1/ticks"));
   exchange(second, get("/v1/ticks"));
   std::string refused = exchange(third, get("/v1/ticks"));
   EXPECT_THAT(refused, StartsWith("HTTP/1.1 503"));
   EXPECT_THAT(refused,
               HasSubstr(R"({"error":{"path":"/v1/ticks","message":"there are 2 streams)"));
   EXPECT_THAT(exchange(third, get(interval)), EndsWith("30\n")) << "its connection goes on";

   Client fourth(path), fifth(path);
   exchange(fourth, get(interval));
   EXPECT_THAT(exchange(fifth, get(interval)), EndsWith("30\n"));
   EXPECT_THAT(streams, SizeIs(2)) << "it was the third that gave way";
   first.hangUp();
   turns();
   EXPECT_EQ(exchange(fifth, get("/v1/ticks")), header);
}

// As those of a watcher that was stopped by its shell.
TEST_F(HostApiStream, AStreamThatIsNotReadGivesWayWhenAllAreTaken) {
   limits.streams = 2;
   serve();
   Client reading(path), stopped(path), next(path);
   exchange(reading, get("/v1/ticks"));
   exchange(stopped, get("/v1/ticks"));
   tick(1);
   turns();
   later(limits.stallSeconds / 2);
   reading.receive();
   EXPECT_THAT(exchange(next, get("/v1/ticks")), StartsWith("HTTP/1.1 503")) << "too early to tell";
   later(limits.stallSeconds / 2);
   EXPECT_EQ(exchange(next, get("/v1/ticks")), header);
   EXPECT_THAT(stopped.receive(), HasSubstr("id: 1"));
   EXPECT_TRUE(stopped.ended);
   reading.receive();
   EXPECT_FALSE(reading.ended);
}

// What stands may be more than the room of events, but no more than any answer.
TEST_F(HostApiStream, WhatStandsIsBoundedAsAnAnswer) {
   limits.streamBytes = 1000;
   limits.answerBytes = 50'000;
   serve();
   begin = std::string(40'000, 'x');
   Client listener(path);
   EXPECT_EQ(exchange(listener, get("/v1/ticks")), header + begin);
   begin += begin;
   Client greedy(path);
   EXPECT_THAT(exchange(greedy, get("/v1/ticks")),
               AllOf(StartsWith("HTTP/1.1 400"), HasSubstr("?standing=1")));
   EXPECT_THAT(streams, SizeIs(1));
}

TEST_F(HostApiStream, RequestsAreCountedByUser) {
   limits.requestBurst = 3;
   limits.requestsPerSecond = 2;
   serve();
   Client one(path), two(path);
   for (Client* client : {&one, &two, &one}) {
      EXPECT_THAT(exchange(*client, get(interval)), HasSubstr("200 OK"));
   }
   std::string refused = exchange(two, patch(R"({"messageTxInterval":5})"));
   EXPECT_THAT(refused, StartsWith("HTTP/1.1 429"));
   EXPECT_THAT(refused, HasSubstr("Retry-After: 1\r\n"));
   EXPECT_THAT(refused, HasSubstr(R"({"error":{"path":"l2discovery/lldp/cliConfig","message":)"));
   EXPECT_EQ(txInterval(), 30u);
   later(0.5);
   EXPECT_THAT(exchange(two, get(interval)), HasSubstr("200 OK")) << "the connection goes on";
   EXPECT_THAT(exchange(one, get(interval)), StartsWith("HTTP/1.1 429"));
   later(0.5);
   for (const char* answer : {"HTTP/1.1 400", "HTTP/1.1 429"}) {
      Client unreadable(path);
      EXPECT_THAT(exchange(unreadable, "?\r\n\r\n"), StartsWith(answer));
   }
}

TEST(HostApiRequestRate, EachUserHasABucketOfItsOwn) {
   Host::ApiLimits limits;
   Host::ApiRequestRate rate(limits);
   for (int i = 0; i < 4096; ++i) EXPECT_TRUE(rate.take(1, 100));
   EXPECT_FALSE(rate.take(1, 100));
   EXPECT_TRUE(rate.take(2, 100));
   for (int i = 0; i < 1024; ++i) EXPECT_TRUE(rate.take(1, 101));
   EXPECT_FALSE(rate.take(1, 101));
   for (uid_t user = 0; user < 10'000; ++user) rate.take(user, 200.0 + user);
   EXPECT_LT(rate.users(), 100u) << "a full bucket is not kept";
}

TEST_F(HostApiStream, TheSocketForReadingIsForGetAlone) {
   resources.writeSocketIs("other.sock");
   serve(false);
   Client reader(path);
   EXPECT_THAT(exchange(reader, get(interval)), EndsWith("30\n"));
   for (const char* method : {"PATCH", "PUT", "DELETE", "POST", "HEAD"}) {
      for (const char* target : {"/v1/entity/l2discovery/lldp/cliConfig", "/v1/ticks", "/none"}) {
         std::string answer = exchange(reader, std::string(method) + " " + target +
                                                   " HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}");
         EXPECT_THAT(answer, StartsWith("HTTP/1.1 403"));
         bool head = std::string_view(method) == "HEAD";
         EXPECT_THAT(answer, HasSubstr(head ? "\r\n\r\n" : "goes to other.sock"));
      }
   }
   EXPECT_EQ(exchange(reader, get("/v1/ticks")), header);
}

}  // namespace
