// The URL of the state store.
#include <gmock/gmock.h>

#include "Redis/StoreUrl.h"
#include "support/Refusal.h"

using namespace testing;
using LldpTest::refusal;
using Redis::StoreUrl;

namespace {

TEST(RedisStoreUrl, Forms) {
   struct {
      const char* text;
      const char* path;
      const char* host;
      int port;
      unsigned database;
      const char* user;
      const char* password;
      const char* shown;
   } rows[] = {
       {"redis://host", "", "host", 6379, 0, "", "", "redis://host:6379/0"},
       {"redis://10.0.0.1:7000/3", "", "10.0.0.1", 7000, 3, "", "", "redis://10.0.0.1:7000/3"},
       {"redis://[fe80::1]:7000/", "", "fe80::1", 7000, 0, "", "", "redis://[fe80::1]:7000/0"},
       {"redis://:p%40ss%2Fw@host", "", "host", 6379, 0, "", "p@ss/w", "redis://host:6379/0"},
       {"redis://me:p:q@host/1", "", "host", 6379, 1, "me", "p:q", "redis://me@host:6379/1"},
       {"redis://me@host", "", "host", 6379, 0, "me", "", "redis://me@host:6379/0"},
       {"unix:/run/s", "/run/s", "", 6379, 0, "", "", "unix:/run/s"},
       {"unix:/run/s?database=2", "/run/s", "", 6379, 2, "", "", "unix:/run/s?database=2"},
   };
   for (const auto& row : rows) {
      SCOPED_TRACE(row.text);
      StoreUrl url = StoreUrl::parse(row.text);
      EXPECT_EQ(url.path, row.path);
      EXPECT_EQ(url.host, row.host);
      EXPECT_EQ(url.port, row.port);
      EXPECT_EQ(url.database, row.database);
      EXPECT_EQ(url.user, row.user);
      EXPECT_EQ(url.password, row.password);
      EXPECT_EQ(url.text(), row.shown);
   }
}

TEST(RedisStoreUrl, RefusalsSayWhatWouldBeRight) {
   std::string longPath = "unix:/" + std::string(107, 'x');
   std::pair<std::string, const char*> rows[] = {
       {"", "expected redis://"},
       {"http://host", "expected redis://"},
       {"redis://", "expected redis://"},
       {"redis://:1", "expected redis://"},
       {"redis://host:0", "port 0: expected a number from 1 to 65535"},
       {"redis://host:65536", "port 65536"},
       {"redis://host:", "port : expected"},
       {"redis://host/one", "database one: expected a number from 0"},
       {"redis://host/-1", "database -1"},
       {"redis://[::1", "an IPv6 address is written [address]"},
       {"redis://[::1]7", "an IPv6 address is written [address]"},
       {"redis://:secret%@host", "a percent sign in user or password is written %25"},
       {"redis://:sec/ret@host", "a slash in user or password is written %2F"},
       {"unix:run/s", "absolute"},
       {longPath, "at most 107 octets"},
       {"unix:/run/s?db=1", "expected redis://"},
       {"unix:/run/s?database=", "database : expected"},
   };
   for (const auto& [text, words] : rows) {
      std::string said = refusal([&text = text] { StoreUrl::parse(text); });
      EXPECT_THAT(said, AllOf(HasSubstr(words), Not(HasSubstr("sec")))) << text;
   }
}

TEST(RedisStoreUrl, ThePasswordOfAFileIsItsFirstLine) {
   StoreUrl url = StoreUrl::parse("redis://host");
   EXPECT_THAT(refusal([&] { url.passwordIs("\nx"); }), HasSubstr("first line"));
   url.passwordIs("a b\r\nrest");
   EXPECT_EQ(url.password, "a b");
   EXPECT_THAT(refusal([&] { url.passwordIs("x"); }), HasSubstr("already"));
}

TEST(RedisStoreUrl, NamesAreResolvedOnce) {
   EXPECT_EQ(StoreUrl::parse("redis://localhost:1/2").resolved().host, "127.0.0.1");
   EXPECT_EQ(StoreUrl::parse("redis://[::1]").resolved().host, "::1");
   EXPECT_THAT(refusal([] { StoreUrl::parse("redis://no.invalid").resolved(); }),
               HasSubstr("has no address"));
}

}  // namespace
