"""Network namespaces that a test makes itself: all traffic of the suite stays inside them."""

import ctypes
import os
import socket
import struct
import subprocess
import time

_CLONE_NEWNET = 0x40000000
_libc = ctypes.CDLL(None, use_errno=True)

ETH_P_ALL = 3


def eventually(condition, timeout=5.0, every=0.02):
    """Waits until condition() gives something true, and returns it; None when time is up."""
    end = time.monotonic() + timeout
    while True:
        value = condition()
        if value or time.monotonic() > end:
            return value or None
        time.sleep(every)


class Namespace:
    def __init__(self, name):
        self.name = f"lldp-e2e-{os.getpid()}-{name}"
        subprocess.run(["ip", "netns", "add", self.name], check=True)

    def delete(self):
        subprocess.run(["ip", "netns", "del", self.name], check=False)

    def ip(self, *words):
        done = subprocess.run(["ip", "-n", self.name, *words], capture_output=True, text=True)
        assert done.returncode == 0, f"ip {' '.join(words)}: {done.stderr}"
        return done.stdout

    def ip_batch(self, lines):
        subprocess.run(["ip", "-n", self.name, "-batch", "-"], input="\n".join(lines) + "\n",
                       text=True, check=True)

    def up(self, *devices):
        self.ip_batch([f"link set {device} up" for device in devices])

    def mac(self, device):
        return self.ip("-br", "link", "show", "dev", device).split()[2]

    def command(self, *words, hostname=None):
        """The command line that runs words in here, under a host name of their own if given."""
        inside = ["ip", "netns", "exec", self.name]
        if hostname:
            inside += ["unshare", "--uts", "sh", "-c", 'hostname "$0" && exec "$@"', hostname]
        return inside + [str(word) for word in words]

    def packet_socket(self, device=None):
        """A raw socket on a device in here, or on all; it stays here when the caller goes home."""
        home = os.open("/proc/thread-self/ns/net", os.O_RDONLY)
        there = os.open(f"/run/netns/{self.name}", os.O_RDONLY)
        try:
            _enter(there)
            try:
                wire = socket.socket(socket.AF_PACKET, socket.SOCK_RAW, socket.htons(ETH_P_ALL))
                if device:
                    wire.bind((device, 0))
            finally:
                _enter(home)
        finally:
            os.close(home)
            os.close(there)
        return wire


def _enter(descriptor):
    if _libc.setns(descriptor, _CLONE_NEWNET) != 0:
        raise OSError(ctypes.get_errno(), "setns")


def cable(a, a_device, b, b_device):
    """Joins two namespaces by a veth pair, up on both ends."""
    subprocess.run(["ip", "link", "add", a_device, "netns", a.name, "type", "veth",
                    "peer", "name", b_device, "netns", b.name], check=True)
    a.up(a_device)
    b.up(b_device)


class Wire:
    """The far end of a cable, in the test's own hands: sends frames, hears what the agent sends."""

    _OUTGOING = 4

    def __init__(self, namespace, device):
        self._socket = namespace.packet_socket(device)
        # SO_RCVBUFFORCE: a burst sent to the agent is echoed to nobody, but its answers must fit.
        self._socket.setsockopt(socket.SOL_SOCKET, 33, struct.pack("i", 4 << 20))

    def fileno(self):
        return self._socket.fileno()

    def send(self, frame):
        self._socket.send(bytes(frame))

    def hear(self, timeout):
        """The next LLDP frame from the other end, or None."""
        end = time.monotonic() + timeout
        while (left := end - time.monotonic()) > 0:
            self._socket.settimeout(left)
            try:
                frame, (_, _, kind, _, _) = self._socket.recvfrom(65536)
            except TimeoutError:
                return None
            if kind != self._OUTGOING and frame[12:14] == b"\x88\xcc":
                return frame
        return None

    def drain(self):
        self._socket.setblocking(False)
        try:
            while True:
                self._socket.recv(65536)
        except BlockingIOError:
            pass

    def close(self):
        self._socket.close()
