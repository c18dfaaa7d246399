// The transmit machine of a port as a table. docs/protocol.md shows it.
#pragma once

#include <boost/describe/enum.hpp>
#include <cstdint>

namespace Lldp::Agent::Protocol {

// Not the transmit machine of IEEE Std 802.1AB-2016, 9.2.8: one clock serves what are three timers
// there, no shutdown LLDPDU is sent, and there is neither credit nor fast start.
enum class TxFsmState : uint8_t {
   txFsmUninitialized = 0,   // before the machine is started
   txFsmDisabled = 1,        // the port may not transmit; the clock is not armed
   txFsmTxWait = 2,          // a transmission is due when the clock expires
   txFsmTxDelay = 3,         // an LLDPDU has just gone out; no further one until the clock expires
   txFsmIdle = 4,            // nothing to send until the clock expires
   txFsmReinitializing = 5,  // hold-off after the port stopped being enabled
};
BOOST_DESCRIBE_ENUM(TxFsmState, txFsmUninitialized, txFsmDisabled, txFsmTxWait, txFsmTxDelay,
                    txFsmIdle, txFsmReinitializing)

enum class TxFsmEvent : uint8_t {
   start,         // the machine has found everything that it stands on
   clockExpired,  // the clock has reached its time
   localChange,   // something that is advertised has changed
   portEnabled,   // found, when the port was looked at: link up, and configured to transmit
   linkDown,      // the link status is not that of a link which is up
   adminDown,     // the port is no longer configured to transmit
};
BOOST_DESCRIBE_ENUM(TxFsmEvent, start, clockExpired, localChange, portEnabled, linkDown, adminDown)

// What an event does in a state.
struct TxFsmCell {
   enum class Kind : uint8_t {
      transition,  // to the state `next`, announced by the trace `words`
      ignored,     // nothing to do
      impossible,  // an assertion
   };
   Kind kind;
   TxFsmState next{};
   const char* words = nullptr;  // null for the start, which is announced by the new state alone
};

const TxFsmCell& txFsmCell(TxFsmState state, TxFsmEvent event);

}  // namespace Lldp::Agent::Protocol
