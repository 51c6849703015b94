"""The fixtures: libquenra.so with its machine, which a test arranges."""

from __future__ import annotations

import ctypes
import gc
import pathlib
from typing import Any, Callable, Iterator, List

import pytest

import quenra
import quenra._library
import quenra.routing

CONTROLLER, MARTEN, DEVICE_PATH = 1, 2, 3

REPOSITORY = pathlib.Path(__file__).resolve().parents[3]


class Machine:
    """The functions fakequenra_ of libquenra.so; tests/nativelibrary/README.md documents them."""

    def __init__(self, path: str) -> None:
        self._functions = ctypes.CDLL(path)
        self._functions.fakequenra_lastError.restype = ctypes.c_char_p

    def __getattr__(self, name: str) -> Callable[..., None]:
        function = self._functions["fakequenra_" + name]

        def call(*arguments: Any) -> None:
            if function(*(_c_value(argument) for argument in arguments)) != 0:
                raise RuntimeError(self._functions.fakequenra_lastError().decode())

        return call

    def text(self, name: str, *arguments: Any) -> bytes:
        function = self._functions["fakequenra_" + name]
        function.restype = ctypes.c_uint64
        values = [_c_value(argument) for argument in arguments]
        size = function(*values, None, ctypes.c_uint64(0))
        assert size > 0, self._functions.fakequenra_lastError()
        buffer = ctypes.create_string_buffer(size)
        function(*values, buffer, ctypes.c_uint64(size))
        return buffer.value

    def lines(self, name: str) -> List[str]:
        return self.text(name).decode().splitlines()

    def image(self, device: str = "MARTEN", version: str = "9.0.0f1", size: int = 1000) -> bytes:
        return self.text("firmwareImage", device, version, size)


def _c_value(argument: Any) -> Any:
    if isinstance(argument, str):
        return argument.encode()
    if isinstance(argument, int):
        return ctypes.c_uint32(argument & 0xFFFFFFFF)
    return argument


def pytest_addoption(parser: pytest.Parser) -> None:
    parser.addoption("--library", required=True, help="path of libquenra.so")


@pytest.fixture(scope="session")
def library(request: pytest.FixtureRequest) -> str:
    return str(request.config.getoption("--library"))


@pytest.fixture(autouse=True)
def machine(library: str) -> Iterator[Machine]:
    """The default machine. Fails the test that leaves something open."""
    result = Machine(library)
    result.reset()
    yield result
    gc.collect()
    open_objects = result.lines("openObjects")
    result.reset()
    assert open_objects == []
    assert quenra.routing._functions_in_use == {}
    assert quenra.routing._descriptions == {}


@pytest.fixture
def controller(library: str, machine: Machine) -> Iterator[quenra.Controller]:
    with quenra.open(library=library) as result:
        yield result


@pytest.fixture
def session(library: str, machine: Machine) -> Iterator[quenra.routing.Session]:
    with quenra.routing.Session(library=library) as result:
        yield result


@pytest.fixture
def functions(library: str) -> Iterator[Any]:
    """The loaded functions by name. A test may replace them."""
    loaded = quenra._library.load(library)._functions
    original = dict(loaded)
    yield loaded
    loaded.update(original)
