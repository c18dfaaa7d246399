"""Streams of the management API, and who may do what through which socket."""

import os
import subprocess

from agent import Stream, request

CONFIG = "/v1/entity/l2discovery/lldp/cliConfig"


def test_any_entity_can_be_followed(bench):
    stream = bench.agent.stream("/v1/stream/l2discovery/lldp/cliConfig")
    bench.agent.configure(messageTxInterval=7)
    assert stream.next() == ("changed", {"path": "l2discovery/lldp/cliConfig/messageTxInterval",
                                         "value": 7})


def test_the_two_sockets_have_their_groups_and_rights(bench, scene):
    agent = scene.agent(bench.near, {"Ethernet1": "eth1"}, "--read-group", "games",
                        "--write-group", "operator").start()
    reading = agent.folder / "read.sock"

    def ask(group, path, *words):
        """The status of a request by a user with no rights but those of the group; 0: no way in."""
        done = subprocess.run(["setpriv", "--reuid", "65534", "--regid", group, "--clear-groups",
                               "curl", "-sS", "-m", "5", "-o", "/dev/null", "-w", "%{http_code}",
                               "--unix-socket", path, *words], capture_output=True, text=True,
                              timeout=10)
        return int(done.stdout)

    read = [f"http://switch{CONFIG}"]
    write = ["-X", "PATCH", "-d", '{"messageTxInterval": 9}', *read]
    rights = {(group, path.name): (ask(group, path, *read), ask(group, path, *write))
              for group in ("games", "operator", "nogroup") for path in (agent.socket, reading)}
    assert rights == {
        ("games", "api.sock"): (0, 0), ("games", "read.sock"): (200, 403),
        ("operator", "api.sock"): (200, 204), ("operator", "read.sock"): (0, 0),
        ("nogroup", "api.sock"): (0, 0), ("nogroup", "read.sock"): (0, 0),
    }
    status, answer = request(reading, "DELETE", CONFIG)
    assert status == 403 and str(agent.socket) in answer["error"]["message"]
    events = Stream(reading, "/v1/events?standing=1")
    assert events.next()[0] == "port-up"
    assert agent.stop() == 0
    assert not os.path.exists(reading)
