"""Reports in a browser: layout, accessibility, paper, and texts of the machine that look like markup.

The pictures of the pages are in build/integration/report, for people.
"""

import base64
import json
import os
import pathlib
import re
import shutil
import subprocess
import unittest

from commandline import CommandLineTest, Files, Started

ROOT = pathlib.Path(__file__).resolve().parents[2]
PACKAGES = ROOT / "tests" / "integration" / "report"
FOLDER = ROOT / "build" / "integration" / "report"
WIDTHS = {"phone": 390, "desktop": 1280}
SCHEMES = ("light", "dark")
A4_POINTS = (595, 842)
TIME_LIMIT_SECONDS = 60

HOSTILE = ("</title><script>document.documentElement.dataset.ran=1;alert(1)</script>\" onload=\"alert(2)\" "
           "'<img src=x:y onerror=alert(3)>&lt;")

# Texts outside their drawing or across another one, elements beyond the page, and texts that are cut off.
LAYOUT = """(() => {
  const faults = [];
  const name = (element) => element.outerHTML.slice(0, 120);
  const width = document.documentElement.clientWidth;
  if (document.documentElement.scrollWidth > width) faults.push(`scrolls to ${document.documentElement.scrollWidth}`);
  for (const element of document.body.querySelectorAll("*")) {
    if (element.closest(".scroll") && !element.matches(".scroll")) continue;
    if (element.matches(".skip, .unseen") || element.closest("svg")) continue;
    const box = element.getBoundingClientRect();
    if (box.right > width + 1 || box.left < -1) faults.push(`outside: ${name(element)}`);
    if (element.scrollWidth > element.clientWidth + 1 && element.clientWidth > 0 && !element.matches(".scroll")
        && getComputedStyle(element).display !== "inline") faults.push(`cut off: ${name(element)}`);
  }
  for (const svg of document.querySelectorAll("svg")) {
    const frame = svg.getBoundingClientRect();
    const texts = [...svg.querySelectorAll("text")].filter((text) => text.textContent.trim());
    const boxes = texts.map((text) => text.getBoundingClientRect());
    boxes.forEach((box, i) => {
      if (box.left < frame.left || box.right > frame.right || box.top < frame.top - 1 || box.bottom > frame.bottom + 1)
        faults.push(`outside its drawing: ${name(texts[i])}`);
      if (box.height < 10) faults.push(`illegible: ${name(texts[i])}`);
      boxes.slice(i + 1).forEach((other, j) => {
        if (box.left < other.right - 1 && other.left < box.right - 1 && box.top < other.bottom - 4 && other.top < box.bottom - 4)
          faults.push(`overlap: ${name(texts[i])} ${name(texts[i + 1 + j])}`);
      });
    });
  }
  return faults;
})()"""

# Evidence that a text of the machine has become markup.
MARKUP = """({scripts: document.scripts.length, images: document.images.length,
  ran: document.documentElement.dataset.ran ?? null, title: document.title,
  handlers: [...document.querySelectorAll("*")].flatMap((element) => element.getAttributeNames())
    .filter((name) => name.startsWith("on"))})"""


class Browser:
    """Chromium without a window, driven through its debugging pipe: JSON messages that end with NUL."""

    def __init__(self, folder):
        from_browser, to_us = os.pipe()
        from_us, to_browser = os.pipe()
        words = ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                 "--remote-debugging-pipe", f"--user-data-dir={folder}", "about:blank"]
        self.process = subprocess.Popen(
            ["bash", "-c", f'exec "$@" 3<&{from_us} 4>&{to_us}', "bash", *words],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            pass_fds=(from_us, to_us))
        os.close(from_us)
        os.close(to_us)
        self.reader = os.fdopen(from_browser, "rb", buffering=0)
        self.writer = os.fdopen(to_browser, "wb", buffering=0)
        self.received = b""
        self.number = 0
        self.session = None
        self.events = []
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Network"):
            self.call(f"{domain}.enable")

    def close(self):
        self.process.terminate()
        self.process.wait()
        self.reader.close()
        self.writer.close()

    def message(self):
        while b"\0" not in self.received:
            part = self.reader.read(1 << 16)
            if not part:
                raise RuntimeError("the browser ended")
            self.received += part
        first, _, self.received = self.received.partition(b"\0")
        return json.loads(first)

    def handle(self, event):
        self.events.append(event)
        if event["method"] == "Page.javascriptDialogOpening":
            self.send("Page.handleJavaScriptDialog", accept=True)

    def send(self, method, **parameters):
        self.number += 1
        request = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            request["sessionId"] = self.session
        self.writer.write(json.dumps(request).encode() + b"\0")
        return self.number

    def call(self, method, **parameters):
        number = self.send(method, **parameters)
        while True:
            message = self.message()
            if message.get("id") == number:
                if "error" in message:
                    raise RuntimeError(f"{method}: {message['error']}")
                return message["result"]
            if "method" in message:
                self.handle(message)

    def wait_for(self, method):
        while not any(event["method"] == method for event in self.events):
            message = self.message()
            if "method" in message:
                self.handle(message)

    def open(self, page, width, scheme="light"):
        """Loads a page; returns the events while it loads."""
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=900, deviceScaleFactor=1,
                  mobile=width < 600)
        self.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])
        self.events = []
        self.call("Page.navigate", url=page.as_uri())
        self.wait_for("Page.loadEventFired")
        return self.events

    def value(self, expression):
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in result:
            raise RuntimeError(result["exceptionDetails"])
        return result["result"].get("value")

    def picture(self):
        return base64.b64decode(self.call("Page.captureScreenshot", captureBeyondViewport=True)["data"])

    def paper(self):
        return base64.b64decode(self.call("Page.printToPDF", preferCSSPageSize=True, printBackground=True)["data"])


