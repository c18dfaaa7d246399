"""A Redis server of a test's own, on a Unix socket."""

import pathlib
import subprocess

import redis

from netns import eventually

SCRIPTS = pathlib.Path(__file__).parents[2] / "platform/Redis"


class RedisServer:
    def __init__(self, folder):
        self.folder, self.socket, self.process = folder, folder / "redis.sock", None
        self.client = redis.Redis(unix_socket_path=str(self.socket), decode_responses=True)

    def start(self, password=None):
        """With a password that everybody has to know, if one is given."""
        options = ["--requirepass", password] if password else []
        if password:
            self.client = redis.Redis(unix_socket_path=str(self.socket), password=password,
                                      decode_responses=True)
        self.process = subprocess.Popen(
            ["redis-server", "--port", "0", "--unixsocket", str(self.socket), "--save", "",
             "--dir", str(self.folder), *options], stdout=subprocess.DEVNULL)
        assert eventually(self._answers, 10)

    def stop(self):
        if self.process:
            self.process.kill()
            self.process.wait()

    def run(self, script, *words):
        return self.client.register_script((SCRIPTS / f"{script}.lua").read_text())(args=words)

    def _answers(self):
        try:
            return self.client.ping()
        except redis.RedisError:
            return False
