# SPDX-License-Identifier: MIT
# Files and folders that a peer has the server read, or take away.
import os
import unittest

import small_fonts
from hostile_case import HostileCase
from running_server import PATIENCE
from test_values import CHARACTERS, FAMILY, FILE, LANGUAGES, NAME, TRAITS, WEIGHT
from wire import URL, Set, flat

EVERYTHING = Set((NAME, FAMILY, TRAITS, CHARACTERS, LANGUAGES, FILE, "VLFontLocalizedNamesProperty",
                  "KSLDFontVariationAxes", "VLFontUnicodeRangesProperty", "KSLDFontFormatAttribute"))
NO_FILES = ("/", "/dev/zero", "/dev/null", "/dev/full", "/dev/random", "/dev/tty", "/proc/self/mem", "/proc/self/maps",
            "/proc/self/fd/0", "/proc/self/pagemap", "/proc/kcore", "/nowhere/at-all.ttf")
SESSION, USER = 4, 2


class FilesCase(HostileCase):
    def setUp(self):
        super().setUp()
        self.folder = self.server.home / "hostile"
        self.folder.mkdir()

    def url(self, path):
        return URL(f"file://{path}")

    def register(self, peer, *paths):
        """Whether all of them were registered."""
        return peer.ask(13005, flat({self.url(path): {} for path in paths}), SESSION, 0).words[-1] == 1

    def is_found(self, name):
        with self.server.peer() as peer:
            return bool(peer.find(name)[0])


class Files(FilesCase):
    def test_that_are_no_files_are_refused_at_once(self):
        os.mkfifo(self.folder / "fifo.ttf")
        (self.folder / "folder.ttf").mkdir()
        os.symlink("loop.ttf", self.folder / "loop.ttf")
        with open(self.folder / "sparse.ttf", "wb") as sparse:
            sparse.write(small_fonts.font("Sparse"))
            sparse.truncate(100 << 30)
        with self.bystander(), self.server.peer() as peer:
            for path in (*self.folder.iterdir(), *NO_FILES):
                with self.subTest(str(path)):
                    self.assertFalse(self.register(peer, path))

    def test_that_are_no_fonts_or_endless_ones_hold_nobody_up(self):
        files = small_fonts.hostile_files()
        for name, content in files.items():
            (self.folder / name).write_bytes(content)
        with self.bystander(), self.server.peer() as peer:
            for name in files:
                with self.subTest(name):
                    url = self.url(self.folder / name)
                    self.register(peer, self.folder / name)
                    self.assertEqual(peer.ask(13022, flat([url]), flat(EVERYTHING)).id, 13122)
                    self.assertEqual(peer.ask(13020, flat({TRAITS: {WEIGHT: 0.5}}), flat(EVERYTHING), 6).id, 13120)
                    self.assertEqual(peer.ask(13026, 0x10FFFD, 0, 0).id, 13126)
            peer.ask(13006, flat([self.url(self.folder / name) for name in files]), SESSION)

    def test_that_change_and_vanish_after_they_were_registered_harm_nobody(self):
        path = self.folder / "turning.ttf"
        with self.bystander(), self.server.peer() as peer:
            for turn in range(20):
                path.write_bytes(small_fonts.font(f"Turning {turn}"))
                self.assertTrue(self.register(peer, path))
                path.write_bytes(small_fonts.font("Turning")[:100])
                self.assertEqual(peer.ask(13024, self.url(path), flat(EVERYTHING)).id, 13124)
                path.unlink()
                os.mkfifo(path)
                self.assertEqual(peer.ask(13024, self.url(path), flat(EVERYTHING)).id, 13124)
                path.unlink()
                self.assertEqual(peer.ask(13006, flat([self.url(path)]), SESSION).words[-1], 1)


