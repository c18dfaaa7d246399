"""LLDP frames, made by an implementation that is not ours."""

from scapy.config import conf
from scapy.contrib import lldp
from scapy.layers.l2 import Dot1Q, Ether
from scapy.packet import Raw

# Rows of malformed frames are wanted here: the forge is not to judge what it makes.
conf.contribs["LLDP"].strict_mode_disable()

DOT1, DOT3, MED = 0x0080C2, 0x00120F, 0x0012BB
MULTICAST = "01:80:c2:00:00:0e"
MAC = "02:00:00:00:00:01"


def tlvs(mac=MAC, port="port-1", ttl=120, name=None, *more):
    """An LLDPDU of the mandatory parts, a system name if given, and the packets in more."""
    made = (lldp.LLDPDUChassisID(subtype=4, id=mac) /
            lldp.LLDPDUPortID(subtype=5, id=port) /
            lldp.LLDPDUTimeToLive(ttl=ttl))
    if name is not None:
        made /= lldp.LLDPDUSystemName(system_name=name)
    for layer in more:
        made /= layer
    return made / lldp.LLDPDUEndOfLLDPDU()


def frame(mac=MAC, port="port-1", ttl=120, name=None, *more, vlans=(), destination=MULTICAST,
          ethertype=0x88CC):
    """A whole frame as bytes, tagged once for each of vlans."""
    made = Ether(dst=destination, src=mac)
    for vlan in vlans:
        made /= Dot1Q(vlan=vlan, prio=6)
    made.lastlayer().type = ethertype
    return bytes(made / Raw(bytes(tlvs(mac, port, ttl, name, *more))))


def organisation(oui, subtype, content):
    """An organisation's TLV; content as hexadecimal digits."""
    return lldp.LLDPDUGenericOrganisationSpecific(org_code=oui, subtype=subtype,
                                                  data=bytes.fromhex(content))


def numbered(number):
    """A cheap different sender for each number, for floods and bursts."""
    mac = number.to_bytes(6, "big", signed=False)
    sender = b"\x02" + mac[1:]
    return _TEMPLATE.replace(_PLACE, sender)


_PLACE = bytes.fromhex("02eeddccbbaa")
_TEMPLATE = frame("02:ee:dd:cc:bb:aa", "burst", 120, "one of many")


def split(lldpdu):
    """The (type, value) rows of an LLDPDU; asserts that they fill it to its last octet."""
    rows, at = [], 0
    while at < len(lldpdu):
        assert at + 2 <= len(lldpdu), f"half a TLV header at octet {at}"
        header = int.from_bytes(lldpdu[at:at + 2], "big")
        kind, length = header >> 9, header & 0x1FF
        assert at + 2 + length <= len(lldpdu), f"TLV {kind} at octet {at} ends beyond the frame"
        rows.append((kind, lldpdu[at + 2:at + 2 + length]))
        at += 2 + length
    return rows
