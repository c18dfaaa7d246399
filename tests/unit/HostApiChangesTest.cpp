// Several changes in one request, and attributes that go back to their defaults.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include "Foreign/Ip.h"
#include "Foreign/Ip6.h"
#include "Interface/IntfStatus.h"
#include "Rex/Dir.h"
#include "host/ApiEntities.h"
#include "unit/HostStore.h"

using namespace testing;

namespace {

const std::string cli = "l2discovery/lldp/cliConfig";
const std::string port = cli + "/cliPortConfig/Ethernet1";
const std::string tlvs = "l2discovery/lldp/externalTlvs";

struct HostApiChanges : Test {
   HostTest::Store store;
   Host::ApiEntities served{store.manager, Host::ApiAccess(store.manager, {})};
   Host::ApiResources resources;

   HostApiChanges() { served.serveIn(resources); }

   Host::ApiAnswer ask(const std::string& method, const std::string& path,
                       const std::string& body = {}) {
      return resources.serve({method, "/v1/entity/" + path, body});
   }
   // `changes`: "PATCH <path> <body>", the body may be left out.
   Host::ApiAnswer change(const std::vector<std::string>& changes) {
      Rex::Json all = Rex::Json::array();
      for (const std::string& text : changes) {
         std::istringstream in(text);
         std::string method, path, body;
         std::getline(std::getline(std::getline(in, method, ' '), path, ' '), body);
         all.push_back({{"method", method}, {"path", path}});
         if (!body.empty()) all.back()["body"] = Rex::Json::parse(body);
      }
      return resources.serve({"POST", "/v1/changes", Rex::Json{{"changes", all}}.dump()});
   }
   std::string everything() {
      std::string all;
      for (const std::string& path : store.manager->paths()) {
         all += entityToJson(*store.manager->getEntity(path)).dump();
      }
      return all + entityToJson(*store.manager->getEntity(tlvs)).dump();
   }
};

TEST_F(HostApiChanges, ADeletedAttributeHasItsDefault) {
   ask("PATCH", cli, R"({"messageTxInterval":5,"mgmtAddrVrf":"mgmt","tlvSysCap":false})");
   ask("PUT", port, R"({"adminStatus":"disabled","poeAllocatedPowerFallback":7})");
   for (const char* name : {"messageTxInterval", "mgmtAddrVrf", "enabled"}) {
      EXPECT_EQ(ask("DELETE", cli + "/" + name).status, 204) << name;
   }
   EXPECT_EQ(ask("DELETE", port + "/adminStatus").status, 204);
   EXPECT_EQ(store.cliConfig()->messageTxInterval(), 30u);
   EXPECT_EQ(store.cliConfig()->mgmtAddrVrf().view(), "default");
   EXPECT_FALSE(store.cliConfig()->tlvSysCap()) << "the others stay";
   auto row = store.cliConfig()->cliPortConfig(Wirekit::IntfId("Ethernet1"));
   EXPECT_EQ(row->adminStatus(), Lldp::AdminStatus::txAndRx);
   EXPECT_EQ(row->poeAllocatedPowerFallback(), 7u);
   store.manager->entityIs("any", "Rex::Dir");
   EXPECT_EQ(ask("PUT", "any/x?type=Lldp%3A%3ALocalSystem").status, 201);
   EXPECT_EQ(ask("DELETE", "any/x/sysName").status, 204);
   EXPECT_EQ(ask("DELETE", "any/x/chassisIdentifier").status, 405)
       << "it starts out as what nobody may write";
   EXPECT_EQ(ask("DELETE", port + "/intfId").status, 405);
   EXPECT_EQ(ask("DELETE", cli + "/cliPortConfig").status, 405);
}

TEST_F(HostApiChanges, AreMadeOneByOneInOrder) {
   auto watcher = Rex::make<HostTest::Watcher>(store.cliConfig());
   auto answer = change({"PATCH " + cli + R"( {"messageTxInterval":5,"messageTxHoldTime":20})",
                         "PUT " + port + R"( {"adminStatus":"rxOnly"})",
                         "DELETE " + cli + "/messageTxInterval", "DELETE " + port, "PUT " + port});
   EXPECT_EQ(answer.status, 204) << answer.body;
   EXPECT_THAT(watcher->seen, ElementsAre("5/120", "5/20", "Ethernet1 rxOnly", "30/20",
                                          "Ethernet1 gone", "Ethernet1 txAndRx"));
   watcher->close();
}

TEST_F(HostApiChanges, MayRelyOnRowsThatEarlierOnesMake) {
   const std::string entry = tlvs + "/provider";
   const std::string row = entry + "/externalTlvPortConfig/Ethernet1";
   auto answer =
       change({"PUT " + entry + R"( {"name":"x"})", "PUT " + row,
               "PATCH " + row + R"( {"tlv":[{"key":{"index":1},"orgDefInfo":"x"}]})",
               "PATCH " + entry + R"( {"name":"y"})", "PUT " + port,
               "PATCH " + port + R"( {"adminStatus":"txOnly"})", "DELETE " + port + "/adminStatus",
               "PUT " + port + R"( {"poeAllocatedPowerFallback":3})"});
   EXPECT_EQ(answer.status, 204) << answer.body;
   auto made = Rex::dynamicPtr<Lldp::ExternalTlvConfig>(store.manager->getEntity(entry));
   ASSERT_TRUE(made && made->externalTlvPortConfig(Wirekit::IntfId("Ethernet1")));
   EXPECT_EQ(made->name(), "y");
   EXPECT_EQ(made->externalTlvPortConfig(Wirekit::IntfId("Ethernet1"))->tlvs(), 1u);
   auto portRow = store.cliConfig()->cliPortConfig(Wirekit::IntfId("Ethernet1"));
   EXPECT_EQ(portRow->adminStatus(), Lldp::AdminStatus::txAndRx);
   EXPECT_EQ(portRow->poeAllocatedPowerFallback(), 3u);

   EXPECT_EQ(change({"DELETE " + entry}).status, 204);
   EXPECT_EQ(change({}).status, 204);
}

TEST_F(HostApiChanges, AnAddressNeedsAnInterfaceWithANumber) {
   auto intfs = Rex::dynamicPtr<Interface::AllIntfStatusDir>(
       store.manager->entityIs("interface/status/all", "Interface::AllIntfStatusDir"));
   store.manager->entityIs("ip/status", "Ip::Status");
   store.manager->entityIs("ip6/status", "Ip6::Status");
   const std::string ip = "PUT ip/status/ipIntfStatus/Vlan7",
                     ip6 = "PUT ip6/status/ipIntfStatus/Vlan7";
   const std::vector<std::string> addresses{
       ip + R"( {"activeAddrWithMask": "192.0.2.1/24"})",
       ip + R"( {"secondaryWithMask": [{"key": "192.0.2.1/24", "value": true}]})",
       ip6 + R"( {"addr": [{"addrWithMask": "2001:db8::1/64"}]})"};
   auto refused = [&] {
      for (const std::string& address : addresses) {
         auto answer = change({address});
         EXPECT_EQ(answer.status, 409) << address;
         EXPECT_THAT(answer.body.dump(), HasSubstr("has no number"));
      }
   };
   refused();
   auto vlan = Rex::make<Interface::IntfStatus>(Wirekit::IntfId("Vlan7"));
   intfs->intfStatusIs(vlan);
   refused();
   EXPECT_EQ(change({ip, ip6}).status, 204) << "rows without addresses harm nobody";
   vlan->ifIndexIs(7);
   for (const std::string& address : addresses) EXPECT_EQ(change({address}).status, 204) << address;
}

// Whoever reads a provider's rows watches their keys alone.
TEST_F(HostApiChanges, AProvidersRowIsReplacedByAWrite) {
   const std::string row = tlvs + "/provider/externalTlvPortConfig/Ethernet1";
   auto tlv = [](const std::string& index, const std::string& info) {
      return R"({"key":{"index":)" + index + R"(},"orgDefInfo":")" + info + R"("})";
   };
   EXPECT_EQ(change({"PUT " + tlvs + "/provider", "PUT " + row}).status, 204);
   auto provider =
       Rex::dynamicPtr<Lldp::ExternalTlvConfig>(store.manager->getEntity(tlvs + "/provider"));
   auto standing = [&] { return provider->externalTlvPortConfig(Wirekit::IntfId("Ethernet1")); };
   auto before = standing();
   EXPECT_EQ(change({"PATCH " + row + " {\"tlv\":[" + tlv("1", "a") + "]}",
                     "PATCH " + row + " {\"tlv\":[" + tlv("1", "a") + "," + tlv("2", "b") + "]}"})
                 .status,
             204);
   EXPECT_EQ(standing()->tlvs(), 2u);
   EXPECT_EQ(
       change({"DELETE " + row + "/tlv/" + R"({"oui":{"value":0},"subtype":0,"index":1})"}).status,
       204);
   EXPECT_NE(standing(), before);
   EXPECT_EQ(before->tlvs(), 0u);
   ASSERT_EQ(standing()->tlvs(), 1u);
   EXPECT_EQ(standing()->tlv({{}, 0, 2}).orgDefInfo.value(), "b");
   before = standing();
   EXPECT_EQ(change({"PATCH " + row + " {}"}).status, 204);
   EXPECT_NE(standing(), before);
   EXPECT_EQ(standing()->tlvs(), 1u);

   // Two providers may not use one key on a port: one that stands, or one of the same request.
   const std::string port = "/externalTlvPortConfig/Ethernet";
   auto asks = [&](const std::string& path, const std::string& index) {
      return "PUT " + tlvs + path + " {\"tlv\":[" + tlv(index, "c") + "]}";
   };
   EXPECT_EQ(change({"PUT " + tlvs + "/other", asks("/other" + port + "1", "2")}).status, 409);
   EXPECT_EQ(change({"PUT " + tlvs + "/other", asks("/other" + port + "1", "3"),
                     asks("/provider" + port + "1", "3")})
                 .status,
             409);
   EXPECT_EQ(change({"PUT " + tlvs + "/other", asks("/other" + port + "2", "2"),
                     asks("/other" + port + "1", "3"), asks("/provider" + port + "1", "2")})
                 .status,
             204);
   // A hand-over.
   EXPECT_EQ(change({"DELETE " + tlvs + "/provider" + port + "1", asks("/other" + port + "1", "2")})
                 .status,
             204);
}

// Rows that a request makes count as those that stand, and those that it removes do not.
TEST_F(HostApiChanges, RowsHaveABound) {
   constexpr int most = 4096;
   const std::string rows = cli + "/cliPortConfig/Ethernet";
   std::vector<std::string> changes;
   for (int i = 0; i < most; ++i) changes.push_back("PUT " + rows + std::to_string(i));
   EXPECT_EQ(change(changes).status, 204);
   changes = {"DELETE " + rows + "7", "PUT " + rows + "9999", "PATCH " + rows + "8 {}",
              "PUT " + rows + "8", "PUT " + rows + "7"};
   auto answer = change(changes);
   EXPECT_EQ(answer.status, 400);
   EXPECT_EQ(answer.body["error"]["change"], 4);
   EXPECT_THAT(answer.body.dump(), HasSubstr("cliPortConfig: expected at most 4096 rows"));
   changes.pop_back();
   EXPECT_EQ(change(changes).status, 204);
   EXPECT_EQ(store.cliConfig()->cliPortConfigs(), static_cast<size_t>(most));
}

// The first changes of each are good, and would be seen if they were made.
TEST_F(HostApiChanges, NothingIsMadeUnlessAllAreGood) {
   ask("PUT", cli + "/cliPortConfig/Ethernet7");
   const std::string good = "PATCH " + cli + R"( {"messageTxInterval":5})";
   const std::string put = "PUT " + port;
   const std::string seven = cli + "/cliPortConfig/Ethernet7";
   struct Case {
      std::vector<std::string> changes;
      unsigned status;
      const char* words;
   };
   const Case cases[] = {
       {{good, "PATCH " + cli + R"( {"reinitDelay":0})"}, 400, "from 1 to 10, got 0"},
       {{good, "PATCH " + port + R"( {"adminStatus":"txOnly"})"}, 404, "Ethernet1"},
       {{put, "DELETE " + port, "PATCH " + port + " {}"}, 404, "Ethernet1"},
       {{"DELETE " + seven, "DELETE " + seven + "/adminStatus"}, 404, "Ethernet7"},
       {{"DELETE " + seven, "DELETE " + seven}, 404, "Ethernet7"},
       {{put, put + R"( {"adminStatus":"perhaps"})"}, 400, "perhaps"},
       {{put, put + "/networkPolicyConfig/1"}, 400, "not made here"},
       {{put,
         put + "/networkPolicyConfig/" + std::string(100'000, '[') + std::string(100'000, ']')},
        400,
        "nested more than 16 levels"},
       {{put, "PUT " + cli + "/cliPortConfig/no%20name"}, 400, "interface name"},
       {{good, "PATCH l2discovery/lldp/config {}"}, 403, "agent"},
       {{good, "PUT " + tlvs + "/a", "PUT " + tlvs + "/a/externalTlvPortConfig/%41%20"},
        400,
        "interface name"},
       {{good, "GET " + cli}, 400, "PATCH, PUT or DELETE"},
       {{good, "PATCH " + cli + "/%4 {}"}, 400, "%"},
       {{good, "PATCH  {}"}, 404, "nothing at ''"},
   };
   const std::string before = everything();
   for (const Case& one : cases) {
      auto answer = change(one.changes);
      SCOPED_TRACE(answer.body.dump());
      EXPECT_EQ(answer.status, one.status);
      ASSERT_TRUE(answer.body.contains("error"));
      const Rex::Json& error = answer.body["error"];
      EXPECT_EQ(error["change"], one.changes.size() - 1);
      EXPECT_THAT(one.changes.back(), HasSubstr(error["path"].get<std::string>()));
      EXPECT_THAT(error["message"].get<std::string>(), HasSubstr(one.words));
      EXPECT_EQ(everything(), before);
   }
   for (const char* body :
        {"", "{", "[]", "{}", R"({"changes":{}})", R"({"changes":[],"x":1})", R"({"changes":[1]})",
         R"({"changes":[{"method":"PATCH"}]})", R"({"changes":[{"method":"PATCH","path":7}]})",
         R"({"changes":[{"method":"PUT","path":"x","extra":7}]})"}) {
      EXPECT_EQ(resources.serve({"POST", "/v1/changes", body}).status, 400) << body;
   }
   EXPECT_EQ(everything(), before);
}

}  // namespace
