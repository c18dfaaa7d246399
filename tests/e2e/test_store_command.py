"""The operator's command at a state store, without the agent's socket: lldp --store URL."""

import json
import os
import signal
import subprocess
import time

import pytest

from agent import LLDP, Lines
from frames import frame
from netns import eventually
from conftest import Bench
from redis_server import RedisServer


def run(store, *words, **environment):
    return subprocess.run([LLDP, "--store", store, *words], capture_output=True, text=True,
                          timeout=30, env={**os.environ, **environment})


def gateways():
    """Process ids of all gateways."""
    found = set()
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{name}/cmdline", "rb") as words:
                if b"--gateway" in words.read().split(b"\0"):
                    found.add(int(name))
        except OSError:
            pass
    return found


@pytest.fixture
def server(scene):
    made = RedisServer(scene.folder())
    made.start()
    yield made
    made.stop()


def test_show_set_clear_and_watch_without_the_agents_socket(scene, server, tmp_path):
    store = f"unix:{server.socket}"
    bench = Bench(scene, "--store", store, "--redundancy", "active")
    agent, wire = bench.agent, bench.wire()
    before = gateways()

    def lldp(*words):
        done = run(store, *words, TMPDIR=str(tmp_path))
        assert done.returncode == 0, done.stderr
        return done.stdout

    events = Lines(LLDP, "--store", store, "watch", "--standing", "--json")
    try:
        while json.loads(events.next())["event"] != "standing-end":
            pass
        wire.send(frame(name="peer"))
        assert json.loads(events.next())["event"] == "neighbor-added"

        neighbors = json.loads(lldp("show", "neighbors", "--json"))["neighbors"]
        assert [(one["port"], one["systemName"]) for one in neighbors] == [("Ethernet1", "peer")]
        assert -1 < neighbors[0]["ageSeconds"] < 10, "one clock"
        interfaces = json.loads(lldp("show", "interfaces", "--json"))
        assert interfaces == agent.lldp_json("show", "interfaces")
        roles = json.loads(lldp("debug", "redundancy", "--json"))["redundancy"]
        assert roles[0] == {"cell": 1, "protocol": "protocolHotStandby", "mode": "modeActive"}

        lldp("set", "interval", "7", "port", "Ethernet2", "status", "receive")
        assert eventually(lambda: agent.get("l2discovery/lldp/config")["messageTxInterval"] == 7)
        assert agent.lldp("show", "config") == lldp("show", "config")
        assert "interval 7" in lldp("show", "config")

        assert lldp("clear", "neighbors") == "1 neighbor cleared\n"
        assert agent.neighbours("Ethernet1") == []
        gone = json.loads(events.next())
        assert (gone["event"], gone["reason"]) == ("neighbor-gone", "byAgent")

        for words, said in (
                (("config", "save"), "keeps the settings by itself"),
                (("trace",), "--socket PATH"),
                (("show", "neighbors", "Ethernet9"), "no port 'Ethernet9'")):
            refused = run(store, *words)
            assert (refused.returncode, refused.stdout) == (1, "") and said in refused.stderr
    finally:
        events.close()  # with SIGKILL
    assert eventually(lambda: gateways() <= before), "a gateway outlives its command"
    assert list(tmp_path.iterdir()) == []


def test_a_store_that_is_not_to_be_had_is_told_in_one_line(scene, server, tmp_path):
    store, before = f"unix:{server.socket}", gateways()
    server.client.config_set("requirepass", "secret")
    server.client.auth("secret")
    password = tmp_path / "password"
    password.write_text("secret\n")
    assert run(store, "show", "neighbors", "--store-password-file", password).returncode == 0
    for url, said in ((f"unix:{tmp_path}/none", f"unix:{tmp_path}/none is not reached"),
                      ("redis://127.0.0.1:1", "127.0.0.1:1/0 is not reached"),
                      (store, "refuses access"),
                      ("carrier-pigeon", "expected redis://")):
        begin = time.monotonic()
        done = run(url, "show", "neighbors")
        assert (done.returncode, done.stdout) == (1, "")
        assert done.stderr.startswith("lldp: ") and said in done.stderr, done.stderr
        assert done.stderr.count("\n") == 1
        assert time.monotonic() - begin < 5, "nobody waits for a store that refuses"
    server.process.send_signal(signal.SIGSTOP)
    try:
        done = run(store, "show", "neighbors")
        assert done.returncode == 1 and "does not answer" in done.stderr, done.stderr
    finally:
        server.process.send_signal(signal.SIGCONT)
    assert eventually(lambda: gateways() <= before)


def test_a_change_that_the_store_refuses_is_no_success(server):
    store = f"unix:{server.socket}"
    assert run(store, "set", "interval", "5").returncode == 0
    assert run(store, "show", "config").stdout == "lldp set interval 5\n"
    server.client.config_set("maxmemory", "1")
    done = run(store, "set", "interval", "9")
    assert done.returncode == 1 and "refuses changes" in done.stderr, done.stderr
    server.client.config_set("maxmemory", "0")
    assert run(store, "show", "config").stdout == "lldp set interval 5\n"
