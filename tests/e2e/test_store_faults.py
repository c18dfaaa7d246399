"""Faults of the shared state store, and of the agents on it. After each of them both agents and a
fresh read of the store agree, and what was learned is there."""

import contextlib
import os
import pathlib
import random
import signal
import threading
import time

import pytest

from agent import request
from chassis import LEARNED, STATUS, Chassis
from frames import frame
from netns import eventually


@pytest.fixture(scope="module")
def lasting(lasting_scene):
    """One chassis for all faults that the agents live through."""
    chassis = Chassis(lasting_scene).start()
    assert chassis.teach(LEARNED)
    return chassis


@pytest.fixture
def chassis(lasting):
    yield lasting
    assert lasting.shows(LEARNED), [lasting.names(1), lasting.names(2)]
    assert lasting.agrees() is True


@contextlib.contextmanager
def load(chassis):
    """Neighbours of a front port that come, change and go; they are gone at the end."""
    ended = threading.Event()
    template = frame(mac="02:ee:dd:cc:bb:aa", name="name-0000", ttl=120)

    def speak():
        wire, count = chassis.wire("Ethernet1", 1), 0
        while not ended.wait(0.002):
            count += 1
            sender = bytes([2, 0, 0, 0, 1, count % 40])
            wire.send(template.replace(b"\x02\xee\xdd\xcc\xbb\xaa", sender)
                      .replace(b"name-0000", b"name-%04d" % (count % 10_000)))
        for number in range(40):
            sender = f"02:00:00:00:01:{number:02x}"
            wire.send(frame(mac=sender, ttl=0))

    thread = threading.Thread(target=speak)
    thread.start()
    try:
        yield
    finally:
        ended.set()
        thread.join()


def lives(chassis, seconds):
    """Both agents answer at once and send their frames for as long as the store is ill."""
    wires = [chassis.wire("Ethernet1", 1), chassis.wire("Management2/1", 2)]
    for wire in wires:
        wire.drain()
    heard, end = [0, 0], time.monotonic() + seconds
    while time.monotonic() < end:
        for agent in chassis.agents.values():
            asked = time.monotonic()
            assert agent.get("l2discovery/lldp/config") is not None
            assert time.monotonic() - asked < 1
        for number, wire in enumerate(wires):
            heard[number] += wire.hear(0.05) is not None
    assert min(heard) >= int(seconds) - 1, heard


def memory(agent):
    """Octets that the process has in memory."""
    text = pathlib.Path(f"/proc/{agent.process.pid}/status").read_text()
    return int(text.split("VmRSS:")[1].split()[0]) * 1024


@contextlib.contextmanager
def killed(chassis):
    chassis.redis.stop()
    yield
    chassis.redis.start()


@contextlib.contextmanager
def killed_with_its_data(chassis):
    chassis.redis.client.save()
    with killed(chassis):
        yield
    (chassis.redis.folder / "dump.rdb").unlink()


@contextlib.contextmanager
def stopped(chassis):
    chassis.redis.process.send_signal(signal.SIGSTOP)
    yield
    chassis.redis.process.send_signal(signal.SIGCONT)


@contextlib.contextmanager
def paused(chassis):
    chassis.redis.client.client_pause(2500)
    yield
    chassis.redis.client.client_unpause()


@contextlib.contextmanager
def out_of_memory(chassis):
    chassis.redis.client.config_set("maxmemory", 1)
    yield
    chassis.redis.client.config_set("maxmemory", 0)


@pytest.mark.parametrize("fault", [killed, killed_with_its_data, stopped, paused, out_of_memory])
def test_a_store_that_is_not_there_for_a_while(chassis, fault):
    with load(chassis):
        with fault(chassis):
            lives(chassis, 2.5)
        chassis.send("Ethernet1", "alice")  # refreshed


def emptied(chassis):
    chassis.redis.client.flushall()


