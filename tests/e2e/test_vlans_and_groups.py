"""VLAN and link aggregation on the wire, as an independent daemon sees them."""

import subprocess

import pytest

from agent import request
from conftest import Pair
from netns import eventually


class Switch(Pair):
    def port_vlan(self):
        vlans = self.peer.neighbour().get("vlan", [])
        return [vlan["vlan-id"] for vlan in vlans if vlan.get("pvid")]

    def group(self):
        port = self.peer.neighbour().get("port", [{}])[0]
        return [row["value"] for row in port.get("aggregation", [])]

    def ip_or_skip(self, what, *words):
        """Asks the kernel for something that it may have been built without."""
        done = subprocess.run(["ip", "-n", self.near.name, *words], capture_output=True, text=True)
        if done.returncode:
            pytest.skip(f"the kernel has no {what}: {done.stderr.strip()}")

    def bridge(self, *words):
        subprocess.run(["bridge", "-n", self.near.name, *words], check=True)


# Written by a script, as another agent of the switch would do, for there is no feeder to do it.
def test_the_port_vlan_from_the_store(scene):
    switch = Switch(scene, ("--feeders", "links,host,addresses"))
    assert eventually(switch.peer.neighbour, 6)
    assert switch.port_vlan() == []
    path = "/v1/entity/bridging/config/switchIntfConfig/Ethernet1"
    for mode, vlan, told in (("switchportAccess", 20, ["20"]), ("switchportTrunk", 4094, ["4094"]),
                             ("switchportRouted", 20, [])):
        status, body = request(switch.agent.socket, "PUT", path,
                               {"switchportMode": mode, "nativeVlan": vlan})
        assert status < 300, body
        assert eventually(lambda told=told: switch.port_vlan() == told, 6), switch.port_vlan()
    assert switch.group() == []


def test_the_port_vlan_of_a_bridge(scene):
    switch = Switch(scene)
    switch.ip_or_skip("VLANs on bridges", "link", "add", "br0", "type", "bridge",
                      "vlan_filtering", "1")
    switch.near.ip("link", "set", "eth1", "master", "br0")
    assert eventually(lambda: switch.port_vlan() == ["1"], 6)
    switch.bridge("vlan", "add", "dev", "eth1", "vid", "20", "pvid", "untagged")
    assert eventually(lambda: switch.port_vlan() == ["20"], 6)
    switch.bridge("vlan", "del", "dev", "eth1", "vid", "20")
    assert eventually(lambda: switch.port_vlan() == [], 6)
    switch.near.ip("link", "set", "br0", "type", "bridge", "vlan_default_pvid", "30")
    switch.near.ip("link", "set", "eth1", "nomaster")
    switch.near.ip("link", "set", "eth1", "master", "br0")
    assert eventually(lambda: switch.port_vlan() == ["30"], 6)
    switch.near.ip("link", "set", "eth1", "nomaster")
    assert eventually(lambda: switch.port_vlan() == [], 6)


def test_the_group_of_a_bond(scene):
    switch = Switch(scene)
    switch.ip_or_skip("bonds", "link", "add", "bond5", "type", "bond")
    switch.near.ip("link", "set", "eth1", "down")
    switch.near.ip("link", "set", "eth1", "master", "bond5")
    switch.near.up("eth1", "bond5")
    index = switch.near.ip("-o", "link", "show", "dev", "bond5").split(":")[0]
    assert eventually(lambda: switch.group() == [index], 10)
    switch.near.ip("addr", "add", "10.5.0.1/24", "dev", "bond5")
    assert eventually(lambda: "10.5.0.1" in str(switch.peer.neighbour()), 6)
    switch.near.ip("link", "del", "bond5")
    switch.near.up("eth1")
    assert eventually(lambda: switch.peer.neighbour() and switch.group() == [], 10)
