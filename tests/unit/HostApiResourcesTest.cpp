// What the management API answers, and what it lets change.
#include <gmock/gmock.h>

#include "Rex/Dir.h"
#include "Rex/Trace.h"
#include "host/ApiEntities.h"
#include "host/TraceLevels.h"
#include "unit/HostStore.h"

using namespace testing;

namespace {

const Rex::TraceHandle trace("HostApiTest", false);
const std::string entities = "/v1/entity/";
const std::string cliPath = "l2discovery/lldp/cliConfig";

struct HostApiResources : Test {
   HostTest::Store store;
   Host::ApiEntities served{store.manager, Host::ApiAccess(store.manager, {"bridging/config"})};
   Host::ApiResources resources;

   HostApiResources() {
      served.serveIn(resources);
      resources.resourceIs(Host::traceResource());
   }

   Host::ApiAnswer ask(const std::string& method, const std::string& target,
                       const std::string& body = {}) {
      return resources.serve({method, target, body});
   }
   Rex::Json get(const std::string& path) {
      auto answer = ask("GET", entities + path);
      EXPECT_EQ(answer.status, 200) << answer.body;
      return answer.body;
   }
};

TEST_F(HostApiResources, ReadsByPathMemberAndKey) {
   store.cliConfig()
       ->cliPortConfigIs(Wirekit::IntfId("Ethernet3/1"))
       ->adminStatusIs(Lldp::AdminStatus::rxOnly);
   EXPECT_EQ(get(cliPath)["messageTxInterval"], 30);
   EXPECT_EQ(get(cliPath + "/messageTxInterval"), 30);
   EXPECT_EQ(get(cliPath + "/cliPortConfig/Ethernet3%2F1")["adminStatus"], "rxOnly");
   EXPECT_EQ(get(cliPath + "/cliPortConfig/Ethernet3%2F1/adminStatus"), "rxOnly");
   EXPECT_EQ(get(cliPath + "/cliPortConfig")["Ethernet3/1"]["adminStatus"], "rxOnly");
   EXPECT_EQ(get(cliPath + "?depth=0")["cliPortConfig"].dump(), R"({"Ethernet3/1":{}})");

   auto paths = ask("GET", "/v1/paths").body["paths"];
   EXPECT_THAT(paths, Contains(Rex::Json{
                          {"path", cliPath}, {"type", "Lldp::CliConfig"}, {"writable", true}}));
   EXPECT_THAT(paths, Contains(Rex::Json{{"path", "l2discovery/lldp/config"},
                                         {"type", "Lldp::Config"},
                                         {"writable", false}}));
}

TEST_F(HostApiResources, RefusalsNameTheirReasonAndChangeNothing) {
   store.manager->entityIs("bridging/config", "Bridging::Config");
   store.manager->entityIs("routing/config", "Routing::Config");
   struct Case {
      std::string request;  // method, path and body
      unsigned status;
      std::vector<std::string> words;
   };
   const std::string config = entities + cliPath + " ";
   const std::string rows = entities + cliPath + "/cliPortConfig/";
   const std::string port = rows + "Ethernet1";
   const std::string agents = entities + "l2discovery/lldp/config";
   const std::string tlvs = "PUT " + entities + "l2discovery/lldp/externalTlvs/";
   const std::string deep = std::string(100'000, '[') + std::string(100'000, ']') + "}";
   const Case cases[] = {
       {"GET " + entities + "no/such%2Fpath", 404, {"no/such%2Fpath"}},
       {"GET " + port, 404, {}},
       {"GET " + entities + cliPath + "/messageTxInterval/30", 404, {}},
       {"GET /v1/entity", 404, {}},
       {"GET /../../etc/passwd", 404, {}},
       {"GET v1/paths", 400, {}},
       {"GET " + entities + cliPath + "?depth=x", 400, {"depth", "\"x\""}},
       {"GET " + entities + cliPath + "?dept=1", 400, {"dept"}},
       {"GET " + entities + cliPath + "/%4", 400, {"%"}},
       {"POST " + config + "{}", 405, {"POST"}},
       {"POST /v1/paths", 405, {}},
       {"DELETE " + config, 405, {}},
       {"PUT " + config + "{}", 405, {}},
       {"PATCH " + config + "{", 400, {"JSON"}},
       {"PATCH " + config + "[]", 400, {"object"}},
       {"PATCH " + config + "\xff", 400, {}},
       {"PATCH " + config + R"({"messageTxInterval":-1})", 400, {"from 1 to 3600, got -1"}},
       {"PATCH " + config + R"({"messageTxInterval":)" + deep, 400, {"line 1", "16 levels"}},
       {"PATCH " + config + R"({"enabled":false,"enabled":true})", 400, {"enabled", "already"}},
       {"PATCH " + config + "{/* why */}", 400, {"JSON"}},
       {"PATCH " + config + R"({"messageTxInterval":1e400})", 400, {}},
       {"PATCH " + config + R"({"messageTxHoldTime":77,"enabled":3})", 400, {"enabled", "true"}},
       {"PATCH " + config + R"({"messageTxHoldTime":77,"noSuchThing":1})", 400, {"noSuchThing"}},
       {"PATCH " + config + R"({"mgmtAddrTxOption":{"mgmtAddrTxMode":"worst"}})",
        400,
        {"mgmtAddrTxOption.mgmtAddrTxMode", "worst", "mgmtAddrTxModeBest"}},
       {"PATCH " + config + R"({"mgmtAddrTxOption":{"intf":"x"}})", 400, {"TxOption.intf:"}},
       {"PATCH " + config + R"({"cliPortConfig":{}})", 400, {"cliPortConfig"}},
       {"PATCH " + agents + R"( {"txDelay":9})", 403, {"agent"}},
       {"PUT " + agents + "/portConfig/Ethernet1", 403, {"agent"}},
       {"DELETE " + agents + "/portConfig/Ethernet1", 403, {"agent"}},
       {"DELETE " + agents + "/txDelay", 403, {"agent"}},
       {"PATCH " + entities + R"(bridging/config {"bridgeMacAddr":"02:00:00:00:00:09"})",
        403,
        {"feeder"}},
       {"PATCH " + entities + "no/such/path {}", 404, {}},
       {"PUT " + rows + "no%20name {}", 400, {"no name", "interface name"}},
       {"PUT " + rows + "Ethenet1 {}", 400, {"port name", "\"Ethenet1\""}},
       {"PUT " + rows + "Ethernet01 {}", 400, {"port name", "Ethernet01"}},
       {"PUT " + port + R"( {"adminStatus":"perhaps"})", 400, {"adminStatus", "txAndRx"}},
       {"PUT " + port + R"( {"intfId":"Ethernet2"})", 400, {"intfId"}},
       {"PUT " + port + R"( {"networkPolicyConfig":[{"appType":1},{"appType":1,"dscp":7}]})",
        400,
        {"networkPolicyConfig[1]", "key 1"}},
       {"DELETE " + port, 404, {}},
       {"DELETE " + entities + cliPath + "/noSuchThing", 404, {}},
       {"DELETE " + port + "/adminStatus", 404, {}},
       {"PATCH " + entities +
            R"(l2discovery/lldp/remTablesCliConfig {"remTablesClearRequest":{"requestTime":1e12}})",
        400,
        {"remTablesClearRequest.requestTime: expected at most", "got 1000000000000.0"}},
       {tlvs + "x?type=Lldp%3A%3ANothing", 400, {"Lldp::Nothing"}},
       {tlvs + "x?type=Lldp%3A%3ACliConfig",
        400,
        {"type: expected Lldp::ExternalTlvConfig, got \"Lldp::CliConfig\""}},
       {tlvs + "a%20b", 400, {"64 visible"}},
   };
   const std::string before = get("l2discovery/lldp/cliConfig").dump();
   for (const Case& one : cases) {
      std::istringstream in(one.request);
      std::string method, path, body;
      std::getline(std::getline(std::getline(in, method, ' '), path, ' '), body);
      auto answer = ask(method, path, body);
      SCOPED_TRACE(one.request.substr(0, 200) + ": " + answer.body.dump());
      EXPECT_EQ(answer.status, one.status);
      ASSERT_TRUE(answer.body.contains("error"));
      std::string message = answer.body["error"]["message"];
      for (const std::string& word : one.words) EXPECT_THAT(message, HasSubstr(word));
      EXPECT_EQ(answer.allow.empty(), one.status != 405);
   }
   EXPECT_EQ(get("l2discovery/lldp/cliConfig").dump(), before);
   EXPECT_EQ(get("l2discovery/lldp/config")["portConfig"].size(), 0u);
}

TEST_F(HostApiResources, RangesHoldAtTheirEnds) {
   const std::string config = entities + cliPath;
   const std::string port = config + "/cliPortConfig/Ethernet1";
   const std::string clear = entities + "l2discovery/lldp/remTablesCliConfig";
   const std::string provider = entities + "l2discovery/lldp/externalTlvs/provider";
   const std::string tlvs = provider + "/externalTlvPortConfig/Ethernet1";
   auto text = [](size_t length) { return '"' + std::string(length, 'x') + '"'; };
   struct Case {
      std::string path;
      const char* body;  // # stands for the value
      std::vector<std::string> good;
      std::vector<std::string> bad;
   };
   const Case cases[] = {
       {config, R"({"ip6MgmtAddrIntfName":#})", {text(64), "\"\""}, {text(65), "\"a b\""}},
       {config,
        R"({"mgmtAddrTxOption":{"intfName":#}})",
        {text(64), "\"\"", "\"Vlan4094\""},
        {text(65), "\"Vlan0\"", "\"Vlan4095\""}},
       {config, R"({"mgmtAddrVrf":#})", {text(100)}, {text(101)}},
       {port, R"({"networkPolicyConfig":[{},{"appType":1,"vlanId":#}]})", {"4094"}, {"4095"}},
       {port, R"({"networkPolicyConfig":[{"l2Priority":#}]})", {"7"}, {"8"}},
       {port, R"({"networkPolicyConfig":[{"dscp":#}]})", {"63"}, {"64"}},
       {port, R"({"networkPolicyConfig":[{"policyName":#}]})", {text(64)}, {text(65)}},
       {clear, R"({"remTablesClearRequest":{"requesterName":#}})", {text(256)}, {text(257)}},
       {clear, R"({"remTablesClearRequest":{"requesterLine":#}})", {text(256)}, {text(257)}},
       {provider, R"({"name":#})", {text(64)}, {text(65)}},
       {tlvs, R"({"tlv":[{"key":{"oui":{"value":#}}}]})", {"16777215"}, {"16777216", "4294967295"}},
       {tlvs, R"({"tlv":[{"key":{"subtype":#}}]})", {"255"}, {"256"}},
   };
   for (const Case& one : cases) {
      auto put = [&](const std::string& value) {
         std::string body = one.body;
         body.replace(body.find('#'), 1, value);
         auto answer = ask(one.path.ends_with("Config") ? "PATCH" : "PUT", one.path, body);
         return answer.body.is_null() ? "" : answer.body.dump();
      };
      for (const std::string& value : one.good) EXPECT_EQ(put(value), "") << one.body;
      for (const std::string& value : one.bad) {
         EXPECT_THAT(put(value), HasSubstr("expected")) << one.body << value;
      }
   }
}

TEST_F(HostApiResources, ANewMemberIsFilledBeforeItsKeyIsReported) {
   auto watcher = Rex::make<HostTest::Watcher>(store.cliConfig());
   const std::string port = entities + cliPath + "/cliPortConfig/Ethernet3%2F1";
   EXPECT_EQ(ask("PUT", port, R"({"adminStatus":"txOnly"})").status, 201);
   EXPECT_EQ(ask("PUT", port, R"({"adminStatus":"disabled"})").status, 204) << "it stands already";
   EXPECT_EQ(ask("DELETE", port).status, 204);
   EXPECT_EQ(ask("PUT", port).status, 201) << "attributes may be left out";
   EXPECT_THAT(watcher->seen,
               ElementsAre("Ethernet3/1 txOnly", "Ethernet3/1 gone", "Ethernet3/1 txAndRx"));
   watcher->close();
}

TEST_F(HostApiResources, EntriesOfADirectoryComeAndGo) {
   const std::string path = "l2discovery/lldp/externalTlvs/provider";
   EXPECT_EQ(ask("PUT", entities + path, R"({"name":"provider"})").status, 201);
   EXPECT_EQ(get(path)["name"], "provider");
   EXPECT_EQ(ask("PUT", entities + path + "/externalTlvPortConfig/Ethernet1").status, 201);
   EXPECT_EQ(ask("PATCH", entities + path + "/externalTlvPortConfig/Ethernet1",
                 R"({"tlv":[{"key":{"oui":{"value":1},"subtype":2,"index":1},
                                          "orgDefInfo":{"octets":"00ff"}}]})")
                 .status,
             204);
   EXPECT_EQ(get(path + "/externalTlvPortConfig/Ethernet1")["tlv"].size(), 1u);
   EXPECT_EQ(ask("DELETE", entities + path).status, 204);
   EXPECT_EQ(ask("GET", entities + path).status, 404);
}

