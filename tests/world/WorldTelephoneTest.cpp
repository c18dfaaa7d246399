// The story of a telephone: what its port answers it, frame by frame, and how long it is known.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "Foreign/NbrClassification.h"
#include "Foreign/PoePortStatus.h"
#include "support/Engine.h"
#include "support/FrameBuilder.h"
#include "support/World.h"

using namespace LldpTest;
using Environment::Power::PoePortStatus;
using Identity::NbrClassification::ClearRequest;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StrEq;
using Wirekit::EthAddr;
using Wirekit::IntfId;

namespace {

const EthAddr mac{2, 0, 0, 0, 0, 0x99};  // that ethFrame() sends from

// A policy on the wire: tagged, behind the application.
std::string policy(unsigned app, unsigned vlan, unsigned priority, unsigned dscp) {
   return organization(tia, 2, be32(app << 24 | 1 << 22 | vlan << 9 | priority << 6 | dscp));
}

const std::string capabilities = organization(tia, 1, octets("000304"));
const std::string video = policy(6, 200, 4, 34);
const std::string streaming = policy(7, 100, 5, 46);
const std::string widerVideo = policy(6, 300, 4, 34);

struct Telephone : testing::Test {
   World world;
   Supervisor& a = world.agent("a");
   Port& desk = a.port("Ethernet1");
   Port& lounge = a.port("Ethernet2");
   Rex::Ptr<Wire> atDesk = world.wire();
   Rex::Ptr<Wire> atLounge = world.wire();
   PoePortStatus::Ptr report = Rex::make<PoePortStatus>();
   Identity::NbrClassification::CliConfig::Ptr operators =
       a.at<Identity::NbrClassification::CliConfig>("identity/nbrClassification/cliConfig");
   Identity::NbrClassification::Status::Ptr known =
       a.at<Identity::NbrClassification::Status>("identity/nbrClassification/status");

   void SetUp() override {
      desk.plug(atDesk);
      lounge.plug(atLounge);
      for (const char* port : {"Ethernet1", "Ethernet2"}) {
         auto row = a.cli(port);
         row->networkPolicyConfigIs({6, "video", true, 200, 4, 34});
         row->networkPolicyConfigIs({0, "any", true, 100, 5, 46});
      }
      world.run(40);
      report->portStatusIs({Environment::Power::poePortDelivering, 154});
      a.at<Rex::Dir>("environment/power/status/poePort")->entityPtrIs("Ethernet1", report);
      world.run(40);
   }

   // The telephone speaks: what it is and needs, and which applications it asks for.
   void speak(Wire& wire, const std::string& applications, unsigned telephoneBit = 0x20) {
      std::string asked = mandatory(1) + systemCapabilities(0x04 | telephoneBit, 0x04) +
                          organization(dot3, 2, octets("0802056200820082")) +
                          organization(tia, 1, octets("003303"));
      for (char app : applications) {
         asked += organization(tia, 2, be32(static_cast<uint32_t>(app - '0') << 24 | 1 << 23));
      }
      wire.frameIs(octetsOf(ethFrame(asked + endOfLldpdu())));
      world.run(0.01);
   }
   // The TLVs of LLDP-MED in each frame that the port has sent since the last call.
   std::vector<std::string> told(Wire& wire, const Port& port) {
      std::vector<std::string> texts;
      for (const auto& frame : std::exchange(wire.frames, {})) {
         std::string octets(frame.octets.begin(), frame.octets.end());
         if (octets.compare(6, 6, reinterpret_cast<const char*>(port.phy()->ethAddr().octets()),
                            6) != 0) {
            continue;
         }
         texts.emplace_back();
         for (const auto& one : tlvsOf(octets, tia)) texts.back() += one;
      }
      return texts;
   }
   // An organisation's TLVs of a frame.
   static std::vector<std::string> tlvsOf(const std::string& octets, uint32_t oui) {
      std::vector<std::string> found;
      for (size_t at = 14, size; at + 2 <= octets.size(); at += size) {
         size = 2 + ((octets[at] & 1) << 8 | static_cast<uint8_t>(octets[at + 1]));
         if (octets.compare(at + 2, 3, be32(oui << 8), 0, 3) == 0) {
            found.push_back(octets.substr(at, size));
         }
      }
      return found;
   }
   // The port of each phone; empty for one that the operator entered without a port.
   std::vector<std::string> phones() const {
      std::vector<std::string> ports;
      for (auto [ethAddr, value] : known->phone()) {
         EXPECT_EQ(ethAddr, mac);
         ports.push_back(known->neighbor(ethAddr).intfId.stringValue().stdString());
      }
      return ports;
   }
   void clear(uint32_t type, const char* target) {
      operators->clearRequestIs(Rex::format("%d", ++requests),
                                {world.now(), "admin", "vty1", type, target});
   }
   int requests = 0;
};

}  // namespace

