#include "support/Invariants.h"

#include "Lldp/LldpInputSm/IntfKinds.h"

namespace LldpTest {
namespace {

std::vector<uint32_t> countersOf(const Lldp::PortStatus& port) {
   return {port.rxFramesTotal(),           port.rxFramesDiscardedTotal(),
           port.rxFramesErrors(),          port.rxTLVsDiscardedTotal(),
           port.rxTLVsUnrecognizedTotal(), port.rxAgeoutsTotal(),
           port.txFramesTotal(),           port.txFramesLengthExceeded(),
           port.txFramesNoMemErrors(),     static_cast<uint32_t>(port.nextRemoteSystemIndex())};
}

bool monotone(const std::vector<uint32_t>& before, const std::vector<uint32_t>& after) {
   for (size_t i = 0; i < before.size(); ++i) {
      if (after[i] < before[i]) return false;
   }
   return true;
}

uint32_t neighborsOf(Supervisor& supervisor) {
   uint32_t count = 0;
   for (auto [intfId, port] : supervisor.status()->portStatus()) {
      count += static_cast<uint32_t>(port->remoteSystems());
   }
   return count;
}

}  // namespace

void Invariants::must(bool holds, const char* what, const Wirekit::IntfId& intfId) {
   if (!holds) broken_.push_back(intfId.stringValue().stdString() + ": " + what);
}

void Invariants::clearing(Supervisor& supervisor) {
   if (supervisor.status()) cleared_ += neighborsOf(supervisor);
}

std::vector<std::string> Invariants::check(Supervisor& supervisor) {
   broken_.clear();
   if (!supervisor.status()) return broken_;
   double now = supervisor.world().now();
   for (auto [intfId, port] : supervisor.status()->portStatus()) checkPort(port, now);
   checkTable(supervisor);
   if (!supervisor.agent()) return broken_;
   for (const auto& [name, port] : supervisor.ports()) {
      checkRows(supervisor, *port);
      checkMachine(supervisor, *port);
   }
   const auto& config = *supervisor.config();
   must(config.messageTxInterval() >= config.txDelay(), "interval below the delay", {});
   return broken_;
}

void Invariants::checkPort(const Lldp::PortStatus::Ptr& port, double now) {
   checkNeighbors(port, now);
   const auto& intfId = port->intfId();
   auto counters = countersOf(*port);
   Seen& seen = seen_[port.get()];
   if (seen.port) must(monotone(seen.counters, counters), "a counter fell", intfId);
   seen.port = port;
   seen.counters = counters;
   must(port->lastTxTime() <= now, "sent in the future", intfId);
   must(port->rxFramesDiscardedTotal() <= port->rxFramesTotal(), "more dropped than came", intfId);
   must(port->rxFramesErrors() <= port->rxFramesTotal(), "more errors than frames", intfId);
}

void Invariants::checkNeighbors(const Lldp::PortStatus::Ptr& port, double now) {
   const auto& intfId = port->intfId();
   must(port->remoteSystems() == port->remoteSystemByMsaps(), "indexes of two sizes", intfId);
   must(port->remoteSystems() <= 256, "above the limit", intfId);
   // A neighbour that was not there at the last look has a number above all that were given out.
   Seen& seen = seen_[port.get()];
   int32_t handedOut = seen.port ? static_cast<int32_t>(seen.counters.back()) : 0;
   std::set<int> indexes;
   for (auto [index, neighbor] : port->remoteSystem()) {
      must(neighbor->index() == index, "under another index", intfId);
      must(port->remoteSystemByMsap(neighbor->msap()) == neighbor, "not found by MSAP", intfId);
      must(index <= port->nextRemoteSystemIndex(), "index not handed out", intfId);
      must(seen.indexes.contains(index) || index > handedOut, "index used again", intfId);
      indexes.insert(index);
      must(neighbor->creationTime() <= neighbor->lastChangeTime(), "changed before made", intfId);
      must(neighbor->lastChangeTime() <= neighbor->lastRefreshTime(), "refresh too old", intfId);
      must(neighbor->lastRefreshTime() <= now, "refreshed in the future", intfId);
      must(neighbor->expiryTime() == neighbor->lastRefreshTime() + neighbor->ttl(),
           "expires at another time", intfId);
      must(neighbor->expiryTime() > now, "past its expiry", intfId);
      must(neighbor->ttl() > 0, "time to live of 0", intfId);
   }
   seen.indexes = indexes;
}

void Invariants::checkTable(Supervisor& supervisor) {
   const auto& status = *supervisor.status();
   std::vector<uint32_t> table = {status.remTablesInserts(), status.remTablesDeletes(),
                                  status.remTablesAgeouts(), status.remTablesDrops()};
   must(table_.empty() || monotone(table_, table), "a table counter fell", {});
   table_ = table;
   must(neighborsOf(supervisor) == table[0] - table[1] - cleared_,
        "inserts and deletes do not add up", {});
   must(status.remTablesAgeouts() <= status.remTablesDeletes(), "ageouts above deletes", {});
   must(status.remTablesLastChangeTime() <= supervisor.world().now(), "change in the future", {});
}

// A port has all of its rows or none, and which of the two its interface says.
void Invariants::checkRows(Supervisor& supervisor, Port& port) {
   const auto& intfId = port.intfId();
   int threshold = supervisor.dot1x()->lldpBypass() ? 2 : 3;
   bool exists = port.present() && Lldp::Agent::Input::lldpCapable(intfId) &&
                 port.phy()->forwardingModel() >= threshold;
   must(bool(port.config()) == exists, "configuration", intfId);
   must(bool(port.local()) == exists, "local port", intfId);
   must(bool(port.status()) == exists, "status", intfId);
   const auto& desired = supervisor.agent()->protocolRoot()->desiredIntfDir();
   must(desired->intfDesired(intfId) == exists, "desired", intfId);
   if (!exists) return;
   auto cli = supervisor.cli();
   auto row = cli->cliPortConfig(intfId);
   auto requested = !cli->enabled() ? Lldp::AdminStatus::disabled
                    : row           ? row->adminStatus()
                                    : Lldp::AdminStatus::txAndRx;
   must(port.config()->adminStatus() == requested, "administrative status", intfId);
   must(port.config()->enabledTlvs().systemName() == cli->tlvSysName(), "selection", intfId);
}

void Invariants::checkMachine(Supervisor& supervisor, Port& port) {
   const auto& intfId = port.intfId();
   const auto& root = supervisor.agent()->protocolRoot();
   auto machine = root->protocolSm()->lldpPamSm(intfId);
   bool expected = port.config() && supervisor.cli()->enabled();
   must(bool(machine) == expected, "port machine", intfId);
   must(bool(root->protocolSm()->localPortSm(intfId)) == bool(port.local()), "local port machine",
        intfId);
   if (machine) must(machine->portStatus() == port.status(), "machine of another port", intfId);
   if (!machine && port.status()) {
      must(port.status()->remoteSystems() == 0, "neighbours without a machine", intfId);
   }
}

}  // namespace LldpTest
