#include "Lldp/LldpInputSm/Ip6ManAddr.h"

#include "Lldp/LldpInputSm/ManAddr.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

constexpr uint8_t ip6Family = 2;  // IANA address family number

constexpr Wirekit::Ip6Addr nullIp6Addr;
constexpr Wirekit::Ip6Addr maxIp6Addr({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  //
                                       0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});

}  // namespace

Wirekit::Ip6Addr getStableIp6Addr(const Ip6::IntfStatus::PtrConst& ip6IntfStatus) {
   Wirekit::Ip6Addr best = maxIp6Addr;
   for (auto [addrWithMask, info] : ip6IntfStatus->addr()) {
      TRACE(trace, 8, "ipv6 address " << addrWithMask.stringValue());
      const Wirekit::Ip6Addr& addr = addrWithMask.addr();
      if (!addr.isLinkLocal() && !(best < addr)) best = addr;
   }
   return best == maxIp6Addr ? nullIp6Addr : best;
}

ManagementAddress makeIp6ManagementAddress(int32_t ifIndexValue, const Wirekit::Ip6Addr& addr) {
   REX_ASSERT(ifIndexValue >= 0 && "pre-condition: validate ifIndexValue");
   if (addr == nullIp6Addr) return nullManagementAddress;
   const auto* octets = reinterpret_cast<const char*>(addr.octets());
   return makeManagementAddress(ifIndexValue,
                                {ip6Family, ManAddress(octets, Wirekit::Ip6Addr::size)});
}

void clearIp6ManagementAddress(const Rex::Ptr<Root>& root) {
   const auto& localSystem = root->localSystem();
   if (localSystem->ip6ManagementAddress() == nullManagementAddress) return;
   TRACE(
       trace, 8,
       "ipv6 management address removed " << localSystem->ip6ManagementAddress().key.stringValue());
   localSystem->ip6ManagementAddressIs(nullManagementAddress);
   maybeAddFallbackManAddr(root);
}

}  // namespace Lldp::Agent::Input
