#include "Lldp/LldpInputSm/ManAddr.h"

#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"
#include "Rex/Trace.h"
#include "Wirekit/VlanIntfId.h"
#include "model/IntfRank.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

// IANA address family numbers.
constexpr uint8_t ip4Family = 1;
constexpr uint8_t macFamily = 6;
// What `ifNumber` is (IEEE Std 802.1AB-2016, 8.5.9.5).
constexpr uint8_t unknownNumber = 1;
constexpr uint8_t ifIndexNumber = 2;

}  // namespace

const ManAddrPriority fallbackManAddrPriority;
const ManAddrPriority sourceIntfManAddrPriority{ManAddrType::manAddrPrimary, 1, 0, {}};

void intfNameToVlanIdAndManAddrPriority(const Wirekit::IntfId& intfId,
                                        Bridging::VlanIdOrNone* vlanId,
                                        ManAddrPriority* manAddrPriority) {
   if (vlanId) {
      bool isVlan = Wirekit::VlanIntfId::isVlanIntfId(intfId);
      *vlanId = isVlan ? Bridging::VlanIdOrNone(Wirekit::VlanIntfId::vlan(intfId))
                       : Bridging::VlanIdOrNone();
   }
   IntfRank rank = intfRank(intfId);
   REX_ASSERT_AS(!rank.fault, rank.fault);
   manAddrPriority->primaryPriority = rank.primaryPriority;
   manAddrPriority->secondaryPriority = 0;
   manAddrPriority->intfId = intfId;
}

ManagementAddress makeManagementAddress(int32_t ifIndexValue, const ManagementAddress::Key& key) {
   REX_ASSERT(ifIndexValue >= 0 && "pre-condition: validate ifIndexValue");
   return {key, ifIndexNumber, static_cast<uint32_t>(ifIndexValue), {}};
}

ManagementAddress::Key ip4Key(const Wirekit::IpAddr& addr) {
   const auto* octets = reinterpret_cast<const char*>(addr.octets());
   return {ip4Family, ManAddress(octets, Wirekit::IpAddr::size)};
}

// Whether an IPv6 address is told is not asked here, unlike below: the fallback stands beside it
// until the next address comes.
void replaceFallbackManAddr(const Wirekit::EthAddr& bridgeMacAddr, const Rex::Ptr<Root>& root) {
   const auto& localSystem = root->localSystem();
   localSystem->managementAddressDel(root->fallbackManagementAddressKey());
   localSystem->managementAddressPrioDel(fallbackManAddrPriority);

   char octets[Wirekit::EthAddr::size];
   for (size_t i = 0; i < sizeof(octets); ++i) octets[i] = static_cast<char>(bridgeMacAddr.byte(i));
   ManagementAddress::Key key{macFamily, ManAddress(octets, sizeof(octets))};
   root->fallbackManagementAddressKeyIs(key);
   root->fallbackManagementAddressKeyPresentIs(true);
   localSystem->managementAddressIs({key, unknownNumber, 0, {}});
   if (localSystem->managementAddressPrio().empty()) {
      localSystem->managementAddressPrioIs(fallbackManAddrPriority, key);
   }
}

void maybeAddFallbackManAddr(const Rex::Ptr<Root>& root) {
   const auto& localSystem = root->localSystem();
   if (!localSystem->managementAddressPrio().empty()) return;
   if (localSystem->ip6ManagementAddress() != nullManagementAddress) return;
   TRACE(
       trace, 8,
       "Adding fallback management address " << root->fallbackManagementAddressKey().stringValue());
   localSystem->managementAddressPrioIs(fallbackManAddrPriority,
                                        root->fallbackManagementAddressKey());
}

void removeFallbackManAddr(const Rex::Ptr<Root>& root) {
   const auto& localSystem = root->localSystem();
   if (!localSystem->managementAddressPrioHas(fallbackManAddrPriority)) return;
   TRACE(trace, 8,
         "Deleting fallback management address "
             << root->fallbackManagementAddressKey().stringValue());
   localSystem->managementAddressPrioDel(fallbackManAddrPriority);
}

}  // namespace Lldp::Agent::Input
