#include "Lldp/LldpInputSm/PowerRequest.h"

#include "RingLog/RingLog.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

constexpr uint32_t shortForm = 0;

bool isPse(uint32_t powerType) {
   return powerType == 0 || powerType == 2;
}

}  // namespace

bool shouldPoeDataFromPowerViaMdiBePublished(const Lldp::RemoteSystem& remoteSystem) {
   if (!remoteSystem.powerViaMdiTlvReceived()) {
      DualLog(trace, 9, "PowerViaMdiInfo not received");
      return false;
   }
   const PowerViaMdiInfo& info = remoteSystem.powerViaMdiInfo();
   if (info.tlvFormat == shortForm) {
      DualLog(trace, 9, "Ignoring PowerViaMdiInfo because it was received but @ 802.3af");
      return false;
   }
   if (isPse(info.powerType)) {
      DualLog(trace, 9, "Ignoring PowerViaMdiInfo because it was received from PSE");
      return false;
   }
   return true;
}

Lldp::RemoteSystem::PtrConst findRemoteSystemWithPowerRequest(
    Lldp::PortStatus::PtrConst portStatus) {
   std::vector<Lldp::RemoteSystem::PtrConst> asking;
   for (auto [index, remoteSystem] : portStatus->remoteSystem()) {
      if (shouldPoeDataFromPowerViaMdiBePublished(*remoteSystem)) asking.push_back(remoteSystem);
   }
   return chooseRemoteSystem(portStatus->intfId(), asking);
}

Lldp::RemoteSystem::PtrConst chooseRemoteSystem(
    const Wirekit::IntfId& intfId, const std::vector<Lldp::RemoteSystem::PtrConst>& asking) {
   if (asking.empty()) {
      DualLog(trace, 8, intfId << ": could not find RemoteSystem with power request");
      return nullptr;
   }
   Lldp::RemoteSystem::PtrConst best = asking.front();
   if (asking.size() == 1) {
      DualLog(trace, 8,
              intfId << ": found RemoteSystem with power request from "
                     << best->chassisId().stringValue());
      return best;
   }
   DualLog(trace, 8,
           intfId << Rex::format(": found %d RemoteSystems, choosing best one",
                                 static_cast<int>(asking.size())));
   for (const auto& candidate : asking) {
      if (candidate->ethAddr() != best->ethAddr()) {
         DualLog(trace, 1,
                 intfId << ": found 2 RemoteSystems with requested power "
                        << " from different src addresses ( " << best->ethAddr().stringValue()
                        << " and " << candidate->ethAddr().stringValue()
                        << " ) => can not choose one");
         return nullptr;
      }
      if (candidate->lastRefreshTime() > best->lastRefreshTime()) {
         DualLog(trace, 8,
                 intfId << ": found more recent RemoteSystem from "
                        << candidate->ethAddr().stringValue() << " => replacing "
                        << best->chassisId().stringValue() << " with "
                        << candidate->chassisId().stringValue());
         best = candidate;
      }
   }
   return best;
}

}  // namespace Lldp::Agent::Input
