// The share of InputSm in management addresses.
#include "Lldp/LldpInputSm/InputSm.h"
#include "Lldp/LldpInputSm/Ip6ManAddr.h"
#include "Lldp/LldpInputSm/ManAddr.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

constexpr uint32_t bestAddressOnly = 1;
constexpr uint32_t allAddresses = 4294967295;

// An address that stands under one rank stands under the other from here on.
void moveRank(LocalSystem& localSystem, const ManAddrPriority& from, const ManAddrPriority& to) {
   if (!localSystem.managementAddressPrioHas(from)) return;
   ManagementAddress::Key key = localSystem.managementAddressPrio(from);
   localSystem.managementAddressPrioDel(from);
   localSystem.managementAddressPrioIs(to, key);
}

}  // namespace

void InputSm::watchAddresses() {
   on(ipStatus_, Ip::Status::ipIntfStatusAttr, &InputSm::handleIntfStatusOrIpIntfStatus);
   on(ip6Status_, Ip6::Status::ipIntfStatusAttr, &InputSm::handleIp6StatusIntf);
   if (ip6Status_) {
      for (auto [intfId, row] : ip6Status_->ipIntfStatus()) ip6IntfStatusIs(intfId, row, this);
   }
   on(allIntfStatusDir_, Interface::AllIntfStatusDir::intfStatusAttr, &InputSm::handleIntfStatus);
   on(cliConfig_, CliConfig::mgmtAddrTxOptionAttr, &InputSm::handleMgmtAddrTxOption);
   on(cliConfig_, CliConfig::mgmtAddrVrfAttr, &InputSm::handleMgmtAddrVrf);
   on(cliConfig_, CliConfig::ip6MgmtAddrIntfNameAttr, &InputSm::handleIp6ManagementAddress);
   // Ahead of the bridge's address: that one does not ask whether an IPv6 address is told, so that
   // at the start, and whenever the bridge's address changes, the fallback may stand beside it.
   handleIp6ManagementAddress();
}

void InputSm::handleIntfStatus(const Wirekit::IntfId& intfId) {
   handleIp6IntfStatus(intfId);
   handleIntfStatusOrIpIntfStatus(intfId);
}

void InputSm::handleIntfStatusOrIpIntfStatus(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "InputSm::handleIntfStatusOrIpIntfStatus( " << intfId << " )");
   if (ifIndexVal(intfId, root_) < 0) {
      TRACE(trace, 8, " intfId not in allIntfStatusDir: " << intfId);
      ipIntfStatusSmDel(intfId);
      return;
   }
   auto status = ipStatus_ ? ipStatus_->ipIntfStatus(intfId) : nullptr;
   auto sm = ipIntfStatusSm(intfId);
   if (status && sm && sm->ipIntfStatus() != status) {
      TRACE(trace, 8, " clearing up stale status for " << intfId);
      ipIntfStatusSmDel(intfId);
   }
   if (!status) {
      ipIntfStatusSmDel(intfId);
   } else if (!ipIntfStatusSmHas(intfId)) {
      ipIntfStatusSmIs(intfId, status, root_);
   }
}

void InputSm::handleMgmtAddrVrf() {
   TRACE(trace, 8, "InputSm::handleMgmtAddrVrf()");
   root_->status()->mgmtAddrVrfIs(cliConfig_->mgmtAddrVrf());
   for (auto [intfId, sm] : ipIntfStatusSm()) sm->handleVrf();
}

// The named interface is moved to the front. Without an address of its own the next one in the
// ranking goes out, so that no choice silences the TLV.
void InputSm::handleMgmtAddrTxOption() {
   TRACE(trace, 8, "InputSm::handleMgmtAddrTxOption()");
   const MgmtAddrTxOption& option = cliConfig_->mgmtAddrTxOption();
   ManAddrPriority named;
   if (option.mgmtAddrTxMode == MgmtAddrTxMode::mgmtAddrTxModeBest) {
      root_->config()->maxTxMgmtAddrsIs(bestAddressOnly);
   } else if (option.mgmtAddrTxMode == MgmtAddrTxMode::mgmtAddrTxModeAll) {
      root_->config()->maxTxMgmtAddrsIs(allAddresses);
   } else {
      REX_ASSERT_AS(
          option.mgmtAddrTxMode == MgmtAddrTxMode::mgmtAddrTxModeIntfName,
          "cliConfig()->mgmtAddrTxOption().mgmtAddrTxMode() == Lldp::mgmtAddrTxModeIntfName()");
      root_->config()->maxTxMgmtAddrsIs(bestAddressOnly);
      intfNameToVlanIdAndManAddrPriority(Wirekit::IntfId(option.intfName), nullptr, &named);
   }
   LocalSystem& localSystem = *root_->localSystem();
   const ManAddrPriority& before = root_->sourceIntfNamePriority();
   if (before.primaryPriority) moveRank(localSystem, sourceIntfManAddrPriority, before);
   if (named.primaryPriority) moveRank(localSystem, named, sourceIntfManAddrPriority);
   root_->sourceIntfNamePriorityIs(named);
}

void InputSm::handleIp6StatusIntf(const Wirekit::IntfId& intfId) {
   handleIp6IntfStatus(intfId);
   ip6IntfStatusDel(intfId);
   if (auto row = ip6Status_->ipIntfStatus(intfId)) ip6IntfStatusIs(intfId, row, this);
}

void InputSm::handleIp6IntfStatus(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "InputSm::handleIp6IntfStatus( " << intfId << " )");
   if (intfId == Wirekit::IntfId(cliConfig_->ip6MgmtAddrIntfName())) handleIp6ManagementAddress();
}

void InputSm::handleIp6ManagementAddress() {
   TRACE(trace, 8, "InputSm::handleIp6ManagementAddress()");
   const Rex::String& name = cliConfig_->ip6MgmtAddrIntfName();
   if (name.empty()) return clearIp6ManagementAddress(root_);
   Wirekit::IntfId intfId(name);
   auto ip6IntfStatus = ip6Status_ ? ip6Status_->ipIntfStatus(intfId) : nullptr;
   if (!ip6IntfStatus) {
      TRACE(trace, 8, name << " not found");
      return clearIp6ManagementAddress(root_);
   }
   Wirekit::Ip6Addr addr = getStableIp6Addr(ip6IntfStatus);
   if (addr.isZero()) {
      TRACE(trace, 8, name << " has no ipv6 address");
      return clearIp6ManagementAddress(root_);
   }
   int32_t ifIndex = ifIndexVal(intfId, root_);
   // An address of an interface without a number ends the process in the step behind this one.
   if (ifIndex < 0) TRACE(trace, 8, name << ": status not found");
   ManagementAddress manAddr = makeIp6ManagementAddress(ifIndex, addr);
   REX_ASSERT(manAddr != nullManagementAddress);
   TRACE(trace, 8, "new ipv6 management address " << manAddr.key.stringValue());
   root_->localSystem()->ip6ManagementAddressIs(manAddr);
   removeFallbackManAddr(root_);
}

}  // namespace Lldp::Agent::Input
