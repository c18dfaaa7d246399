"""The example that follows the merged table in the state store, against a writer in its place."""

import json
import pathlib
import select
import subprocess

import pytest

from redis_server import RedisServer

EXAMPLE = pathlib.Path(__file__).parents[2] / "examples/merged_table.py"
ALL, LOCAL = "l2discovery/lldp/status/all", "l2discovery/lldp/status/local"
PORT = f"{LOCAL}/1/portStatus/Ethernet1"


def name_value(name):
    return json.dumps({"tlvReceived": True, "tlvInfo": name})


def neighbor(index, name):
    row = f"{PORT}/remoteSystem/{index}"
    msap = {"chassisIdentifier": {"subtype": "local", "value": "sw"},
            "portIdentifier": {"subtype": "local", "value": f"p{index}"}}
    return ["make", PORT, f"remoteSystem/{index}", "Lldp::RemoteSystem",
            "set", row, "msap", json.dumps(msap), "set", row, "sysName", name_value(name)]


TREE = ["make", "", LOCAL, "Rex::Dir", "make", "", f"{LOCAL}/1", "Lldp::Status",
        "make", f"{LOCAL}/1", "portStatus/Ethernet1", "Lldp::PortStatus",
        "make", "", ALL, "Lldp::AllStatus",
        "set", ALL, "portStatus/Ethernet1", json.dumps({"path": PORT})]


@pytest.fixture
def server(scene):
    made = RedisServer(scene.folder())
    yield made
    made.stop()


def test_the_table_is_followed_through_changes_and_outages(server):
    def write(*operations):
        life = server.run("life", "made-here")[0]
        assert server.run("change", life, "test", "1", *operations) != "otherLife"

    server.start()
    write(*TREE, *neighbor(1, "first"))
    example = subprocess.Popen([EXAMPLE, f"unix:{server.socket}"], stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL, bufsize=0)

    def line():
        assert select.select([example.stdout], [], [], 20)[0]
        return example.stdout.readline().decode().rstrip("\n")

    try:
        assert line() == "+ Ethernet1  sw  p1  first"
        write(*neighbor(2, "second"))
        assert line() == "+ Ethernet1  sw  p2  second"
        write("set", f"{PORT}/remoteSystem/2", "sysName", name_value("renamed"))
        assert line() == "- Ethernet1  sw  p2  second"
        assert line() == "+ Ethernet1  sw  p2  renamed"
        write("remove", PORT, "remoteSystem/1", "")
        assert line() == "- Ethernet1  sw  p1  first"
        server.client.client_kill_filter(_type="pubsub")
        write("remove", "", f"{LOCAL}/1", "")
        assert line() == "- Ethernet1  sw  p2  renamed"
        server.client.flushall()
        write(*TREE, *neighbor(3, "third"))
        assert line() == "+ Ethernet1  sw  p3  third"
        server.stop()
        server.start()
        write(*TREE)
        assert line() == "- Ethernet1  sw  p3  third"
    finally:
        example.kill()
        example.wait()
