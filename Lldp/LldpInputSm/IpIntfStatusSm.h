// Publishes the IPv4 addresses of one interface as management addresses of the switch. Stands as
// long as the interface has an IPv4 status and a number.
//
// The interface's active address is
//
//   absent     there is none, or its VRF is not the one that is told
//   skipped    another interface holds it; see SkippedAddr
//   published  it has its row and its rank in LocalSystem (`lastMgmtAddrPresent`)
//
// Secondary addresses are published besides, whoever else has them.
#pragma once

#include "Foreign/Ip.h"
#include "Foreign/Ip6.h"
#include "Foreign/L3.h"
#include "Foreign/Vlan.h"
#include "Rex/OrderedMap.h"
#include "Rex/StateMachine.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class Root;

class IpIntfStatusSm : public Rex::StateMachine {
 public:
   IpIntfStatusSm(Ip::IpIntfStatus::PtrConst ipIntfStatus, Rex::Ptr<Root> root);
   ~IpIntfStatusSm() override;

   const Ip::IpIntfStatus::PtrConst& ipIntfStatus() const { return ipIntfStatus_; }
   const Ip6::IntfStatus::PtrConst& ip6IntfStatus() const { return ip6IntfStatus_; }
   const Wirekit::IntfId& intfId() const { return ipIntfStatus_->intfId(); }
   const Bridging::VlanIdOrNone& vlanId() const { return vlanId_; }
   // A port or a link aggregation group with an address of its own.
   bool isRoutedPortAddr() const { return isRoutedPortAddr_; }

   void handleActiveAddrWithMask();
   void handleVrf();

 private:
   using Addr = Wirekit::IpAddrWithMask;

   void handleInitialized();
   void handleSecondaryWithMask(const Addr& addr);
   void doMaybeDelOldMgmtAddr();
   void doMaybeAddNewMgmtAddr();
   void doAddMgmtAddr();
   void doRemoveMgmtAddr();
   void doMaybeAddSecMgmtAddr(const Addr& addr);
   void doMaybeAddSecMgmtAddrs();
   void doRemoveSecMgmtAddr(const Addr& addr);
   void doMaybeDelSecMgmtAddrs();
   void doRemoveSecondaryMgmtAddrs();
   void doClose() override;

   L3::VrfName vrf() const;
   // Whether there is an active address, in the VRF that is told.
   bool eligible() const;
   // Whether this is the interface that the operator names.
   bool isSourceIntf() const;

   const Ip::IpIntfStatus::PtrConst ipIntfStatus_;
   const Ip6::IntfStatus::PtrConst ip6IntfStatus_;  // IPv4 logic has no use for it
   const Rex::Ptr<Root> root_;
   Bridging::VlanIdOrNone vlanId_;
   ManAddrPriority lastMgmtAddrKeyPriority_;  // of the active address
   bool lastMgmtAddrPresent_ = false;
   ManagementAddress lastMgmtAddr_;  // the last one considered, skipped or not
   L3::VrfName lastMgmtAddrVrf_;     // that it was added in
   bool isRoutedPortAddr_ = false;
   Rex::OrderedMap<Addr, ManagementAddress> secondaryMgmtAddr_;
   Rex::OrderedMap<Addr, ManAddrPriority> secondaryMgmtAddrKeyPriority_;
   const Rex::Ptr<const L3::Intf::Status> l3Status_;  // that of the start, for good
   bool givingUp_ = false;                            // doRemoveMgmtAddr is running
};

}  // namespace Lldp::Agent::Input
