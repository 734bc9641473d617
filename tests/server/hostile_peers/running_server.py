# SPDX-License-Identifier: MIT
# A font server of the tests' own, peers to talk to it, and what can be seen of it from outside.
# Environment: VELLUM_FONTSERVER.
import contextlib
import os
import pathlib
import signal
import socket
import struct
import subprocess
import tempfile
import time

import small_fonts
import wire

PROGRAM = os.environ["VELLUM_FONTSERVER"]
FONTS, HUB = "com.orrery.FontServer", "com.orrery.DistributedNotifications"
PATIENCE = 20  # seconds: nothing here takes that long, so what passes it hangs
IS_SANITIZED = b"__asan_init" in pathlib.Path(PROGRAM).read_bytes()


@contextlib.contextmanager
def stopped(process):
    """What is done meanwhile, the process sees all at once."""
    os.kill(process, signal.SIGSTOP)
    while pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] not in "TtZ":
        pass
    try:
        yield
    finally:
        os.kill(process, signal.SIGCONT)


def processor_seconds(process):
    fields = pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


class Server:
    def __init__(self, **environment):
        self.folder = tempfile.TemporaryDirectory()
        self.home = pathlib.Path(self.folder.name).resolve()
        self.run = self.home / "run"
        self.run.mkdir(mode=0o700)
        self.system = self.home / "root/usr/share/fonts"
        self.system.mkdir(parents=True)
        (self.system / "known.ttf").write_bytes(small_fonts.font("Known"))
        self.known = f"file://{self.system}/known.ttf"
        self.log = self.home / "log"
        kept = {name: value for name, value in os.environ.items() if not name.startswith(("VELLUM_", "VL_", "XDG_"))}
        self.environment = {
            **kept, "HOME": str(self.home), "XDG_RUNTIME_DIR": str(self.run), "LC_ALL": "C.UTF-8",
            "XDG_STATE_HOME": str(self.home / "state"), "XDG_DATA_HOME": str(self.home / "data"),
            "DBUS_SESSION_BUS_ADDRESS": "none:",
            "VELLUM_FONTS_ROOT": str(self.home / "root"), **environment}
        self.process, self.last_words = None, ""

    def start(self, before=()):
        ready = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        path = self.home / "ready"
        path.unlink(missing_ok=True)
        ready.bind(str(path))
        ready.settimeout(PATIENCE)
        with open(self.log, "ab") as log, ready:
            self.process = subprocess.Popen([*before, PROGRAM, "--foreground"], stdin=subprocess.DEVNULL,
                                            stdout=log, stderr=log,
                                            env={**self.environment, "NOTIFY_SOCKET": str(path)})
            ready.recv(64)
        return self

    def stop(self):
        """What it ended with; last_words is what it said, if that was something bad."""
        self.process.send_signal(signal.SIGTERM)
        try:
            return self.process.wait(PATIENCE)
        finally:
            self.process.kill()
            self.process.wait()
            self.last_words = self.log.read_text(errors="replace")[-4000:]
            self.folder.cleanup()

    # ---- what can be seen of it ----
    def descriptors(self):
        """How many it has; who left before has been noticed by then."""
        with self.peer() as peer:
            peer.find()
            return len(os.listdir(f"/proc/{self.process.pid}/fd")) - 1

    def memory(self):
        """What of it lies in memory, in MiB."""
        status = pathlib.Path(f"/proc/{self.process.pid}/status").read_text()
        return int(status.split("VmRSS:")[1].split()[0]) / 1024

    # ---- peers ----
    def connect(self, service=FONTS):
        connection = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_SNDTIMEO, struct.pack("ll", PATIENCE, 0))
        connection.connect(str(self.run / "vellum" / service))  # waits for room in the queue
        connection.settimeout(PATIENCE)
        return connection

    def peer(self, service=FONTS):
        return Peer(self.connect(service))


class Peer:
    """A peer that sends one thing after the other, as good ones do; what is in them is its own affair."""

    def __init__(self, connection):
        self.connection = connection

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.connection.close()

    def send(self, data, descriptors=()):
        return wire.send(self.connection, data, descriptors)

    def receive(self):
        return wire.receive(self.connection)

    def ask(self, identity, *arguments):
        data, descriptors = wire.request(identity, *arguments)
        try:
            self.send(data, descriptors)
        finally:
            for descriptor in descriptors:
                os.close(descriptor)
        return self.receive()

    def is_cut_off(self):
        """Waits for the end; what comes before that is read."""
        while self.receive():
            pass
        return True

    def find(self, name="Known-Regular"):
        """(where a font is, the seconds that it took to say so)."""
        begin = time.monotonic()
        reply = self.ask(13017, name, 6)
        return reply and reply.text, time.monotonic() - begin
