"""The process and the operator's ways into it: start, stop, errors, management API, command."""

import json
import os
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
    (["lo"], ["--cell", "3"], ["--cell", "3"]),
    (["lo"], ["--port", "Ethernet1"], ["--port", "Ethernet1"]),
    (["lo"], ["--module", "/nowhere/module.so"], ["/nowhere/module.so"]),
    (["lo"], ["--feeders", "dreams"], ["dreams"]),
    (["lo"], ["--trace", "Nothing"], ["Nothing"]),
    (["lo"], ["--surprise"], ["--surprise"]),
    ([], ["--module"], ["--module", "needs a value"]),
    (["lo"], ["--read-group", "no-such-group"], ["--read-group", "no-such-group"]),
])
def test_a_start_that_cannot_be_is_refused_in_one_line(scene, devices, options, words):
    line = refused(scene, scene.namespace("near"), devices, *options)
    assert all(word in line for word in words), line


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


def test_an_unwritable_run_time_folder_is_refused(scene):
    space, folder = scene.namespace("near"), scene.folder()
    blocked = folder / "file" / "run"
    (folder / "file").write_text("no folder")
    assert str(blocked) in refused(scene, space, ["lo"], "--run-dir", blocked)


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
                   "--write-group"):
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


@pytest.mark.parametrize("words", [["show", "neighbors", "Ethernet77"], ["show", "nothing"]])
def test_the_command_refuses_in_one_clear_line(bench, words):
    done = subprocess.run([LLDP, "--socket", bench.agent.socket, *words], capture_output=True,
                          text=True, timeout=10)
    assert done.returncode != 0 and words[-1] in done.stderr, done


def test_the_command_without_an_agent_says_so(tmp_path):
    missing = tmp_path / "nobody.sock"
    done = subprocess.run([LLDP, "--socket", missing, "show", "neighbors"], capture_output=True,
                          text=True, timeout=10)
    assert done.returncode == 1 and str(missing) in done.stderr
    assert len(done.stderr.splitlines()) == 1


CONFIG = "/v1/entity/l2discovery/lldp/cliConfig"


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


@pytest.mark.parametrize("method, path, body, code, words", [
    ("PATCH", CONFIG, {"messageTxInterval": -1}, 4, ["messageTxInterval", "-1", "3600"]),
    ("PATCH", CONFIG, {"messageTxInterval": 1 << 32}, 4, ["messageTxInterval", "4294967296"]),
    ("PATCH", CONFIG, {"messageTxInterval": "soon"}, 4, ["messageTxInterval", "soon"]),
    ("PATCH", CONFIG, {"messageTxHoldTime": 77, "enabled": 3}, 4, ["enabled", "3"]),
    ("PATCH", CONFIG, {"noSuchThing": 1}, 4, ["noSuchThing"]),
    ("PATCH", CONFIG, b"{", 4, []),
    ("PATCH", CONFIG, b"[]", 4, []),
    ("PATCH", CONFIG, b"[" * 100_000, 4, []),
    ("PATCH", "/v1/entity/l2discovery/lldp/localSystem", {"sysName": "forged"}, 4, []),
    ("GET", "/v1/entity/no/such/path", None, 4, ["no/such/path"]),
    ("GET", "/v1/entity/l2discovery/lldp/cliConfig/cliPortConfig/Ethernet1", None, 4, []),
    ("GET", "/../../etc/passwd", None, 4, []),
    ("DELETE", CONFIG, None, 4, []),
    ("POST", CONFIG, {}, 4, []),
    ("PUT", CONFIG + "/cliPortConfig/Ethernet1", {"adminStatus": "perhaps"}, 4,
     ["adminStatus", "perhaps", "txAndRx"]),
    ("PUT", CONFIG + "/cliPortConfig/no%20interface", {}, 4, ["no interface"]),
])
def test_a_bad_request_changes_nothing_and_says_why(bench, method, path, body, code, words):
    before = request(bench.agent.socket, "GET", CONFIG)
    status, answer = request(bench.agent.socket, method, path, body)
    assert status // 100 == code and "error" in answer, (status, answer)
    said = json.dumps(answer)
    assert all(word in said for word in words), said
    assert request(bench.agent.socket, "GET", CONFIG) == before


def test_what_is_no_http_does_no_harm(bench):
    clients = []
    for octets in (b"\x00" * 5000, b"GET " + b"x" * 100_000, b"PATCH / HTTP/1.1\r\n",
                   b"POST / HTTP/1.1\r\nContent-Length: 99999999999\r\n\r\n", b""):
        client = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        clients.append(client)
        client.settimeout(2)
        client.connect(str(bench.agent.socket))
        try:
            client.sendall(octets)
        except OSError:
            pass  # hung up on, as it should be
    assert bench.agent.serves()
    for client in clients:
        client.close()
    assert bench.agent.serves()


def test_the_socket_is_not_for_everyone(bench):
    assert os.stat(bench.agent.socket).st_mode & 0o007 == 0
