"""TLVs that another program has the agent send."""

import pathlib
import subprocess

from frames import split
from netns import eventually

EXAMPLE = pathlib.Path(__file__).parents[2] / "examples/external_tlv.py"


def test_a_provider_has_its_tlv_sent(bench):
    agent, wire = bench.agent, bench.wire()

    def sent():
        """The texts of the organisation's TLVs in the next frame."""
        frame = wire.hear(5)
        assert frame
        return [tlv[4:] for kind, tlv in split(frame[14:]) if kind == 127 and tlv.startswith(b"\x0a\x1b\x2c\x01")]

    def shown():
        ports = agent.lldp_json("show", "local", "Ethernet1")["local"]["ports"]
        return [(tlv["oui"], bytes.fromhex(tlv["value"]), tlv["providers"])
                for tlv in ports[0].get("externalTlvs", [])]

    provider = subprocess.Popen([EXAMPLE, "Ethernet1", "0a1b2c", "1", "rack 7"], text=True,
                                stdin=subprocess.PIPE, env={"LLDP_SOCKET": str(agent.socket)})
    try:
        name = f"example-{provider.pid}"
        assert eventually(lambda: shown() == [("0a-1b-2c", b"rack 7", [name])], 5)
        assert eventually(lambda: sent() == [b"rack 7"], 5)
        assert name in agent.lldp("show", "local", "Ethernet1")
        provider.stdin.write("rack 8\n")
        provider.stdin.flush()
        assert eventually(lambda: sent() == [b"rack 8"], 5)
        provider.stdin.close()
        assert provider.wait(5) == 0
    finally:
        provider.kill()
    assert eventually(lambda: sent() == [], 5)
    assert shown() == []
