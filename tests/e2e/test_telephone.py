"""The story of a telephone: what its port answers it, who gives it power, and how long it is known."""

import pathlib
import subprocess

import pytest
from scapy.contrib.lldp import LLDPDUSystemCapabilities

from conftest import Bench
from frames import DOT3, MED, frame, organisation, split
from netns import eventually

EXAMPLE = pathlib.Path(__file__).parents[2] / "examples/power_agent.py"
PHONE = "02:00:00:00:00:31"

# It asks for voice (application 1), which this switch serves to nobody, and for two more.
SAYS = frame(PHONE, "port-1", 120, "desk-phone",
             LLDPDUSystemCapabilities(telephone_available=1, mac_bridge_available=1),
             organisation(DOT3, 2, "080205" "62" "0082" "0000"),
             organisation(MED, 1, "003303"),
             *(organisation(MED, 2, f"{app:02x}800000") for app in (1, 6, 7)))
POLICIES = "video-conferencing:tagged:200:4:34:video,any:tagged:100:5:46"
# Tagged, VLAN, priority and DSCP of the applications 6 and 7.
TOLD = [bytes.fromhex("06419122"), bytes.fromhex("0740c96e")]


def contents(heard, oui, subtype):
    """What an organisation's TLVs of a subtype hold, in the order of the frame."""
    begin = oui.to_bytes(3, "big") + bytes([subtype])
    return [value[4:] for kind, value in split(heard[14:]) if kind == 127 and value.startswith(begin)]


@pytest.fixture
def power_agent(bench):
    process = subprocess.Popen([EXAMPLE, "Ethernet1=15.4"],
                               env={"LLDP_SOCKET": str(bench.agent.socket)})
    yield process
    process.kill()
    process.wait()


def test_the_story_of_a_telephone(bench, power_agent):
    agent, desk, lounge = bench.agent, bench.wire(), bench.wire("eth2")
    for port in ("Ethernet1", "Ethernet2"):
        agent.lldp("set", "port", port, "network-policy", POLICIES)

    def power():
        ports = agent.lldp_json("show", "power", "Ethernet1")["power"]
        return {name: ports[0].get(name) for name in ("state", "allowedWatts", "requests")}

    def phones():
        return [(row["mac"], row.get("port"), row["phone"], row["source"])
                for row in agent.lldp_json("show", "phones")["phones"]]

    def known_at(port):
        return eventually(lambda: phones() == [(PHONE, port, True, "lldp")], 5)

    assert eventually(lambda: power() == {"state": "searching", "allowedWatts": 0, "requests": []})
    assert eventually(lambda: not desk.hear(2.5), 10), "the port comes to rest"

    # Plugged in: the next frame is the whole answer, and the power agent's word follows.
    desk.send(SAYS)
    first = desk.hear(1)
    assert contents(first, MED, 1) == [bytes.fromhex("000304")]
    assert contents(first, MED, 2) == TOLD
    assert contents(first, DOT3, 2)[0][4:6] == bytes.fromhex("0082")
    fed = desk.hear(5)
    assert contents(fed, DOT3, 2) == [bytes.fromhex("070101" "90" "0082" "0082")]
    assert contents(fed, MED, 2) == TOLD
    assert known_at("Ethernet1")
    assert power() == {"state": "delivering", "allowedWatts": 13.0,
                       "requests": [{"sourceMac": PHONE, "requestedWatts": 13.0}]}
    told = agent.lldp_json("show", "policy", "Ethernet1")["policies"][0]["told"]
    assert [(row["application"], row["vlanId"], row["priority"], row["dscp"]) for row in told] == [
        ("video conferencing", 200, 4, 34), ("streaming video", 100, 5, 46)]

    # Pulled, and plugged in elsewhere.
    bench.far.ip("link", "set", "eth1", "down")
    assert eventually(lambda: power()["state"] == "searching"), power()
    assert known_at("Ethernet1")
    lounge.drain()
    lounge.send(SAYS)
    assert known_at("Ethernet2")
    assert eventually(lambda: (f := lounge.hear(3)) and contents(f, MED, 2) == TOLD)

    # Forgotten, and heard again.
    for what in ([PHONE], ["Ethernet2"], []):
        agent.lldp("clear", "phones", *what)
        assert eventually(lambda: phones() == [], 5), what
        lounge.send(SAYS)
        assert known_at("Ethernet2"), what

    # The operator's word beats what is heard.
    agent.lldp("set", "phone", PHONE, "no")
    lounge.send(SAYS)
    assert eventually(lambda: phones() == [(PHONE, None, False, "operator")], 5), phones()
    agent.lldp("unset", "phone", PHONE)
    assert known_at("Ethernet2")

    power_agent.terminate()
    assert power_agent.wait(5) == 0
    assert power()["state"] is None


def test_a_toggle_has_the_link_end_a_telephone(scene):
    folder = scene.folder()
    (folder / "Lldp.json").write_text('{"LldpKeepNbrClassificationIntfDown": false}')
    bench = Bench(scene, "--state-dir", folder)
    phones = lambda: bench.agent.lldp_json("show", "phones")["phones"]  # noqa: E731
    bench.wire().send(SAYS)
    assert eventually(phones)
    bench.far.ip("link", "set", "eth1", "down")
    assert eventually(lambda: not phones())
