import json
import os
import subprocess
import unittest

from commandline import CommandLineTest, Started, command

LINE = ("--from", "TRIG_SMB", "--to", "PXI_Trig3")


def typed_program(name):
    """The path of a program as a shell of the simulated machine finds it."""
    path = os.environ[name]
    return "Z:" + path.replace("/", "\\") if os.environ.get("QUENRA_RUNNER") else path


class Routing(CommandLineTest):
    def routes(self):
        return json.loads(self.machine("routes", "--json"))["routes"]

    def test_terminals_are_listed(self):
        terminals = self.document("terminals", kind="terminals")["terminals"]
        self.assertEqual([terminal["name"] for terminal in terminals],
                         ["FLOAT", "TRIG_SMB", "WD_Terminal"] + [f"PXI_Trig{i}" for i in range(8)])
        text = self.quenra("terminals").out
        self.assertRegex(text, r"(?m)^PXI_Trig7 +11 +everybody +yes +no +PXI_Trig 7$")

    def test_plan_makes_nothing(self):
        document = self.document("route", "plan", *LINE, kind="route-plan")
        self.assertEqual([(route["inverted"], route["path"]) for route in document["routes"]],
                         [(False, ["TRIG_SMB", "PXI_Trig3"])])
        self.assertIn("TRIG_SMB -> PXI_Trig3  yes",
                      self.quenra("route", "plan", *LINE, "--invert").out)
        self.assertEqual(self.routes(), [])

    def test_path_of_any_length_is_printed(self):
        self.machine("scenario", "--path-length", "40")
        routes = self.document("route", "plan", *LINE, kind="route-plan")["routes"]
        self.assertEqual(len(routes[0]["path"]), 40)

    def test_route_is_held_for_its_time_and_released(self):
        connection = Started(self, "route", "connect", *LINE, "--for", "4")
        self.assertEqual(connection.next_line(), "connected: TRIG_SMB -> PXI_Trig3, for 4.0 s\n")
        self.assertEqual([route["state"] for route in self.routes()], ["programmed"])
        out, error = connection.end(0)
        self.assertRegex(out, r"^released after \d+\.\d s\n$")
        self.assertEqual(error, "")
        self.assertEqual(self.routes(), [])
        steps = [request for request in (entry.get("request", "") for entry in self.log())
                 if request.endswith("-route")]
        self.assertEqual(steps, ["calculate-route", "reserve-route", "program-route",
                                 "unprogram-route", "unreserve-route", "destroy-route"])

    def test_ctrl_c_releases_the_route(self):
        connection = Started(self, "route", "connect", *LINE)
        self.assertEqual(connection.next_line(), "connected: TRIG_SMB -> PXI_Trig3, until Ctrl-C\n")
        connection.interrupt()
        out, error = connection.end(0)
        self.assertIn("released after ", out)
        self.assertEqual(error, "")
        self.assertEqual(self.routes(), [])

    def test_document_of_an_interrupted_connection(self):
        connection = Started(self, "route", "connect", *LINE, "--json")
        self.assertEqual(connection.warned(),
                         "quenra: connected: TRIG_SMB -> PXI_Trig3, until Ctrl-C\n")
        connection.interrupt()
        out, error = connection.end(0)
        document = json.loads(out)
        self.schema.check(document)
        self.assertTrue(document["interrupted"])
        self.assertRegex(error, r"^quenra: released after ")

    def test_demotion_is_printed_while_the_route_is_held(self):
        connection = Started(self, "route", "connect", *LINE)
        connection.next_line()
        self.machine("demote", str(self.routes()[0]["ticket"]))
        self.assertRegex(connection.warned(), r"^quenra: the route was demoted after .*: the line was taken by a route of "
                         r"higher priority \(101\); ")
        self.assertIsNone(connection.process.poll(), "the route is held to its end")
        connection.interrupt()
        out, _ = connection.end(1)
        self.assertIn("released after ", out)
        self.assertEqual(self.routes(), [])

    def test_document_of_a_connection(self):
        document = self.document("route", "connect", *LINE, "--invert", "--for", "0",
                                 kind="route-connect")
        self.assertTrue(document["route"]["inverted"])
        self.assertEqual(document["demotions"], [])
        self.assertFalse(document["interrupted"])

    def test_holder_of_the_line_is_named(self):
        connection = Started(self, "route", "connect", *LINE)
        connection.next_line()
        holder = self.routes()[0]
        words = ("route", "connect", "--from", "PXI_Trig0", "--to", "PXI_Trig3")
        run = self.quenra(*words, exit_code=1)
        self.assert_failure(run, -89137, "QUENRA_STATUS_ROUTE_CONFLICT")
        self.assertIn(f"held by ticket {holder['ticket']} (session {holder['session']})\n", run.error)
        error = self.document(*words, kind="error", exit_code=1)["error"]
        self.assertEqual(error["code"], -89137)
        self.assertEqual(error["holders"],
                         [{"session": holder["session"], "ticket": holder["ticket"]}])
        connection.interrupt()
        connection.end(0)
        self.quenra(*words, "--for", "0")

    # ---- A program, a demotion, a held line ----

    def test_program_runs_while_the_route_is_connected(self):
        run = self.quenra("route", "connect", *LINE, "--", "quenra-sim", "routes", "--json")
        self.assertEqual([route["state"] for route in json.loads(run.out)["routes"]], ["programmed"])
        self.assertRegex(run.error, r"^quenra: connected: TRIG_SMB -> PXI_Trig3, while the program runs\n"
                         r"quenra: the program has ended, exit code 0\nquenra: released after ")
        self.assertEqual(self.routes(), [])

    def test_exit_code_is_that_of_the_program(self):
        for code in (0, 7, 123):
            self.quenra("route", "connect", *LINE, "--", "cmd", "/c", f"exit {code}", exit_code=code)
        document = self.document("route", "connect", *LINE, "--json", "--", "cmd", "/c", "exit 7",
                                 kind="route-connect", exit_code=7, json_is_given=True)
        self.assertEqual(document["program"], {"words": ["cmd", "/c", "exit 7"], "exitCode": 7,
                                               "terminated": False})

    def test_arguments_reach_the_program_as_they_were(self):
        for word in ("", " ", "a b", '"', 'a\\"b c\\', "\\\\server\\share\\", "Größe 測定", "%PATH%", "--json", "tab\there"):
            run = self.quenra("route", "connect", *LINE, "--", "quenra", "explain", "--", word, exit_code=2)
            direct = self.quenra("explain", "--", word, exit_code=2)
            self.assertIn(direct.error, run.error, repr(word))

    def test_program_reads_standard_input(self):
        process = subprocess.run(
            command("QUENRA_EXE", ("route", "connect", *LINE, "--", "cmd", "/c", "set /p A= & call echo %^A%")),
            input=b"from the pipe\r\n", capture_output=True, timeout=60, check=False)
        self.assertEqual(process.returncode, 0, process)
        self.assertIn(b"from the pipe", process.stdout)

    def test_demotion_ends_the_program_and_its_processes(self):
        inner = ("route", "connect", "--from", "TRIG_SMB", "--to", "PXI_Trig5")
        connection = Started(self, "route", "connect", *LINE, "--grace", "1", "--", "cmd", "/c",
                             typed_program("QUENRA_EXE"), *inner)
        connection.read_until("connected: TRIG_SMB -> PXI_Trig5")
        outer = [route for route in self.routes() if route["destination"] == 7]  # PXI_Trig3
        self.assertEqual(len(self.routes()), 2)
        self.machine("demote", str(outer[0]["ticket"]))
        _, error = connection.end(124)
        self.assertIn("quenra: the route was demoted after ", error)
        self.assertEqual(self.routes(), [], "the inner quenra has ended")

    def test_ctrl_c_reaches_the_program_and_releases_the_route(self):
        connection = Started(self, "route", "connect", *LINE, "--", "quenra", "route", "connect",
                             "--from", "TRIG_SMB", "--to", "PXI_Trig5")
        connection.read_until("connected: TRIG_SMB -> PXI_Trig5")
        connection.interrupt()
        connection.process.wait(timeout=60)
        self.assertEqual(self.routes(), [])

    def test_program_that_cannot_be_started_has_its_exit_code(self):
        run = self.quenra("route", "connect", *LINE, "--", "no-such-program", exit_code=126)
        self.assertIn("quenra: cannot start 'no-such-program': no such file\n  Give the program", run.error)
        self.quenra("route", "connect", *LINE, "--", "run.cmd", exit_code=126)
        self.document("route", "connect", *LINE, "--json", "--", "run.cmd", kind="error", exit_code=126,
                      json_is_given=True)
        self.assertEqual(self.routes(), [])

    def test_route_that_cannot_be_connected_starts_no_program(self):
        self.machine("scenario", "--device-paths", "0")
        run = self.quenra("route", "connect", *LINE, "--", "quenra", "--version", exit_code=125)
        self.assertEqual(run.out, "")

    def test_demotion_ends_a_route_until_demoted(self):
        connection = Started(self, "route", "connect", *LINE, "--until-demoted")
        self.assertEqual(connection.next_line(), "connected: TRIG_SMB -> PXI_Trig3, until a demotion\n")
        self.machine("demote", str(self.routes()[0]["ticket"]))
        out, error = connection.end(0)
        self.assertIn("released after ", out)
        self.assertIn("quenra: the route was demoted after ", error)
        self.assertEqual(self.routes(), [])

    def test_held_line_is_waited_for(self):
        holder = Started(self, "route", "connect", *LINE)
        holder.next_line()
        ticket = self.routes()[0]
        words = ("route", "connect", "--from", "PXI_Trig0", "--to", "PXI_Trig3", "--for", "0")
        run = self.quenra(*words, "--wait", "0.5", exit_code=1)
        self.assertIn(f"quenra: the line is held by ticket {ticket['ticket']} (session {ticket['session']}); "
                      "waiting for at most 0.", run.error)
        self.assertIn("cannot reserve the route: held by ", run.error)
        waiting = Started(self, *words, "--wait", "50")
        self.assertIn("the line is held by ticket ", waiting.warned())
        holder.interrupt()
        holder.end(0)
        out, _ = waiting.end(0)
        self.assertIn("connected: PXI_Trig0 -> PXI_Trig3, for 0.0 s", out)
        self.assertEqual(self.routes(), [])

    def test_ctrl_c_ends_the_wait(self):
        holder = Started(self, "route", "connect", *LINE)
        holder.next_line()
        waiting = Started(self, "route", "connect", "--from", "PXI_Trig0", "--to", "PXI_Trig3", "--wait", "50")
        self.assertIn("the line is held by ticket ", waiting.warned())
        waiting.interrupt()
        _, error = waiting.end(1)
        self.assertIn("interrupted while another route held the line", error)
        holder.interrupt()
        holder.end(0)

    # ---- Events ----

    def test_events_of_a_route_with_a_program(self):
        run = self.quenra("route", "connect", *LINE, "--json-lines", "--", "cmd", "/c", "exit 7", exit_code=7)
        lines = self.events(run.out)
        self.assertEqual([line["event"] for line in lines],
                         ["connected", "program-started", "program-ended", "released", "result"])
        self.assertEqual(lines[0]["route"]["path"], ["TRIG_SMB", "PXI_Trig3"])
        self.assertEqual(lines[1]["words"], ["cmd", "/c", "exit 7"])
        self.assertEqual(lines[2]["programExitCode"], 7)
        self.assertEqual((lines[4]["kind"], lines[4]["exitCode"]), ("route-connect", 7))

    def test_events_are_printed_as_they_happen(self):
        connection = Started(self, "route", "connect", *LINE, "--until-demoted", "--json-lines")
        first = json.loads(connection.next_line())
        self.assertEqual(first["event"], "connected")
        self.machine("demote", str(first["route"]["ticket"]))
        self.assertEqual(json.loads(connection.next_line())["event"], "demoted")
        rest = connection.next_line() + connection.next_line()
        self.assertEqual([line["event"] for line in self.events(rest)], ["released", "result"])
        connection.end(0)

    def test_events_of_a_held_line_end_in_its_error(self):
        holder = Started(self, "route", "connect", *LINE)
        holder.next_line()
        ticket = self.routes()[0]
        run = self.quenra("route", "connect", "--from", "PXI_Trig0", "--to", "PXI_Trig3", "--wait", "0.3",
                          "--json-lines", exit_code=1)
        lines = self.events(run.out)
        self.assertEqual([line["event"] for line in lines], ["waiting", "result"])
        self.assertEqual(lines[0]["holders"], [{"session": ticket["session"], "ticket": ticket["ticket"]}])
        self.assertEqual((lines[1]["kind"], lines[1]["error"]["holders"]), ("error", lines[0]["holders"]))
        holder.interrupt()
        holder.end(0)

    def test_wrong_usage_is_a_line(self):
        run = self.quenra("route", "connect", "--from", "x", "--json-lines", exit_code=2)
        self.assertEqual(self.events(run.out)[0]["kind"], "error")
        self.quenra("route", "connect", *LINE, "--json", "--json-lines", exit_code=2)

    def test_unroutable_terminals_have_their_exit_codes(self):
        self.assertIn("Did you mean PXI_Trig3",
                      self.quenra("route", "plan", "--from", "TRIG_SMB", "--to", "PXI_Trg3",
                                  exit_code=2).error)
        self.assertIn("there is no route from FLOAT to PXI_Trig0",
                      self.quenra("route", "connect", "--from", "FLOAT", "--to", "PXI_Trig0",
                                  exit_code=3).error)
        self.quenra("route", "connect", *LINE, "--for", "x", exit_code=2)

    def test_without_the_device_there_is_no_controller(self):
        self.machine("scenario", "--device-paths", "0")
        for words in (("terminals",), ("route", "plan", *LINE), ("route", "connect", *LINE)):
            self.assert_failure(self.quenra(*words, exit_code=4), -26932,
                                "QUENRA_STATUS_NO_CONTROLLER")
            self.document(*words, kind="error", exit_code=4)

    def test_unknown_router_is_not_supported(self):
        self.machine("scenario", "--topography", "other")
        run = self.quenra("terminals", exit_code=3)
        self.assert_failure(run, -50003, "QUENRA_STATUS_BAD_SELECTOR")
        self.assertIn("does not support the router of this machine (other)\n", run.error)


if __name__ == "__main__":
    unittest.main()
