#include "Lldp/LldpProtocolSm/TxFsm.h"

namespace Lldp::Agent::Protocol {
namespace {

using enum TxFsmState;

constexpr TxFsmCell to(TxFsmState next, const char* words) {
   return {TxFsmCell::Kind::transition, next, words};
}
constexpr TxFsmCell ignored{TxFsmCell::Kind::ignored};
constexpr TxFsmCell impossible{TxFsmCell::Kind::impossible};

// The cells in the order of TxFsmEvent.
struct Row {
   TxFsmState state;
   TxFsmCell start, clockExpired, localChange, portEnabled, linkDown, adminDown;
};

constexpr TxFsmCell linkDown =
    to(txFsmReinitializing, "Link down: initiating transition -> reinitializing state");
constexpr TxFsmCell adminDown =
    to(txFsmReinitializing, "Admin state down: initiating transition -> reinitializing state");

// The rows in the order of TxFsmState. A local change that finds the port disabled or held off
// needs no memory: the first frame after those carries what stands then.
constexpr Row table[] = {
    {
        .state = txFsmUninitialized,
        .start = to(txFsmDisabled, nullptr),
        .clockExpired = impossible,
        .localChange = ignored,
        .portEnabled = impossible,
        .linkDown = ignored,
        .adminDown = ignored,
    },
    {
        .state = txFsmDisabled,
        .start = impossible,
        .clockExpired = impossible,
        .localChange = ignored,
        .portEnabled = to(txFsmTxWait, "Port enabled: initiating transition -> txWait state"),
        .linkDown = ignored,
        .adminDown = ignored,
    },
    {
        .state = txFsmTxWait,
        .start = impossible,
        .clockExpired = to(txFsmTxDelay, "txDelayWhile timer expired: txWait -> txDelay"),
        .localChange = ignored,
        .portEnabled = impossible,
        .linkDown = linkDown,
        .adminDown = adminDown,
    },
    {
        .state = txFsmTxDelay,
        .start = impossible,
        .clockExpired = to(txFsmIdle, "txDelayWhile timer expired: txDelay -> idle"),
        .localChange =
            to(txFsmTxWait, "Local System MIB changed: initiating transition -> txWait state"),
        .portEnabled = impossible,
        .linkDown = linkDown,
        .adminDown = adminDown,
    },
    {
        .state = txFsmIdle,
        .start = impossible,
        .clockExpired = to(txFsmTxDelay, "txTTR timer expired: idle -> txDelay"),
        .localChange =
            to(txFsmTxDelay, "Local System MIB changed: initiating transition -> txDelay state"),
        .portEnabled = impossible,
        .linkDown = linkDown,
        .adminDown = adminDown,
    },
    {
        .state = txFsmReinitializing,
        .start = impossible,
        .clockExpired =
            to(txFsmDisabled, "txShutdownWhile timer expired: reinitializing -> disabled"),
        .localChange = ignored,
        .portEnabled = impossible,
        .linkDown = ignored,
        .adminDown = ignored,
    },
};

constexpr bool inOrder() {
   uint8_t state = 0;
   for (const Row& row : table) {
      if (static_cast<uint8_t>(row.state) != state++) return false;
   }
   return true;
}
static_assert(inOrder());

}  // namespace

const TxFsmCell& txFsmCell(TxFsmState state, TxFsmEvent event) {
   const Row& row = table[static_cast<uint8_t>(state)];
   switch (event) {
      case TxFsmEvent::start:
         return row.start;
      case TxFsmEvent::clockExpired:
         return row.clockExpired;
      case TxFsmEvent::localChange:
         return row.localChange;
      case TxFsmEvent::portEnabled:
         return row.portEnabled;
      case TxFsmEvent::linkDown:
         return row.linkDown;
      case TxFsmEvent::adminDown:
         return row.adminDown;
   }
   return impossible;
}

}  // namespace Lldp::Agent::Protocol