TEST_F(HostApiResources, ClearRequestsAreStamped) {
   const std::string path = "l2discovery/lldp/remTablesCliConfig";
   auto requestTime = [&](const std::string& request) {
      EXPECT_EQ(
          ask("PATCH", entities + path, R"({"remTablesClearRequest":)" + request + "}").status,
          204);
      return store.at<Lldp::RemTablesCliConfig>(path.c_str())->remTablesClearRequest().requestTime;
   };
   store.test.timeIs(1234.5);
   EXPECT_EQ(requestTime(R"({"requesterName":"me"})"), 1234.5);
   store.test.timeIs(1300);
   EXPECT_EQ(requestTime(R"({"requestTime":null})"), 1300);
   EXPECT_EQ(requestTime(R"({"requestTime":7})"), 7);
}

TEST_F(HostApiResources, TraceLevelsChangeAtRunTime) {
   const std::string path = "/v1/agent/trace";
   EXPECT_EQ(ask("PATCH", path, R"({"HostApiTest":[0,4]})").status, 204);
   EXPECT_TRUE(trace.isOn(0) && trace.isOn(4) && !trace.isOn(1));
   EXPECT_EQ(ask("GET", path).body["HostApiTest"].dump(), "[0,4]");
   for (const char* bad :
        {R"({"HostApiTest":[10]})", R"({"HostApiTest":[-1]})", R"({"HostApiTest":7})",
         R"({"HostApiTest":[1],"Nothing":[]})", "[]", "x"}) {
      EXPECT_EQ(ask("PATCH", path, bad).status, 400) << bad;
   }
   EXPECT_EQ(ask("GET", path).body["HostApiTest"].dump(), "[0,4]") << "nothing has changed";
   EXPECT_THAT(ask("PATCH", path, R"({"Nothing":[]})").body["error"]["message"].dump(),
               HasSubstr("HostApiTest"));
   EXPECT_EQ(ask("PUT", path, "{}").status, 204);
   EXPECT_FALSE(trace.isOn(0));
   EXPECT_EQ(ask("DELETE", path).status, 405);
}

}  // namespace
