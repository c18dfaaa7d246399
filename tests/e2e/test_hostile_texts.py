"""What a neighbour says is foreign text, wherever it is read: harmless, and still told apart."""

import json
import os
import pty
import re
import subprocess
import threading
import unicodedata

from netns import eventually

# Each differs from another one only in what must not reach the reader as it is.
TEXTS = [b"plain", b"pla\xe2\x80\x8bin", b"nul\x00", b"nul\\x00", b"\x1b[2J", b"\x9b2J", b"\xc2\x9b2J",
         b"\x1b]0;title\x07", b"two\nlines", b"two\r\nlines", b"bro\xff", b"bro\xfe", b"cut\xe2\x80",
         b"right\xe2\x80\xaeleft", b"right\xe2\x80\xableft", b'"quoted"', b"'quoted'", b"%n%s%x",
         b"%%n%s%x", b"del\x7f", b"\b\b\b\b", b"{gr\xc3\xbcn}"]


def tlv(kind, value):
    return (kind << 9 | len(value)).to_bytes(2, "big") + value


def frame_of(text):
    """A frame with the text in every part of it that can hold one."""
    other = 200  # no family of addresses that has a usual form
    address = bytes([1 + len(text), other]) + text + b"\2\0\0\0\7" + bytes([len(text)]) + text
    return (bytes.fromhex("0180c200000e020000000001") + b"\x88\xcc" +
            tlv(1, b"\x07" + text) + tlv(2, b"\x07" + text) + tlv(3, b"\x00\x78") + tlv(4, text) +
            tlv(5, text) + tlv(6, text) + tlv(8, address) + tlv(9, text) +
            tlv(127, b"\x00\x11\x22\x07" + text) + tlv(0, b""))


def said_of(neighbour):
    """The texts of a neighbour under --json, by their places."""
    (address,), (reserved,) = neighbour["managementAddresses"], neighbour["unknownTlvs"]
    (organisation,) = neighbour["unknownOrganizationTlvs"]
    return {"chassis": neighbour["chassis"]["id"], "port": neighbour["portId"]["id"],
            "description": neighbour["portDescription"], "name": neighbour["systemName"],
            "system": neighbour["systemDescription"], "address": address["address"],
            "reserved": reserved["value"], "organisation": organisation["value"]}


def octets_of(printed):
    """What was said, from what `lldp` made of it."""
    return re.sub(rb"\\(x(..)|\\)", lambda m: bytes.fromhex(m[2].decode()) if m[2] else b"\\",
                  printed.encode())


def harmless(octets):
    """The text, when it is one and nothing in it steers a terminal or hides."""
    text = octets.decode("utf-8", "strict")
    bad = {c for c in text if c != "\n" and unicodedata.category(c)[0] == "C"}
    assert not bad, (bad, text)
    return text


class Screen:
    """The terminal that an agent's log and trace go to."""

    def __init__(self):
        self._ours, self.theirs = pty.openpty()
        self._seen = b""
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        try:
            while True:
                self._seen += os.read(self._ours, 65536)
        except OSError:
            pass  # nobody has it open any more

    def text(self):
        return self._seen.replace(b"\r\n", b"\n")  # which the terminal does itself


def test_hostile_texts_are_harmless_and_told_apart_wherever_they_are_read(bench, scene):
    screen = Screen()
    agent = scene.agent(bench.near, {"Ethernet1": "eth1"}, "--trace", "LldpProtocol=all")
    agent.start(stderr=screen.theirs)
    watched = {"text": scene.watch(agent, "--standing"),
               "json": scene.watch(agent, "--standing", "--json")}
    for watcher in watched.values():
        while "stand" not in watcher.next():
            pass
    wire = bench.wire()
    for text in TEXTS:
        wire.send(frame_of(text))
    assert eventually(lambda: len(agent.neighbours("Ethernet1")) == len(TEXTS), 5)

    # Every place has all of it, and by it every text can be told from every other.
    octets = sorted(TEXTS)
    whole = harmless(agent.lldp("show", "neighbors", "--json").encode())
    events = [json.loads(watched["json"].next()) for _ in TEXTS]
    for neighbours in (json.loads(whole)["neighbors"], [event["neighbor"] for event in events]):
        places = [said_of(neighbour) for neighbour in neighbours]
        for place in ("chassis", "port", "description", "name", "system"):
            assert sorted(octets_of(said[place]) for said in places) == octets, place
        for place in ("address", "reserved", "organisation"):
            assert sorted(bytes.fromhex(said[place]) for said in places) == octets, place

    def distinct(text, pattern):
        found = re.findall(pattern, text, re.M)
        assert len(found) == len(set(found)) == len(TEXTS), (pattern, sorted(found))

    distinct(harmless(agent.lldp("show", "neighbors").encode()), r"^Ethernet1 .*?(?= +1\d\d/120)")
    detail = harmless(agent.lldp("show", "neighbors", "detail").encode())
    for label in ("Chassis ID", "Port ID", "Port description", "System name",
                  "System description", "Management address", "Unknown TLV", "Organization TLV"):
        distinct(detail, rf"^  {label}  +(.*)$")
    lines = "\n".join(watched["text"].next() for _ in TEXTS)
    distinct(harmless(lines.encode()), "neighbor added: (.*)$")
    assert eventually(lambda: screen.text().count(b"LLDP_NEIGHBOR_NEW") == len(TEXTS), 3)
    told = harmless(screen.text())
    distinct(told, "^LLDP_NEIGHBOR_NEW: .* with (.*)$")
    for label in ("Port Description", "System Name", "System Description"):
        distinct(told, rf"LldpProtocol 6 {label}: (.*)$")

    # Other tools print the API's answers as they come.
    raw = subprocess.run(["curl", "-sSf", "--unix-socket", agent.socket,
                          f"http://switch/v1/entity/{agent.status_path()}"], capture_output=True,
                         check=True, timeout=10).stdout
    assert len(raw) > 10_000 and raw.isascii() and harmless(raw)