TEST_F(Telephone, ItsFirstFrameIsAnsweredInTheNext) {
   EXPECT_THAT(told(*atDesk, desk), Each(StrEq(""))) << "nobody has asked";
   speak(*atDesk, "167");
   std::vector<std::string> answers = told(*atDesk, desk);
   ASSERT_THAT(answers, testing::Not(IsEmpty()));
   // The telephone's own voice, application 1, is none that is served.
   EXPECT_THAT(answers, Each(capabilities + video + streaming));
   EXPECT_THAT(phones(), ElementsAre("Ethernet1"));
   EXPECT_EQ(desk.local()->localPortPoeInfo()->remoteSystem(), desk.neighbor());
   EXPECT_THAT(told(*atLounge, lounge), Each(StrEq("")));
}

TEST_F(Telephone, NoFrameShowsHalfAList) {
   speak(*atDesk, "67");
   world.run(5);
   told(*atDesk, desk);
   const std::function<void()> changes[] = {
       [&] {
          a.cli("Ethernet1")->networkPolicyConfigIs({6, "video", true, 300, 4, 34});
       },
       [&] { speak(*atDesk, "7"); },
       [&] { a.cli("Ethernet1")->networkPolicyConfigDel(0); },
       [&] {
          a.cli("Ethernet1")->networkPolicyConfigIs({0, "any", true, 100, 5, 46});
       },
       [&] { speak(*atDesk, "76"); },
       [&] { a.cli()->tlvNetworkPolicyIs(false); },
       [&] { a.cli()->tlvNetworkPolicyIs(true); },
   };
   for (const auto& change : changes) {
      change();
      world.run(5);
   }
   std::vector<std::string> answers = told(*atDesk, desk);
   answers.erase(std::unique(answers.begin(), answers.end()), answers.end());
   EXPECT_THAT(answers, ElementsAre(capabilities + widerVideo + streaming, capabilities + streaming,
                                    capabilities, capabilities + streaming,
                                    capabilities + widerVideo + streaming, "",
                                    capabilities + widerVideo + streaming));
}

TEST_F(Telephone, HasThePowerThatThePowerAgentAllows) {
   auto power = [&] {
      const auto& frame = atDesk->frames.back().octets;
      return tlvsOf({frame.begin(), frame.end()}, dot3).at(0);
   };
   EXPECT_EQ(power(), organization(dot3, 2, octets("070101"))) << "no one asks";
   speak(*atDesk, "6");
   EXPECT_EQ(power(), organization(dot3, 2,
                                   octets("070101"
                                          "10"
                                          "0082"
                                          "009a")));
   report->portStatusIs({Environment::Power::poePortDelivering, 130});
   world.run(3);
   EXPECT_EQ(power(), organization(dot3, 2,
                                   octets("070101"
                                          "90"
                                          "0082"
                                          "0082")));
}

TEST_F(Telephone, IsKnownUntilItIsHeardElsewhereOrForgotten) {
   speak(*atDesk, "6");
   desk.linkIs(false);
   world.run(200);
   EXPECT_THAT(desk.neighbors(), IsEmpty());
   EXPECT_THAT(phones(), ElementsAre("Ethernet1")) << "pulled";
   speak(*atLounge, "6");
   EXPECT_THAT(phones(), ElementsAre("Ethernet2")) << "moved";
   EXPECT_EQ(told(*atLounge, lounge).back(), capabilities + video);

   clear(ClearRequest::byIntf, "Ethernet1");
   clear(ClearRequest::byEthAddr, "02:00:00:00:00:98");
   EXPECT_THAT(phones(), ElementsAre("Ethernet2")) << "of another";
   for (auto [type, target] : {std::pair{ClearRequest::byIntf, "Ethernet2"},
                               {ClearRequest::byEthAddr, "02:00:00:00:00:99"},
                               {0u, ""}}) {
      clear(type, target);
      EXPECT_THAT(phones(), IsEmpty()) << "cleared " << target;
      speak(*atLounge, "6");
      EXPECT_THAT(phones(), ElementsAre("Ethernet2")) << "heard again";
   }
   operators->neighborIs({mac, IntfId(), {0, 0}});
   speak(*atLounge, "6");
   EXPECT_THAT(phones(), IsEmpty()) << "the operator says that it is none";
   operators->neighborDel(mac);
   EXPECT_THAT(phones(), ElementsAre("Ethernet2"));
   speak(*atLounge, "6", 0);
   EXPECT_THAT(phones(), IsEmpty()) << "it says so itself";
   operators->neighborIs({mac, IntfId(), {1, 0}});
   EXPECT_THAT(phones(), ElementsAre(""));
}
