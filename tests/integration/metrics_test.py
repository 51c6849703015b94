"""Metrics of a simulated fleet in Prometheus, as docs/many-racks.md describes them.

./dev test --integration unpacks the programs of Prometheus into build/integration without installing them: their
packages would start services.
"""

import http.server
import json
import pathlib
import re
import socket
import subprocess
import sys
import threading
import time
import unittest
import urllib.parse
import urllib.request

from prometheus_client.openmetrics.parser import text_string_to_metric_families

from commandline import CommandLineTest, Files

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAMS = ROOT / "build" / "integration" / "metrics" / "usr" / "bin"
PAGE = "docs/many-racks.md"
DAY_SECONDS = 86400
TIME_LIMIT_SECONDS = 60

sys.path.insert(0, str(ROOT / "tests" / "documents"))
import examples  # noqa: E402


def queries():
    """The queries of the page: old firmware, failing self-test, not seen for a day."""
    blocks = examples.blocks_of(PAGE, (ROOT / PAGE).read_text(encoding="utf-8"))
    return [block.text for block in blocks if block.language == "promql"]


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


def opened(url):
    with urllib.request.urlopen(url, timeout=10) as answer:
        return answer.read().decode("utf-8")


def wait_for(test, condition, reason):
    end = time.monotonic() + TIME_LIMIT_SECONDS
    while time.monotonic() < end:
        try:
            if condition():
                return
        except OSError:
            pass
        time.sleep(0.1)
    test.fail(reason)


class Programs(CommandLineTest):
    """Starts programs on the loopback interface; ends them with the test."""

    def setUp(self):
        super().setUp()
        self.files = Files(self)

    def metrics(self, *words):
        run = self.quenra("metrics", *words)
        self.assertEqual(run.error, "")
        return run.out

    def start(self, name, *words):
        log = open(self.files[f"{name}.log"], "wb")
        self.addCleanup(log.close)
        process = subprocess.Popen([PROGRAMS / name, *words], stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                   cwd=self.files.folder)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)

    def promtool(self, *words, text=None):
        return subprocess.run([PROGRAMS / "promtool", *words], input=text, capture_output=True, encoding="utf-8",
                              timeout=TIME_LIMIT_SECONDS, check=False)


class Formats(Programs):
    """Both formats of each machine, read by other programs."""

    def texts_of_machines(self):
        hostile = 'a"} 1 \\n\x07'
        for words in ((), ("scenario", "--controllers", "0"), ("scenario", "--controllers", "2"),
                      ("scenario", "--martens", "0"), ("scenario", "--without-structure", "0x9E"),
                      ("attribute", "set", "marten", "0x10000400", f"--text={hostile}")):
            self.machine("reset")
            if words:
                self.machine(*words)
            labels = ("--label", "rack=7")
            yield words, self.metrics(*labels), self.metrics("--format", "prometheus", *labels)

    def test_promtool_has_no_remarks(self):
        for words, _, text in self.texts_of_machines():
            result = self.promtool("check", "metrics", text=text)
            self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""), words)

    def test_openmetrics_parser_reads_the_same_samples(self):
        for words, openmetrics, text in self.texts_of_machines():
            families = list(text_string_to_metric_families(openmetrics))
            self.assertIn("quenra_build", [family.name for family in families], words)
            read = [sample.name for family in families for sample in family.samples]
            lines = [re.match(r"[a-z_]+", line)[0] for line in text.splitlines() if not line.startswith("#")]
            self.assertEqual(read, lines, words)

    def test_hostile_text_is_one_label(self):
        self.machine("attribute", "set", "marten", "0x10000400", '--text=a"} 1 \\n')
        families = {family.name: family for family in text_string_to_metric_families(self.metrics())}
        self.assertEqual(families["quenra_firmware"].samples[1].labels,
                         {"device": "MARTEN", "version": 'a"} 1 \\n'})


