#include "Lldp/LldpInputSm/ExternalTlvConfigSm.h"

#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"
#include "Rex/Register.h"
#include "Rex/Trace.h"

REX_REGISTER(Lldp::Agent::Input::ExternalTlvConfigSm::UnknownOrgDefTlvList)

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

ExternalTlvConfigSm::ExternalTlvConfigSm(Lldp::ExternalTlvConfig::PtrConst externalTlvConfig,
                                         Rex::Ptr<Root> root)
    : externalTlvConfig_(std::move(externalTlvConfig)), root_(std::move(root)) {
   on(externalTlvConfig_, ExternalTlvConfig::externalTlvPortConfigAttr,
      &ExternalTlvConfigSm::handleExternalTlvPortConfig);

   handleInitialized();
}

ExternalTlvConfigSm::~ExternalTlvConfigSm() = default;

void ExternalTlvConfigSm::handleInitialized() {
   TRACE(trace, 8, "ExternalTlvConfigSm::handleInitialized()");
   for (auto [intfId, row] : externalTlvConfig_->externalTlvPortConfig()) {
      handleExternalTlvPortConfig(intfId);
   }
}

void ExternalTlvConfigSm::handleExternalTlvPortConfig(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "ExternalTlvConfigSm::handleExternalTlvPortConfig( " << intfId << " )");
   doSyncLocalPort(intfId);
}

void ExternalTlvConfigSm::doSyncLocalPort(const Wirekit::IntfId& intfId) {
   doRemoveUnwanted(intfId);
   doAddWanted(intfId);
}

// A TLV whose text changed stays here; it is overwritten in its place.
void ExternalTlvConfigSm::doRemoveUnwanted(const Wirekit::IntfId& intfId) {
   auto placed = tlvsByPort(intfId);
   if (!placed) return;
   auto wish = externalTlvConfig_->externalTlvPortConfig(intfId);
   for (auto [key, tlv] : placed->unknownOrgDefTlv()) {
      if (wish && wish->tlvHas(key)) continue;
      if (doRemoveTlv(intfId, tlv)) placed->unknownOrgDefTlvDel(key);
   }
}

// What could not be placed, for want of the port, is tried again when the port comes.
void ExternalTlvConfigSm::doAddWanted(const Wirekit::IntfId& intfId) {
   auto wish = externalTlvConfig_->externalTlvPortConfig(intfId);
   if (!wish) {
      tlvsByPortDel(intfId);
      return;
   }
   auto placed = tlvsByPortIs(intfId);
   for (auto [key, tlv] : wish->tlv()) {
      if (placed->unknownOrgDefTlvHas(key) &&
          placed->unknownOrgDefTlv(key).orgDefInfo == tlv.orgDefInfo) {
         continue;
      }
      if (doAddTlv(intfId, tlv)) placed->unknownOrgDefTlvIs(tlv);
   }
}

LocalPort::Ptr ExternalTlvConfigSm::localPortOf(const Wirekit::IntfId& intfId) const {
   auto localPort = root_->localSystem()->localPort(intfId);
   if (!localPort) TRACE(trace, 4, "Localport does not exist. Returning");
   return localPort;
}

bool ExternalTlvConfigSm::doAddTlv(const Wirekit::IntfId& intfId, const UnknownOrgDefTlv& tlv) {
   auto localPort = localPortOf(intfId);
   if (!localPort) return false;
   // Two providers that ask for the very same TLV on one port end the process.
   REX_ASSERT_AS(!localPort->unknownOrgDefTlvHas(tlv.key) ||
                     localPort->unknownOrgDefTlv(tlv.key).orgDefInfo != tlv.orgDefInfo,
                 "!localPort->unknownOrgDefTlv( tlv.key() ) || "
                 "localPort->unknownOrgDefTlv( tlv.key() ).orgDefInfo() != tlv.orgDefInfo()");
   localPort->unknownOrgDefTlvIs(tlv);
   return true;
}

bool ExternalTlvConfigSm::doRemoveTlv(const Wirekit::IntfId& intfId, const UnknownOrgDefTlv& tlv) {
   auto localPort = localPortOf(intfId);
   if (!localPort) return false;
   localPort->unknownOrgDefTlvDel(tlv.key);
   return true;
}

ExternalTlvConfigSm::UnknownOrgDefTlvList::Ptr ExternalTlvConfigSm::tlvsByPort(
    const Wirekit::IntfId& intfId) const {
   const auto* found = tlvsByPort_.find(intfId);
   return found ? *found : nullptr;
}

ExternalTlvConfigSm::UnknownOrgDefTlvList::Ptr ExternalTlvConfigSm::tlvsByPortIs(
    const Wirekit::IntfId& intfId) {
   auto list = tlvsByPort(intfId);
   if (!list) {
      list = Rex::make<UnknownOrgDefTlvList>(intfId);
      tlvsByPort_.insert(intfId, list);
   }
   return list;
}

void ExternalTlvConfigSm::doClose() {
   TRACE(trace, 8, "ExternalTlvConfigSm::doClose()");
   for (auto [intfId, placed] : tlvsByPort_) {
      for (auto [key, tlv] : placed->unknownOrgDefTlv()) doRemoveTlv(intfId, tlv);
      tlvsByPortDel(intfId);
   }
}

}  // namespace Lldp::Agent::Input