def linter():
    """The source of the accessibility linter, installed with the recorded version and checksum."""
    folder = FOLDER / "packages"
    folder.mkdir(parents=True, exist_ok=True)
    for name in ("package.json", "package-lock.json"):
        shutil.copy(PACKAGES / name, folder)
    script = folder / "node_modules" / "axe-core" / "axe.min.js"
    version = json.loads((PACKAGES / "package.json").read_text())["dependencies"]["axe-core"]
    if not script.exists() or f"axe v{version}" not in script.read_text(encoding="utf-8")[:100]:
        result = subprocess.run(["npm", "ci", "--ignore-scripts", "--no-audit", "--no-fund"], cwd=folder,
                                capture_output=True, text=True, timeout=120, check=False)
        if result.returncode != 0:
            raise RuntimeError(f"npm cannot install the linter: {result.stderr}")
    return script.read_text(encoding="utf-8")


class Reports(CommandLineTest):
    @classmethod
    def setUpClass(cls):
        FOLDER.mkdir(parents=True, exist_ok=True)
        cls.linter = linter()
        shutil.rmtree(FOLDER / "profile", ignore_errors=True)
        cls.browser = Browser(FOLDER / "profile")
        cls.addClassCleanup(cls.browser.close)

    def setUp(self):
        super().setUp()
        self.files = Files(self)

    def report(self, *words):
        self.quenra("report", self.files.typed("report.html"), "--force", *words)
        return self.files["report.html"]

    def firmware(self):
        self.files["payload"].write_bytes(b"123456789")
        self.quenra("firmware", "build", self.files.typed("payload"), "--output", self.files.typed("image"),
                    "--device", "MARTEN", "--firmware-version", "1.4.2f7")
        return "--image", self.files.typed("image")

    def make_busy(self):
        """A machine with faults, an update that is blocked, and a held line."""
        self.machine("encryption", "on")
        self.machine("answer", "add", "controller", "get-attribute", "--times", "0", "--code", "-52007")
        connection = Started(self, "route", "connect", "--from", "TRIG_SMB", "--to", "PXI_Trig3")
        connection.next_line()

    def accessibility_faults(self):
        self.browser.value(self.linter + "; null")
        violations = self.browser.value("axe.run().then((results) => results.violations)")
        passes = self.browser.value("axe.run().then((results) => results.passes.length)")
        self.assertGreater(passes, 15, "the linter has examined the page")
        return [(violation["id"], [node["html"][:120] for node in violation["nodes"]])
                for violation in violations]

    def check_page(self, name, page):
        """Layout and accessibility at both widths, light and dark; no request but that of the page."""
        pictures = set()
        for device, width in WIDTHS.items():
            for scheme in SCHEMES:
                with self.subTest(page=name, width=width, scheme=scheme):
                    events = self.browser.open(page, width, scheme)
                    self.assertEqual(self.browser.value(LAYOUT), [])
                    self.assertEqual(self.accessibility_faults(), [])
                    requests = [event["params"]["request"]["url"] for event in events
                                if event["method"] == "Network.requestWillBeSent"]
                    self.assertEqual(requests, [page.as_uri()])
                    picture = self.browser.picture()
                    (FOLDER / f"{name}-{device}-{scheme}.png").write_bytes(picture)
                    pictures.add(picture)
        self.assertEqual(len(pictures), len(WIDTHS) * len(SCHEMES), "light and dark differ")

    def pages_of_paper(self, name, page):
        self.browser.open(page, WIDTHS["desktop"])
        paper = self.browser.paper()
        (FOLDER / f"{name}.pdf").write_bytes(paper)
        sizes = re.findall(rb"/MediaBox \[0 0 ([\d.]+) ([\d.]+)\]", paper)
        self.assertEqual({(round(float(width)), round(float(height))) for width, height in sizes}, {A4_POINTS})
        return len(re.findall(rb"/Type /Page\b", paper))

    def test_default_machine(self):
        page = self.report()
        self.check_page("default", page)
        self.assertEqual(self.pages_of_paper("default", page), 2)

    def test_machine_that_needs_attention(self):
        self.make_busy()
        page = self.report("--holders", *self.firmware())
        self.check_page("attention", page)
        text = self.browser.value("document.body.innerText")
        self.assertRegex(text, r"PXI_Trig3\s+3\s+held\s+session \d+ ticket \d+")
        self.assertIn("The update is blocked", text)
        headings = self.browser.value('[...document.querySelectorAll("h2")].map((heading) => heading.innerText)')
        self.assertEqual(headings[0], "Warnings")
        self.assertEqual(self.pages_of_paper("attention", page), 2)

    def test_machine_without_a_controller(self):
        self.machine("scenario", "--controllers", "0")
        page = self.report()
        self.check_page("no-controller", page)
        self.assertEqual(self.pages_of_paper("no-controller", page), 1)

    def test_captured_machine(self):
        self.quenra("capture", self.files.typed("rack.json"))
        self.check_page("capture", self.report("--from", self.files.typed("rack.json")))

    def make_hostile(self):
        for place in ("1/4", "1/5", "1/7", "17/0x10", "4/0x10"):
            self.machine("scenario", f"--structure-text={place}={HOSTILE}")
        self.machine("attribute", "set", "marten", "0x10000400", f"--text={HOSTILE}")

    def markup_of(self, page):
        """What became of the texts, without the policy of the page; and the dialogs that they opened."""
        self.browser.call("Page.setBypassCSP", enabled=True)
        self.addCleanup(self.browser.call, "Page.setBypassCSP", enabled=False)
        events = self.browser.open(page, WIDTHS["desktop"])
        dialogs = [event for event in events if event["method"] == "Page.javascriptDialogOpening"]
        return self.browser.value(MARKUP), len(dialogs)

    def test_hostile_product_name_is_shown_and_never_run(self):
        self.make_hostile()
        page = self.report()
        self.assertEqual(self.markup_of(page), (
            {"scripts": 0, "images": 0, "ran": None, "title": f"{HOSTILE} - controller report", "handlers": []}, 0))
        self.assertEqual(self.browser.value('document.querySelector("h1").innerText'),
                         " ".join(HOSTILE.split()))
        self.assertGreaterEqual(self.browser.value("document.body.innerText").count("alert(1)"), 6)
        self.browser.call("Page.setBypassCSP", enabled=False)
        self.check_page("hostile", page)

    def test_check_finds_texts_that_run(self):
        """The same texts without escapes."""
        self.make_hostile()
        page = self.report()
        text = page.read_text(encoding="utf-8")
        for character, reference in (("<", "&lt;"), (">", "&gt;"), ('"', "&quot;"), ("'", "&#39;"), ("&", "&amp;")):
            text = text.replace(reference, character)
        page.write_text(text, encoding="utf-8")
        found, dialogs = self.markup_of(page)
        self.assertEqual(found["ran"], "1")
        self.assertGreater(found["scripts"], 0)
        self.assertGreater(dialogs, 0)

    def test_policy_of_the_page_stops_scripts_even_so(self):
        self.make_hostile()
        page = self.report()
        text = page.read_text(encoding="utf-8").replace("<h1>", "<h1><script>alert(1)</script>")
        page.write_text(text, encoding="utf-8")
        events = self.browser.open(page, WIDTHS["desktop"])
        self.assertEqual([event for event in events if event["method"] == "Page.javascriptDialogOpening"], [])
        self.assertEqual(self.browser.value(MARKUP)["scripts"], 1)

    def test_checks_find_planted_faults(self):
        page = self.report()
        text = page.read_text(encoding="utf-8")
        faults = {
            "layout": ("<h1>", '<h1 style="width: 2000px">'),
            "drawing": ('text-anchor="middle">qctl', 'textLength="300" text-anchor="middle">qctl'),
            "lint": ('lang="en"', ""),
        }
        for kind, (old, new) in faults.items():
            with self.subTest(kind=kind):
                self.assertIn(old, text)
                page.write_text(text.replace(old, new), encoding="utf-8")
                self.browser.open(page, WIDTHS["phone"])
                found = self.accessibility_faults() if kind == "lint" else self.browser.value(LAYOUT)
                self.assertNotEqual(found, [])


if __name__ == "__main__":
    unittest.main()
