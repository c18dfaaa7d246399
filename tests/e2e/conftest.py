"""Shared scenery: namespaces, cables and the agent, made for a test and removed after it."""

import os
import pathlib
import shutil
import tempfile

import pytest

from agent import AGENTD, Agent
from netns import Namespace, Wire, cable
from peer import Peer


def pytest_sessionstart(session):
    if os.geteuid() != 0:
        pytest.exit("the end-to-end tests need root rights, for network namespaces", 1)
    if not AGENTD.exists():
        pytest.exit(f"there is no {AGENTD}: build the release preset first", 1)


class Scene:
    """Makes things and takes them away again, the latest first."""

    def __init__(self):
        # Short, for the sockets in it, and open to the peer, which gives up its root rights.
        self._folder = pathlib.Path(tempfile.mkdtemp(prefix="lldp-e2e-"))
        self._folder.chmod(0o755)
        self._undo, self._count = [lambda: shutil.rmtree(self._folder)], 0

    def namespace(self, name):
        made = Namespace(name)
        self._undo.append(made.delete)
        return made

    def folder(self):
        self._count += 1
        made = self._folder / str(self._count)
        made.mkdir()
        return made

    def agent(self, namespace, devices, *options, **more):
        """An agent that is to be started; it may share a folder with an earlier one."""
        folder = more.pop("folder", None) or self.folder()
        made = Agent(namespace, folder, devices, *options, **more)
        self._undo.append(lambda: self._end(made))
        return made

    def peer(self, namespace, device, *options, **more):
        made = Peer(namespace, self.folder(), device, *options, **more)
        self._undo.append(made.kill)
        return made

    def wire(self, namespace, device):
        made = Wire(namespace, device)
        self._undo.append(made.close)
        return made

    def at_end(self, undo):
        self._undo.append(undo)

    def watch(self, agent, *words):
        made = agent.watch(*words)
        self._undo.append(made.close)
        return made

    @staticmethod
    def _end(agent):
        if agent.process is None:
            return
        died = agent.process.poll()
        if died is None:
            agent.process.kill()
            agent.process.wait()
        # Orderly ends are 0 or a refused start; a crash in any test is that test's failure.
        assert died in (None, 0, 1), f"the agent died ({died}):\n{agent.words()[-2000:]}"

    def close(self):
        failure = None
        for undo in reversed(self._undo):
            try:
                undo()
            except AssertionError as error:
                failure = failure or error
        if failure:
            raise failure


@pytest.fixture
def scene():
    made = Scene()
    yield made
    made.close()


class Bench:
    """A switch with two ports, the far ends of whose cables are in the test's hands."""

    def __init__(self, scene, *options):
        self.scene = scene
        self.near, self.far = scene.namespace("near"), scene.namespace("far")
        for device in ("eth1", "eth2"):
            cable(self.near, device, self.far, device)
        self.agent = scene.agent(self.near, {"Ethernet1": "eth1", "Ethernet2": "eth2"}, *options)
        self.agent.start()

    def wire(self, device="eth1"):
        return self.scene.wire(self.far, device)


class Pair:
    """An agent and an independent peer, each on one end of a cable."""

    def __init__(self, scene, agent_options=(), peer_options=(), spare=()):
        self.scene = scene
        self.near, self.far = scene.namespace("near"), scene.namespace("far")
        devices = ("eth1", *spare)
        for device in devices:
            cable(self.near, device, self.far, device)
        names = {f"Ethernet{number}": device for number, device in enumerate(devices, 1)}
        self.agent = scene.agent(self.near, names, *agent_options).start()
        # With a device its address may go, and with that the chassis; the peer soon forgets it.
        self.agent.configure(messageTxInterval=1, messageTxHoldTime=3)
        self.peer = scene.peer(self.far, "eth1", *peer_options).start()


@pytest.fixture(scope="module")
def lasting_scene():
    """One for all tests of a file."""
    made = Scene()
    yield made
    made.close()


@pytest.fixture
def bench(scene):
    return Bench(scene)