class Folders(FilesCase):
    def prepare(self):
        (self.server.home / "data/fonts").mkdir(parents=True)

    def change(self, peer, identity, url, *more):
        return peer.ask(identity, url, *more).words[-1]

    def spellings(self):
        os.symlink(self.server.home / "data", self.folder / "link")
        data = f"{self.server.home}/data"
        return [f"{data}/fonts", f"{data}/fonts/", f"{data}/fonts/.", f"{data}/../data/fonts", f"{data}//fonts",
                f"{self.folder}/link/fonts"]

    def waits_for(self, name):
        """Until the server has seen a new font; False when it does not look any more."""
        path = self.server.home / f"data/fonts/{name}.ttf"
        path.write_bytes(small_fonts.font(name))
        with self.server.peer() as peer:
            return any(peer.find(f"{name}-Regular")[0] for _ in range(3000))

    def test_of_others_stay_and_are_watched_when_another_lets_them_go_by_another_name(self):
        self.assertTrue(self.waits_for("First"))
        with self.bystander(), self.server.peer() as peer:
            for number, spelling in enumerate(self.spellings()):
                with self.subTest(spelling):
                    self.change(peer, 13007, self.url(spelling), b"", 0, 0, SESSION)
                    self.change(peer, 13008, self.url(spelling), SESSION)
                    self.assertTrue(self.waits_for(f"Number{number}"))
                    self.assertTrue(self.is_found("First-Regular"))

    def test_of_the_system_stay_when_another_lets_them_go_by_another_name(self):
        system = self.server.known[:self.server.known.rindex("/")]
        with self.bystander(), self.server.peer() as peer:
            for spelling in (f"{system}/", f"{system}/.", f"{system}/../fonts", system.replace("/usr/", "//usr/")):
                with self.subTest(spelling):
                    self.change(peer, 13007, URL(spelling), b"", 0, 0, SESSION)
                    self.change(peer, 13008, URL(spelling), SESSION)
                    peer.ask(13006, flat([]), SESSION)  # behind what the folder's leaving takes
                    self.assertTrue(self.is_found("Known-Regular"))

    def test_with_many_folders_hold_nobody_up(self):
        for number in range(5000):
            (self.folder / f"{number % 50}/{number}").mkdir(parents=True)
        with self.bystander(), self.server.peer() as peer:
            self.change(peer, 13007, self.url(self.folder), b"", 0, 0, SESSION)
            self.change(peer, 13008, self.url(self.folder), SESSION)

    def test_that_are_deep_hold_nobody_up(self):
        here = os.open(self.folder, os.O_RDONLY)
        for _ in range(400):
            os.mkdir("d", dir_fd=here)
            below = os.open("d", os.O_RDONLY, dir_fd=here)
            os.close(here)
            here = below
        os.close(here)
        with self.bystander(), self.server.peer() as peer:
            self.change(peer, 13007, self.url(self.folder), b"", 0, 0, SESSION)
            self.change(peer, 13008, self.url(self.folder), SESSION)

    def test_of_the_kernel_are_refused(self):
        with self.bystander(), self.server.peer() as peer:
            for path in ("/proc", "/sys"):
                self.assertEqual(self.change(peer, 13007, self.url(path), b"", 0, 0, SESSION), 0)


class WhatIsDisabled(FilesCase):
    def is_known_enabled(self):
        return self.is_found("Known-Regular")

    def test_stays_so_whatever_else_is_enabled_and_when_the_server_starts_anew(self):
        nothing = ("http:", "x:", "data:,", "file:", "file://", "urn:x", "http://x/", "file:///nowhere")
        with self.server.peer() as peer:
            self.assertEqual(peer.ask(13011, URL(self.server.known)).words, (0, 1))
            for url in nothing:
                peer.ask(13010, URL(url))
                peer.ask(13027, flat([URL(url)]), USER)
            self.assertFalse(self.is_known_enabled())
        self.server.process.terminate()
        self.assertEqual(self.server.process.wait(PATIENCE), 0)
        self.server.start()
        self.assertFalse(self.is_known_enabled())
        with self.server.peer() as peer:
            self.assertEqual(peer.ask(13010, URL(self.server.known)).words, (0, 1))
        self.assertTrue(self.is_known_enabled())


if __name__ == "__main__":
    unittest.main()
