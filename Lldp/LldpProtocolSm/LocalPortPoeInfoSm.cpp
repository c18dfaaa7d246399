#include "Lldp/LldpProtocolSm/LocalPortPoeInfoSm.h"

#include "Lldp/LldpProtocolSm/Root.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Protocol {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

LocalPortPoeInfoSm::LocalPortPoeInfoSm(Lldp::LocalPortPoeInfo::PtrConst localPortPoeInfo,
                                       const Wirekit::IntfId& intfId, Rex::Ptr<Root> root)
    : localPortPoeInfo_(std::move(localPortPoeInfo)), intfId_(intfId), root_(std::move(root)) {
   on(localPortPoeInfo_, LocalPortPoeInfo::poePortStatusAttr,
      &LocalPortPoeInfoSm::handleAttrsChanged);
}

LocalPortPoeInfoSm::~LocalPortPoeInfoSm() = default;

void LocalPortPoeInfoSm::handleAttrsChanged() {
   TRACE(trace, 8, "LocalPortPoeInfoSm::handleAttrsChanged()");
   handleLocalPortAttrsChanged(root(), intfId());
}

}  // namespace Lldp::Agent::Protocol
