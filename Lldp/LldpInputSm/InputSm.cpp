#include "Lldp/LldpInputSm/InputSm.h"

#include <algorithm>

#include "Lldp/LldpInputSm/Lag.h"
#include "Lldp/LldpInputSm/ManAddr.h"
#include "Lldp/LldpInputSm/NetworkPolicy.h"
#include "Lldp/LldpInputSm/PortConfigSync.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"
#include "Rex/Trace.h"
#include "Wirekit/MgmtIntfId.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

// The router's bit of the System Capabilities TLV (IEEE Std 802.1AB-2016, table 8-4).
constexpr uint16_t routerCapability = 0x10;
constexpr uint32_t maxTxDelay = 2;  // seconds

// A text's first octets, as many as a TLV holds. Where the cut falls is not looked at.
BoundedString255 cut(const Rex::String& text) {
   return BoundedString255(text.substr(0, BoundedString255::maxBytes));
}

// What the operator's selection of TLVs gives every port.
struct TlvSelection {
   EnabledTlvs enabledTlvs;
   bool mgmtAddrTxEnable = false;
   bool portVlanTxEnable = false;
   Dot3EnabledTlvs dot3EnabledTlvs;
   TiaEnabledTlvs tiaEnabledTlvs;

   explicit TlvSelection(const CliConfig::PtrConst& cliConfig) {
      getEnabledTlvValues(cliConfig, enabledTlvs, mgmtAddrTxEnable, portVlanTxEnable,
                          dot3EnabledTlvs, tiaEnabledTlvs);
   }
   void write(PortConfig& portConfig) const {
      portConfig.enabledTlvsIs(enabledTlvs);
      portConfig.mgmtAddrTxEnableIs(mgmtAddrTxEnable);
      portConfig.portVlanTxEnableIs(portVlanTxEnable);
      portConfig.dot3EnabledTlvsIs(dot3EnabledTlvs);
      portConfig.tiaEnabledTlvsIs(tiaEnabledTlvs);
   }
};

}  // namespace

InputSm::InputSm(Interface::AllEthPhyIntfConfigDir::PtrConst ethPhyIntfConfigDir,
                 Bridging::Config::PtrConst bridgingConfig,
                 Bridging::HwCapabilities::PtrConst bridgingHwCapabilities,
                 Ip::Status::PtrConst ipStatus, Ip6::Status::PtrConst ip6Status,
                 Routing::Config::PtrConst routingConfig, EntityMib::SysDescr::PtrConst sysDescr,
                 Rex::Dir::PtrConst externalTlvs, System::NetStatus::PtrConst netStatus,
                 Lldp::CliConfig::PtrConst cliConfig,
                 Interface::AllIntfStatusDir::PtrConst allIntfStatusDir, Rex::Ptr<Root> root)
    : ethPhyIntfConfigDir_(std::move(ethPhyIntfConfigDir)),
      bridgingConfig_(std::move(bridgingConfig)),
      bridgingHwCapabilities_(std::move(bridgingHwCapabilities)),
      ipStatus_(std::move(ipStatus)),
      ip6Status_(std::move(ip6Status)),
      routingConfig_(std::move(routingConfig)),
      sysDescr_(std::move(sysDescr)),
      externalTlvs_(std::move(externalTlvs)),
      netStatus_(std::move(netStatus)),
      cliConfig_(std::move(cliConfig)),
      allIntfStatusDir_(std::move(allIntfStatusDir)),
      root_(std::move(root)) {
   on(ethPhyIntfConfigDir_, Interface::AllEthPhyIntfConfigDir::intfConfigAttr,
      &InputSm::handleIntfConfig);
   on(bridgingConfig_, Bridging::Config::switchIntfConfigAttr, &InputSm::handleSwitchIntfConfig);
   on(bridgingConfig_, Bridging::Config::bridgeMacAddrAttr, &InputSm::handleBridgeMacAddr);
   on(bridgingHwCapabilities_, Bridging::HwCapabilities::maxFrameSizeAttr,
      &InputSm::handleBridgingMaxFrameSize);
   on(routingConfig_, Routing::Config::routingAttr, &InputSm::handleRouting);
   on(sysDescr_, EntityMib::SysDescr::descriptionAttr, &InputSm::handleDescription);
   on(externalTlvs_, Rex::Dir::entityPtrAttr, &InputSm::handleExternalTlvsEntityPtr);
   on(netStatus_, System::NetStatus::hostnameAttr, &InputSm::handleHostnameOrDomainName);
   on(netStatus_, System::NetStatus::domainNameAttr, &InputSm::handleHostnameOrDomainName);
   on(cliConfig_, CliConfig::messageTxIntervalAttr, &InputSm::handleMessageTxInterval);
   on(cliConfig_, CliConfig::messageTxHoldTimeAttr, &InputSm::handleMessageTxHoldTime);
   on(cliConfig_, CliConfig::reinitDelayAttr, &InputSm::handleReinitDelay);
   on(cliConfig_, CliConfig::tlvPortDescAttr, &InputSm::handleEnabledTlvs);
   on(cliConfig_, CliConfig::tlvSysNameAttr, &InputSm::handleEnabledTlvs);
   on(cliConfig_, CliConfig::tlvSysDescAttr, &InputSm::handleEnabledTlvs);
   on(cliConfig_, CliConfig::tlvSysCapAttr, &InputSm::handleEnabledTlvs);
   on(cliConfig_, CliConfig::tlvMgmtAddrAttr, &InputSm::handleEnabledTlvs);
   on(cliConfig_, CliConfig::tlvPortVlanAttr, &InputSm::handleEnabledTlvs);
   on(cliConfig_, CliConfig::tlvLinkAggregationAttr, &InputSm::handleEnabledTlvs);
   on(cliConfig_, CliConfig::tlvMaximumFrameSizeAttr, &InputSm::handleEnabledTlvs);
   on(cliConfig_, CliConfig::tlvPowerViaMdiAttr, &InputSm::handleEnabledTlvs);
   on(cliConfig_, CliConfig::tlvNetworkPolicyAttr, &InputSm::handleEnabledTlvs);
   on(cliConfig_, CliConfig::enabledAttr, &InputSm::handleEnabled);
   on(cliConfig_, CliConfig::cliPortConfigAttr, &InputSm::handleCliPortConfig);
   on(cliConfig_, CliConfig::rxTaggedPacketsDropAttr, &InputSm::handleRxTaggedPacketsDrop);
   watchAddresses();

   handleInitialized();
}