def cut(chassis):
    for kind in ("normal", "pubsub"):
        chassis.redis.client.client_kill_filter(_type=kind, skipme=True)


def without_scripts(chassis):
    chassis.redis.client.script_flush()


def without_changes(chassis):
    chassis.redis.client.xtrim("state:changes", maxlen=0, approximate=False)


# Memory is what a long row of faults leaves behind, once the first ones have warmed all up.
def test_faults_again_and_again_under_load(chassis):
    def row(times):
        for number in range(times):
            [emptied, cut, without_changes, cut, without_scripts][number % 5](chassis)
            time.sleep(chance.uniform(0, 0.2))

    chance = random.Random(7)
    with load(chassis):
        row(10)
        before = {cell: memory(agent) for cell, agent in chassis.agents.items()}
        row(30)
        grown = {cell: memory(agent) - before[cell] for cell, agent in chassis.agents.items()}
    print("memory grew by", grown)
    assert max(grown.values()) < 8 << 20


def modes(chassis):
    rows = chassis.agents[1].lldp_json("debug", "redundancy")["redundancy"]
    return [row["mode"] for row in rows]


ACTIVE_STANDBY = ["modeActive", "modeStandby"]


def back_to_cell_1(chassis):
    """Has cell 1 be active again, with what was learned."""
    began = chassis.agents[2].began()
    chassis.agents[1].lldp("debug", "redundancy", "active")
    assert eventually(lambda: chassis.agents[2].began() > began, 10)
    assert modes(chassis) == ACTIVE_STANDBY
    chassis.agents[1].lldp("clear", "neighbors")
    assert chassis.teach(LEARNED)


# It wakes up as one that was active, with changes of its own to send, and finds that it is not.
@pytest.mark.parametrize("missed", [lambda chassis: None, without_changes, emptied],
                         ids=["nothing missed", "changes missed", "emptied"])
def test_an_active_agent_that_slept_through_a_switchover_writes_nothing(chassis, missed):
    active, standby = chassis.agents[1], chassis.agents[2]
    began, pid = active.began(), request(active.socket, "GET", "/v1/agent")[1]["pid"]
    os.kill(pid, signal.SIGSTOP)
    standby.lldp("debug", "redundancy", "active")
    assert eventually(lambda: chassis.wire("Ethernet1", 2).hear(0.1), 5)
    for port in ("Management1/1", "Ethernet1"):
        chassis.send(port, "late")
    missed(chassis)
    assert eventually(lambda: chassis.redis.client.exists("state:roots"), 5)
    os.kill(pid, signal.SIGCONT)
    assert eventually(lambda: active.began() > began, 10)
    assert modes(chassis) == ACTIVE_STANDBY[::-1]
    assert chassis.agrees() is True
    back_to_cell_1(chassis)


# The standby is promoted at once, and the store hears of it later.
def test_a_switchover_while_the_store_is_silent(chassis):
    began = chassis.agents[1].began()
    with stopped(chassis):
        chassis.agents[2].lldp("debug", "redundancy", "active")
        assert eventually(lambda: chassis.wire("Ethernet1", 2).hear(0.1), 5)
    assert eventually(lambda: chassis.agents[1].began() > began, 10)
    assert modes(chassis) == ACTIVE_STANDBY[::-1]
    back_to_cell_1(chassis)


# Under load, at moments drawn at random. What the store keeps is what the next process begins with.
def test_agents_that_die_at_any_moment(chassis):
    chance = random.Random(11)
    counted = f"{STATUS}/local/1/remTablesInserts"
    with load(chassis):
        for number in range(6):
            time.sleep(chance.uniform(0, 0.3))
            cell, inserts = 1 + number % 2, chassis.agents[2 - number % 2].get(counted)
            chassis.agents[cell].kill()
            chassis.agent(cell, "standby").start()  # the store knows its role
            assert eventually(lambda: chassis.agents[cell].get(counted) >= inserts, 5)
    assert modes(chassis) == ACTIVE_STANDBY
