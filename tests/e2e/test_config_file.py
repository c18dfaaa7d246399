"""The configuration file: read at the start, written on demand."""

import json
import signal

import pytest

from agent import request
from netns import eventually
from test_process import refused

CLI = "l2discovery/lldp/cliConfig"


@pytest.mark.parametrize("text, words", [
    (f'{{\n "{CLI}": {{\n  "messageTxInterval": 0}}}}',
     f":3: {CLI}.messageTxInterval: expected a whole number from 1 to 3600, got 0"),
    (f'{{\n "{CLI}": {{\n  "enabled" true}}}}', ":3: syntax error"),
    ('{"l2discovery/lldp/localSystem": {}}', ":1: l2discovery/lldp/localSystem: no such"),
    (None, "no such file"),
])
def test_a_broken_file_stops_the_start_in_one_line(scene, text, words):
    file = scene.folder() / "named.json"
    if text is not None:
        file.write_text(text)
    line = refused(scene, scene.namespace("near"), ["lo"], "--config", file)
    assert str(file) in line and words in line


def test_what_is_saved_stands_after_a_restart(bench):
    agent = bench.agent
    agent.configure(messageTxInterval=7)
    status, _ = request(agent.socket, "PUT", f"/v1/entity/{CLI}/cliPortConfig/Ethernet2",
                        {"adminStatus": "disabled"})
    assert status == 201
    status, answer = request(agent.socket, "POST", "/v1/config/save")
    assert (status, answer["file"]) == (200, str(agent.folder / "state" / "config.json"))
    agent.configure(messageTxHoldTime=50)
    # Not even time to say goodbye.
    agent.process.send_signal(signal.SIGKILL)
    agent.process.wait()

    again = bench.scene.agent(bench.near, {"Ethernet1": "eth1", "Ethernet2": "eth2"},
                              folder=agent.folder).start()
    saved = {CLI: {"messageTxInterval": 7,
                   "cliPortConfig": {"Ethernet2": {"adminStatus": "disabled"}}}}
    assert request(again.socket, "GET", "/v1/config") == (200, saved)
    assert json.loads((agent.folder / "state" / "config.json").read_text()) == saved
    # The agent found it at its first look.
    config = again.get("l2discovery/lldp/config")
    assert (config["messageTxInterval"], config["messageTxHoldTime"]) == (7, 120)
    assert eventually(lambda: again.get("l2discovery/lldp/config/portConfig/Ethernet2")
                      ["adminStatus"] == "disabled", 3)
    agent.process = None
