"""The process and the operator's ways into it: start, stop, errors, management API, command."""

import json
import signal
import socket
import subprocess

import pytest

from agent import AGENTD, LLDP, request
from frames import frame
from netns import eventually


def refused(scene, namespace, devices, *options, **more):
    """Starts an agent that must refuse to start; returns the line it says."""
    agent = scene.agent(namespace, devices, *options, **more)
    done = subprocess.run(agent.command, capture_output=True, text=True, timeout=10)
    assert done.returncode == 1, done
    (line,) = done.stderr.splitlines()
    assert line.startswith("lldp-agentd: "), line
    return line


@pytest.mark.parametrize("devices, options, words", [
    (["nodevice0"], [], ["nodevice0"]),
    (["lo"], ["--module", "/nowhere/module.so"], ["/nowhere/module.so"]),
    (["lo"], ["--surprise"], ["--surprise"]),
])
def test_a_start_that_cannot_be_is_refused_in_one_line(scene, devices, options, words):
    line = refused(scene, scene.namespace("near"), devices, *options)
    assert all(word in line for word in words), line


CONFIG_PATH = "l2discovery/lldp/cliConfig"


@pytest.mark.parametrize("text, words", [
    (f'{{\n "{CONFIG_PATH}": {{\n  "messageTxInterval": 0}}}}',
     f":3: {CONFIG_PATH}.messageTxInterval: expected a whole number from 1 to 3600, got 0"),
    (None, "no such file"),
])
def test_a_broken_file_stops_the_start_in_one_line(scene, text, words):
    file = scene.folder() / "named.json"
    if text is not None:
        file.write_text(text)
    line = refused(scene, scene.namespace("near"), ["lo"], "--config", file)
    assert str(file) in line and words in line


def test_a_second_process_on_the_same_socket_is_refused(bench):
    line = refused(bench.scene, bench.near, ["eth1"], "--socket", bench.agent.socket)
    assert str(bench.agent.socket) in line
    assert bench.agent.serves(), "the first goes on"


def test_a_socket_left_by_a_dead_process_is_taken_over(bench):
    bench.agent.process.send_signal(signal.SIGKILL)
    bench.agent.process.wait()
    again = bench.scene.agent(bench.near, {"Ethernet1": "eth1"}, folder=bench.agent.folder).start()
    assert again.stop() == 0
    bench.agent.process = None


@pytest.mark.parametrize("how", [signal.SIGTERM, signal.SIGINT])
def test_an_orderly_stop(bench, how):
    bench.wire().send(frame(name="hello"))
    assert eventually(lambda: bench.agent.neighbours("Ethernet1"), 3)
    bench.agent.process.send_signal(how)
    assert bench.agent.process.wait(5) == 0
    assert not bench.agent.socket.exists()


def test_readiness_is_told_when_the_api_serves(bench, tmp_path, monkeypatch):
    with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as notify:
        notify.bind(str(tmp_path / "notify"))
        notify.settimeout(10)
        monkeypatch.setenv("NOTIFY_SOCKET", str(tmp_path / "notify"))
        agent = bench.scene.agent(bench.near, ["eth2"])
        agent.process = subprocess.Popen(agent.command, stdin=subprocess.DEVNULL)
        assert b"READY=1" in notify.recv(4096).splitlines()
        assert request(agent.socket, "GET", "/v1/paths")[0] == 200


def test_help_teaches():
    for program in (AGENTD, LLDP):
        done = subprocess.run([program, "--help"], capture_output=True, text=True, timeout=5)
        assert done.returncode == 0
    done = subprocess.run([AGENTD, "--help"], capture_output=True, text=True, timeout=5)
    for option in ("--port", "--cell", "--socket", "--run-dir", "--state-dir", "--config",
                   "--trace", "--feeders", "--module", "--read-socket", "--read-group",
                   "--write-group", "--redundancy"):
        assert option in done.stdout


def test_show(bench):
    bench.wire("eth2").send(frame("02:11:22:33:44:55", "port-7", 90, "rack-4"))
    assert eventually(lambda: bench.agent.neighbours("Ethernet2"), 3)
    show = bench.agent.lldp
    assert {"Ethernet2", "rack-4", "port-7"} <= set(show("show", "neighbors").split())
    assert "rack-4" in show("show", "neighbors", "Ethernet2")
    assert "rack-4" not in show("show", "neighbors", "Ethernet1")
    assert bench.agent.hostname in show("show", "local")
    assert "Ethernet1" in show("show", "local", "Ethernet1")
    assert "Ethernet2" in show("show", "statistics")
    for what in ("neighbors", "local", "statistics"):
        assert bench.agent.lldp_json("show", what)
        assert bench.agent.lldp_json("show", what, "Ethernet2")


def test_every_path_can_be_read_with_curl(bench):
    def curl(path):
        done = subprocess.run(["curl", "-sS", "-f", "--unix-socket", bench.agent.socket,
                               f"http://switch{path}"], capture_output=True, text=True, timeout=10)
        assert done.returncode == 0, (path, done.stderr)
        return json.loads(done.stdout)

    paths = curl("/v1/paths")
    paths = paths.get("paths", paths) if isinstance(paths, dict) else paths
    assert len(paths) >= 20
    for path in paths:
        path = path if isinstance(path, str) else path["path"]
        assert isinstance(curl(f"/v1/entity/{path}"), dict), path
