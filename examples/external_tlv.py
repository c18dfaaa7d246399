#!/usr/bin/python3
"""A provider of an external TLV: the agent sends an organisationally specific TLV on a port for as
long as this runs, and need not know what it means.

    examples/external_tlv.py Ethernet1 0a1b2c 1 "rack 7"

PORT, the organisation as six hexadecimal digits, the subtype, and the text of the TLV. Each line
that is then typed becomes the new text. LLDP_SOCKET names the agent's socket. A port that goes and comes
back has the TLV again from the next change of its text on.
"""

import http.client
import json
import os
import signal
import socket
import sys

AGENT = os.environ.get("LLDP_SOCKET", "/run/lldp-agentd/api.sock")
PROVIDER = f"/v1/entity/l2discovery/lldp/externalTlvs/example-{os.getpid()}"


def ask(method, path, body=None):
    connection = http.client.HTTPConnection("switch")
    connection.sock = socket.socket(socket.AF_UNIX)
    connection.sock.connect(AGENT)
    connection.request(method, path, json.dumps(body or {}))
    answer = connection.getresponse()
    if answer.status >= 300:
        sys.exit(answer.read().decode())


def main():
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    port, oui, subtype, text = sys.argv[1:]
    key = {"oui": {"value": int(oui, 16)}, "subtype": int(subtype), "index": 1}
    row = f"{PROVIDER}/externalTlvPortConfig/{port.replace('/', '%2F')}"
    signal.signal(signal.SIGTERM, lambda *_: sys.exit())
    ask("PUT", PROVIDER, {"name": "example"})
    try:
        while True:
            ask("PUT", row, {"tlv": [{"key": key, "orgDefInfo": text}]})
            text = input()
    except (EOFError, KeyboardInterrupt):
        pass
    finally:
        ask("DELETE", PROVIDER)


main()