InputSm::~InputSm() = default;

// One full pass over everything that stands. The frame size takes no part: a port gets it when it
// is made.
void InputSm::handleInitialized() {
   TRACE(trace, 8, "InputSm::handleInitialized()");
   if (ethPhyIntfConfigDir_) {
      for (auto [intfId, row] : ethPhyIntfConfigDir_->intfConfig()) handleIntfConfig(intfId);
   }
   handleBridgeMacAddr();
   for (auto [intfId, row] : bridgingConfig_->switchIntfConfig()) handleSwitchIntfConfig(intfId);
   handleMgmtAddrVrf();
   if (ipStatus_) {
      for (auto [intfId, row] : ipStatus_->ipIntfStatus()) handleIntfStatusOrIpIntfStatus(intfId);
   }
   handleRouting();
   handleDescription();
   if (externalTlvs_) {
      for (auto [name, entity] : externalTlvs_->entityPtr()) handleExternalTlvsEntityPtr(name);
   }
   handleHostnameOrDomainName();
   handleMessageTxInterval();
   handleMessageTxHoldTime();
   handleReinitDelay();
   handleEnabledTlvs();
   handleMgmtAddrTxOption();
   handleRxTaggedPacketsDrop();
   handleEnabled();
}

void InputSm::handleIntfConfig(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "InputSm::handleIntfConfig( " << intfId << " )");
   if (auto row = ethPhyIntfConfigDir_->intfConfig(intfId)) {
      auto standing = ethPhyIntfConfigSm(intfId);
      if (standing && standing->ethPhyIntfConfig() == row) return;  // adopted before its report
      REX_ASSERT_AS(!ethPhyIntfConfigSmHas(intfId), "!ethPhyIntfConfigSmHas( intfId )");
      ethPhyIntfConfigSmIs(intfId, row, root_);
   } else {
      REX_ASSERT_AS(ethPhyIntfConfigSmHas(intfId), "ethPhyIntfConfigSmHas( intfId )");
      ethPhyIntfConfigSmDel(intfId);
   }
}

void InputSm::handleSwitchIntfConfig(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "InputSm::handleSwitchIntfConfig( " << intfId << " )");
   if (auto row = bridgingConfig_->switchIntfConfig(intfId)) {
      auto standing = switchIntfConfigSm(intfId);
      if (standing && standing->switchIntfConfig() == row) return;  // adopted before its report
      REX_ASSERT_AS(!switchIntfConfigSmHas(intfId), "!switchIntfConfigSmHas( intfId )");
      switchIntfConfigSmIs(intfId, row, root_);
   } else {
      REX_ASSERT_AS(switchIntfConfigSmHas(intfId), "switchIntfConfigSmHas( intfId )");
      switchIntfConfigSmDel(intfId);
   }
}

