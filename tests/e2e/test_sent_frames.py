"""What the agent sends, judged octet by octet and by an independent dissector."""

import pytest

from agent import request
from dissector import judge
from frames import frame, split
from netns import eventually

NONE = {f"tlv{name}": False for name in (
    "PortDesc", "SysName", "SysDesc", "SysCap", "MgmtAddr", "PortVlan", "LinkAggregation",
    "MaximumFrameSize", "PowerViaMdi", "NetworkPolicy")}


# The judge is no rubber stamp: each of these rows is good but for one thing.
@pytest.mark.parametrize("spoil", [
    lambda f: f + b"\x00", lambda f: f + b"\x00\x00", lambda f: f[:-1], lambda f: f[:-2],
    lambda f: f[:-2] + b"\x0a\x10x", lambda f: f[:14] + b"\x02\x06" + f[16:]])
def test_the_judge_finds_fault(tmp_path, spoil):
    good = frame(name="good")
    judge(tmp_path, [good])
    with pytest.raises(AssertionError):
        judge(tmp_path, [good, spoil(good)])


def hear(wire, count):
    heard = [wire.hear(4) for _ in range(count)]
    assert None not in heard, "the agent is silent"
    return heard


def heard_with(wire, condition):
    """The first frame from now on whose LLDPDU fulfils the condition."""
    return eventually(lambda: (f := wire.hear(4)) and condition(dict(split(f[14:]))) and f, 6)


def test_the_least_frame_octet_by_octet(bench, tmp_path):
    bench.agent.configure(messageTxInterval=1, messageTxHoldTime=0x1234, **NONE)
    wire = bench.wire()
    sent = heard_with(wire, lambda rows: set(rows) == {0, 1, 2, 3})
    assert sent, hear(wire, 1)
    mac = bytes.fromhex(bench.near.mac("eth1").replace(":", ""))
    chassis = dict(split(sent[14:]))[1][1:]
    assert chassis in {bytes.fromhex(bench.near.mac(d).replace(":", "")) for d in ("eth1", "eth2")}
    assert sent == (bytes.fromhex("0180c200000e") + mac + bytes.fromhex("88cc") +
                    bytes.fromhex("020704") + chassis + bytes.fromhex("040a05") + b"Ethernet1" +
                    bytes.fromhex("06021234") + bytes.fromhex("0000"))
    judge(tmp_path, [sent])


def test_a_frame_of_every_basic_part(bench, tmp_path):
    bench.agent.configure(messageTxInterval=1, tlvPortDesc=True, tlvSysName=True, tlvSysDesc=True,
                          tlvSysCap=True, tlvMgmtAddr=True)
    bench.agent.patch("interface/config/eth/phy/all/intfConfig/Ethernet1", description="d" * 255)
    wire = bench.wire()
    sent = heard_with(wire, lambda rows: rows.get(4) == b"d" * 255)
    assert sent
    rows = split(sent[14:])
    assert [kind for kind, _ in rows if kind not in (8, 127)] == [1, 2, 3, 4, 5, 6, 7, 0]
    values = dict(rows)
    assert values[5] == bench.agent.hostname.encode()
    assert values[6] and len(values[6]) <= 255
    assert values[7] == bytes.fromhex("00140004")
    (fields,) = judge(tmp_path, [sent])
    mac = ":".join(f"{octet:02x}" for octet in values[1][1:])
    assert fields == [mac, "Ethernet1", "120"]


# 0 on a link that is up would say goodbye in every frame; nothing else ever says it.
def test_the_agent_never_says_goodbye(bench):
    bench.agent.configure(messageTxInterval=1)
    wire = bench.wire()
    hear(wire, 1)
    wire.drain()
    bench.agent.configure(enabled=False)
    assert wire.hear(2.5) is None
    bench.agent.configure(enabled=True)
    hear(wire, 1)
    wire.drain()
    assert bench.agent.stop() == 0
    assert wire.hear(1) is None


@pytest.mark.parametrize("status, sends, receives", [
    ("txOnly", True, False), ("rxOnly", False, True), ("disabled", False, False)])
def test_the_operators_port_status(bench, status, sends, receives):
    bench.agent.configure(messageTxInterval=1)
    code, body = request(bench.agent.socket, "PUT",
                         "/v1/entity/l2discovery/lldp/cliConfig/cliPortConfig/Ethernet1",
                         {"adminStatus": status})
    assert code < 300, body
    wire = bench.wire()
    wire.drain()
    wire.send(frame(name="hello"))
    assert (wire.hear(4) is not None) == sends
    assert bool(bench.agent.neighbours("Ethernet1")) == receives
