"""The package as a whole: functions, exceptions, constants, documentation."""

from __future__ import annotations

import ast
import ctypes
import inspect
import pathlib
import pickle
import re
import subprocess
import sys
from typing import Any, Dict, Iterator, List, Tuple

import pytest

import quenra
import quenra._library
from conftest import REPOSITORY
from quenra import Status, attributes

PACKAGE = REPOSITORY / "bindings/python/quenra"
SIGNATURES = quenra._library.SIGNATURES


def exported_functions() -> set[str]:
    text = (REPOSITORY / "source/user/quenra.def").read_text()
    return set(re.findall(r"^  (\w+)$", text, re.MULTILINE))


# ---- Functions of the library ----


def test_package_knows_every_function_of_the_library() -> None:
    assert set(SIGNATURES) == exported_functions()


def test_native_library_exports_no_other_function(library: str) -> None:
    lines = subprocess.run(
        ["nm", "-D", "--defined-only", library], capture_output=True, text=True, check=True
    ).stdout.splitlines()
    names = {line.split()[-1] for line in lines}
    assert {name for name in names if not name.startswith("fakequenra_")} == exported_functions()


def test_package_calls_every_function() -> None:
    text = "".join((PACKAGE / name).read_text() for name in ("_controller.py", "routing.py"))
    # No attribute is a signed or a floating-point number.
    unused = {"QUENRA_getAttributeI32", "QUENRA_getAttributeDBL"}
    for name in sorted(set(SIGNATURES) - unused):
        # The steps of a teardown have the prefix added.
        short = name.replace("zoroco_ra_quenra_", "")
        assert f'"{name}"' in text or f'"{short}"' in text, name


# The types of ctypes by those of the headers, without annotations and const.
TYPES: Dict[str, Any] = {
    "void": None,
    "bool": ctypes.c_bool,
    "int32_t": ctypes.c_int32,
    "uint32_t": ctypes.c_uint32,
    "uint64_t": ctypes.c_uint64,
    "int32_t*": ctypes.POINTER(ctypes.c_int32),
    "uint32_t*": ctypes.POINTER(ctypes.c_uint32),
    "uint64_t*": ctypes.POINTER(ctypes.c_uint64),
    "double*": ctypes.POINTER(ctypes.c_double),
    "const char*": ctypes.c_char_p,
    "char*": ctypes.c_void_p,
    "char**": ctypes.POINTER(ctypes.c_void_p),
    "const void*": ctypes.c_char_p,
    "void*": ctypes.c_void_p,
    "zoerr_Status*": ctypes.POINTER(quenra._library.StatusRecord),
    "zoroco_RoutingAdaptorSession*": ctypes.c_void_p,
    "zoroco_TerminalIterator*": ctypes.c_void_p,
    "zoroco_Reallocate": quenra._library.Reallocate,
    "zoroco_DemotionCallback": quenra._library.DemotionCallback,
}


def declarations() -> Iterator[Tuple[str, str, List[str]]]:
    """Name, result and arguments of each function in the headers."""
    for header in ("quenra.h", "quenra_routing.h"):
        text = (REPOSITORY / "include" / header).read_text()
        text = re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)
        text = re.sub(r"QUENRA_[A-Z_]+(\(\*?size\))? ", "", text)
        for result, name, arguments in re.findall(
            r"^((?:const )?\w+\*?)\s+(\w+)\(([^()]*)\);", text, re.MULTILINE
        ):
            if name in SIGNATURES:
                words = " ".join(arguments.split())
                types = [re.sub(r"\s*\w+$", "", word) for word in words.split(", ")]
                yield name, result, [] if words == "void" else types


def test_functions_have_the_types_of_the_headers() -> None:
    expected = {
        name: (TYPES[result], tuple(TYPES[argument] for argument in arguments))
        for name, result, arguments in declarations()
    }
    assert expected == SIGNATURES


def test_status_record_has_the_layout_of_the_header() -> None:
    record = quenra._library.StatusRecord
    offsets = [getattr(record, field[0]).offset for field in record._fields_]
    assert (ctypes.sizeof(record), offsets) == (24, [0, 4, 8, 16])


def test_signed_and_floating_point_attributes_are_not_supported(library: str) -> None:
    functions = quenra._library.load(library)
    values: Dict[str, Any] = {
        "QUENRA_getAttributeI32": ctypes.c_int32(5),
        "QUENRA_getAttributeDBL": ctypes.c_double(5),
    }
    for name, value in values.items():
        arguments = (0x514E5241, attributes.MEMORY_SIZE.id, ctypes.byref(value))
        assert functions[name](*arguments) == Status.INVALID_HANDLE
        with quenra.open(library=library):
            assert functions[name](*arguments) == Status.NOT_SUPPORTED
        assert value.value == 5


# ---- Loading ----


def test_library_of_the_wheel_is_the_default() -> None:
    assert quenra._library.DEFAULT_PATH == str(PACKAGE / "quenra.dll")
    with pytest.raises(quenra.LibraryError, match="quenra.dll") as caught:
        quenra.open()
    assert "64-bit Python on Windows" in str(caught.value)


def test_missing_library_raises_with_its_path(tmp_path: pathlib.Path) -> None:
    with pytest.raises(quenra.LibraryError, match="cannot load '.*missing.dll'"):
        quenra.device_path(library=tmp_path / "missing.dll")


