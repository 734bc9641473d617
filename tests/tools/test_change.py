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
    def no_font(self, name="bad.ttf"):
        path = self.folder / name
        path.write_bytes(b"no font")
        return path

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

    def test_takes_folders(self):
        a, b = self.font("a.ttf", "Alpha"), self.font("deep/b.ttf", "Beta")
        for verb in VERBS:
            with self.subTest(verb):
                done = self.change(verb, "--scope", "process", str(self.folder))
                self.assertEqual(done.stdout.count(b"\n"), 2)
                self.assertIn(str(b).encode(), done.stdout)

    def test_has_a_document_for_programs(self):
        good, bad = self.font("a.ttf", "Alpha"), self.no_font()
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
                self.assertEqual((second["path"], second["done"], second["faces"]), (str(bad), False, []))
                self.assertIn("it is not a font", second["problem"])
                self.assertEqual(document["refused"], [{"path": str(bad), "reason": second["problem"]}])

    def test_has_a_line_a_file_for_programs(self):
        a, b = self.font("a.ttf", "Alpha"), self.font("b.ttf", "Beta")
        done = self.change("register", "--scope", "process", "--jsonl", str(a), str(b))
        self.assertEqual([json.loads(line)["path"] for line in done.stdout.splitlines()], [str(a), str(b)])

    def test_tells_programs_of_each_file_that_it_does_nothing_with_and_why(self):
        good, bad, absent = self.font("a.ttf", "Alpha"), self.no_font(), self.folder / "absent.ttf"
        reasons = {str(good): None, str(bad): "it is not a font", str(absent): "there is no such file"}
        for verb in VERBS:
            for form in ("--jsonl", "--json"):
                with self.subTest(verb=verb, form=form):
                    done = self.change(verb, "--scope", "process", form, *reasons, status=PROBLEMS)
                    items = (json.loads(done.stdout)["items"] if form == "--json" else
                             [json.loads(line) for line in done.stdout.splitlines()])
                    self.assertEqual(sorted(item["path"] for item in items), sorted(reasons))
                    for item in items:
                        reason = reasons[item["path"]]
                        self.assertEqual(item["done"], reason is None)
                        self.assertIn(reason or "None", str(item["problem"]))

    def test_tells_a_file_that_is_no_font_from_one_that_may_not_be_read(self):
        bad = self.no_font()
        locked = self.font("locked.ttf")
        locked.chmod(0)
        for verb in VERBS:
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

    def test_refuses_an_empty_path_and_does_nothing(self):
        path = self.font()
        for verb in VERBS:
            with self.subTest(verb):
                done = self.change(verb, "--scope", "process", str(path), "", status=USAGE)
                self.assertEqual(done.stdout, b"")
                self.assertIn(b"an empty text is no path", done.stderr)


class DryRunCase(ChangeCase):
    """The register of a run without a server has the machine's fonts, which are under VELLUM_FONTS_ROOT."""

    def dry_run(self, verb, *arguments, status=DONE, root=None):
        return self.change(verb, "--dry-run", *map(str, arguments), status=status,
                           VELLUM_FONTS_ROOT=str(root or self.scratch / "machine"))

    def machine_font(self, root="machine"):
        return self.font("a.ttf", "Alpha", folder=self.scratch / root / "usr/share/fonts")


class DryRun(DryRunCase):
    def test_says_what_would_be_done_and_does_nothing(self):
        path = self.font("a.ttf", "Alpha")
        for verb, word in VERBS.items():
            with self.subTest(verb):
                done = self.dry_run(verb, "--scope", "process", path)
                self.assertEqual(done.stdout.decode(), f"would be {word}  {path}  Alpha\n")
        self.assertEqual(list(self.home.iterdir()), [])

    def test_of_a_registered_font_says_that_it_would_be_taken_out_or_hidden(self):
        path = self.machine_font()
        for verb in ("unregister", "enable", "disable"):
            with self.subTest(verb):
                done = self.dry_run(verb, path)
                self.assertEqual(done.stdout.decode(), f"would be {VERBS[verb]}  {path}  Alpha\n")

    def test_says_that_a_font_is_registered_already(self):
        path = self.machine_font()
        done = self.dry_run("register", path, status=PROBLEMS)
        self.assertEqual((done.stdout.decode(), done.stderr.decode()),
                         ("", f"vellum: {path}: is registered already\n"))

    def test_says_that_a_font_is_not_registered(self):
        self.machine_font()
        path = self.font("b.ttf")
        for verb in ("unregister", "enable", "disable"):
            with self.subTest(verb):
                done = self.dry_run(verb, path, status=PROBLEMS)
                self.assertEqual((done.stdout.decode(), done.stderr.decode()),
                                 ("", f"vellum: {path}: is not registered\n"))

    def test_promises_nothing_of_what_is_no_font(self):
        path = self.no_font()
        for verb in ("unregister", "enable", "disable"):
            with self.subTest(verb):
                done = self.dry_run(verb, path, status=BAD_FONT)
                self.assertEqual((done.stdout.decode(), done.stderr.decode()),
                                 ("", f"vellum: {path}: is not registered: it is not a font\n"))


