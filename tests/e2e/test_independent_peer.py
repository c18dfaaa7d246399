"""The agent and an independent LLDP daemon, each on one end of a cable."""

import pytest

from conftest import Pair
from netns import eventually
from peer import DESCRIPTION, NAME


class SeenPair(Pair):
    def sees_peer(self):
        rows = self.agent.neighbours("Ethernet1")
        return rows[0] if rows else None


@pytest.fixture
def pair(scene):
    made = SeenPair(scene)
    assert eventually(made.sees_peer, 10), made.agent.words()
    return made


def test_the_agent_sees_the_peer(pair):
    row = pair.sees_peer()
    chassis, port = row["msap"]["chassisIdentifier"], row["msap"]["portIdentifier"]
    mac = pair.far.mac("eth1")
    shown = pair.agent.lldp("show", "neighbors", "Ethernet1", "detail").lower()

    assert chassis["subtype"] == "macAddress"
    assert octets(chassis["value"]) == bytes.fromhex(mac.replace(":", ""))
    assert port == {"subtype": "interfaceName", "value": "eth1"}
    assert row["ttl"] == pair.peer.ttl
    assert row["sysName"] == {"tlvReceived": True, "tlvInfo": NAME}
    assert row["sysDesc"] == {"tlvReceived": True, "tlvInfo": DESCRIPTION}
    assert row["portDesc"] == {"tlvReceived": True, "tlvInfo": "eth1"}
    # Bridge, WLAN, router and station; only the last in use on a host without a bridge.
    assert row["systemCapabilities"] == {"tlvReceived": True, "supported": 0x9C, "enabled": 0x80}
    for words in (NAME, DESCRIPTION, "eth1"):
        assert words.lower() in shown


def octets(text):
    return bytes.fromhex(text["octets"]) if isinstance(text, dict) else text.encode()


def test_the_peer_sees_the_agent(pair):
    pair.agent.patch("interface/config/eth/phy/all/intfConfig/Ethernet1", description="to the peer")
    seen = eventually(lambda: (n := pair.peer.neighbour()) and "descr" in n["port"][0] and n, 10)
    assert seen, pair.peer.neighbour()
    chassis, port = seen["chassis"][0], seen["port"][0]

    assert chassis["id"] == [{"type": "mac", "value": pair.near.mac("eth1")}]
    assert chassis["name"] == [{"value": pair.agent.hostname}]
    assert chassis["descr"][0]["value"]
    assert {c["type"]: c["enabled"] for c in chassis["capability"]} == {"Bridge": True,
                                                                        "Router": False}
    assert port["id"] == [{"type": "ifname", "value": "Ethernet1"}]
    assert port["descr"] == [{"value": "to the peer"}]
    assert port["ttl"] == [{"value": "3"}]


def test_a_goodbye_removes_the_peer_at_once(pair):
    pair.peer.stop()
    assert eventually(lambda: not pair.agent.neighbours("Ethernet1"), 1)
    status = pair.agent.get(pair.agent.status_path())
    assert (status["remTablesDeletes"], status["remTablesAgeouts"]) == (1, 0)


def test_a_dead_peer_ages_out(pair):
    pair.peer.kill()
    assert pair.sees_peer(), "its last word still holds"
    assert eventually(lambda: not pair.agent.neighbours("Ethernet1"), pair.peer.ttl + 1)
    assert pair.agent.port_status("Ethernet1")["rxAgeoutsTotal"] == 1
    assert pair.agent.get(pair.agent.status_path())["remTablesAgeouts"] == 1


def test_a_pulled_cable_removes_the_peer_at_once(pair):
    pair.far.ip("link", "set", "eth1", "down")
    assert eventually(lambda: not pair.agent.neighbours("Ethernet1"), 1)
    assert pair.agent.port_status("Ethernet1")["rxAgeoutsTotal"] == 0
    pair.far.up("eth1")
    assert eventually(pair.sees_peer, 10)


def test_the_agents_silence_ages_it_out_at_the_peer(pair):
    assert eventually(pair.peer.neighbour, 10)
    assert pair.agent.stop() == 0
    assert eventually(lambda: not pair.peer.neighbour(), 6)
