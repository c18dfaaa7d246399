// Descriptions of the entities, and the reads that derive from them.
#include "Rex/Register.h"
#include "model/CliConfig.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

REX_REGISTER(Lldp::CliConfig)
REX_REGISTER(Lldp::CliPortConfig)
REX_REGISTER(Lldp::ExternalTlvPortConfig)
REX_REGISTER(Lldp::ExternalTlvConfig)
REX_REGISTER(Lldp::RemTablesCliConfig)
REX_REGISTER(Lldp::Config)
REX_REGISTER(Lldp::PortConfig)
REX_REGISTER(Lldp::LocalSystem)
REX_REGISTER(Lldp::LocalPort)
REX_REGISTER(Lldp::LocalPortPoeInfo)
REX_REGISTER(Lldp::RemoteSystem)
REX_REGISTER(Lldp::PortStatus)
REX_REGISTER(Lldp::StatusBase)
REX_REGISTER(Lldp::Status)
REX_REGISTER(Lldp::AllStatus)
REX_REGISTER(Lldp::RemTablesStatus)

namespace Lldp {
namespace {

template <class Has>
bool any(const PortStatus& port, Has has) {
   for (auto [index, neighbour] : port.remoteSystem()) {
      if (has(*neighbour)) return true;
   }
   return false;
}

}  // namespace

bool PortStatus::anyLldpMedReceived() const {
   return any(*this, [](const RemoteSystem& n) { return n.medCapabilitiesTlvReceived(); });
}

bool PortStatus::powerViaMdiTlvReceived() const {
   return any(*this, [](const RemoteSystem& n) { return n.powerViaMdiTlvReceived(); });
}

bool PortStatus::networkPolicyTlvReceived() const {
   return any(*this, [](const RemoteSystem& n) { return !n.networkPolicyTlv().empty(); });
}

}  // namespace Lldp
