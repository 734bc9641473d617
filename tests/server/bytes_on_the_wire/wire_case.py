# SPDX-License-Identifier: MIT
# A test with a font server of its own, fonts of its own, and a tap between the server and the programs that use it.
# Environment: VELLUM_FONTSERVER, VELLUM_ROW_CLIENT, VELLUM_INNER_CLIENT.
import json
import os
import pathlib
import select
import socket
import subprocess
import tempfile
import unittest
import uuid

import layout
from flattened import URL, Characters, Number, Set, flatten, resurrect
from tap import DEADLINE, Tap

SERVER = os.environ["VELLUM_FONTSERVER"]
CLIENT = os.environ["VELLUM_ROW_CLIENT"]
INNER_CLIENT = os.environ["VELLUM_INNER_CLIENT"]

# Variables of the outside that programs keep: how a sanitizer reports is not the test's business.
KEPT = ("PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS")

PROCESS, USER, SESSION, DURABLE, SILENT = 0x1, 0x2, 0x4, 0x4000, 0x40000000
SHARED = USER | SESSION

# What the keys of properties are on the wire, by the names of their constants.
KEYS = {
    "Name": "KSFontNameAttribute", "FamilyName": "KSFontFamilyAttribute", "FullName": "KSFontVisibleNameAttribute",
    "SubfamilyName": "KSFontFaceAttribute", "InstanceName": "VLFontInstanceNameProperty",
    "LocalizedNames": "VLFontLocalizedNamesProperty", "Traits": "KSLDFontTraitsAttribute",
    "URL": "KSLDFontFileURLAttribute", "Bookmark": "VLFontBookmarkProperty",
    "CharacterSet": "KSLDFontCharacterSetAttribute", "VariationAxes": "KSLDFontVariationAxes",
    "Variations": "KSLDFontVariationAttribute", "SupportedLanguages": "KSLDFontLanguagesAttribute",
    "DesignLanguages": "KSLDFontDesignLanguagesAttribute", "Enabled": "KSLDFontEnabledAttribute",
    "Priority": "KSLDFontPriorityAttribute", "Format": "KSLDFontFormatAttribute",
    "StringEncoding": "KSLDFontStringEncodingAttribute",
    "IgnoreScriptAnalysis": "KSLDFontIgnoreScriptAnalysisAttribute", "FontRef": "VLFontReferenceProperty",
    "Directory": "VLFontDirectoryProperty",
    "Scope": "VLFontScopeProperty", "Flags": "VLFontFlagsProperty", "UnicodeRanges": "VLFontUnicodeRangesProperty",
}


def lines(items):
    return "\n".join(items)


def keyed(**values):
    """A dictionary by the names of its keys' constants."""
    return {KEYS[name]: value for name, value in values.items()}


def keys(*names):
    return Set(KEYS[name] for name in names)


def read_shown(shown):
    """A value as a client shows it."""
    if not isinstance(shown, list):
        return shown
    if not isinstance(shown[0], str):  # several answers
        return [read_shown(each) for each in shown]
    kind, content = shown[0], shown[-1]
    kinds = {
        "string": lambda: bytes.fromhex(content).decode("utf-8"), "boolean": lambda: content,
        "number": lambda: Number(shown[1], (float.fromhex if shown[1] in (5, 6) else int)(content)),
        "data": lambda: bytes.fromhex(content), "uuid": lambda: uuid.UUID(hex=content),
        "url": lambda: URL(bytes.fromhex(content).decode("utf-8")),
        "characters": lambda: Characters(bytes.fromhex(content)),
        "array": lambda: [read_shown(item) for item in content], "set": lambda: Set(map(read_shown, content)),
        "dictionary": lambda: {read_shown(key): read_shown(value) for key, value in content},
    }
    return kinds[kind]()


