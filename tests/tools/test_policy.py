#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum policy` as a user meets it: what is set holds for the next run, and is kept where preferences are.
import ctypes
import json
import os
import pathlib
import unittest

from vellum_tool import BOUND_BY_MODES, DONE, IS_SANITIZED, REFUSED, TOOL, USAGE, ToolCase


class Policy(ToolCase):
    def say(self, status, *arguments):
        done = self.run_tool("policy", *arguments)
        self.assertEqual(done.returncode, status, done.stderr + done.stdout)
        return done.stdout.decode(), done.stderr.decode()

    def setting(self, *arguments):
        return json.loads(self.say(DONE, "get", "--json", *arguments)[0])["setting"]

    def test_is_default_where_nothing_is_set_and_reading_makes_nothing(self):
        self.assertEqual(self.say(DONE, "get"), ("all applications: default (nothing is set)\n", ""))
        self.assertEqual(self.setting("--app", "org.example.App"), "default")
        self.assertEqual(list(self.home.iterdir()), [])

    def test_holds_for_the_next_run(self):
        for setting in ("disable", "enable", "ask"):
            self.assertTrue(self.say(DONE, "set", setting)[0].startswith(f"all applications: {setting} ("))
            self.assertEqual(self.setting(), setting)
            self.say(DONE, "set", setting, "--app", "org.example." + setting)
        for setting in ("disable", "enable", "ask"):
            self.assertEqual(self.setting("--app", "org.example." + setting), setting)
        self.say(DONE, "reset")
        self.say(DONE, "reset", "--app", "org.example.ask")
        self.assertEqual(self.setting(), "default")
        self.assertEqual(self.setting("--app", "org.example.ask"), "default")
        self.assertEqual(self.setting("--app", "org.example.enable"), "enable")

    def test_is_kept_in_the_users_preferences(self):
        self.say(DONE, "set", "ask", "--app", "org.example.<&>")
        text = (self.home / "xdg_config_home/vellum/com.orrery.Fount.vlist").read_text()
        self.assertIn("<key>org.example.&lt;&amp;&gt;</key>", text)
        self.assertIn("<string>FountAutoActivationAsk</string>", text)

    def test_is_one_json_document(self):
        for arguments in (["set", "ask", "--json"], ["get", "--json"]):
            self.assertEqual(json.loads(self.say(DONE, *arguments)[0]),
                             {"schema": {"name": "vellum.policy", "version": 1}, "application": None,
                              "setting": "ask"})
        self.assertEqual(json.loads(self.say(DONE, "get", "--json", "--app", "a")[0])["application"], "a")

    def test_dry_runs_set_nothing(self):
        self.assertIn("ask", self.say(DONE, "set", "ask", "--dry-run")[0])
        self.assertEqual(list(self.home.iterdir()), [])
        self.say(DONE, "set", "ask")
        self.assertIn("default", self.say(DONE, "reset", "--dry-run")[0])
        self.assertEqual(self.setting(), "ask")

    def test_says_what_it_cannot_keep(self):
        (self.home / "xdg_config_home").mkdir(mode=0o500)
        done = self.run_tool("policy", "set", "ask", before=BOUND_BY_MODES)
        self.assertEqual((done.returncode, done.stdout), (REFUSED, b""))
        self.assertIn(b"could not be kept", done.stderr)

    def test_is_misused_aloud(self):
        for arguments in ([], ["set"], ["set", "perhaps"], ["get", "--app", ""], ["get", "--app", "a\nb"],
                          ["get", "--app", "x" * 256], ["get", "ask"], ["reset", "ask"], ["put", "ask"]):
            _, errors = self.say(USAGE, *arguments)
            self.assertTrue(errors, arguments)

    def test_helps_with_an_example(self):
        for verb in ([], ["get"], ["set"], ["reset"]):
            shown, _ = self.say(DONE, *verb, "--help")
            self.assertIn("Example:\n  vellum policy ", shown)
            self.assertIn("Exit codes:", shown)

    def test_shows_names_that_cannot_drive_the_terminal(self):
        shown, _ = self.say(DONE, "get", "--app", "a\u202eb")
        self.assertEqual(shown, "a\\u202eb: default (nothing is set)\n")


class Daemons(unittest.TestCase):
    def test_are_asked_for_by_a_name_that_the_library_exports(self):
        if IS_SANITIZED:
            self.skipTest("the library needs a sanitizer's program around it")
        library = next(pathlib.Path(TOOL).resolve().parents[1].glob("libvellum.so.1"))
        function = ctypes.CDLL(str(library)).GetApplicationIsDaemon
        function.restype = ctypes.c_bool
        os.environ["DISPLAY"] = ":0"
        self.assertFalse(function())


if __name__ == "__main__":
    unittest.main()
