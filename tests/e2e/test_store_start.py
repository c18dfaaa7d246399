"""Agents that begin on a state store that is not there, or that they may not use."""

import contextlib
import os
import pathlib
import pty
import subprocess
import time

import pytest

from agent import LLDP
from chassis import LEARNED, Chassis
from netns import eventually


@pytest.fixture
def fresh(scene):
    return Chassis(scene)


def test_agents_wait_for_the_store_and_begin_at_once(fresh):
    for cell, role in ((1, "active"), (2, "standby")):
        fresh.agent(cell, role).launch()
    words = f"waiting for the state store at {fresh.url()}"
    said = lambda: subprocess.run([LLDP, "--socket", fresh.agents[2].socket, "show", "neighbors"],
                                  capture_output=True, text=True)
    assert eventually(lambda: words in said().stderr, 5), said()
    assert said().returncode == 1
    fresh.redis.start()
    for agent in fresh.agents.values():
        assert eventually(agent.serves, 10)
    assert fresh.teach(LEARNED)
    assert fresh.agrees() is True


class Terminal:
    """Standard error of an agent, where it writes its log if that is a terminal."""

    def __init__(self):
        self._ours, self.theirs = pty.openpty()
        os.set_blocking(self._ours, False)
        self._said = b""

    def lines(self, word):
        with contextlib.suppress(BlockingIOError):
            self._said += os.read(self._ours, 65536)
        return [line for line in self._said.decode().splitlines() if word in line]

    def close(self):
        os.close(self._ours)
        os.close(self.theirs)


@pytest.fixture
def terminal():
    made = Terminal()
    yield made
    made.close()


def connections(chassis):
    return int(chassis.redis.client.info("stats")["total_connections_received"])


@pytest.mark.parametrize("url, password, word, reason", [
    ("unix:{}", "wrong", "STATE_STORE_ACCESS_REFUSED", "WRONGPASS"),
    ("unix:{}", None, "STATE_STORE_ACCESS_REFUSED", "NOAUTH"),
    ("unix:{}?database=99", "right", "STATE_STORE_ACCESS_REFUSED", "DB index"),
    ("unix:{}.not", "right", "STATE_STORE_NOT_REACHED", "No such file"),
    ("redis://127.0.0.1:1", "right", "STATE_STORE_NOT_REACHED", ""),
])
def test_a_store_that_cannot_be_used_is_one_line_and_bounded_retries(fresh, terminal, url, password,
                                                                     word, reason):
    fresh.redis.start(password="right")
    options = []
    if password:
        file = fresh.redis.folder / "password"
        file.write_text(password + "\n")
        options = ["--store-password-file", file]
    agent = fresh.agent(1, "active", *options, store=url.format(fresh.redis.socket))
    before = connections(fresh)
    agent.launch(stderr=terminal.theirs)
    assert eventually(lambda: terminal.lines(word), 5)
    time.sleep(1)
    (line,) = terminal.lines("STATE_STORE")
    assert reason in line and "right" not in line and agent.alive()
    if word == "STATE_STORE_ACCESS_REFUSED":  # who does not reach the server is not counted there
        assert 2 < connections(fresh) - before <= 2 * 6, "0.1, 0.2, 0.4, 0.8 seconds apart, shortened"
    assert agent.stop() == 0


def test_the_password_of_a_file(fresh, terminal):
    fresh.redis.start(password="right")
    file = fresh.redis.folder / "password"
    file.write_text("right\nof no meaning\n")
    fresh.agent(1, "active", "--store-password-file", file, store=fresh.url() + "?database=3")
    fresh.agents[1].start(stderr=terminal.theirs)
    assert eventually(lambda: terminal.lines("STATE_STORE_IN_USE"), 5)
    assert b"right" not in pathlib.Path(
        f"/proc/{fresh.agents[1].process.pid}/cmdline").read_bytes()
    assert fresh.redis.client.info("keyspace").keys() == {"db3"}
