#include "Lldp/LldpInputSm/IpIntfStatusSm.h"

#include "Lldp/LldpInputSm/ManAddr.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Lldp/LldpInputSm/SkippedAddr.h"
#include "Rex/Assert.h"
#include "Rex/Trace.h"
#include "model/IntfRank.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

bool isSet(const Wirekit::IpAddrWithMask& addr) {
   return !addr.addr().isZero() && addr.maskLength() != 0;
}

}  // namespace

// An interface with a layer-3 status publishes its addresses, takes them back and publishes them
// again: the second time is what attaching to that status amounts to.
IpIntfStatusSm::IpIntfStatusSm(Ip::IpIntfStatus::PtrConst ipIntfStatus, Rex::Ptr<Root> root)
    : ipIntfStatus_(std::move(ipIntfStatus)),
      root_(std::move(root)),
      l3Status_(ipIntfStatus_->l3Status()) {
   on(ipIntfStatus_, Ip::IpIntfStatus::activeAddrWithMaskAttr,
      &IpIntfStatusSm::handleActiveAddrWithMask);
   on(ipIntfStatus_, Ip::IpIntfStatus::secondaryWithMaskAttr,
      &IpIntfStatusSm::handleSecondaryWithMask);

   handleInitialized();

   on(l3Status_, L3::Intf::Status::vrfAttr, &IpIntfStatusSm::handleVrf);
   if (l3Status_) handleVrf();
}

IpIntfStatusSm::~IpIntfStatusSm() = default;

void IpIntfStatusSm::handleInitialized() {
   TRACE(trace, 8, "IpIntfStatusSm::handleInitialized( " << intfId() << " )");
   intfNameToVlanIdAndManAddrPriority(intfId(), &vlanId_, &lastMgmtAddrKeyPriority_);
   uint32_t behindManagement = lastMgmtAddrKeyPriority_.primaryPriority - ethernetPriorityBase;
   isRoutedPortAddr_ = behindManagement < vlanPriorityBase - ethernetPriorityBase;
   handleVrf();
}

void IpIntfStatusSm::handleVrf() {
   TRACE(trace, 8, "IpIntfStatusSm::handleVrf( " << intfId() << " )");
   doMaybeDelOldMgmtAddr();
   doMaybeAddNewMgmtAddr();
   doMaybeAddSecMgmtAddrs();
}

// A secondary that came while there was no active address goes on waiting, for a change of the VRF
// or of itself.
void IpIntfStatusSm::handleActiveAddrWithMask() {
   TRACE(trace, 8, "IpIntfStatusSm::handleActiveAddrWithMask( " << intfId() << " )");
   // Two interfaces may each have waited for what the other holds now, and offer it to one another
   // for ever. The one that is giving its address up looks at its present one afterwards anyway.
   if (givingUp_) return;
   doMaybeDelOldMgmtAddr();
   doMaybeAddNewMgmtAddr();
}

// An address that is becoming the active one may leave the secondaries first; its row stays.
void IpIntfStatusSm::handleSecondaryWithMask(const Addr& addr) {
   TRACE(trace, 8, "IpIntfStatusSm::handleSecondaryWithMask( " << addr.stringValue() << " )");
   if (ipIntfStatus_->secondaryWithMask(addr)) {
      doMaybeAddSecMgmtAddr(addr);
   } else if (addr != ipIntfStatus_->activeAddrWithMask()) {
      doRemoveSecMgmtAddr(addr);
   }
}

void IpIntfStatusSm::doMaybeDelOldMgmtAddr() {
   TRACE(trace, 8, "IpIntfStatusSm::doMaybeDelOldMgmtAddr( " << intfId() << " )");
   if (!lastMgmtAddrPresent_) return;
   givingUp_ = true;
   doRemoveMgmtAddr();
   givingUp_ = false;
   lastMgmtAddrPresent_ = false;
}

