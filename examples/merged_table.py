#!/usr/bin/python3
"""Prints the neighbors on the ports of all supervisors, out of the shared state store, and then each
change of the table: "+" and the row, "-" and what is gone. docs/state-store.md has the protocol.

    examples/merged_table.py unix:/run/redis/redis.sock
    examples/merged_table.py redis://:password@10.0.0.1

It goes on after the connection was lost or the store emptied.
"""

import json
import pathlib
import re
import signal
import sys
import time

import redis

SCRIPTS = pathlib.Path(__file__).parents[1] / "platform/Redis"
TABLE = "l2discovery/lldp/status/all"
OWNED = re.compile(r'"\w+::[\w:]+"$', re.ASCII)  # the type of a row below
ROOTS = [TABLE, "l2discovery/lldp/status/local"]  # the table, and what it refers to


class Mirror:
    """The rows of some roots, as a dictionary of fields by path."""

    def __init__(self, server, roots):
        self.server, self.roots, self.rows, self.life, self.last = server, roots, {}, "", ""
        self.life_script, self.read_script = (
            server.register_script((SCRIPTS / f"{name}.lua").read_text()) for name in ("life", "read"))

    def load(self):
        """Of one moment only when the changes since its begin were applied, too."""
        self.life, self.last = self.life_script(args=[f"{time.time_ns():x}"])
        self.rows, waiting = {}, list(self.roots)
        while waiting:
            piece, waiting = waiting[:128], waiting[128:]
            pipeline = self.server.pipeline(transaction=False)
            for path in piece:
                pipeline.hgetall("state:row:" + path)
            for path, row in zip(piece, pipeline.execute()):
                if ".type" in row:
                    self.rows[path] = row
                    waiting += [f"{path}/{field}" for field, value in row.items() if OWNED.match(value)]

    def catch_up(self):
        """Reads until there is nothing to read; loads all again where that is not enough."""
        while True:
            entries = self.life and self.read_script(args=[self.life, self.last, 500])
            if not self.life or entries == "gone":
                self.load()
            elif not entries:
                return
            else:
                for self.last, words in entries:
                    self.apply(words)

    def apply(self, words):
        start = 6 if words[4:5] == ["m"] else 4  # behind writer, number, and that more follow
        if words[0] != "w" or len(words[start:]) % 4:
            return  # no change
        for i in range(start, len(words), 4):
            kind, row, field, value = words[i:i + 4]
            path = f"{row}/{field}" if row else field
            if row not in self.rows and (row or not self.is_ours(path)):
                continue
            for below in [p for p in self.rows if p == path or p.startswith(path + "/")]:
                del self.rows[below]
            if kind == "make":
                self.rows[path] = {".type": value}
                value = json.dumps(value)
            if not row:  # a root, which is an entry of the directory above it as well
                row, _, field = path.rpartition("/")
            if row in self.rows:
                self.rows[row].pop(field, None)
                if kind != "remove":
                    self.rows[row][field] = value

    def is_ours(self, root):
        return any(root == ours or root.startswith(ours + "/") for ours in self.roots)


def members(row, name):
    """Keys and values of a collection."""
    return [(field.split("/", 1)[1], json.loads(value))
            for field, value in row.items() if field.startswith(name + "/")]


def printable(value):
    """A text, or the octets in place of one that is none; neighbors say what they like in it."""
    text = value.get("octets", "?") if isinstance(value, dict) else str(value)
    return "".join(c if c.isprintable() else "?" for c in text)


def table(rows):
    lines = set()
    for port, reference in members(rows.get(TABLE, {}), "portStatus"):
        path = reference["path"]
        for index, _ in members(rows.get(path, {}), "remoteSystem"):
            neighbor = rows.get(f"{path}/remoteSystem/{index}", {})
            msap = json.loads(neighbor.get("msap", "{}"))
            chassis, port_id = (msap.get(part, {}).get("value", "?")
                                for part in ("chassisIdentifier", "portIdentifier"))
            name = json.loads(neighbor.get("sysName", "{}")).get("tlvInfo", "")
            lines.add("  ".join(map(printable, (port, chassis, port_id, name))))
    return lines


def follow(server, mirror, shown):
    news = server.pubsub(ignore_subscribe_messages=True)
    news.subscribe("state:changed")
    while True:
        mirror.catch_up()
        now = table(mirror.rows)
        for line in sorted(shown - now):
            print("-", line)
        for line in sorted(now - shown):
            print("+", line, flush=True)
        sys.stdout.flush()
        shown.clear()
        shown.update(now)
        # Whoever does not hear that the store was emptied looks now and then.
        news.get_message(timeout=1)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit())
    url = sys.argv[1].replace("unix:/", "unix:///", 1).replace("?database=", "?db=", 1)
    server = redis.Redis.from_url(url, decode_responses=True, encoding_errors="replace",
                                  socket_timeout=10)
    mirror, shown = Mirror(server, ROOTS), set()
    while True:
        try:
            follow(server, mirror, shown)
        except (redis.ConnectionError, redis.TimeoutError, redis.ResponseError) as error:
            print(f"the store is not reached: {error}", file=sys.stderr)
            time.sleep(1)


if __name__ == "__main__":
    try:
        main()
    except KeyboardInterrupt:
        pass