def test_library_without_the_functions_raises_with_the_name() -> None:
    other = "/lib/x86_64-linux-gnu/libc.so.6"
    with pytest.raises(quenra.LibraryError, match="has no function 'QUENRA_openController'"):
        quenra.open(library=other)


def test_library_is_loaded_once(library: str) -> None:
    assert quenra._library.load(library) is quenra._library.load(pathlib.Path(library))


# ---- Exceptions ----


def test_error_has_code_constant_cause_and_advice() -> None:
    error = quenra.StatusError(-52009, "open the controller")
    assert error.code == Status.ACCESS_DENIED
    assert error.status is Status.ACCESS_DENIED
    assert error.constant == "QUENRA_STATUS_ACCESS_DENIED"
    assert error.cause == Status.ACCESS_DENIED.cause
    assert error.advice == Status.ACCESS_DENIED.remedy
    assert str(error) == (
        f"cannot open the controller: QUENRA_STATUS_ACCESS_DENIED (-52009): {error.cause} "
        f"{error.advice}"
    )


def test_error_of_the_driver_has_a_code_only() -> None:
    error = quenra.StatusError(-7, "read fan")
    assert (error.status, error.constant, error.cause, error.advice) == (None,) * 4
    assert str(error) == "cannot read fan: code -7 of the driver"


@pytest.mark.parametrize(
    "failure",
    [
        quenra.StatusError(-7, "read", {"line": 5}),
        quenra.RouteConflictError(-89137, "reserve", {}, (quenra.RouteHolder(1, 2),)),
        quenra.DriverWarning(7, "read"),
    ],
)
def test_errors_survive_pickling(failure: Any) -> None:
    copy = pickle.loads(pickle.dumps(failure))
    assert type(copy) is type(failure)
    assert vars(copy) == vars(failure)
    assert str(copy) == str(failure)


def test_every_error_derives_from_error() -> None:
    for name in quenra.__all__:
        value = getattr(quenra, name)
        if inspect.isclass(value) and issubclass(value, Exception):
            assert issubclass(value, (quenra.Error, quenra.DriverWarning)), name
    assert issubclass(quenra.routing.NoRouteError, quenra.Error)


# ---- Constants and documentation ----


def test_every_attribute_without_instances_has_a_property() -> None:
    named = {
        name
        for name, entry in attributes.ATTRIBUTES.items()
        if entry.readable and entry.instances is None
    }
    properties = {
        name
        for name in vars(quenra.Controller)
        if hasattr(getattr(quenra.Controller, name), "_attribute")
    }
    assert properties == named
    for name in named:
        found = getattr(quenra.Controller, name)
        assert found._attribute is attributes.ATTRIBUTES[name]
        assert hasattr(found, "__set__") == attributes.ATTRIBUTES[name].writable


def test_attributes_module_has_a_constant_for_each() -> None:
    for name, attribute in attributes.ATTRIBUTES.items():
        assert getattr(attributes, name.upper()) is attribute
        assert name.upper() in attributes.__all__


def test_update_options_are_those_of_the_header() -> None:
    text = (REPOSITORY / "include/quenra.h").read_text()
    found = {name: int(value) for name, value in re.findall(r"QUENRA_UPDATE_(\w+) = (\d+)", text)}
    assert found == {option.name: option.value for option in quenra.UpdateOption}


def test_routing_constants_are_those_of_the_header() -> None:
    text = (REPOSITORY / "include/quenra_routing.h").read_text()
    for name, value in (
        ("ZOROCO_API_VERSION", quenra.routing._API_VERSION),
        ("ZOROCO_MAX_DEVICE_NAME_LENGTH", quenra.routing._MAX_DEVICE_NAME_LENGTH),
        ("ZOROCO_REASON_DEMOTED", quenra.routing.REASON_DEMOTED),
        ("ZOROCO_NO_BUS_LINE", f"UINT32_C(0x{quenra.routing._NO_BUS_LINE:X})"),
        ("ZOROCO_RESET_DEFAULT", f'"{quenra.routing.ResetMode.DEFAULT.value}"'),
        ("ZOROCO_RESET_FLOATING", f'"{quenra.routing.ResetMode.FLOATING.value}"'),
    ):
        assert f"#define {name} {value}\n" in text


def test_everything_public_has_a_documentation() -> None:
    for module in (quenra, quenra.routing, quenra.attributes):
        assert module.__doc__
        for name in module.__all__:
            value = getattr(module, name)
            if not (inspect.isclass(value) or inspect.isfunction(value)):
                continue
            assert value.__doc__, name
            for member, entry in vars(value).items():
                if not member.startswith("_") and (callable(entry) or isinstance(entry, property)):
                    assert entry.__doc__, f"{name}.{member}"


@pytest.mark.parametrize("name", sorted(path.name for path in PACKAGE.glob("*.py")))
def test_source_has_the_grammar_of_python_3_9(name: str) -> None:
    ast.parse((PACKAGE / name).read_text(), feature_version=(3, 9))


def test_import_loads_no_library() -> None:
    program = "import sys, quenra; assert quenra._library._load.cache_info().currsize == 0"
    subprocess.run(
        [sys.executable, "-c", program],
        check=True,
        env={"PYTHONPATH": str(PACKAGE.parent), "PYTHONDONTWRITEBYTECODE": "1"},
    )