void IpIntfStatusSm::doMaybeAddNewMgmtAddr() {
   TRACE(trace, 8, "IpIntfStatusSm::doMaybAddNewMgmtAddr( " << intfId() << " )");
   if (!eligible()) return;
   int32_t ifIndex = ifIndexVal(intfId(), root_);
   REX_ASSERT(ifIndex >= 0);
   const Addr& active = ipIntfStatus_->activeAddrWithMask();
   const auto& localSystem = root_->localSystem();
   ManagementAddress::Key manAddrKey = ip4Key(active.addr());
   lastMgmtAddr_ = makeManagementAddress(ifIndex, manAddrKey);

   // When a secondary is promoted within one reaction, it is gone from the status already.
   bool secondaryAddressPresent = ipIntfStatus_->secondaryWithMaskHas(active)
                                      ? ipIntfStatus_->secondaryWithMask(active)
                                      : secondaryMgmtAddr_.find(active) != nullptr;
   if (localSystem->managementAddressHas(manAddrKey)) {
      if (!secondaryAddressPresent) {
         TRACE(trace, 8,
               "IpIntfStatusSm::Skipping " << manAddrKey.stringValue() << ", VRF "
                                           << vrf().stringValue());
         addSkippedAddr(manAddrKey, intfId(), root_);
         return;
      }
      doRemoveSecMgmtAddr(active);  // promoted: the row goes on standing
   }
   REX_ASSERT_AS(
       secondaryAddressPresent || !localSystem->managementAddressHas(manAddrKey),
       "secondaryAddressPresent || !root()->localSystem()->managementAddressHas( manAddrKey )");
   lastMgmtAddrPresent_ = true;
   lastMgmtAddrVrf_ = vrf();
   doAddMgmtAddr();
}

void IpIntfStatusSm::doAddMgmtAddr() {
   TRACE(trace, 8, "IpIntfStatusSm::doAddMgmtAddr( " << intfId() << " )");
   removeFallbackManAddr(root_);
   REX_ASSERT_AS(lastMgmtAddrPresent_, "lastMgmtAddrPresent()");
   const ManagementAddress::Key& key = lastMgmtAddr_.key;
   TRACE(trace, 8,
         "IpIntfStatusSm::Adding " << key.stringValue() << " to VRF "
                                   << lastMgmtAddrVrf_.stringValue());
   const auto& localSystem = root_->localSystem();
   localSystem->managementAddressIs(lastMgmtAddr_);
   localSystem->managementAddressPrioIs(
       isSourceIntf() ? sourceIntfManAddrPriority : lastMgmtAddrKeyPriority_, key);
   removeSkippedAddr(key, intfId(), root_);
}

void IpIntfStatusSm::doRemoveMgmtAddr() {
   TRACE(trace, 8, "IpIntfStatusSm::doRemoveMgmtAddr( " << intfId() << " )");
   REX_ASSERT_AS(lastMgmtAddrPresent_, "lastMgmtAddrPresent()");
   const auto& localSystem = root_->localSystem();
   ManagementAddress::Key key = lastMgmtAddr_.key;
   if (isSourceIntf()) {
      auto removed = localSystem->managementAddressPrio(sourceIntfManAddrPriority);
      localSystem->managementAddressPrioDel(sourceIntfManAddrPriority);
      localSystem->managementAddressDel(removed);
   } else {
      localSystem->managementAddressPrioDel(lastMgmtAddrKeyPriority_);
      localSystem->managementAddressDel(key);
   }
   TRACE(trace, 8,
         "IpIntfStatusSm::Removing " << key.stringValue() << " from VRF "
                                     << lastMgmtAddrVrf_.stringValue());
   doMaybeDelSecMgmtAddrs();
   maybeAddFallbackManAddr(root_);
   handleSkippedManAddrs(key, root_);
}

