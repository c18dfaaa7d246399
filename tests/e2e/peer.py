"""An independent LLDP daemon as the neighbour at the other end of a cable."""

import json
import shlex
import subprocess

from netns import eventually

NAME = "peer-switch"
DESCRIPTION = "An independent peer"


class Peer:
    def __init__(self, namespace, folder, device, *options, tx_interval=1, tx_hold=3):
        self.namespace, self.device, self._options = namespace, device, options
        self.control = folder / "peer.sock"
        self.ttl = tx_interval * tx_hold
        self._log = folder / "peer.log"
        self._setup = folder / "peer.conf"
        self._setup.write_text(f"configure system hostname {NAME}\n"
                               f'configure system description "{DESCRIPTION}"\n'
                               f"configure lldp tx-interval {tx_interval}\n"
                               f"configure lldp tx-hold {tx_hold}\n"
                               f"configure lldp portidsubtype ifname\n")
        self._process = None

    def start(self):
        words = self.namespace.command("lldpd", "-d", "-u", self.control, "-I", self.device,
                                       "-O", self._setup, *self._options)
        with open(self._log, "wb") as log:
            # A session of its own: the daemon is two processes, and dies as one.
            self._process = subprocess.Popen(words, stdin=subprocess.DEVNULL, stdout=log,
                                             stderr=subprocess.STDOUT, start_new_session=True)
        assert eventually(lambda: self.chassis().get("id"), 10), self._log.read_text()
        return self

    def stop(self):
        """An orderly end, which says goodbye on the wire."""
        self._process.terminate()
        self._process.wait(10)

    def kill(self):
        """Sudden death: nothing more is sent."""
        if self._process and self._process.poll() is None:
            subprocess.run(["kill", "-KILL", "--", f"-{self._process.pid}"], check=False)
            self._process.wait(10)

    def alive(self):
        return self._process.poll() is None

    def ask(self, *words):
        done = subprocess.run(["lldpcli", "-u", self.control, "-f", "json0", *words],
                              capture_output=True, text=True, timeout=10)
        return json.loads(done.stdout) if done.returncode == 0 and done.stdout else {}

    def configure(self, words):
        """One line in the daemon's own language; fails where it is not understood."""
        done = subprocess.run(["lldpcli", "-u", self.control, "configure", *shlex.split(words)],
                              capture_output=True, text=True, timeout=10)
        assert done.returncode == 0 and not done.stderr, (words, done.stdout, done.stderr)

    def chassis(self):
        """What the daemon says of itself."""
        try:
            return self.ask("show", "chassis")["local-chassis"][0]["chassis"][0]
        except (KeyError, IndexError):
            return {}

    def neighbour(self):
        """What the daemon sees at the other end of its cable, or {}."""
        try:
            return self.ask("show", "neighbors", "details")["lldp"][0]["interface"][0]
        except (KeyError, IndexError):
            return {}
