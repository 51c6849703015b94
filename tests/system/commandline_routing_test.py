import json
import unittest

from commandline import CommandLineTest, Started

LINE = ("--from", "TRIG_SMB", "--to", "PXI_Trig3")


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
