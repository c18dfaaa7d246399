"""Two supervisors on one state store: one view of all neighbours, and switchovers."""

import time

from agent import request
from chassis import STATUS, Chassis
from netns import eventually

FRONTS = 8
ALL = f"{STATUS}/all"
COUNTERS = ("remTablesInserts", "remTablesDeletes", "remTablesDrops", "remTablesAgeouts")
MANAGEMENT = {"Management1/1": {"bob"}, "Management2/1": {"carol"}}


def counters_add_up(chassis):
    """Whether the merged counters are the sums of both supervisors', as either agent has it."""
    for agent in chassis.agents.values():
        parts = [agent.get(f"{STATUS}/local/{cell}") for cell in (1, 2)]
        merged = agent.get(ALL)
        if any(merged[name] != sum(part[name] for part in parts) for name in COUNTERS):
            return False
    return True


def index_at(chassis, cell, name):
    rows = chassis.agents[cell].lldp_json("show", "neighbors")["neighbors"]
    return next((row["index"] for row in rows if row["systemName"] == name), None)


def pid_of(agent):
    return request(agent.socket, "GET", "/v1/agent")[1]["pid"]


def role(chassis, cell, asked):
    rows = chassis.agents[asked].lldp_json("debug", "redundancy")["redundancy"]
    return rows[cell - 1]["mode"]


def switch_over(chassis, to):
    """Told at cell 1. Returns the seconds until each front port of the new one has sent a frame."""
    for port in chassis.fronts:
        chassis.wire(port, to).drain()
    began = time.monotonic()
    chassis.agents[1].lldp("debug", "redundancy", str(to), "active")
    came = chassis.first_frames(to, 20)
    assert len(came) == FRONTS, f"only {sorted(came)} sent"
    took = max(came.values()) - began
    print(f"first frame on every one of {FRONTS} front ports {took:.2f} s after the switchover")
    return took


def test_switchovers_with_the_old_active_alive_and_dead(scene):
    chassis = Chassis(scene, FRONTS).start(interval=30)
    fronts = {port: {f"front{number}"} for number, port in enumerate(chassis.fronts)}
    assert chassis.teach(fronts | MANAGEMENT)
    assert chassis.agrees() is True
    assert counters_add_up(chassis)
    assert chassis.agents[1].get(ALL)["remTablesInserts"] == FRONTS + 2

    # The old one is alive.
    bob, carol = index_at(chassis, 1, "bob"), index_at(chassis, 1, "carol")
    began = {cell: agent.began() for cell, agent in chassis.agents.items()}
    pid = pid_of(chassis.agents[1])
    assert switch_over(chassis, 2) < 10
    assert eventually(lambda: chassis.agents[1].began() > began[1], 10)
    assert pid_of(chassis.agents[1]) == pid
    assert chassis.agents[2].began() == began[2]
    assert [role(chassis, cell, 1) for cell in (1, 2)] == ["modeStandby", "modeActive"]
    assert chassis.shows(MANAGEMENT), [chassis.names(1), chassis.names(2)]
    assert (index_at(chassis, 2, "bob"), index_at(chassis, 2, "carol")) == (bob, carol)
    assert chassis.teach(fronts | MANAGEMENT)
    chassis.agents[1].configure(messageTxInterval=1)  # at the standby, for the active one
    assert chassis.wire("Ethernet1", 2).hear(3)
    chassis.wire("Ethernet1", 1).drain()
    assert chassis.wire("Ethernet1", 1).hear(1.5) is None, "the old one is silent there"
    assert chassis.wire("Management1/1", 1).hear(3), "and speaks on its own port"
    assert chassis.agrees() is True
    assert counters_add_up(chassis)

    chassis.agents[2].configure(messageTxInterval=30)

    # The old one is dead, and the one that begins anew as a standby becomes active in place.
    began = chassis.agents[1].began()
    chassis.agents.pop(2).kill()
    assert switch_over(chassis, 1) < 10
    assert chassis.agents[1].began() == began
    assert chassis.teach(fronts | MANAGEMENT, (1,)), chassis.names(1)
    assert index_at(chassis, 1, "bob") == bob

    # It comes back, and finds in the store that it is a standby now, whatever it was told.
    chassis.agent(2, "active").start()
    assert chassis.teach(fronts | MANAGEMENT), [chassis.names(1), chassis.names(2)]
    assert [role(chassis, cell, 2) for cell in (1, 2)] == ["modeActive", "modeStandby"]
    assert index_at(chassis, 1, "carol") == carol
    assert chassis.agrees() is True

    # Taken out of the chassis, and put in again.
    chassis.agents.pop(2).kill()
    assert request(chassis.agents[1].socket, "DELETE", "/v1/entity/hardware/cellInfo/2")[0] == 204
    assert chassis.shows(fronts | {"Management1/1": {"bob"}}, (1,)), chassis.names(1)
    assert chassis.agents[1].get(f"{STATUS}/local/2") is None
    chassis.agent(2, "active").start()
    assert chassis.teach(fronts | MANAGEMENT, (1,)), chassis.names(1)
    assert eventually(lambda: chassis.names(2).items() >= MANAGEMENT.items(), 5)
    assert chassis.agents[1].get(f"{STATUS}/local/2")["remTablesInserts"] == 1, "counted from zero"
    assert counters_add_up(chassis)
    assert chassis.agrees() is True
