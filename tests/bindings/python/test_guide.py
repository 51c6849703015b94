"""The programs of docs/python.md."""

from __future__ import annotations

import re
from pathlib import Path

import pytest

import quenra
from conftest import REPOSITORY, Machine
from quenra import attributes

PAGE = (REPOSITORY / "docs/python.md").read_text()
PROGRAMS = re.findall(r"^```python[^\n]*\n(.*?)^```$", PAGE, re.MULTILINE | re.DOTALL)

# The first words that each program prints.
OUTPUTS = [
    "BW-8135\nmemory module of 8192 MiB\nmemory module of 8194 MiB\n",
    "system_manufacturer Bench Works\nproduct_name BW-8135\n",
    "no such module: QUENRA_STATUS_NOT_SUPPORTED\n",
    "",
    "TRIG_SMB\nPXI_Trig0\n",
    "",
    "",
]


@pytest.fixture(autouse=True)
def installed(
    library: str, machine: Machine, tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    """The library is that of the wheel, and the current folder holds an image."""
    monkeypatch.setattr("quenra._library.DEFAULT_PATH", library)
    machine.prepareUpdates("1.2.3f4")
    monkeypatch.setenv("TMPDIR", str(tmp_path))
    monkeypatch.chdir(tmp_path)
    Path("update.fwi").write_bytes(machine.image("BIOS"))


def test_every_program_has_an_expected_output() -> None:
    assert len(PROGRAMS) == len(OUTPUTS)


@pytest.mark.parametrize("number", range(len(PROGRAMS)))
def test_program_runs(number: int, capsys: pytest.CaptureFixture[str], machine: Machine) -> None:
    exec(compile(PROGRAMS[number], f"docs/python.md, program {number}", "exec"), {})
    assert capsys.readouterr().out.startswith(OUTPUTS[number])
    assert machine.lines("routes") == []


def test_program_of_the_firmware_section_sends_the_image(machine: Machine) -> None:
    exec(PROGRAMS[3], {})
    assert machine.lines("receivedFirmware")[0].startswith("controller 1000 ")


def test_exceptions_of_the_page_exist() -> None:
    names = re.findall(r"^\| `((?:routing\.)?\w+Error)` \|", PAGE, re.MULTILINE)
    assert len(names) == 7
    for name in names:
        scope = quenra.routing if name.startswith("routing.") else quenra
        assert issubclass(getattr(scope, name.split(".")[-1]), quenra.Error)


def test_attributes_of_the_page_exist() -> None:
    for name in re.findall(r"attributes\.([A-Z_0-9]+)", PAGE):
        assert name.lower() in attributes.ATTRIBUTES