class AFileThatIsGone(DryRunCase):
    def gone_font(self):
        """(the folder of the machine's fonts, a file that is registered and is not there)

        Registers know files by the text of their paths, without a look at links: above the link lies the
        folder of its target for the file system, and the link's own for the register.
        """
        self.machine_font("elsewhere/machine")
        (self.scratch / "elsewhere/deep").mkdir()
        (self.scratch / "link").symlink_to("elsewhere/deep")
        gone = self.scratch / "machine/usr/share/fonts/a.ttf"
        self.assertFalse(gone.exists())
        return f"{self.scratch}/link/../machine", gone

    def test_is_the_registers_to_answer_for(self):
        root, path = self.gone_font()
        for verb in ("unregister", "enable", "disable"):
            with self.subTest(verb):
                done = self.dry_run(verb, path, root=root)
                self.assertEqual(done.stdout.decode(), f"would be {VERBS[verb]}  {path}\n")

    def test_is_still_known_by_its_faces(self):
        root, path = self.gone_font()
        for verb in ("enable", "disable"):
            with self.subTest(verb):
                self.dry_run(verb, "--face", "Alpha-Regular", path, root=root)
                self.dry_run(verb, "--face", "Beta-Regular", path, root=root, status=PROBLEMS)

    def test_and_is_not_registered_is_a_problem(self):
        path = self.folder / "gone.ttf"
        for verb in ("unregister", "enable", "disable"):
            for more in (("--scope", "process"), ("--dry-run",)):
                with self.subTest(verb=verb, more=more):
                    done = self.change(verb, str(path), *more, status=PROBLEMS)
                    self.assertEqual(done.stderr.decode(),
                                     f"vellum: {path}: is not registered: there is no such file\n")


class AFolderAboveALink(ChangeCase):
    def setUp(self):
        super().setUp()
        (self.folder / "real/sub").mkdir(parents=True)
        (self.folder / "link").symlink_to("real/sub")
        self.theirs = self.font("x.ttf", "Theirs", folder=self.folder / "real")
        self.named = f"{self.folder}/link/../x.ttf"

    def test_is_that_of_its_target(self):
        for verb, word in VERBS.items():
            with self.subTest(verb):
                done = self.change(verb, "--scope", "process", self.named)
                self.assertEqual(done.stdout.decode(), f"{word}  {self.theirs}  Theirs\n")

    def test_is_not_the_folder_that_the_link_is_in(self):
        self.font("x.ttf", "Ours")
        for verb in VERBS:
            with self.subTest(verb):
                done = self.change(verb, "--scope", "process", self.named)
                self.assertIn(b"Theirs", done.stdout)
        (self.folder / "real/x.ttf").unlink()
        for verb in VERBS:
            with self.subTest(verb):
                self.assertEqual(self.change(verb, "--scope", "process", self.named, status=PROBLEMS).stdout, b"")

    def test_that_is_gone_leads_to_no_other_file(self):
        self.font("x.ttf", "Ours")
        for verb in VERBS:
            with self.subTest(verb):
                done = self.change(verb, "--scope", "process", f"{self.folder}/absent/../x.ttf", status=PROBLEMS)
                self.assertIn(b"there is no such file", done.stderr)

    def test_of_a_name_without_dots_is_kept_as_it_is_named(self):
        path = self.font("y.ttf", "Linked", folder=self.folder / "link")
        for named in (path, f"{self.folder}/link/./y.ttf", f"{self.folder}//link/y.ttf"):
            with self.subTest(named):
                done = self.change("register", "--scope", "process", str(named))
                self.assertEqual(done.stdout.decode(), f"registered  {path}  Linked\n")


class Registering(ChangeCase):
    def test_of_a_path_that_is_named_twice_is_done_once(self):
        path = self.font("a.ttf", "Alpha")
        done = self.change("register", "--scope", "process", str(path), f"{self.folder}/./a.ttf")
        self.assertEqual(done.stdout.decode(), f"registered  {path}  Alpha\n")

    def test_of_a_link_takes_it_for_a_file_of_its_own(self):
        path, link = self.font("a.ttf", "Alpha"), self.folder / "link.ttf"
        link.symlink_to(path)
        done = self.change("register", "--scope", "process", str(path), str(link))
        self.assertEqual(done.stdout.decode(), f"registered  {path}  Alpha\nregistered  {link}  Alpha\n")

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