class WireCase(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.scratch = pathlib.Path(folder.name).resolve()
        self.fonts = self.scratch / "fonts"
        self.root = self.scratch / "root"
        for made in (self.fonts, self.root / "usr/share/fonts"):
            made.mkdir(parents=True)
        self.tap = None

    # ---- what there is ----

    def environment(self, whose, **more):
        home = self.scratch / whose
        folders = {f"XDG_{name}": str(home / name.lower()) for name in
                   ("RUNTIME_DIR", "STATE_HOME", "DATA_HOME", "CONFIG_HOME", "CACHE_HOME")}
        pathlib.Path(folders["XDG_RUNTIME_DIR"]).mkdir(mode=0o700, parents=True, exist_ok=True)
        kept = {name: os.environ[name] for name in KEPT if name in os.environ}
        return {**kept, **folders, "HOME": str(home), "TMPDIR": str(home), "LC_ALL": "C.UTF-8",
                "VELLUM_FONTS_ROOT": str(self.root), **more}

    def make_font(self, family, name=None, folder=None, characters=(0x41, 0x5A)):
        """A file with a font for a range of characters; nobody knows of it yet."""
        path = pathlib.Path(folder or self.fonts, name or f"{family}.ttf")
        path.parent.mkdir(parents=True, exist_ok=True)
        self.assertIs(self.run_client(CLIENT, "make-font", str(path), family, *map(str, characters)), True)
        return path

    def register(self, *paths, scope=SESSION):
        done, _ = self.ask("register", lines(map(self.url, paths)), 0, scope | SILENT)
        self.assertEqual(done, 1)

    def font(self, family, *arguments, scope=SESSION, **named):
        """The same, and the server has it."""
        path = self.make_font(family, *arguments, **named)
        self.register(path, scope=scope)
        return path

    @staticmethod
    def url(path):
        return f"file://{path}"

    def face_url(self, path, family):
        return f"{self.url(path)}#postscript-name={family}-Regular"

    # ---- server, tap and client ----

    def start(self):
        ready = self.scratch / "ready"
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as notified:
            notified.bind(str(ready))
            environment = self.environment("server", NOTIFY_SOCKET=str(ready))
            self.server = subprocess.Popen([SERVER, "--foreground"], stdin=subprocess.DEVNULL, env=environment,
                                           cwd=self.scratch)
            self.addCleanup(self.end_server)
            ended = os.pidfd_open(self.server.pid)
            able, _, _ = select.select([notified, ended], [], [], DEADLINE)
            os.close(ended)
            self.assertIn(notified, able, "the server is not ready")
        self.server_runtime = environment["XDG_RUNTIME_DIR"]
        self.tap = Tap(self.environment("client")["XDG_RUNTIME_DIR"], self.server_runtime)
        self.addCleanup(self.tap.close)

    def end_server(self):
        self.server.terminate()
        self.server.wait(DEADLINE)

    def run_client(self, program, verb, *arguments):
        done = subprocess.run([program, verb, *map(str, arguments)], stdin=subprocess.DEVNULL, cwd=self.scratch,
                              stdout=subprocess.PIPE, timeout=DEADLINE, env=self.environment("client"))
        self.assertEqual(done.returncode, 0, (verb, arguments))
        return read_shown(json.loads(done.stdout))

    def ask(self, verb, *arguments, program=CLIENT):
        """What a new program gets; the tap has heard only what this one said."""
        if not self.tap:
            self.start()
        self.heard_before = len(self.tap.packets())
        return self.run_client(program, verb, *arguments)

    # ---- what was said ----

    def said(self):
        """[(request, reply)] of the last program, in order; what holds for all packets is checked."""
        waiting, said = {}, []
        for packet in self.tap.packets()[self.heard_before:]:
            parsed = layout.parse(self, packet.content, packet.files)
            if packet.to_server:
                self.assertNotIn(packet.connection, waiting, "a request before the reply to another")
                waiting[packet.connection] = parsed
            else:
                request = waiting.pop(packet.connection)
                self.assertNotEqual(parsed.life, 0)
                self.assertIn(request.life, (0, parsed.life))
                said.append((request, parsed))
        self.assertEqual(waiting, {}, "a request without reply")
        return said

    def numbers_said(self):
        """The ids of the last program's requests after its first contact."""
        numbers = [request.number for request, _ in self.said()]
        self.assertEqual(numbers[:1], [13000])
        return numbers[1:]

    def assert_said(self, number, arguments, result, exact=True):
        """That the only request of an id, and its reply, have exactly the bytes that they must have. Where members
        of a set or a dictionary may stand in any order, the request is not `exact`; replies never are."""
        exchanges = [each for each in self.said() if each[0].number == number]
        self.assertEqual(len(exchanges), 1, f"{number} among {[each[0].number for each in self.said()]}")
        request, reply = exchanges[0]
        _, _, server_port, reply_port, _, _ = request.header
        for port in (server_port, reply_port):
            self.assertNotIn(port, layout.NO_PORTS)
        self.assertNotEqual(server_port, reply_port)
        expected = layout.request(number, arguments, server_port, reply_port)
        self.assertEqual(request.message.hex(), expected.hex())
        kinds = layout.ROWS[number][1]
        sent = [value for kind, value in zip(kinds, arguments) if kind == layout.MEMORY]
        self.assert_memories(request.memories, sent, exact)
        self.assertEqual(reply.message.hex(), layout.reply(number, reply_port, result).hex())
        kind = layout.ROWS[number][2]
        came = [result[0]] if kind == layout.BATCH else [result] if kind == layout.VALUE else []
        self.assert_memories(reply.memories, came, False)
        return request, reply

    def assert_memories(self, memories, values, exact):
        self.assertEqual(len(memories), len(values))
        for memory, value in zip(memories, values):
            found = resurrect(memory)
            self.assertEqual(found, value)
            self.assertEqual(flatten(found), memory)
            if exact:
                self.assertEqual(memory, flatten(value))
