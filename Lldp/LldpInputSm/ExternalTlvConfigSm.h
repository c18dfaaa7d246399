// The organisationally specific TLVs that one other agent, a provider, wants sent on ports.
//
// `tlvsByPort` records what the provider has placed. Every decision compares its wish with that
// record; the LocalPort is only written. Hence what may surprise:
// - Of two providers that use one key the last writer wins, and when either takes its TLV away, the
//   key is gone from the port: the other's record says that it is there.
// - A port that goes and comes back lacks the TLVs that the record still holds, until the provider
//   changes them, takes away the port's row, or leaves.
#pragma once

#include "Rex/HashMap.h"
#include "Rex/StateMachine.h"
#include "model/CliConfig.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class Root;

class ExternalTlvConfigSm : public Rex::StateMachine {
 public:
   // What the provider has placed on one port.
   struct UnknownOrgDefTlvList : Rex::Entity {
      REX_ENTITY(UnknownOrgDefTlvList, Rex::Entity)
      REX_KEY(Wirekit::IntfId, intfId)
      REX_ORDERED_VALUES(UnknownOrgDefTlv, unknownOrgDefTlv, UnknownOrgDefTlv::Key, key)
      REX_ENTITY_END()
      explicit UnknownOrgDefTlvList(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
   };

   ExternalTlvConfigSm(Lldp::ExternalTlvConfig::PtrConst externalTlvConfig, Rex::Ptr<Root> root);
   ~ExternalTlvConfigSm() override;

   const Lldp::ExternalTlvConfig::PtrConst& externalTlvConfig() const { return externalTlvConfig_; }

   // Makes the port agree with the provider's present wish.
   void doSyncLocalPort(const Wirekit::IntfId& intfId);

 private:
   void handleInitialized();
   void handleExternalTlvPortConfig(const Wirekit::IntfId& intfId);
   void doRemoveUnwanted(const Wirekit::IntfId& intfId);
   void doAddWanted(const Wirekit::IntfId& intfId);
   Lldp::LocalPort::Ptr localPortOf(const Wirekit::IntfId& intfId) const;
   // Both tell whether there was a port to write to.
   bool doAddTlv(const Wirekit::IntfId& intfId, const UnknownOrgDefTlv& tlv);
   bool doRemoveTlv(const Wirekit::IntfId& intfId, const UnknownOrgDefTlv& tlv);
   void doClose() override;

   UnknownOrgDefTlvList::Ptr tlvsByPort(const Wirekit::IntfId& intfId) const;
   UnknownOrgDefTlvList::Ptr tlvsByPortIs(const Wirekit::IntfId& intfId);
   void tlvsByPortDel(const Wirekit::IntfId& intfId) { tlvsByPort_.erase(intfId); }

   const Lldp::ExternalTlvConfig::PtrConst externalTlvConfig_;
   const Rex::Ptr<Root> root_;
   Rex::HashMap<Wirekit::IntfId, UnknownOrgDefTlvList::Ptr> tlvsByPort_;
};

}  // namespace Lldp::Agent::Input
