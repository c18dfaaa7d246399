"""A switch with two supervisors: a Redis server and an agent in a namespace for each, with the far
ends of all cables in the test's hands."""

import importlib.util
import json
import pathlib
import select
import time
import urllib.parse

from agent import request
from frames import frame
from netns import cable, eventually
from redis_server import RedisServer

STATUS = "l2discovery/lldp/status"
LEARNED = {"Ethernet1": {"alice"}, "Management1/1": {"bob"}, "Management2/1": {"carol"}}
EXAMPLE = pathlib.Path(__file__).parents[2] / "examples/merged_table.py"


def reader_of(server):
    """A client that follows all rows from now on; the example's."""
    spec = importlib.util.spec_from_file_location("merged_table", EXAMPLE)
    example = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(example)
    return example.Mirror(server, sorted(server.hkeys("state:roots")))


class Chassis:
    """Management ports Management1/1 and Management2/1, and front ports, whose frames reach both."""

    def __init__(self, scene, fronts=1):
        self.scene = scene
        self.redis = RedisServer(scene.folder())
        scene.at_end(self.redis.stop)
        self.far = scene.namespace("far")
        self.fronts = [f"Ethernet{number}" for number in range(1, fronts + 1)]
        self._spaces, self._wires, self._folders = {}, {}, {}
        for cell in (1, 2):
            self._spaces[cell] = scene.namespace(f"cell{cell}")
            self._folders[cell] = scene.folder()
            for port, device in self.devices(cell).items():
                there = f"{device}-{cell}"
                cable(self._spaces[cell], device, self.far, there)
                self._wires[cell, port] = scene.wire(self.far, there)
        self.agents = {}
        self._reader = None

    def devices(self, cell):
        names = {f"Management{cell}/1": "ma1"}
        return names | {port: f"et{number}" for number, port in enumerate(self.fronts, 1)}

    def agent(self, cell, role, *options, store=None):
        """An agent that is to be started, in the place of an earlier one of that cell."""
        made = self.scene.agent(self._spaces[cell], self.devices(cell), "--redundancy", role,
                                "--store", store or self.url(), *options, cell=cell,
                                hostname="chassis", folder=self._folders[cell])
        self.agents[cell] = made
        return made

    def url(self):
        return f"unix:{self.redis.socket}"

    def start(self, interval=1):
        """Cell 1 active and cell 2 standby, with a frame every `interval` seconds."""
        self.redis.start()
        for cell, role in ((1, "active"), (2, "standby")):
            self.agent(cell, role).start()
        assert self.agrees() is True  # and a reader follows from here on
        self.agents[1].configure(messageTxInterval=interval)
        return self

    def wire(self, port, cell):
        return self._wires[cell, port]

    def send(self, port, name, **more):
        """A neighbour speaks. A management port is one cell's, a front port is joined to both."""
        octets = frame(mac=mac_of(name), name=name, **more)
        for (_, other), wire in self._wires.items():
            if other == port:
                wire.send(octets)

    def teach(self, expected, cells=(1, 2), timeout=10):
        """The neighbours speak until all cells show them, and only them."""
        def spoken():
            for port, names in expected.items():
                for name in names:
                    self.send(port, name)
            return all(self.names(cell) == expected for cell in cells)
        return eventually(spoken, timeout, 0.1)

    def names(self, cell):
        """What `lldp` shows in that cell: names of the neighbours by port."""
        found = {}
        for row in self.agents[cell].lldp_json("show", "neighbors")["neighbors"]:
            found.setdefault(row["port"], set()).add(row["systemName"])
        return found

    def shows(self, expected, cells=(1, 2), timeout=10):
        """Whether all cells show these neighbours in time."""
        return eventually(lambda: all(self.names(cell) == expected for cell in cells), timeout)

    def first_frames(self, cell, timeout):
        """When the first frame came out of each front port, as the test's clock shows it."""
        waiting = {self._wires[cell, port]: port for port in self.fronts}
        came, end = {}, time.monotonic() + timeout
        while waiting and (left := end - time.monotonic()) > 0:
            for wire in select.select(list(waiting), [], [], left)[0]:
                if wire.hear(0.001):
                    came[waiting.pop(wire)] = time.monotonic()
        return came

    # --- what the processes have in common

    def disagreement(self):
        """Where an agent, or a reader that follows the changes, differs from what the store holds
        now: the path and the values there. None if nowhere."""
        server = self.redis.client
        self._reader = self._reader or reader_of(server)
        self._reader.catch_up()
        fresh = reader_of(server)
        fresh.load()
        now = {path: row for path, row in fresh.rows.items() if self._reader.is_ours(path)}
        if found := difference(self._reader.rows, now):
            return "a reader", found
        for root in fresh.roots:
            views = [entity_of(fresh.rows, root)]
            for agent in self.agents.values():
                views.append(request(agent.socket, "GET", f"/v1/entity/{root}")[1])
            if found := difference(*map(comparable, views)):
                return root, found
        return None

    def agrees(self, timeout=10):
        end = time.monotonic() + timeout
        while (found := self.disagreement()) and time.monotonic() < end:
            time.sleep(0.05)
        return found is None or found


def mac_of(name):
    return "02:" + ":".join(f"{octet:02x}" for octet in name.encode()[-5:].rjust(5, b"-"))


def entity_of(rows, path):
    """An entity out of the store's rows, as the management API has it."""
    made, directory = {}, rows[path][".type"] == "Rex::Dir"
    for field, text in rows[path].items():
        below = f"{path}/{field}"
        if field == ".type":
            continue
        field = f"entityPtr/{field}" if directory else field
        name, _, key = field.partition("/")
        # An entity behind a single pointer is shown as its type.
        value = entity_of(rows, below) if key and below in rows else json.loads(text)
        if key:
            made.setdefault(name, []).append((urllib.parse.unquote(key), below in rows, value))
        else:
            made[name] = value
    for name, members in made.items():
        if isinstance(members, list) and members and isinstance(members[0], tuple):
            made[name] = collection(members)
    return made


def collection(members):
    """Entities by their keys, values as a list, references as a list of keys."""
    if any(owned for _, owned, _ in members):
        return {key: value for key, _, value in members}
    return [key if isinstance(value, dict) and list(value) == ["path"] else value
            for key, _, value in members]


def comparable(view):
    """Without what is empty, which has no field of its own, and without the order of a list."""
    if isinstance(view, dict) and list(view) == ["key", "value"]:
        return comparable(view["value"])  # of a mapping; in the store the field has the key
    if isinstance(view, dict):
        parts = {key: comparable(value) for key, value in view.items()}
        return {key: value for key, value in parts.items() if value not in ({}, [], None)}
    if isinstance(view, list):
        return sorted(map(comparable, view), key=lambda part: json.dumps(part, sort_keys=True))
    return view


def difference(*views):
    """The smallest part in which the views differ: the keys to it, and what each has there."""
    if all(view == views[0] for view in views):
        return ()
    if all(isinstance(view, dict) for view in views):
        for key in dict.fromkeys(key for view in views for key in view):
            if found := difference(*(view.get(key) for view in views)):
                return (key, *found)
    return (views,)