// The chassis is always told by the bridge's MAC address.
void InputSm::handleBridgeMacAddr() {
   TRACE(trace, 8, "InputSm::handleBridgeMacAddr()");
   const Wirekit::EthAddr& addr = bridgingConfig_->bridgeMacAddr();
   std::string octets;
   for (size_t i = 0; i < Wirekit::EthAddr::size; ++i) octets += static_cast<char>(addr.byte(i));
   root_->localSystem()->chassisIdentifierIs(
       {ChassisIdSubtype::macAddress, ChassisId(Rex::String(octets))});
   replaceFallbackManAddr(addr, root_);
}

// Management ports follow their own MTU instead.
void InputSm::handleBridgingMaxFrameSize() {
   TRACE(trace, 8, "InputSm::handleBridgingMaxFrameSize()");
   MaximumFrameSizeInfo info{bridgingHwCapabilities_->maxFrameSize()};
   for (auto [intfId, localPort] : root_->localSystem()->localPort()) {
      if (!Wirekit::MgmtIntfId::isMgmtIntfId(intfId)) localPort->maximumFrameSizeInfoIs(info);
   }
}

// The switch is a router when routing is configured, whether or not an interface is routed.
void InputSm::handleRouting() {
   TRACE(trace, 8, "InputSm::handleRouting()");
   const auto& localSystem = root_->localSystem();
   uint16_t enabled = localSystem->sysCapEnabled().value();
   if (routingConfig_->routing()) {
      enabled |= routerCapability;
   } else {
      enabled &= static_cast<uint16_t>(~routerCapability);
   }
   localSystem->sysCapEnabledIs(enabled);
}

void InputSm::handleDescription() {
   TRACE(trace, 8, "InputSm::handleDescription()");
   root_->localSystem()->sysDescIs(cut(sysDescr_->description()));
}

// An entity of another type is passed over.
void InputSm::handleExternalTlvsEntityPtr(const Rex::String& name) {
   TRACE(trace, 8, "InputSm::handleExternalTlvsEntityPtr( " << name << " )");
   auto entity = externalTlvs_->entityPtr(name);
   if (!entity) {
      externalTlvConfigSmDel(name);
   } else if (auto provider = Rex::dynamicPtr<const ExternalTlvConfig>(entity)) {
      auto standing = externalTlvConfigSm(name);
      if (standing && standing->externalTlvConfig() == provider)
         return;  // adopted before its report
      REX_ASSERT_AS(!externalTlvConfigSmHas(name), "!externalTlvConfigSmHas( name )");
      externalTlvConfigSmIs(name, provider, root_);
   }
}

// The host name is not examined: an empty one with a domain gives a name that begins with the dot,
// and a long domain loses its tail.
void InputSm::handleHostnameOrDomainName() {
   TRACE(trace, 8, "InputSm::handleHostnameOrDomainName()");
   Rex::String name = netStatus_->hostname();
   if (!netStatus_->domainName().empty()) {
      name += Rex::String(".") + netStatus_->domainName();
   }
   root_->localSystem()->sysNameIs(cut(name));
}

// The engine relies on an interval that is not shorter than the delay, so the interval comes first.
void InputSm::handleMessageTxInterval() {
   TRACE(trace, 8, "InputSm::handleMessageTxInterval()");
   const auto& config = root_->config();
   config->messageTxIntervalIs(cliConfig_->messageTxInterval());
   config->txDelayIs(std::min(cliConfig_->messageTxInterval(), maxTxDelay));
}

void InputSm::handleMessageTxHoldTime() {
   TRACE(trace, 8, "InputSm::handleMessageTxHoldTime()");
   root_->config()->messageTxHoldTimeIs(cliConfig_->messageTxHoldTime());
}

void InputSm::handleReinitDelay() {
   TRACE(trace, 8, "InputSm::handleReinitDelay()");
   root_->config()->reinitDelayIs(cliConfig_->reinitDelay());
}

void InputSm::handleRxTaggedPacketsDrop() {
   TRACE(trace, 8, "InputSm::handleRxTaggedPacketsDrop()");
   root_->config()->rxTaggedPacketsDropIs(cliConfig_->rxTaggedPacketsDrop());
}

