"""An independent dissector as the judge of frames."""

import subprocess

from scapy.packet import Raw
from scapy.utils import wrpcap

from frames import split

# IEEE Std 802.3 left Link Aggregation to IEEE Std 802.1AX, and receivers know either.
LINK_AGGREGATION = bytes.fromhex("00120f03")
LINK_AGGREGATION_REMARK = "TLV has been deprecated"


def tshark(capture, *words):
    return subprocess.run(["tshark", "-n", "-r", capture, *words], check=True, text=True,
                          capture_output=True).stdout


def write(tmp_path, frames):
    capture = tmp_path / "frames.pcap"
    wrpcap(str(capture), [Raw(f) for f in frames], linktype=1)
    return capture


def fields(capture, *names):
    """Of each frame its values of these fields, those of one field joined by a bar."""
    wanted = [word for name in names for word in ("-e", name)]
    return [line.split("\t") for line in
            tshark(capture, "-T", "fields", "-E", "aggregator=|", *wanted).splitlines()]


def judge(tmp_path, frames):
    """Asserts that the dissector has nothing to remark, and returns its fields of each frame."""
    capture = write(tmp_path, frames)
    assert tshark(capture, "-Y", "_ws.malformed || eth.padding || !lldp") == "", \
        tshark(capture, "-V")
    for octets, (remarks,) in zip(frames, fields(capture, "_ws.expert.message"), strict=True):
        rows = split(octets[14:])
        assert 0 not in [kind for kind, _ in rows][:-1], f"the frame goes on behind its end: {rows}"
        assert octets[-2:] == b"\x00\x00", "there is no end"
        deprecated = [value for _, value in rows if value.startswith(LINK_AGGREGATION)]
        assert remarks == "|".join([LINK_AGGREGATION_REMARK] * len(deprecated)), \
            tshark(capture, "-V")
    rows = fields(capture, "eth.trailer", "lldp.chassis.id.mac", "lldp.port.id",
                  "lldp.time_to_live")
    # This dissector does not count the End of LLDPDU and the octet before it as its own, whoever
    # sent the frame; any octet too many comes on top of these three.
    assert [row[0] for row in rows] == [octets[-3:].hex() for octets in frames]
    return [row[1:] for row in rows]
