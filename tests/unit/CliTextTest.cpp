// The operator's command: how values look.
#include <gmock/gmock.h>

#include <sstream>

#include "cli/BasicTlvs.h"
#include "cli/Failure.h"
#include "cli/Names.h"
#include "cli/Octets.h"
#include "cli/Table.h"
#include "cli/Times.h"
#include "cli/Width.h"

namespace LldpCli {
namespace {

TEST(CliText, OctetsComeInTwoForms) {
   EXPECT_EQ(octets("a\x1f"), "a\x1f");
   EXPECT_EQ(octets(Json{{"octets", "00fF1b"}}), std::string("\0\xff\x1b", 3));
   EXPECT_EQ(text(Json{{"octets", "41ff5c"}}), "A\\xff\\\\");
   for (const char* broken : {"0", "0g", "-1", "00f"}) {
      EXPECT_THROW(octets(Json{{"octets", broken}}), Failure) << broken;
   }
}

struct IdentifierCase {
   Json subtype;
   Json value;
   std::string id;
   std::string words;
};

TEST(CliText, Identifiers) {
   const std::vector<IdentifierCase> cases{
       {"macAddress", {{"octets", "02ff00000001"}}, "02:ff:00:00:00:01", "MAC address"},
       {"macAddress", "ABC\n\x7f\x01", "41:42:43:0a:7f:01", "MAC address"},
       {"macAddress", {{"octets", "02ff"}}, "\\x02\\xff", "MAC address"},
       {"networkAddress", {{"octets", "01c0000201"}}, "192.0.2.1", "network address"},
       {"networkAddress", "\x01\x0a\x01\x01\x01", "10.1.1.1", "network address"},
       {"networkAddress",
        {{"octets", "0220010db8000000000000000000000001"}},
        "2001:db8::1",
        "network address"},
       {"networkAddress", {{"octets", "01c00002"}}, "01c00002", "network address"},
       {"networkAddress", "", "", "network address"},
       {"interfaceName", "Ethernet1/1", "Ethernet1/1", "interface name"},
       {"local", "\x1b[2Jx\\\xe2\x80\xae", "\\x1b[2Jx\\\\\\xe2\\x80\\xae", "locally assigned"},
       {"unknown", "x", "x", "reserved subtype"},
       {0, "x", "x", "reserved 0"},
   };
   for (const IdentifierCase& c : cases) {
      Json made = identifier({{"subtype", c.subtype}, {"value", c.value}});
      EXPECT_EQ(made.at("id"), c.id);
      EXPECT_EQ(identifierWords(made), c.id + " (" + c.words + ")");
   }
}

TEST(CliText, ManagementAddresses) {
   auto words = [](unsigned family, const Json& address, unsigned numbering, const char* oid) {
      return managementAddressWords(
          managementAddress({{"key", {{"manAddrSubtype", family}, {"manAddr", address}}},
                             {"ifSubtype", numbering},
                             {"ifNumber", 4294967295},
                             {"oid", oid}}));
   };
   EXPECT_EQ(words(1, {{"octets", "c0000201"}}, 2, "1.3.6"),
             "192.0.2.1 (IPv4), interface index 4294967295, OID 1.3.6");
   EXPECT_EQ(words(6, {{"octets", "020000000001"}}, 3, ""),
             "02:00:00:00:00:01 (MAC), system port 4294967295");
   EXPECT_EQ(words(16, "example", 9, ""), "6578616d706c65 (family 16), reserved 9 4294967295");
}

TEST(CliText, DisplayWidth) {
   EXPECT_EQ(displayWidth("grün"), 4u);
   EXPECT_EQ(displayWidth("e\u0301"), 1u);
   EXPECT_EQ(displayWidth("交換機"), 6u);
   EXPECT_EQ(displayWidth("\xff"), 1u);
   EXPECT_EQ(cut("grün", 4), "grün");
   EXPECT_EQ(cut("grüne", 4), "grü…");
   EXPECT_EQ(cut("交換機", 4), "交…");  // half of a wide character is none
   EXPECT_EQ(cut("abc", 1), "…");
   EXPECT_EQ(cut("abc", 0), "");
}

std::vector<std::string> printed(const Table& table, std::optional<size_t> width) {
   std::ostringstream out;
   table.print(out, {width});
   std::vector<std::string> lines;
   std::string line;
   for (std::istringstream in(out.str()); std::getline(in, line);) lines.push_back(line);
   return lines;
}

TEST(CliText, TableFitsTheTerminal) {
   Table table({{"Port", Column::Kind::name}, {"Name"}, {"n", Column::Kind::number}, {"Last"}});
   table.add({"Ethernet1", std::string(200, 'a'), "123456", std::string(20, 'b')});
   for (size_t width = 10; width < 250; ++width) {
      for (const std::string& line : printed(table, width)) EXPECT_LE(displayWidth(line), width);
   }
   EXPECT_EQ(printed(table, 250), printed(table, std::nullopt));
   // The longest text gives way, then all texts; ports are told apart to the last.
   EXPECT_EQ(printed(table, 60).at(1),
             "Ethernet1  aaaaaaaaaaaaaaaaaa…  123456  bbbbbbbbbbbbbbbbbbbb");
   EXPECT_EQ(printed(table, 40).at(1), "Ethernet1  aaaaaaaa…  123456  bbbbbbbbb…");
   EXPECT_EQ(printed(table, 24).at(1), "Ethernet1  aa…  12…  bb…");
   EXPECT_EQ(printed(table, 20).at(1), "Ethe…  aa…  12…  bb…");
}

TEST(CliText, Durations) {
   const std::vector<std::pair<double, std::string>> cases{
       {0, "0 s"},          {59.9, "59 s"},    {60, "1 min 0 s"}, {3599, "59 min 59 s"},
       {3600, "1 h 0 min"}, {90061, "1 d 1 h"}};
   for (const auto& [seconds, words] : cases) EXPECT_EQ(duration(seconds), words);
}

TEST(CliText, TimesInTheFutureOrUnset) {
   EXPECT_EQ(secondsSince(10.0, 12.3456), 2.346);
   EXPECT_EQ(secondsSince(10.0, 9.0), 0);
   Json view = Json::object();
   putSince(view, "never", 0.0, 12);
   putSince(view, "infinite", nullptr, 12);
   EXPECT_EQ(view, Json::object());
}

}  // namespace
}  // namespace LldpCli
