#include "Lldp/PoeUtils.h"

#include <algorithm>

#include "Lldp/LldpProtocol/Octets.h"

namespace Lldp::Agent::PoeUtils {
namespace {

using Environment::Power::poePortDelivering;
using Environment::Power::poePortDisabled;
using Environment::Power::poePortFault;
using PortStatus = Environment::Power::PoePortStatus::PortStatus;

constexpr int shortFormLen = 3;
constexpr int extendedFormLen = 8;

// MDI power support.
constexpr uint8_t portClassPse = 0x01;
constexpr uint8_t psePowerSupported = 0x02;
constexpr uint8_t psePowerEnabled = 0x04;

// In tenths of a watt, at the device: what a type 1 PSE feeds at most, and the field's largest.
constexpr uint32_t mostOfType1 = 130;
constexpr uint32_t mostPower = 999;

enum PowerType : uint8_t { type2Pse = 0, type1Pse = 2 };
constexpr uint8_t primarySource = 1;

uint16_t powerField(uint32_t power) {
   return static_cast<uint16_t>(std::min(power, mostPower));
}

void putShortForm(char* info, const PortStatus& port, bool enabled) {
   uint8_t support = portClassPse | psePowerSupported | (enabled ? psePowerEnabled : 0);
   info[0] = static_cast<char>(support);
   info[1] = static_cast<char>(port.powerPair == Environment::Power::poePowerPairSpare ? 2 : 1);
   info[2] = static_cast<char>(std::min<int>(port.powerClass, 4) + 1);
}

// A PSE repeats what the device asks for, so that the device sees which request was answered. Its
// type follows from what it would give at most, whether or not it feeds now.
int putExtendedForm(char* info, const PortStatus& port, uint16_t requested, uint32_t offered,
                    uint32_t allocated) {
   uint8_t type = offered > mostOfType1 ? type2Pse : type1Pse;
   info[3] = static_cast<char>(type << 6 | primarySource << 4 | (port.priority & 0x03));
   put16(info + 4, powerField(requested));
   put16(info + 6, powerField(allocated));
   return extendedFormLen;
}

uint16_t requestOf(const Lldp::RemoteSystem::PtrConst& remoteSystem) {
   return remoteSystem ? remoteSystem->powerViaMdiInfo().pdRequestedPower : uint16_t{0};
}

}  // namespace

int buildPowerViaMdiTlv(char* info, const Lldp::LocalPortPoeInfo& poeInfo, bool tlvReceived) {
   const PortStatus& port = poeInfo.poePortStatus();
   putShortForm(info, port, port.state != poePortDisabled && port.state != poePortFault);
   if (!tlvReceived) return shortFormLen;
   // What is allocated while nothing is fed would be a promise that nobody keeps.
   uint32_t allocated = port.state == poePortDelivering ? port.allowedPower : 0;
   return putExtendedForm(info, port, requestOf(poeInfo.remoteSystem()), port.allowedPower,
                          allocated);
}

int maybeBuildFallbackPowerViaMdiTlv(char* info, const Lldp::LocalPortPoeInfo& poeInfo,
                                     bool tlvReceived, Rex::Ptr<const Lldp::PortConfig> portConfig,
                                     Rex::Ptr<Lldp::PortStatus> /*portStatus*/) {
   uint32_t allocated = portConfig->poeAllocatedPowerFallback();
   if (allocated == 0) return 0;
   const PortStatus& port = poeInfo.poePortStatus();
   putShortForm(info, port, true);
   if (!tlvReceived) return shortFormLen;
   return putExtendedForm(info, port, requestOf(poeInfo.remoteSystem()), allocated, allocated);
}

}  // namespace Lldp::Agent::PoeUtils