// A secondary is not compared with what others hold: it overwrites the row of the same address and
// adds a rank of its own. Nor does it take the fallback's place.
void IpIntfStatusSm::doMaybeAddSecMgmtAddr(const Addr& addr) {
   TRACE(trace, 8, "IpIntfStatusSm::doMaybeAddSecMgmtAddr( " << addr.stringValue() << " )");
   if (!isSet(addr) || !eligible()) return;
   int32_t ifIndex = ifIndexVal(intfId(), root_);
   REX_ASSERT(ifIndex >= 0);
   ManagementAddress address = makeManagementAddress(ifIndex, ip4Key(addr.addr()));
   ManAddrPriority rank = lastMgmtAddrKeyPriority_;
   rank.type = ManAddrType::manAddrSecondary;
   rank.secondaryPriority = addr.addr().value();
   TRACE(trace, 8,
         "IpIntfStatusSm::Adding " << address.key.stringValue() << " to VRF "
                                   << lastMgmtAddrVrf_.stringValue());
   const auto& localSystem = root_->localSystem();
   localSystem->managementAddressIs(address);
   localSystem->managementAddressPrioIs(rank, address.key);
   secondaryMgmtAddr_.insert(addr, address);
   secondaryMgmtAddrKeyPriority_.insert(addr, rank);
}

void IpIntfStatusSm::doMaybeAddSecMgmtAddrs() {
   TRACE(trace, 8, "IpIntfStatusSm::doMaybAddSecMgmtAddrs( " << intfId() << " )");
   for (auto [addr, counts] : ipIntfStatus_->secondaryWithMask()) doMaybeAddSecMgmtAddr(addr);
}

// The rank of one that was never published reads as the default, which is that of the fallback: it
// goes, and comes back when the fallback is next looked at.
void IpIntfStatusSm::doRemoveSecMgmtAddr(const Addr& removed) {
   Addr addr = removed;  // it may live in what is removed
   TRACE(trace, 8, "IpIntfStatusSm::doRemoveSecMgmtAddr( " << addr.stringValue() << " )");
   const auto& localSystem = root_->localSystem();
   const ManAddrPriority* rank = secondaryMgmtAddrKeyPriority_.find(addr);
   localSystem->managementAddressPrioDel(rank ? *rank : ManAddrPriority());
   secondaryMgmtAddrKeyPriority_.erase(addr);
   const ManagementAddress* address = secondaryMgmtAddr_.find(addr);
   ManagementAddress::Key key = address ? address->key : ManagementAddress::Key();
   secondaryMgmtAddr_.erase(addr);
   if (addr == ipIntfStatus_->activeAddrWithMask()) return;  // the row is the active address's now
   TRACE(trace, 8,
         "IpIntfStatusSm::Removing " << key.stringValue() << " from VRF "
                                     << lastMgmtAddrVrf_.stringValue());
   localSystem->managementAddressDel(key);
}

void IpIntfStatusSm::doMaybeDelSecMgmtAddrs() {
   TRACE(trace, 8, "IpIntfStatusSm::doMaybeDelSecMgmtAddrs( " << intfId() << " )");
   if (!eligible()) doRemoveSecondaryMgmtAddrs();
}

// Those that the interface has now, published or not.
void IpIntfStatusSm::doRemoveSecondaryMgmtAddrs() {
   TRACE(trace, 8, "IpIntfStatusSm::doRemoveSecondaryMgmtAddrs( " << intfId() << " )");
   for (auto [addr, counts] : ipIntfStatus_->secondaryWithMask()) doRemoveSecMgmtAddr(addr);
}

// Nothing looks at the fallback after the secondaries are gone: with the last interface that had
// some, the switch is left without an address until the next one comes.
void IpIntfStatusSm::doClose() {
   TRACE(trace, 8, "IpIntfStatusSm::doClose( " << intfId() << " )");
   doMaybeDelOldMgmtAddr();
   removeSkippedAddr(lastMgmtAddr_.key, intfId(), root_);
   doRemoveSecondaryMgmtAddrs();
}

L3::VrfName IpIntfStatusSm::vrf() const {
   const auto& l3Status = ipIntfStatus_->l3Status();
   return l3Status ? l3Status->vrf() : L3::VrfName();
}

bool IpIntfStatusSm::eligible() const {
   return isSet(ipIntfStatus_->activeAddrWithMask()) && vrf() == root_->status()->mgmtAddrVrf();
}

bool IpIntfStatusSm::isSourceIntf() const {
   return lastMgmtAddrKeyPriority_ == root_->sourceIntfNamePriority();
}

}  // namespace Lldp::Agent::Input
