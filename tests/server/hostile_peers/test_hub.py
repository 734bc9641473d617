# SPDX-License-Identifier: MIT
# The notification hub among peers that post without end, that do not listen, or that say what is nothing.
import select
import threading
import time
import unittest

import wire
from hostile_case import HostileCase
from running_server import HUB, PATIENCE
from test_values import BROKEN, NULL
from wire import OBSERVE, POST, flat

CHANGED = "com_orrery_Laydown_FontManagerChangedNotification"
MISSED = flat({})  # what is told when something could not be
LONGEST = 2 << 20  # bytes that are told at once
AT_ONCE = 0.8  # seconds: less than a silent observer has
OBSERVING = wire.packet(wire.message(OBSERVE, "", [])[0])


class HubCase(HostileCase):
    def observer(self):
        peer = self.server.peer(HUB)
        self.addCleanup(peer.connection.close)
        peer.send(OBSERVING)
        self.assertEqual(peer.receive().words, (0,))
        return peer

    def post(self, peer, value):
        return peer.ask(POST, value if isinstance(value, bytes) else flat(value))


class Hub(HubCase):
    def test_tells_those_who_listen_whatever_others_do(self):
        observer, silent = self.observer(), [self.observer() for _ in range(20)]
        with self.bystander(), self.server.peer(HUB) as poster:
            for number in range(2000):
                self.post(poster, {"Turn": {"number": number}})
                told = observer.receive()
                self.assertEqual((told.id, told.memory), (wire.TELL, flat({"Turn": {"number": number}})))
        for peer in (observer, *silent):
            peer.connection.close()

    def test_cuts_off_who_does_not_listen(self):
        silent = self.observer()
        with self.bystander(), self.server.peer(HUB) as poster:
            self.post_many(poster)
            self.assertTrue(self.has_hung_up(silent))

    def has_hung_up(self, peer):
        """Waits for that, and reads nothing."""
        ends = select.poll()
        ends.register(peer.connection, 0)
        return bool(ends.poll(PATIENCE * 1000))

    def post_many(self, poster):
        """More than anybody has room for who does not listen; how long the slowest of the answers took."""
        slowest = 0
        for number in range(2000):
            begin = time.monotonic()
            self.assertEqual(self.post(poster, {"Turn": {"number": number}}).words, (0,))
            slowest = max(slowest, time.monotonic() - begin)
        return slowest

    def test_answers_who_posts_at_once_whoever_does_not_listen(self):
        silent = [self.observer() for _ in range(20)]
        with self.bystander(), self.server.peer(HUB) as poster:
            self.assertLess(self.post_many(poster), AT_ONCE)
            self.assertLess(self.post_many(poster), AT_ONCE)
            for peer in silent:
                self.assertTrue(self.has_hung_up(peer))

    def test_tells_who_has_not_listened_for_a_moment_that_something_was_missed(self):
        observer = self.observer()
        with self.bystander(), self.server.peer(HUB) as poster:
            self.post_many(poster)
            told = [observer.receive().memory]
            while told[-1] != MISSED:
                told.append(observer.receive().memory)
            self.assertEqual(told, [flat({"Turn": {"number": number}}) for number in range(len(told) - 1)] + [MISSED])
            self.assertLess(len(told), 2000)
            self.post(poster, {"Turn": {"is": "again"}})
            self.assertEqual(observer.receive().memory, flat({"Turn": {"is": "again"}}))

    def test_says_of_too_long_news_that_anything_may_have_changed(self):
        observer = self.observer()
        longest = LONGEST - len(flat({"Turn": {"text": ""}}))
        with self.bystander(), self.server.peer(HUB) as poster:
            for length, told in ((longest, None), (longest + 1, MISSED)):
                news = flat({"Turn": {"text": "x" * length}})
                self.assertEqual(self.post(poster, news).words, (0,))
                self.assertEqual(observer.receive().memory, told or news)

    def test_keeps_who_listens_in_a_flood(self):
        listener, heard = self.observer(), []

        def listen():
            while len(heard) < 400 and (told := listener.receive()):
                heard.append(told.id)

        thread = threading.Thread(target=listen)
        thread.start()
        with self.bystander(), self.server.peer(HUB) as poster:
            for number in range(400):
                self.post(poster, {"Turn": {"text": "x" * 15000}})
            thread.join()
        self.assertEqual(len(heard), 400)
        listener.connection.close()

    def test_holds_no_more_for_who_does_not_listen_than_fits(self):
        silent, held = self.observer(), 0
        with self.bystander(), self.server.peer(HUB) as poster:
            for number in range(100):
                self.post(poster, {"Turn": {"text": f"{number:2}" * (800 << 10)}})
            while (told := silent.receive()) and told.memory != MISSED:
                held += len(told.memory)
        self.assertGreater(held, 4 << 20)
        self.assertLess(held, 24 << 20)

    def test_passes_on_nothing_that_is_no_notification(self):
        observer = self.observer()
        odd = {"a number": flat(7), "an array": flat([]), "texts of numbers": flat({7: 8}), "nothing": b"",
               "a text for a user info": flat({"Turn": "x"}), **BROKEN}
        with self.bystander():
            for name, value in odd.items():
                with self.subTest(name), self.server.peer(HUB) as poster:
                    self.post(poster, value)
            with self.server.peer(HUB) as poster:
                self.post(poster, {"Turn": {"is": "good"}})
            self.assertEqual(observer.receive().memory, flat({"Turn": {"is": "good"}}))
        observer.connection.close()

    def test_survives_news_of_fonts_that_are_none(self):
        added = "LDFontManagerAvailableFontURLsAdded"
        odd = [{CHANGED: {added: value}} for value in (7, "x", [1, NULL, "x" * 5000], {}, [[]], [b"x"] * 1000)]
        with self.bystander():
            for value in (*odd, {CHANGED: 7}, {CHANGED: {}}, {CHANGED: {7: [7]}}):
                with self.server.peer(HUB) as poster:
                    self.assertEqual(self.post(poster, value).id, POST + 100)

    def test_forgets_who_observes_again_and_again(self):
        with self.bystander(), self.server.peer(HUB) as peer:
            for _ in range(1000):
                peer.send(OBSERVING)
                self.assertEqual(peer.receive().words, (0,))
            self.assertEqual(self.told_by_one_post(peer), 1)

    def told_by_one_post(self, observer):
        with self.server.peer(HUB) as poster:
            self.post(poster, {"Turn": {}})
        count = 0
        observer.send(OBSERVING)
        while observer.receive().id == wire.TELL:
            count += 1
        return count

    def test_answers_other_ids_by_a_code(self):
        with self.server.peer(HUB) as peer:
            for identity in (wire.TELL, 13000, 0, 71):
                peer.send(wire.packet(wire.message(identity, "W", [1])[0]))
                self.assertEqual(peer.receive().words, (wire.BAD_ID,))
            self.assertEqual(self.post(peer, {"Turn": {}}).words, (0,))


if __name__ == "__main__":
    unittest.main()
