"""The TLVs of IEEE 802.1, IEEE 802.3 and LLDP-MED, sent and read."""

import pytest
from agent import request
from conftest import Pair
from dissector import fields, judge, write
from frames import DOT1, DOT3, MED, frame, organisation, split
from netns import eventually

ROW = "/v1/entity/l2discovery/lldp/cliConfig/cliPortConfig/Ethernet1"


def sent(lldpdu):
    """The organisations' TLVs of a frame: (organisation, subtype) to content."""
    return {(int.from_bytes(value[:3], "big"), value[3]): value[4:]
            for kind, value in split(lldpdu[14:]) if kind == 127}


def heard(wire, condition):
    """The first frame from now on whose organisations' TLVs fulfil the condition."""
    wire.drain()
    return eventually(lambda: (f := wire.hear(3)) and condition(sent(f)) and f, 10)


def set_power_aside(agent, tenths_of_a_watt):
    code, body = request(agent.socket, "PUT", ROW, {"poeAllocatedPowerFallback": tenths_of_a_watt})
    assert code < 300, body


def test_the_dissector_names_every_part(bench, tmp_path):
    bench.agent.configure(messageTxInterval=1)
    set_power_aside(bench.agent, 300)
    wire = bench.wire()
    short = heard(wire, lambda tlvs: len(tlvs.get((DOT3, 2), "")) == 3)
    # A device that speaks the long form of Power via MDI is answered in it.
    wire.send(frame("02:00:00:00:00:09", "device", 120, "powered",
                    organisation(DOT3, 2, "000000" "52" "0081" "0000")))
    extended = heard(wire, lambda tlvs: len(tlvs.get((DOT3, 2), "")) == 8)
    assert short and extended
    assert list(sent(extended)) == [(DOT1, 1), (DOT3, 2), (DOT3, 3), (DOT3, 4), (MED, 1)]
    judge(tmp_path, [short, extended])

    said = bench.agent.lldp_json("show", "local", "Ethernet1")["local"]["ports"][0]
    expected = {
        "lldp.ieee.802_1.port_vlan.id": str(said["portVlanId"]),
        "lldp.ieee.802_3.mdi_power_support.port_class": "1",
        "lldp.ieee.802_3.mdi_power_support.enabled": "1",
        "lldp.ieee.802_3.mdi_power_type": "0",
        "lldp.ieee.802_3.mdi_power_source": "1",
        "lldp.ieee.802_3.mdi_pde_requested": "129",
        "lldp.ieee.802_3.mdi_pse_allocated": "300",
        "lldp.ieee.802_3.aggregation_status.cap": str(int(said["linkAggregation"]["capable"])),
        "lldp.ieee.802_3.aggregated_port_id": str(said["linkAggregation"]["portId"]),
        "lldp.ieee.802_3.max_frame_size": str(said["maximumFrameSize"]),
        "lldp.media.subtype.caps": "0x0001",
        "lldp.media.subtype.class": "4",
    }
    assert said["powerFallbackWatts"] == 30.0
    assert said["medCapabilities"]["deviceClass"] == "network connectivity"
    assert fields(write(tmp_path, [extended]), *expected) == [
        list(expected.values())]


# What the peer is told to say, and what of it the operator is to read.
PEER = """
dot3 power pd supported enabled powerpairs spare class class-3 type 2 source pse priority low \
requested 12900 allocated 15400
med policy application voice tagged vlan 500 priority voice dscp 46
med policy application guest-voice unknown
med location coordinate latitude 48.85667N longitude 2.2014W altitude 117.47 m datum WGS84
med location address country US street "Commercial Road" city "Roseville"
med location elin 12345678911
med power pd source pse priority high value 5000
inventory hardware-revision hw-1
inventory firmware-revision fw-2
inventory software-revision sw-3
inventory serial-number sn-4
inventory manufacturer maker-5
inventory model model-6
inventory asset asset-7
lldp custom-tlv oui 00,80,c2 subtype 1 oui-info 00,07
lldp custom-tlv oui 00,80,c2 subtype 2 oui-info 02,00,0a
lldp custom-tlv oui 00,80,c2 subtype 3 oui-info 00,14,05,76,6f,69,63,65
lldp custom-tlv oui 00,80,c2 subtype 4 oui-info 02,88,cc
lldp custom-tlv oui 00,80,c2 subtype 5 oui-info 01,02,03,04
lldp custom-tlv oui 00,80,c2 subtype 6 oui-info 00,05
lldp custom-tlv oui 00,12,0f subtype 4 oui-info 05,f2
"""

SHOWN = {
    "portVlanId": 7,
    "protocolVlans": [{"vlanId": 10, "supported": True, "enabled": False}],
    "vlanNames": [{"vlanId": 20, "name": "voice"}],
    "protocolIdentities": [{"index": 1, "identity": "88cc"}],
    "vidUsageDigest": "0x01020304",
    "managementVid": 5,
    "maximumFrameSize": 1522,
    "medCapabilities": {
        "capabilities": ["LLDP-MED Capabilities", "Network Policy", "Location Identification",
                         "Extended Power via MDI PSE", "Extended Power via MDI PD", "Inventory"],
        "deviceClass": "endpoint class III"},
    "networkPolicies": [
        {"applicationNumber": 1, "application": "voice", "unknown": False, "tagged": True,
         "vlanId": 500, "priority": 5, "dscp": 46},
        {"applicationNumber": 3, "application": "guest voice", "unknown": True, "tagged": False,
         "vlanId": 0, "priority": 0, "dscp": 0}],
    "hardwareRevision": "hw-1", "firmwareRevision": "fw-2", "softwareRevision": "sw-3",
    "serialNumber": "sn-4", "manufacturerName": "maker-5", "modelName": "model-6",
    "assetId": "asset-7",
    "unknownOrganizationTlvs": [{"oui": "00-12-bb", "subtype": 4, "index": 1, "value": "520032",
                                 "name": "Extended Power via MDI"}],
}


