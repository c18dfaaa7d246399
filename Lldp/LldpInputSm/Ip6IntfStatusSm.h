// Watches the IPv6 addresses of one interface for InputSm, whichever interface the operator names.
#pragma once

#include "Foreign/Ip6.h"
#include "Rex/StateMachine.h"

namespace Lldp::Agent::Input {

class InputSm;

class Ip6IntfStatusSm : public Rex::StateMachine {
 public:
   Ip6IntfStatusSm(Ip6::IntfStatus::PtrConst ip6IntfStatus, InputSm* parent);
   ~Ip6IntfStatusSm() override;

   const Ip6::IntfStatus::PtrConst& ip6IntfStatus() const { return ip6IntfStatus_; }

 private:
   void handleAddr();

   const Ip6::IntfStatus::PtrConst ip6IntfStatus_;
   InputSm* const parent_;
};

}  // namespace Lldp::Agent::Input
