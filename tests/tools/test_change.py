#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum register`, `unregister`, `enable` and `disable` as a user meets them: results, exit codes.
import json
import unittest

from vellum_tool import BAD_FONT, DONE, PROBLEMS, REFUSED, USAGE, BOUND_BY_MODES, ToolCase

import made_fonts

NO_SERVER = 3
VERBS = {"register": "registered", "unregister": "unregistered", "enable": "enabled", "disable": "disabled"}


class ChangeCase(ToolCase):
    def change(self, verb, *arguments, status=DONE, **more):
        done = self.run_tool(verb, *arguments, **more)
        self.assertEqual(done.returncode, status, done.stderr)
        return done


class EachVerb(ChangeCase):
    def test_needs_a_server_unless_it_is_for_this_run_alone(self):
        path = self.font()
        for verb in VERBS:
            for scope in ((), ("--scope", "user"), ("--scope", "session")):
                with self.subTest(verb=verb, scope=scope):
                    done = self.change(verb, str(path), *scope, status=NO_SERVER)
                    self.assertEqual(done.stdout, b"")
                    self.assertEqual(done.stderr, b"vellum: no font server runs; "
                                                  b"--scope process or --dry-run tries it out\n")

    def test_says_what_it_did_with_each_file(self):
        a, b = self.font("a.ttf", "Alpha"), self.font("b.ttf", "Beta")
        for verb, word in VERBS.items():
            with self.subTest(verb):
                done = self.change(verb, "--scope", "process", str(a), str(b))
                self.assertEqual(done.stdout.decode().splitlines(),
                                 [f"{word}  {a}  Alpha", f"{word}  {b}  Beta"])
                self.assertEqual(done.stderr, b"")

    def test_says_what_it_would_do_and_does_nothing(self):
        path = self.font("a.ttf", "Alpha")
        for verb, word in VERBS.items():
            with self.subTest(verb):
                done = self.change(verb, "--dry-run", str(path))
                self.assertEqual(done.stdout.decode(), f"would be {word}  {path}  Alpha\n")
        self.assertEqual(list(self.home.iterdir()), [])

    def test_takes_folders(self):
        a, b = self.font("a.ttf", "Alpha"), self.font("deep/b.ttf", "Beta")
        for verb in VERBS:
            with self.subTest(verb):
                done = self.change(verb, "--scope", "process", str(self.folder))
                self.assertEqual(done.stdout.count(b"\n"), 2)
                self.assertIn(str(b).encode(), done.stdout)

    def test_has_a_document_for_programs(self):
        good, bad = self.font("a.ttf", "Alpha"), self.folder / "bad.ttf"
        bad.write_bytes(b"no font")
        for verb in VERBS:
            with self.subTest(verb):
                done = self.change(verb, "--scope", "process", "--json", str(good), str(bad), status=PROBLEMS)
                document = json.loads(done.stdout)
                self.assertEqual(document["schema"], {"name": "vellum.change", "version": 1})
                self.assertEqual((document["action"], document["scope"], document["dryRun"]),
                                 (verb, "process", False))
                first, second = document["items"]
                self.assertEqual(first, {"path": str(good), "done": True, "faces": ["Alpha"],
                                         "problem": None})
                self.assertEqual((second["path"], second["done"]), (str(bad), False))
                self.assertEqual([refusal["path"] for refusal in document["refused"]], [str(bad)])

    def test_has_a_line_a_file_for_programs(self):
        a, b = self.font("a.ttf", "Alpha"), self.font("b.ttf", "Beta")
        done = self.change("register", "--scope", "process", "--jsonl", str(a), str(b))
        self.assertEqual([json.loads(line)["path"] for line in done.stdout.splitlines()], [str(a), str(b)])

    def test_tells_a_file_that_is_no_font_from_one_that_may_not_be_read(self):
        bad = self.folder / "bad.ttf"
        bad.write_bytes(b"no font")
        locked = self.font("locked.ttf")
        locked.chmod(0)
        for verb in ("register", "enable", "disable"):
            with self.subTest(verb):
                self.change(verb, "--scope", "process", str(bad), status=BAD_FONT)
                self.change(verb, "--scope", "process", str(locked), status=REFUSED, before=BOUND_BY_MODES)
                self.change(verb, "--scope", "process", str(self.folder / "absent.ttf"), status=PROBLEMS)

    def test_is_told_how_to_be_used(self):
        for verb in VERBS:
            with self.subTest(verb):
                self.change(verb, status=USAGE)
                self.change(verb, "--scope", "planet", "x.ttf", status=USAGE)
                self.assertIn(b"Example:", self.change(verb, "--help").stdout)


class Registering(ChangeCase):
    def test_of_one_file_twice_is_a_problem(self):
        path = self.font()
        link = self.folder / "link.ttf"
        link.symlink_to(path)
        done = self.change("register", "--scope", "process", str(path), str(path))
        self.assertEqual(done.stdout.count(b"registered"), 1)  # the same path counts once

    def test_counts_the_faces_of_a_file(self):
        path = self.folder / "two.ttc"
        made_fonts.write_plain_collection(path, ["Alpha", "Beta"])
        done = self.change("register", "--scope", "process", str(path))
        self.assertEqual(done.stdout.decode(), f"registered  {path}  2 faces\n")


class DisablingAFace(ChangeCase):
    def test_leaves_the_others(self):
        path = self.folder / "two.ttc"
        made_fonts.write_plain_collection(path, ["Alpha", "Beta"])
        for verb, word in (("disable", "disabled"), ("enable", "enabled")):
            with self.subTest(verb):
                done = self.change(verb, "--scope", "process", "--face", "Beta-Regular", str(path))
                self.assertEqual(done.stdout.decode(), f"{word}  {path}  Beta\n")

    def test_that_the_file_has_not_is_a_problem(self):
        path = self.font()
        done = self.change("disable", "--scope", "process", "--face", "Other", str(path), status=PROBLEMS)
        self.assertIn(b"has no face Other", done.stderr)


if __name__ == "__main__":
    unittest.main()
