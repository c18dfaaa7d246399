"""Roles of a supervisor: an agent never goes back from active by itself, its process begins anew."""

import os
import pathlib

from frames import frame
from netns import eventually


def told(agent, role):
    """Gives the agent a role that it cannot take up, and waits for the next one."""
    before = agent.began()
    agent.lldp("debug", "redundancy", role)
    assert eventually(lambda: agent.began() > before, 10)


def test_a_process_begins_anew_for_a_role_out_of_its_reach(bench):
    agent, wire = bench.agent, bench.wire()
    process = pathlib.Path(f"/proc/{agent.process.pid}")
    learned = lambda: agent.neighbours("Ethernet1")
    wire.send(frame(name="one"))
    assert eventually(learned, 3)
    descriptors = len(os.listdir(process / "fd"))
    agent.lldp("debug", "redundancy", "active")

    told(agent, "standby")
    assert b"--redundancy\0standby\0" in (process / "cmdline").read_bytes()
    assert agent.lldp_json("debug", "redundancy")["redundancy"][0]["mode"] == "modeStandby"
    wire.send(frame(name="two"))
    assert agent.lldp("show", "neighbors") == "no neighbors\n", "it waits for an active supervisor"

    told(agent, "active")
    assert eventually(lambda: wire.send(frame(name="three")) or learned(), 5)
    assert eventually(lambda: len(os.listdir(process / "fd")) <= descriptors, 3), "none is left open"
    assert agent.stop() == 0
    assert not agent.socket.exists()
    agent.process = None