void InputSm::handleEnabledTlvs() {
   TRACE(trace, 8, "InputSm::handleEnabledTlvs()");
   TlvSelection selection(cliConfig_);
   for (auto [intfId, portConfig] : root_->config()->portConfig()) selection.write(*portConfig);
}

// No port comes or goes here: the switch moves the ports' status alone.
void InputSm::handleEnabled() {
   TRACE(trace, 8, "InputSm::handleEnabled()");
   if (cliConfig_->enabled()) {
      for (auto [intfId, row] : cliConfig_->cliPortConfig()) handleCliPortConfig(intfId);
   } else {
      for (auto [intfId, sm] : cliPortConfigSm()) cliPortConfigSmDel(intfId);
   }
   for (auto [intfId, portConfig] : root_->config()->portConfig()) {
      doSyncPortConfigAdminStatus(portConfig);
      doSyncPortConfigNetworkPolicy(portConfig);
   }
}

void InputSm::handleCliPortConfig(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "InputSm::handleCliPortConfig( " << intfId << " )");
   if (!cliConfig_->enabled()) return;
   if (auto row = cliConfig_->cliPortConfig(intfId)) {
      auto standing = cliPortConfigSm(intfId);
      if (standing && standing->cliPortConfig() == row) return;  // adopted before its report
      REX_ASSERT_AS(!cliPortConfigSmHas(intfId), "!cliPortConfigSmHas( intfId )");
      cliPortConfigSmIs(intfId, row, bridgingConfig_, root_);
   } else {
      REX_ASSERT_AS(cliPortConfigSmHas(intfId), "cliPortConfigSmHas( intfId )");
      cliPortConfigSmDel(intfId);
   }
}

void InputSm::doSyncPortConfig(const PortConfig::Ptr& portConfig) {
   TlvSelection(cliConfig_).write(*portConfig);
   doSyncPortConfigAdminStatus(portConfig);
   doSyncPortConfigNetworkPolicy(portConfig);
}

void InputSm::doSyncPortConfigAdminStatus(const PortConfig::Ptr& portConfig) {
   AdminStatus requested = AdminStatus::txAndRx;
   if (!cliConfig_->enabled()) {
      requested = AdminStatus::disabled;
   } else if (auto sm = cliPortConfigSm(portConfig->intfId())) {
      requested = sm->cliPortConfig()->adminStatus();
   }
   portAdminStatusIs(portConfig, requested, bridgingConfig_, root_);
}

void InputSm::doSyncPortConfigNetworkPolicy(const PortConfig::Ptr& portConfig) {
   const Wirekit::IntfId& intfId = portConfig->intfId();
   auto sm = cliConfig_->enabled() ? cliPortConfigSm(intfId) : nullptr;
   portNetworkPolicyConfigIs(portConfig, sm ? sm->cliPortConfig() : nullptr,
                             root_->localSystem()->localPort(intfId));
}

void InputSm::doSyncLocalPort(const LocalPort::Ptr& localPort) {
   const Wirekit::IntfId& intfId = localPort->intfId();
   if (auto sm = switchIntfConfigSm(governingIntf(intfId, root_))) sm->doSyncLocalPort(localPort);
   for (auto [name, sm] : externalTlvConfigSm()) sm->doSyncLocalPort(intfId);
}

void InputSm::doNotifyPortLagChange(const Wirekit::IntfId& portId, const Wirekit::IntfId& oldLag,
                                    const Wirekit::IntfId& newLag) {
   TRACE(trace, 8, "InputSm::doNotifyPortLagChange( " << portId << " )");
   if (auto sm = switchIntfConfigSm(governingIntf(portId, oldLag))) sm->doRemovePort(portId);
   if (auto sm = switchIntfConfigSm(governingIntf(portId, newLag))) sm->doAddPort(portId);
}

// What was written into Config and LocalSystem stays.
void InputSm::doClose() {
   TRACE(trace, 8, "InputSm::doClose()");
   for (auto [intfId, sm] : ipIntfStatusSm()) ipIntfStatusSmDel(intfId);
   for (auto [intfId, sm] : switchIntfConfigSm()) switchIntfConfigSmDel(intfId);
   for (auto [name, sm] : externalTlvConfigSm()) externalTlvConfigSmDel(name);
   for (auto [intfId, sm] : ethPhyIntfConfigSm()) ethPhyIntfConfigSmDel(intfId);
   for (auto [intfId, sm] : cliPortConfigSm()) cliPortConfigSmDel(intfId);
}

}  // namespace Lldp::Agent::Input
