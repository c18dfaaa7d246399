// The input root with interfaces that have addresses, and what it tells of them.
#pragma once

#include <gtest/gtest.h>

#include "Lldp/LldpInputSm/ManAddr.h"
#include "support/InputFixture.h"

namespace LldpTest {

// An address with its mask, as "10.0.0.1/24"; empty for none.
inline Wirekit::IpAddrWithMask ip4(std::string_view text) {
   Wirekit::IpAddrWithMask addr;
   EXPECT_TRUE(text.empty() || Wirekit::IpAddrWithMask::fromText(text, addr)) << text;
   return addr;
}
inline Wirekit::Ip6AddrWithMask ip6(std::string_view text) {
   Wirekit::Ip6AddrWithMask addr;
   EXPECT_TRUE(Wirekit::Ip6AddrWithMask::fromText(text, addr)) << text;
   return addr;
}
inline L3::VrfName vrfName(std::string_view name) {
   return L3::VrfName(Rex::String(name));
}

// A management address as "10.0.0.1@5" with the number of its interface; empty for none.
inline std::string shown(const Lldp::ManagementAddress& address) {
   if (address == Lldp::nullManagementAddress) return "";
   const char* octets = address.key.manAddr.value().view().data();
   std::string text = address.key.manAddrSubtype == 1
                          ? Wirekit::IpAddr::fromOctets(octets).stringValue().stdString()
                      : address.key.manAddrSubtype == 2
                          ? Wirekit::Ip6Addr::fromOctets(octets).stringValue().stdString()
                          : "bridge";
   return text + "@" + std::to_string(address.ifNumber);
}
inline Lldp::ManagementAddress::Key keyOf(std::string_view addr) {
   return Lldp::Agent::Input::ip4Key(ip4(addr).addr());
}

struct AddressFixture : InputFixture {
   AddressFixture() { bridging->bridgeMacAddrIs({2, 0, 0, 0, 0, 1}); }

   L3::Intf::Status::Ptr l3(std::string_view vrf) {
      auto l3Status = Rex::make<L3::Intf::Status>();
      l3Status->vrfIs(vrfName(vrf));
      return l3Status;
   }
   // An interface with that number and active address, in the VRF that is told.
   Ip::IpIntfStatus::Ptr ip(const std::string& name, int32_t ifIndex,
                            std::string_view active = "") {
      Ip::IpIntfStatus::Ptr row;
      Rex::Dispatcher::run([&] {
         row = ipStatus->ipIntfStatusIs(Wirekit::IntfId(name));
         row->l3StatusIs(l3("default"));
         row->activeAddrWithMaskIs(ip4(active));
         number(name, ifIndex);
      });
      return row;
   }
   void option(Lldp::MgmtAddrTxMode mode, const Rex::String& intfName = "") {
      cliConfig->mgmtAddrTxOptionIs({mode, intfName});
   }

   // The addresses in the order of a frame. One of which only the rank is left ends with "@-".
   std::string told() {
      std::string all;
      for (auto [rank, key] : localSystem->managementAddressPrio()) {
         Lldp::ManagementAddress row{key, 0, 0, {}};
         if (localSystem->managementAddressHas(key)) row = localSystem->managementAddress(key);
         std::string text = shown(row);
         if (row.ifSubtype == 0) text.replace(text.find('@'), std::string::npos, "@-");
         all += (all.empty() ? "" : " ") + text;
      }
      return all;
   }
   std::string told6() { return shown(localSystem->ip6ManagementAddress()); }
   // The interfaces that wait for an address.
   std::string waiting(std::string_view addr) {
      std::string all;
      auto skipped = root->skippedAddr(keyOf(addr));
      if (!skipped) return all;
      for (auto [intfId, value] : skipped->intf()) {
         all += (all.empty() ? "" : " ") + intfId.stringValue().stdString();
      }
      return all;
   }
};

}  // namespace LldpTest
