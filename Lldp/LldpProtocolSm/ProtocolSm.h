// The registry of ports. A port has an LldpPamSm exactly while it has packet access, a
// configuration, a status, a physical interface status and a local port.
#pragma once

#include "Interface/EthDevPamCollection.h"
#include "Interface/EthPhyIntfStatus.h"
#include "Lldp/LldpProtocolSm/LldpPamSm.h"
#include "Lldp/LldpProtocolSm/LocalPortSm.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

namespace Lldp::Agent::Protocol {

class Root;

class ProtocolSm : public Rex::StateMachine {
 public:
   ProtocolSm(Interface::EthDevPamCollection::Ptr pamCollection,
              Lldp::LocalSystem::PtrConst localSystem, Rex::Ptr<Root> root,
              Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir,
              Lldp::Config::PtrConst config, Lldp::Status::PtrConst status);
   ~ProtocolSm() override;

   const Interface::EthDevPamCollection::Ptr& pamCollection() const { return pamCollection_; }
   const Lldp::LocalSystem::PtrConst& localSystem() const { return localSystem_; }
   const Rex::Ptr<Root>& root() const { return root_; }
   const Interface::AllEthPhyIntfStatusDir::PtrConst& ethPhyIntfStatusDir() const {
      return ethPhyIntfStatusDir_;
   }
   const Lldp::Config::PtrConst& config() const { return config_; }
   const Lldp::Status::PtrConst& status() const { return status_; }

   void handlePam(const Wirekit::IntfId& intfId);
   void handleLocalPort(const Wirekit::IntfId& intfId);
   void handleLocalSystemAttrs();

 private:
   void handleInitialized();
   void doClose() override;

   const Interface::EthDevPamCollection::Ptr pamCollection_;
   const Lldp::LocalSystem::PtrConst localSystem_;
   const Rex::Ptr<Root> root_;
   const Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir_;
   const Lldp::Config::PtrConst config_;
   const Lldp::Status::PtrConst status_;

   REX_MACHINES(LldpPamSm, lldpPamSm, Wirekit::IntfId)
   REX_MACHINES(LocalPortSm, localPortSm, Wirekit::IntfId)
};

}  // namespace Lldp::Agent::Protocol
