"""The program under test: the agent's process, its management API and the operator's command."""

import http.client
import json
import os
import pathlib
import select
import signal
import socket
import subprocess

from netns import eventually

BUILD = pathlib.Path(os.environ.get("LLDP_BUILD") or
                     pathlib.Path(__file__).resolve().parents[2] / "build" / "release")
AGENTD = BUILD / "bin" / "lldp-agentd"
LLDP = BUILD / "bin" / "lldp"


class _UnixConnection(http.client.HTTPConnection):
    def __init__(self, path):
        super().__init__("switch", timeout=10)
        self._path = str(path)

    def connect(self):
        self.sock = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.sock.settimeout(self.timeout)
        self.sock.connect(self._path)


def request(socket_path, method, path, body=None):
    """One request to the management API: status and decoded body (None when empty)."""
    connection = _UnixConnection(socket_path)
    try:
        text = None if body is None else (body if isinstance(body, bytes) else json.dumps(body))
        connection.request(method, path, text, {"Content-Type": "application/json"})
        answer = connection.getresponse()
        content = answer.read()
        return answer.status, json.loads(content) if content else None
    finally:
        connection.close()


class Stream:
    """A stream of the management API: events as (name, data), as they come."""

    def __init__(self, socket_path, path):
        self._socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._socket.settimeout(10)
        self._socket.connect(str(socket_path))
        self._socket.sendall(f"GET {path} HTTP/1.1\r\nHost: switch\r\n\r\n".encode())
        self._lines = self._socket.makefile("rb")
        self.status = int(self._lines.readline().split()[1])
        while self._lines.readline().strip():
            pass

    def next(self, timeout=10):
        """The next event; fails when none comes in time."""
        self._socket.settimeout(timeout)
        name = data = None
        while line := self._lines.readline().decode():
            if line == "\n":
                return name, data
            key, value = line.rstrip("\n").split(": ", 1)
            name = value if key == "event" else name
            data = json.loads(value) if key == "data" else data
        raise EOFError("the stream has ended")

    def close(self):
        self._lines.close()
        self._socket.close()


class Lines:
    """A program that goes on telling: its lines, as they come."""

    def __init__(self, *words, cwd=None):
        self._process = subprocess.Popen(words, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                         bufsize=0, cwd=cwd)

    def next(self, timeout=10):
        """The next line, without its end; fails when none comes in time."""
        line = b""
        while not line.endswith(b"\n"):
            assert select.select([self._process.stdout], [], [], timeout)[0], f"only {line}"
            octet = self._process.stdout.read(1)
            if not octet:
                raise EOFError(f"it has ended, {self._process.wait(10)}: {line}")
            line += octet
        return line[:-1].decode()

    def end(self):
        """In order; returns its exit status."""
        self._process.terminate()
        try:
            return self._process.wait(20)
        finally:
            self.close()

    def close(self):
        self._process.kill()
        self._process.wait()
        self._process.stdout.close()


class Agent:
    """One lldp-agentd in a namespace. devices: {"Ethernet1": "eth1"} or a list of devices."""

    def __init__(self, namespace, folder, devices, *options, hostname="dut-switch", cell=1):
        self.namespace, self.folder, self.hostname, self.cell = namespace, folder, hostname, cell
        self.socket = folder / "api.sock"
        self.log = folder / "log"
        usual = {"--socket": self.socket, "--run-dir": folder / "run",
                 "--state-dir": folder / "state", "--cell": cell}
        words = [AGENTD]
        for option, value in usual.items():
            if option not in options:
                words += [option, value]
        if isinstance(devices, dict):
            for name, device in devices.items():
                words += ["--port", f"{name}={device}"]
            devices = list(devices.values())
        self.command = namespace.command(*words, *options, *devices, hostname=hostname)
        self.process = None

    def launch(self, stderr=subprocess.STDOUT):
        """Begins, and does not wait until it serves."""
        with open(self.log, "wb") as log:
            self.process = subprocess.Popen(self.command, stdin=subprocess.DEVNULL, stdout=log,
                                            stderr=stderr)
        return self

    def start(self, timeout=10, stderr=subprocess.STDOUT):
        self.launch(stderr)
        assert eventually(self.serves, timeout), f"the agent does not serve:\n{self.words()}"
        return self

    def serves(self):
        assert self.process.poll() is None, f"the agent ended:\n{self.words()}"
        try:
            return request(self.socket, "GET", "/v1/paths")[0] == 200
        except OSError:
            return False

    def began(self):
        """When it began, or began anew, by its own clock; 0 while it does not serve."""
        try:
            return request(self.socket, "GET", "/v1/agent")[1]["startTime"] if self.serves() else 0
        except OSError:
            return 0

    def stop(self):
        """Ends it in order and returns its exit status."""
        self.process.send_signal(signal.SIGTERM)
        return self.process.wait(10)

    def kill(self):
        """Sudden death, which is wanted."""
        self.process.kill()
        self.process.wait(10)
        self.process = None

    def alive(self):
        return self.process.poll() is None

    def words(self):
        """What it has written so far."""
        return self.log.read_text(errors="replace")

    # --- management API

    def get(self, path):
        status, body = request(self.socket, "GET", f"/v1/entity/{path}")
        return body if status == 200 else None

    def patch(self, path, **attributes):
        status, body = request(self.socket, "PATCH", f"/v1/entity/{path}", attributes)
        assert status < 300, body

    def configure(self, **attributes):
        self.patch("l2discovery/lldp/cliConfig", **attributes)

    def status_path(self, port=None):
        path = f"l2discovery/lldp/status/local/{self.cell}"
        return path if port is None else f"{path}/portStatus/{port.replace('/', '%2F')}"

    def port_status(self, port):
        return self.get(self.status_path(port)) or {}

    def neighbours(self, port):
        """The neighbours of a port as the store has them, oldest first."""
        members = self.port_status(port).get("remoteSystem") or {}
        rows = members.values() if isinstance(members, dict) else members
        return sorted(rows, key=lambda row: row["index"])

    def stream(self, path):
        return Stream(self.socket, path)

    # --- operator's command

    def lldp(self, *words):
        done = subprocess.run([LLDP, "--socket", self.socket, *words], capture_output=True,
                              text=True, timeout=30)
        assert done.returncode == 0, done.stderr
        return done.stdout

    def lldp_json(self, *words):
        return json.loads(self.lldp(*words, "--json"))

    def watch(self, *words):
        """A watching command, which has to be closed."""
        return Lines(LLDP, "--socket", self.socket, "watch", *words)
