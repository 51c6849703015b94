"""Two processes with eight threads each and a session for each thread, demoted and killed at random."""

import json
import random
import subprocess
import unittest

from commandline import CommandLineTest, command, start

LIVES = 10_000
SECONDS = 30  # a busy machine completes fewer lives
MIN_LIVES = 500
MIN_KILLS = 3
TIME_LIMIT_SECONDS = 200  # stuck threads report earlier

PAIRS = (
    (("filesOpened",), ("filesClosed",)),
    (("registrationsBegun",), ("registrationsEnded",)),
    (("deliveriesArmed",), ("deliveriesEnded",)),
    (("noticesRaised",), ("noticesDelivered", "noticesDropped")),
    (("routesCalculated",), ("routesGone",)),
    (("reservationsBegun",), ("reservationsEnded", "reservationsDemoted", "reservationsReleased")),
    (("programmingsBegun",), ("programmingsEnded",)),
)


def load(*words):
    return subprocess.run(command("QUENRA_LOAD_EXE", words), stdin=subprocess.DEVNULL,
                          capture_output=True, timeout=TIME_LIMIT_SECONDS, check=False)


class RouteLoad(CommandLineTest):
    def test_ten_thousand_routes_leave_no_object(self):
        seed = random.randrange(1 << 32)
        result = load("routes", "--lives", str(LIVES), "--seconds", str(SECONDS),
                      "--kill-every", "1", "--seed", str(seed))
        self.assertEqual(result.returncode, 0, result.stderr.decode())
        counters = dict(line.split() for line in result.stdout.decode().splitlines())
        print(f"seed {seed}:", counters)
        self.assertGreaterEqual(int(counters["lives"]), MIN_LIVES)
        self.assertGreaterEqual(int(counters["kills"]), MIN_KILLS)
        self.assertGreater(int(counters["heard"]), 0)
        self.assertGreater(int(counters["conflicts"]), 0)
        self.assert_nothing_is_held()

    def assert_nothing_is_held(self):
        self.assertEqual(json.loads(self.machine("routes", "--json")), {"routes": []})
        counters = json.loads(self.machine("counters", "--json"))
        for begun, ended in PAIRS:
            self.assertEqual(sum(counters[name] for name in begun),
                             sum(counters[name] for name in ended), (begun, ended, counters))
        self.assertEqual(start("QUENRA_EXE", ["info"]).returncode, 0)


if __name__ == "__main__":
    unittest.main()