class Fleet(Programs):
    """Racks, each with a file in the folder of node-exporter; one whose collector ended two days ago; and one
    that serves OpenMetrics."""

    def setUp(self):
        super().setUp()
        self.files["textfile"].mkdir()
        self.metrics_of(1, "attribute", "set", "marten", "0x10000400", "--text", "1.4.2f7")
        self.metrics_of(2)  # 1.4.0f7
        self.metrics_of(3, "scenario", "--controllers", "2")
        self.metrics_of(4, "attribute", "set", "marten", "0x10000400", "--text", "1.4.2f7")
        self.age("textfile/rack4.prom")
        self.metrics_of(5, "scenario", "--controllers", "0")
        self.import_history(6)
        self.serve_openmetrics(7)
        self.start_collector()
        self.start_prometheus()

    def metrics_of(self, rack, *scenario):
        self.machine("reset")
        if scenario:
            self.machine(*scenario)
        self.metrics("--format", "prometheus", "--label", f"rack={rack}", "--output",
                     self.files.typed(f"textfile/rack{rack}.prom"))

    def age(self, name):
        """Makes a file one that was last written two days ago."""
        pattern = r"(?m)^(quenra_last_collection_timestamp_seconds\S* )(\S+)$"
        text, count = re.subn(pattern, lambda match: f"{match[1]}{float(match[2]) - 2 * DAY_SECONDS:.6f}",
                              self.files[name].read_text(encoding="utf-8"))
        self.assertEqual(count, 1)
        self.files[name].write_text(text, encoding="utf-8")

    def import_history(self, rack):
        """Metrics that Prometheus collected two days ago, of a rack that no longer answers."""
        self.machine("reset")
        collected = int(time.time()) - 2 * DAY_SECONDS
        text = self.metrics("--label", f"rack={rack}")
        text = re.sub(r"(?m)^(quenra_last_collection_timestamp_seconds\S*) \S+$", rf"\1 {collected}", text)
        history = re.sub(r"(?m)^([^#\n].*)$", rf"\1 {collected}", text)
        self.files["history"].write_text(history, encoding="utf-8")
        result = self.promtool("tsdb", "create-blocks-from", "openmetrics", str(self.files["history"]),
                               str(self.files["data"]))
        self.assertEqual(result.returncode, 0, result.stderr)

    def serve_openmetrics(self, rack):
        self.machine("attribute", "set", "marten", "0x10000400", "--text", "1.4.2f7")
        body = self.metrics("--label", f"rack={rack}").encode()

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                self.send_response(200)
                self.send_header("Content-Type", "application/openmetrics-text; version=1.0.0; charset=utf-8")
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *_):
                pass

        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        self.openmetrics_port = server.server_port

    def start_collector(self):
        self.collector_port = free_port()
        self.start("prometheus-node-exporter", "--collector.disable-defaults", "--collector.textfile",
                   f"--collector.textfile.directory={self.files['textfile']}",
                   f"--web.listen-address=127.0.0.1:{self.collector_port}")
        url = f"http://127.0.0.1:{self.collector_port}/metrics"
        wait_for(self, lambda: "node_textfile_scrape_error 0\n" in opened(url),
                 "node-exporter rejects the files")

    def start_prometheus(self):
        targets = [f"127.0.0.1:{port}" for port in (self.collector_port, self.openmetrics_port)]
        configuration = {
            "global": {"scrape_interval": "1s"},
            "scrape_configs": [{"job_name": "racks", "static_configs": [{"targets": targets}]}],
        }
        self.files["prometheus.yml"].write_text(json.dumps(configuration), encoding="utf-8")
        port = free_port()
        self.api = f"http://127.0.0.1:{port}/api/v1"
        self.start("prometheus", "--config.file=prometheus.yml", "--storage.tsdb.path=data",
                   f"--web.listen-address=127.0.0.1:{port}")
        wait_for(self, lambda: len(self.query("up == 1")) == 2, "Prometheus does not read both targets")

    def query(self, text):
        """The samples that a query returns: a list of label sets."""
        answer = json.loads(opened(f"{self.api}/query?{urllib.parse.urlencode({'query': text})}"))
        self.assertEqual(answer["status"], "success")
        return [sample["metric"] for sample in answer["data"]["result"]]

    def test_queries_of_the_page_find_the_racks(self):
        old_firmware, failing, not_seen = queries()
        self.assertEqual([(rack["rack"], rack["device"], rack["version"]) for rack in self.query(old_firmware)],
                         [("2", "MARTEN", "1.4.0f7")])
        self.assertEqual(sorted(rack["rack"] for rack in self.query(failing)), ["3", "5"])
        self.assertEqual(sorted(rack["rack"] for rack in self.query(not_seen)), ["4", "6"])
        text = (ROOT / PAGE).read_text(encoding="utf-8")
        of_one_model = re.search(r"`(quenra_firmware_info\{.*?\})`", text)[1]
        self.assertEqual([rack["rack"] for rack in self.query(of_one_model)], ["2"])
        codes = {rack["rack"]: rack["code"] for rack in
                 self.query('quenra_status_info{operation="open",code=~"-.*"}')}
        self.assertEqual(codes, {"3": "-52003", "5": "-26932"})

        self.check_types_of_openmetrics()

    def check_types_of_openmetrics(self):
        answer = json.loads(opened(f"{self.api}/targets/metadata?" + urllib.parse.urlencode(
            {"match_target": f'{{instance="127.0.0.1:{self.openmetrics_port}"}}'})))
        types = {entry["metric"]: (entry["type"], entry["unit"]) for entry in answer["data"]}
        self.assertEqual(types["quenra_build"], ("info", ""))
        self.assertEqual(types["quenra_memory_module_size_bytes"], ("gauge", "bytes"))
        self.assertIn(("counter", ""), types.values())


if __name__ == "__main__":
    unittest.main()