@pytest.fixture
def pair(scene):
    made = Pair(scene, peer_options=("-M", "3"))
    for line in PEER.strip().splitlines():
        made.peer.configure(line)
    return made


def test_the_agent_reads_the_peer(pair):
    def shown():
        rows = pair.agent.lldp_json("show", "neighbors")["neighbors"]
        return rows[0] if rows else {}

    assert eventually(lambda: SHOWN.items() <= shown().items(), 10), shown()
    row = shown()
    port = pair.peer.ask("show", "interfaces", "details")["lldp"][0]["interface"][0]["port"][0]
    assert row["macPhy"]["mauTypeName"] == "10GBASE-T"
    assert port["auto-negotiation"][0]["current"][0]["value"].startswith("10GbaseT ")
    assert row["macPhy"]["autoNegotiation"]["advertised"] == ["other"]
    assert row["linkAggregation"] == {"capable": True, "enabled": False, "portId": 0}

    power = row["powerViaMdi"]
    assert {"portClass": "PD", "pair": "spare", "class": "class 3", "type": "type 2 PD",
            "source": "PSE", "priority": "low", "requestedWatts": 12.9}.items() <= power.items()

    coordinates, address = row["location"]["coordinates"], row["location"]["civicAddress"]
    for name, true in (("latitude", 48.85667), ("longitude", -2.2014), ("altitude", 117.47)):
        told = coordinates[name]
        assert abs(told["value"] - true) <= told["uncertainty"] < 0.01, name
    assert (coordinates["altitude"]["unit"], coordinates["datum"]) == ("metres", "WGS 84")
    assert (address["of"], address["country"]) == ("client", "US")
    assert {e["name"]: e["value"] for e in address["elements"]} == {
        "city": "Roseville", "street group": "Commercial Road"}
    assert row["location"]["elin"] == "12345678911"

    words = pair.agent.lldp("show", "neighbors", "Ethernet1", "detail")
    for line in ("VLAN name 20: voice", "Power via MDI type type 2 PD, source PSE, priority low",
                 "Network policy voice: tagged, VLAN 500, priority 5, DSCP 46",
                 "Location address city: Roseville", "Location ELIN 12345678911",
                 "Serial number sn-4"):
        assert line in " ".join(words.split()), words


def test_the_peer_reads_the_agent(pair):
    set_power_aside(pair.agent, 300)

    def whole():
        seen = pair.peer.neighbour()
        port = seen.get("port", [{}])[0]
        return "lldp-med" in seen and "allocated" in port.get("power", [{}])[0] and seen

    seen = eventually(whole, 10)
    assert seen, pair.peer.neighbour()
    size = pair.agent.lldp_json("show", "local")["local"]["ports"][0]["maximumFrameSize"]
    assert seen["port"][0]["mfs"] == [{"value": str(size)}]
    power = seen["port"][0]["power"][0]
    assert power["supported"] and power["enabled"] and not power["paircontrol"]
    assert {name: power[name][0]["value"] for name in (
        "device-type", "pairs", "class", "power-type", "requested", "allocated")} == {
        "device-type": "PSE", "pairs": "signal", "class": "class 0", "power-type": "2",
        "requested": "12900", "allocated": "30000"}
    assert seen["lldp-med"] == [{
        "device-type": [{"value": "Network Connectivity Device"}],
        "capability": [{"type": "Capabilities", "available": True}]}]


def test_a_telephone_makes_the_port_speak_lldp_med_and_its_silence_ends_it(bench):
    bench.agent.configure(messageTxInterval=1)
    wire = bench.wire()
    speaks = lambda tlvs: (MED, 1) in tlvs  # noqa: E731
    assert heard(wire, lambda tlvs: not speaks(tlvs)), "nobody has asked"
    wire.send(frame("02:00:00:00:00:01", "phone", 3, "telephone",
                    organisation(MED, 1, "0033" "03"), organisation(MED, 2, "014028ae"),
                    organisation(MED, 10, b"desk telephone".hex())))
    answer = heard(wire, speaks)
    assert answer and sent(answer)[(MED, 1)] == bytes.fromhex("000104")

    (row,) = bench.agent.lldp_json("show", "neighbors", "Ethernet1")["neighbors"]
    assert row["medCapabilities"]["deviceClass"] == "endpoint class III"
    assert row["modelName"] == "desk telephone"
    assert row["networkPolicies"] == [
        {"applicationNumber": 1, "application": "voice", "unknown": False, "tagged": True,
         "vlanId": 20, "priority": 2, "dscp": 46}]

    assert heard(wire, lambda tlvs: not speaks(tlvs)), "the telephone is silent, and so is it not"
    assert not bench.agent.neighbours("Ethernet1")
