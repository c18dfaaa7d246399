#include "Lldp/LldpInputSm/Ip6IntfStatusSm.h"

#include "Lldp/LldpInputSm/InputSm.h"

namespace Lldp::Agent::Input {

Ip6IntfStatusSm::Ip6IntfStatusSm(Ip6::IntfStatus::PtrConst ip6IntfStatus, InputSm* parent)
    : ip6IntfStatus_(std::move(ip6IntfStatus)), parent_(parent) {
   on(ip6IntfStatus_, Ip6::IntfStatus::addrAttr, &Ip6IntfStatusSm::handleAddr);
}

Ip6IntfStatusSm::~Ip6IntfStatusSm() = default;

void Ip6IntfStatusSm::handleAddr() {
   parent_->handleIp6ManagementAddress();
}

}  // namespace Lldp::Agent::Input
