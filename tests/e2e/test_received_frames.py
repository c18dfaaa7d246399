"""Frames forged by hand, good and bad, on the wires of a running agent."""

import random

import pytest

from frames import MULTICAST, frame, numbered
from netns import eventually


def learned(bench, port="Ethernet1", count=1):
    def rows():
        found = bench.agent.neighbours(port)
        return found if len(found) == count else None
    return eventually(rows, 3)


def names(rows):
    return {row["sysName"]["tlvInfo"] for row in rows}


# The network device hands the outermost tag over apart from the frame. The operator's switch looks
# at tags that stand in the frame, so it refuses the inner one and not the outer.
@pytest.mark.parametrize("drop", [False, True])
def test_tags(bench, drop):
    bench.agent.configure(rxTaggedPacketsDrop=drop)
    wire = bench.wire()
    wire.send(frame("02:00:00:00:00:01", name="tagged once", vlans=[100]))
    wire.send(frame("02:00:00:00:00:02", name="tagged twice", vlans=[100, 200]))
    wire.send(frame("02:00:00:00:00:03", name="priority only", vlans=[0]))
    wire.send(frame("02:00:00:00:00:04", name="not tagged"))
    rows = learned(bench, count=3)
    assert rows and names(rows) == {"tagged once", "priority only", "not tagged"}


def test_only_lldp_is_taken(bench):
    wire = bench.wire()
    wire.send(frame("02:00:00:00:00:01", destination="01:80:c2:00:00:03"))
    wire.send(frame("02:00:00:00:00:02", destination="01:80:c2:00:00:00"))
    wire.send(frame("02:00:00:00:00:03", destination=bench.near.mac("eth1")))
    wire.send(frame("02:00:00:00:00:04", destination="ff:ff:ff:ff:ff:ff"))
    wire.send(frame("02:00:00:00:00:05", ethertype=0x88CD))
    wire.send(frame("02:00:00:00:00:06", ethertype=0x0800, vlans=[5]))
    wire.send(bytes.fromhex(MULTICAST.replace(":", "")) + b"\x02" * 6 + b"\x88\xcc")
    wire.send(frame("02:00:00:00:00:07", name="the only one"))
    rows = learned(bench)
    assert rows and names(rows) == {"the only one"}
    # What the filter lets pass and the parser refuses: the frame without content.
    assert bench.agent.port_status("Ethernet1")["rxFramesTotal"] == 2


def test_a_frame_of_its_own_is_not_a_neighbour(bench):
    own = bench.scene.wire(bench.near, "eth1")
    own.send(frame(name="sent by this machine"))
    bench.wire().send(frame("02:00:00:00:00:02", name="sent by another"))
    rows = learned(bench)
    assert rows and names(rows) == {"sent by another"}


# Whatever makes a frame untrustworthy as a whole, each once: the neighbour that stands stays as it
# was, even where the bad frame bears its name.
def test_frames_that_are_bad_as_a_whole(bench):
    wire = bench.wire()
    whole = frame(name="standing")
    wire.send(whole)
    (before,) = learned(bench)

    changed = frame(ttl=77, name="changed")
    mandatory_end = 14 + 9 + 9 + 4
    bad = [changed[:end] for end in range(14, mandatory_end)]
    bad.append(changed[:14] + b"\x02\x00" + changed[23:])              # a chassis of nothing
    bad.append(changed[:14] + b"\x02\x01\x04" + changed[23:])          # a chassis subtype alone
    bad.append(changed[:14] + changed[23:32] + changed[14:23] + changed[32:])  # the port first
    bad.append(changed[:-2] + changed[14:23])                          # the chassis again
    bad.append(changed[:-2] + b"\x0e\x03\x00\x14\x00\x00\x00")         # half the capabilities
    bad.append(changed[:-2] + b"\x10\x08" + b"\x05\x01\x0a\x00\x00\x01\x02\x00")  # short address
    bad.append(changed[:-2] + b"\xfe\x03\x00\x80\xc2\x00\x00")         # an organisation alone
    for octets in bad:
        wire.send(octets)

    status = counted(bench, 1 + len(bad))
    assert status["rxFramesDiscardedTotal"] == len(bad)
    assert status["rxFramesErrors"] == len(bad)
    assert status["rxTLVsDiscardedTotal"] == 0
    assert bench.agent.neighbours("Ethernet1") == [before]


def counted(bench, frames):
    """The port's status once it has received that many frames."""
    def status():
        now = bench.agent.port_status("Ethernet1")
        return now if now["rxFramesTotal"] >= frames else None
    found = eventually(status, 3)
    assert found, bench.agent.port_status("Ethernet1")
    return found


# Frames with octets changed at random; the seed is fixed.
def test_random_octets_do_no_harm(bench):
    wire = bench.wire("eth2")
    dice = random.Random(20)
    for _ in range(3000):
        octets = bytearray(numbered(dice.randrange(8)))
        for _ in range(dice.randrange(1, 6)):
            octets[dice.randrange(14, len(octets))] = dice.randrange(256)
        wire.send(bytes(octets[:dice.randrange(14, len(octets) + 1)]))
    bench.wire().send(frame(name="still there"))
    assert learned(bench), bench.agent.words()
    bench.agent.lldp("show", "neighbors", "detail")
    bench.agent.lldp_json("show", "neighbors", "detail")
