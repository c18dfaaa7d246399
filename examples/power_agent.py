#!/usr/bin/python3
"""Plays the power agent: tells the agent through the store what a device on a port may draw, as the
program does that feeds the ports of a switch.

    examples/power_agent.py Ethernet1=30 Ethernet2=15.4

PORT=WATTS, the most for a device on that port. One that asks for power by LLDP has what it asks for,
up to that, and the agent sends it the answer; a port on which nobody asks looks for a device. Runs
until it is stopped, and takes its reports back then. LLDP_SOCKET names the agent's socket.
"""

import http.client
import json
import os
import signal
import socket
import sys

AGENT = os.environ.get("LLDP_SOCKET", "/run/lldp-agentd/api.sock")
REPORTS = "/v1/entity/environment/power/status/poePort"
PD = (1, 3)  # types of a device that asks, in the long form of the TLV


def ask(method, path, body=None):
    connection = http.client.HTTPConnection("switch")
    connection.sock = socket.socket(socket.AF_UNIX)
    connection.sock.connect(AGENT)
    connection.request(method, path, body and json.dumps(body))
    answer = connection.getresponse()
    if answer.status >= 300:
        sys.exit(answer.read().decode())
    return answer


def report(port, state, tenths_of_a_watt):
    path = f"{REPORTS}/{port.replace('/', '%2F')}?type=Environment::Power::PoePortStatus"
    status = {"state": state, "allowedPower": tenths_of_a_watt, "powerPair": "poePowerPairSignal"}
    ask("PUT", path, {"portStatus": status})


def events():
    """What stands and then what happens, as (name, data)."""
    name = None
    for line in ask("GET", "/v1/events?standing=1"):
        key, _, value = line.decode().rstrip("\n").partition(": ")
        if key == "event":
            name = value
        elif key == "data":
            yield name, json.loads(value)


def request(neighbor):
    """What the neighbour asks for, in tenths of a watt; None if it is not one that asks."""
    info = neighbor["powerViaMdiInfo"]
    if neighbor["powerViaMdiTlvReceived"] and info["tlvFormat"] and info["powerType"] in PD:
        return info["pdRequestedPower"]
    return None


def answer(port, requests, limit):
    """Reports what the device may draw that asked last, or that the port looks for one."""
    if requests:
        report(port, "poePortDelivering", min(list(requests.values())[-1], limit))
    else:
        report(port, "poePortSearching", 0)


def follow(limits):
    """Answers the devices until the agent stops, or until an event was missed. Nothing is reported
    before all that stands is read: a device that is fed stays so."""
    asking = {port: {} for port in limits}  # what is asked for, by the neighbour's index
    settled = False
    for name, data in events():
        if name == "missed":
            return True
        if name == "standing-end":
            settled = True
            for port in limits:
                answer(port, asking[port], limits[port])
        port = data.get("port")
        if not name.startswith("neighbor-") or port not in limits:
            continue
        requests, index = asking[port], data["neighbor"]["index"]
        now = None if name == "neighbor-gone" else request(data["neighbor"])
        if now == requests.get(index):
            continue
        requests.pop(index, None)
        if now is not None:
            requests[index] = now
        if settled:
            answer(port, requests, limits[port])
    return False


def main():
    limits = {port: round(float(watts) * 10) for port, watts in
              (word.split("=") for word in sys.argv[1:])}
    if not limits:
        sys.exit(__doc__)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit())
    try:
        while follow(limits):
            pass
    except KeyboardInterrupt:
        pass
    finally:
        for port in limits:
            ask("DELETE", f"{REPORTS}/{port.replace('/', '%2F')}")


main()
