// What the input machines share: the entities that they fill, and one another. Each machine gets
// the root and reaches its neighbours through it.
#pragma once

#include "Foreign/Bridging.h"
#include "Interface/IntfStatus.h"
#include "Interface/PamDesiredIntfDir.h"
#include "Lldp/LldpInputSm/ActiveEthIntfStatusDirSm.h"
#include "Lldp/LldpInputSm/IdentityDot1xStatusSm.h"
#include "Lldp/LldpInputSm/InputSm.h"
#include "Lldp/LldpInputSm/NetworkPolicySm.h"
#include "Lldp/LldpInputSm/PoeSm.h"
#include "Lldp/LldpInputSm/RemTablesClearRequestSm.h"
#include "Lldp/LldpInputSm/SkippedAddr.h"
#include "Lldp/LldpInputSm/StandbyEthIntfStatusDirSm.h"
#include "Lldp/LldpNbrClassificationSm/NbrClassificationSm.h"
#include "Rex/Entity.h"
#include "Rex/Owned.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

namespace Lldp::Agent::Input {

class Root : public Rex::Entity {
 public:
   // The link aggregation groups that a port is a member of. There are two for a moment, while the
   // port moves from one to the other. Stands only while there is at least one.
   class Lags : public Rex::Entity {
      REX_ENTITY(Lags, Rex::Entity)
      REX_KEY(Wirekit::IntfId, intf)
      REX_MAPPING(Wirekit::IntfId, bool, lagId)
      REX_ENTITY_END()
      explicit Lags(const Wirekit::IntfId& intf) : intf_(intf) {}
   };

   REX_ENTITY(Root, Rex::Entity)
   REX_KEY(Rex::String, name)
   REX_ATTRIBUTE(Lldp::LocalSystem::Ptr, localSystem)
   REX_ATTRIBUTE(Lldp::Config::Ptr, config)
   REX_ATTRIBUTE(Lldp::Status::Ptr, status)
   REX_ATTRIBUTE(Lldp::RemTablesStatus::Ptr, remTablesStatus)
   REX_ATTRIBUTE(Bridging::Config::PtrConst, bridgingConfig)
   REX_ATTRIBUTE(Interface::AllIntfStatusDir::PtrConst, allIntfStatusDir)
   REX_ATTRIBUTE(Interface::PamDesiredIntfDir::Ptr, desiredIntfDir)
   REX_CHILDREN(Lags, portToLagsMap, Wirekit::IntfId)
   REX_CHILDREN(SkippedAddr, skippedAddr, ManagementAddress::Key)
   REX_ATTRIBUTE(ManAddrPriority, sourceIntfNamePriority)  // of the interface the operator names
   REX_ATTRIBUTE(bool, fallbackManagementAddressKeyPresent)
   REX_ATTRIBUTE(ManagementAddress::Key, fallbackManagementAddressKey)
   REX_ENTITY_END()

   explicit Root(const Rex::String& name) : name_(name) {}
   ~Root() override;

   // The interface's number, or -1 for one that nobody numbered.
   int32_t ifIndex(const Interface::IntfStatus::PtrConst& intfStatus) const;

   // An active supervisor alone has these.
   REX_MACHINE(PoeSm, poeSm)
   REX_MACHINE(NetworkPolicySm, networkPolicySm)
   REX_MACHINE(InputSm, inputSm)
   REX_MACHINE(NbrClassification::NbrClassificationSm, nbrClassificationSm)
   // At most one of the two stands, as the supervisor is active or not.
   REX_MACHINE(ActiveEthIntfStatusDirSm, activeEthIntfStatusDirSm)
   REX_MACHINE(StandbyEthIntfStatusDirSm, standbyEthIntfStatusDirSm)
   REX_MACHINE(RemTablesClearRequestSm, remTablesClearRequestSm)
   // Stands before any port machine does.
   REX_MACHINE(IdentityDot1xStatusSm, identityDot1xStatusSm)
};

// The interface's number; -1 for an interface without status or without a number.
int32_t ifIndexVal(const Wirekit::IntfId& intfId, const Rex::Ptr<Root>& root);

Root::Ptr rootFactory(const Rex::String& name);

}  // namespace Lldp::Agent::Input
