"""Addresses of Linux on the wire, as an independent daemon and an independent dissector see them."""

import time

import pytest

from conftest import Pair
from dissector import fields, judge, write
from frames import split
from netns import eventually

SPARE = "eth2"  # a cable with nobody at its far end but the test


class Switch(Pair):
    """An agent with a peer on one port and the test's own wire on the other."""

    def __init__(self, scene):
        super().__init__(scene, spare=(SPARE,))
        self.near.up("lo")
        self.agent.lldp("set", "management-address", "all")

    def add(self, address, device=SPARE):
        self.near.ip("addr", "add", address, "dev", device)

    def remove(self, address, device=SPARE):
        self.near.ip("addr", "del", address, "dev", device)

    def tells(self, *addresses):
        """Whether the peer comes to see these, in this order."""
        return eventually(lambda: self.seen() == list(addresses), 6) or self.seen()

    def seen(self):
        neighbour = self.peer.neighbour()
        if not neighbour:
            return None
        return [row["value"] for row in neighbour["chassis"][0].get("mgmt-ip", [])]


@pytest.fixture
def switch(scene):
    return Switch(scene)


def told(frame):
    """The management addresses of a frame, in order, as octets of address without family."""
    return [value[2:1 + value[0]] for kind, value in split(frame[14:]) if kind == 8]


def ip4(text):
    return bytes(int(part) for part in text.split("."))


def test_the_peer_sees_the_addresses_in_their_order(switch):
    assert switch.tells() is True, "the address of last resort is none of IP"
    switch.near.ip("link", "add", "br0", "type", "bridge")
    switch.add("10.1.0.1/24", "br0")
    switch.add("10.0.0.5/24")
    switch.add("10.0.0.4/24")
    switch.add("10.9.9.9/32", "lo")
    everything = ("10.9.9.9", "10.0.0.5", "10.1.0.1", "10.0.0.4")
    assert switch.tells(*everything) is True

    # The operator's choice.
    switch.agent.lldp("set", "management-address", "best")
    assert switch.tells("10.9.9.9") is True
    switch.agent.lldp("set", "management-address", "interface", "Vlan1")
    assert switch.tells("10.1.0.1") is True
    switch.agent.lldp("set", "management-vrf", "red")
    assert switch.tells() is True
    switch.agent.lldp("unset", "management-vrf")
    switch.agent.lldp("set", "management-address", "all")
    # The named interface keeps no place of its own.
    assert switch.tells(*everything) is True
    switch.add("2001:db8::7/64")
    switch.agent.lldp("set", "ipv6-management-interface", "Ethernet2")
    assert switch.tells("2001:db8::7", *everything) is True

    # What goes: an address, an interface, a port with its addresses of both kinds.
    switch.remove("10.9.9.9/32", "lo")
    assert switch.tells("2001:db8::7", "10.0.0.5", "10.1.0.1", "10.0.0.4") is True
    switch.near.ip("link", "del", "br0")
    assert switch.tells("2001:db8::7", "10.0.0.5", "10.0.0.4") is True
    switch.near.ip("link", "del", SPARE)
    assert switch.tells() is True
    assert switch.agent.alive()


def hear_until(wire, condition, timeout):
    """The frames up to the first that fulfils the condition; the last is None if none came."""
    heard, end = [], time.monotonic() + timeout
    while (left := end - time.monotonic()) > 0:
        frame = wire.hear(left)
        heard.append(frame)
        if frame is None or condition(frame):
            break
    return heard


def test_an_address_is_on_every_idle_port_within_a_second(switch):
    switch.agent.configure(messageTxInterval=30)
    wire = switch.scene.wire(switch.far, SPARE)
    for change, there in ((switch.add, True), (switch.remove, False)):
        while wire.hear(2.5):  # longer than the delay between two frames, so that the port is idle
            pass
        began = time.monotonic()
        change("10.0.0.1/24")
        heard = hear_until(wire, lambda f, t=there: (ip4("10.0.0.1") in told(f)) == t, 3)
        assert heard[-1] and time.monotonic() - began < 1


def test_the_dissector_reads_the_same(switch, tmp_path):
    for address in ("10.0.0.1/24", "10.0.0.2/24", "2001:db8::1/64"):
        switch.add(address)
    switch.agent.lldp("set", "ipv6-management-interface", "Ethernet2")
    wire = switch.scene.wire(switch.far, SPARE)
    frame = hear_until(wire, lambda f: len(told(f)) == 3, 6)[-1]
    assert frame, "not all addresses are told"
    (read,) = fields(write(tmp_path, [frame]), "lldp.mgn.addr.ip6", "lldp.mgn.addr.ip4",
                     "lldp.mgn.interface.subtype", "lldp.mgn.interface.number")
    index = switch.near.ip("-o", "link", "show", "dev", SPARE).split(":")[0]
    assert read == ["2001:db8::1", "10.0.0.1|10.0.0.2", "2|2|2", "|".join([index] * 3)]
    judge(tmp_path, [frame])
