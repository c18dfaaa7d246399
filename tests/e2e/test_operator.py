"""What an operator does with the `lldp` command, against a running agent."""

import json
import signal
import subprocess

import pytest

from agent import LLDP, request
from frames import frame
from netns import eventually

MAC = "02:11:22:33:44:55"
PORTS = {"Ethernet1": "eth1", "Ethernet2": "eth2"}


def test_what_is_shown_can_be_pasted_into_a_fresh_agent(bench, scene):
    agent = bench.agent
    settings = ("interval 10 hold-time 40 tlv system-description off lldp off "
                "management-address interface Vlan10 management-vrf it's "
                "port Ethernet1-3,Management1 status transmit")
    agent.lldp("set", *settings.split())
    shown = agent.lldp("show", "config")
    assert len(shown.splitlines()) == 10, shown

    other = scene.agent(bench.far, PORTS).start()
    pasted = f'lldp() {{ {LLDP} --socket {other.socket} "$@"; }}\nset -e\n{shown}'
    subprocess.run(["bash", "-c", pasted], check=True, timeout=30)
    assert other.lldp("show", "config") == shown
    assert (request(other.socket, "GET", "/v1/config") == request(agent.socket, "GET", "/v1/config"))

    agent.lldp("unset", *("interval hold-time tlv all lldp management-address management-vrf "
                          "port Ethernet1-4,Management1 status").split())
    assert agent.lldp("show", "config") == "# everything has its default\n"


def test_a_silenced_port_is_silent_after_a_restart(bench, scene):
    agent = bench.agent
    agent.lldp("set", "port", "Ethernet1", "status", "receive")
    assert agent.lldp("config", "save") == f"saved to {agent.folder}/state/config.json\n"
    agent.lldp("set", "port", "Ethernet2", "status", "disabled")
    agent.process.send_signal(signal.SIGKILL)
    agent.process.wait()
    agent.process = None

    silent, heard = bench.wire("eth1"), bench.wire("eth2")
    again = scene.agent(bench.near, PORTS, folder=agent.folder).start()
    assert heard.hear(10), "what was not saved is forgotten"
    assert silent.hear(0.01) is None
    rows = {row["port"]: row["adminStatus"] for row in again.lldp_json("show", "interfaces")
            ["interfaces"]}
    assert rows == {"Ethernet1": "rxOnly", "Ethernet2": "txAndRx"}


def test_watch(bench, scene):
    wire, other = bench.wire(), bench.wire("eth2")
    wire.send(frame(MAC, "p", 120, "standing"))
    assert eventually(lambda: bench.agent.neighbours("Ethernet1"), 3)
    watchers = {words: scene.watch(bench.agent, *words.split())
                for words in ("--standing", "--standing --json", "Ethernet1 --standing")}

    def told(words):
        """The next line of a watcher without its time, or the next object in short."""
        line = watchers[words].next()
        if "--json" not in words:
            return line.split("  ", 1)[1]
        view = json.loads(line)
        neighbour = view.get("neighbor", {})
        return (view["event"], view.get("port"), neighbour.get("systemName"),
                view.get("reason") or view.get("changed"))

    def all_tell(text, event, port, *rest):
        if port == "Ethernet1":
            assert told("Ethernet1 --standing") == f"{port}  {text}"
        assert told("--standing") == f"{port}  {text}"
        assert told("--standing --json") == (event, port, *rest, *[None] * (2 - len(rest)))

    who = f"chassis {MAC} (MAC address), port p (interface name)"
    first = {told("--standing") for _ in range(4)}
    end = "this is what stands; from here on what changes"
    assert first == {"Ethernet1  port up", "Ethernet2  port up",
                     f"Ethernet1  neighbor: standing, {who}", end}
    assert {told("Ethernet1 --standing") for _ in range(3)} == first - {"Ethernet2  port up"}
    assert ("neighbor-standing", "Ethernet1", "standing", None) in {
        told("--standing --json") for _ in range(4)}

    wire.send(frame(MAC, "p", 120, "standing"))  # says nothing new
    wire.send(frame(MAC, "p", 120, "new"))
    all_tell("neighbor changed: new: System name: new", "neighbor-changed", "Ethernet1", "new",
             ["systemName"])
    wire.send(frame(MAC, "p", 0))
    all_tell(f"neighbor gone (shut down): new, {who}", "neighbor-gone", "Ethernet1", "new",
             "shutdown")
    other.send(frame(MAC, "p", 120, "elsewhere"))
    all_tell(f"neighbor added: elsewhere, {who}", "neighbor-added", "Ethernet2", "elsewhere")
    assert bench.agent.lldp("clear", "neighbors") == "1 neighbor cleared\n"
    all_tell(f"neighbor gone (cleared): elsewhere, {who}", "neighbor-gone", "Ethernet2",
             "elsewhere", "cleared")
    bench.far.ip("link", "set", "eth2", "down")
    all_tell("port down", "port-down", "Ethernet2")
    bench.far.ip("link", "set", "eth2", "up")
    all_tell("port up", "port-up", "Ethernet2")
    assert bench.agent.stop() == 0
    for words in watchers:
        with pytest.raises(EOFError, match="ended, 1"):
            told(words)


def test_a_shell_completes_commands_settings_and_ports(bench):
    def completed(line):
        words = ["lldp", "--socket", str(bench.agent.socket), *line.split(" ")]
        script = (f'lldp() {{ "{LLDP}" "$@"; }}\nsource <(lldp completion bash)\n'
                  'COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _lldp; echo "${COMPREPLY[@]}"')
        done = subprocess.run(["bash", "-c", script, "bash", *words], capture_output=True,
                              text=True, timeout=10)
        return done.stdout.split()

    assert completed("show ne") == ["neighbors"]
    assert completed("show neighbors Eth") == ["Ethernet1", "Ethernet2"]
    assert completed("set port Ethernet1,Ethernet2 status re") == ["receive"]
    assert completed("unset hold") == ["hold-time"]
    assert "LldpProtocol" in completed("trace ")
