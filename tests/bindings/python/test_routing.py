"""Trigger routes: sessions, terminals, routes, demotions."""

from __future__ import annotations

import concurrent.futures
import copy
import ctypes
import gc
import subprocess
import sys
import threading
import time
from typing import Any, Callable, List

import pytest

import quenra
from conftest import DEVICE_PATH, REPOSITORY, Machine
from quenra import Status
from quenra.routing import NoRouteError, ResetMode, Route, Seed, Session

ACCESS_DENIED = 5
TIMEOUT_SECONDS = 30


def states(machine: Machine) -> List[str]:
    return [line.split()[1] for line in machine.lines("routes")]


# ---- Sessions ----


def test_session_opens_and_closes_the_device(library: str, machine: Machine) -> None:
    with Session(library=library) as session:
        assert not session.closed
        assert repr(session) == "<quenra.routing.Session open>"
        assert machine.lines("openObjects") != []
    assert session.closed
    assert machine.lines("openObjects") == []


def test_session_opens_a_named_device(library: str) -> None:
    with Session(quenra.device_path(library=library), library=library) as session:
        assert session.terminals()


def test_session_without_device_raises(library: str, machine: Machine) -> None:
    machine.setPresence(1, 1, 0)
    with pytest.raises(quenra.NoControllerError):
        Session(library=library)


@pytest.mark.parametrize("with_callback", [False, True])
def test_session_with_an_unknown_device_raises(library: str, with_callback: bool) -> None:
    on_demotion = print if with_callback else None
    with pytest.raises(quenra.StatusError, match="routing session with 'nowhere'") as caught:
        Session("nowhere", on_demotion=on_demotion, library=library)
    assert caught.value.status is Status.NOT_FOUND


def test_session_refused_by_the_system_raises(library: str, machine: Machine) -> None:
    machine.failCall("CreateFileA", 1, ACCESS_DENIED)
    with pytest.raises(quenra.StatusError) as caught:
        Session(library=library)
    assert caught.value.status is Status.ACCESS_DENIED
    assert caught.value.details["component"] == "quenra"


def test_session_with_a_name_that_would_end_the_process_raises(library: str) -> None:
    with pytest.raises(ValueError, match="the device name has 257 bytes, more than 256"):
        Session("x" * 257, library=library)
    with pytest.raises(ValueError, match="contains a NUL"):
        Session("\\\\?\\device\0", library=library)


def test_session_of_another_interface_version_raises(library: str, functions: Any) -> None:
    functions["zoroco_ra_quenra_getAPIVersion"] = lambda: 4
    with pytest.raises(quenra.Error, match="routing interface 4 instead of 3"):
        Session(library=library)


def test_session_with_driver_warning_treated_as_error_leaves_nothing_open(
    library: str, machine: Machine
) -> None:
    machine.answerRequests(DEVICE_PATH, 0, 2, 1, 21)
    with pytest.raises(quenra.DriverWarning):
        Session(library=library)
    assert machine.lines("openObjects") == []


def test_closed_session_raises_in_every_method(library: str) -> None:
    session = Session(library=library)
    route = session.plan("TRIG_SMB", "PXI_Trig0")
    session.close()
    session.close()
    for use in (
        session.terminals,
        session.constraints,
        lambda: session.reset_terminal("FLOAT"),
        lambda: session.plan("TRIG_SMB", "PXI_Trig0"),
        route.reserve,
        route.path,
    ):
        with pytest.raises(quenra.ClosedError):
            use()
    assert route.is_destroyed
    route.destroy()


def test_dropped_session_warns_and_releases_its_routes(library: str, machine: Machine) -> None:
    session = Session(library=library, on_demotion=print)
    session.connect("TRIG_SMB", "PXI_Trig0")
    with pytest.warns(ResourceWarning, match="unclosed routing session"):
        del session
        gc.collect()
    assert machine.lines("routes") == []
    assert machine.lines("openObjects") == []
    assert "destroy-route" in "".join(machine.lines("log"))


def test_session_cannot_be_copied(session: Session) -> None:
    with pytest.raises(TypeError, match="cannot be copied"):
        copy.copy(session)


def test_thousand_sessions_leave_no_handle(library: str, machine: Machine) -> None:
    for _ in range(1000):
        with Session(library=library, on_demotion=print) as session:
            session.plan("TRIG_SMB", "PXI_Trig0")
    assert machine.lines("openObjects") == []
    assert machine.lines("routes") == []


# ---- Terminals ----


def test_terminals_lists_all_with_their_attributes(session: Session) -> None:
    terminals = session.terminals()
    assert [terminal.name for terminal in terminals] == ["FLOAT", "TRIG_SMB", "WD_Terminal"] + [
        f"PXI_Trig{line}" for line in range(8)
    ]
    connector, line = terminals[1], terminals[6]
    assert connector == quenra.routing.Terminal(
        name="TRIG_SMB",
        id=2,
        visibility="public",
        bus_type=None,
        bus_name=None,
        canonical_name="TRIG_SMB",
        bus_line=None,
        is_external=False,
        is_owned=True,
        is_alias=False,
        is_masked_out=False,
    )
    assert (line.bus_type, line.bus_line, line.is_external, line.is_owned) == (
        "PXI_Trig",
        3,
        True,
        False,
    )
    assert [terminal.is_public for terminal in terminals[:3]] == [False, True, False]


def test_terminals_failure_raises_and_ends_the_walk(session: Session, functions: Any) -> None:
    visited = []

    def fail(iterator: int, status: Any) -> None:
        visited.append(iterator)
        assert len(visited) < 5, "the walk does not end"
        record = ctypes.cast(status, ctypes.POINTER(quenra._library.StatusRecord)).contents
        record.code = Status.MEMORY_FULL

    functions["zoroco_ra_quenra_TerminalIterator_next"] = fail
    with pytest.raises(quenra.StatusError, match="cannot list the terminals") as caught:
        session.terminals()
    assert caught.value.status is Status.MEMORY_FULL
    assert len(visited) == 1


def test_constraints_names_the_handled_ones(session: Session) -> None:
    assert session.constraints() == ["inversionNeeded"]


def test_reset_terminal_sends_one_request(session: Session, machine: Machine) -> None:
    machine.clearLog()
    session.reset_terminal("PXI_Trig1", ResetMode.FLOATING)
    assert len(machine.lines("log")) == 1


def test_reset_terminal_refused_by_the_driver_raises(session: Session, machine: Machine) -> None:
    machine.answerRequests(DEVICE_PATH, 0, 0, 1, -123456)
    with pytest.raises(quenra.StatusError, match="cannot reset terminal 'TRIG_SMB'") as caught:
        session.reset_terminal("TRIG_SMB")
    assert caught.value.code == -123456


def test_reset_source_returns_a_terminal(session: Session) -> None:
    identifiers = {terminal.id: terminal.name for terminal in session.terminals()}
    assert identifiers[session.reset_source("PXI_Trig0", ResetMode.FLOATING)] == "FLOAT"


def test_unknown_terminal_raises_key_error(session: Session) -> None:
    for use in (session.reset_terminal, session.reset_source):
        with pytest.raises(KeyError, match="there is no terminal 'PXI_Trig8'"):
            use("PXI_Trig8")


# ---- Routes ----


def test_route_passes_through_its_states(session: Session, machine: Machine) -> None:
    route = session.plan("TRIG_SMB", "PXI_Trig0")
    assert (route.source, route.destination) == ("TRIG_SMB", "PXI_Trig0")
    assert (route.cost, route.inverted, route.is_destroyed) == (1, False, False)
    assert states(machine) == ["calculated"]
    route.reserve()
    assert states(machine) == ["reserved"]
    route.program()
    assert states(machine) == ["programmed"]
    assert route.path() == ["TRIG_SMB", "PXI_Trig0"]
    route.unprogram()
    assert states(machine) == ["reserved"]
    route.unreserve()
    assert states(machine) == ["calculated"]
    route.destroy()
    route.destroy()
    assert states(machine) == []
    assert repr(route) == f"<quenra.routing.Route {route.ticket} TRIG_SMB to PXI_Trig0 destroyed>"
    with pytest.raises(quenra.ClosedError, match="cannot reserve the route from 'TRIG_SMB'"):
        route.reserve()


def test_connect_in_a_with_statement_tears_the_route_down(
    session: Session, machine: Machine
) -> None:
    with session.connect("TRIG_SMB", "PXI_Trig0") as route:
        assert states(machine) == ["programmed"]
    assert route.is_destroyed
    assert states(machine) == []


def test_route_after_an_exception_is_torn_down(
    session: Session, machine: Machine, functions: Any
) -> None:
    announced = []
    functions["zoroco_ra_quenra_beginExceptionalRouteDestruction"] = (
        lambda pointer, ticket, *reserved: announced.append(ticket)
    )
    with pytest.raises(ZeroDivisionError):
        with session.connect("TRIG_SMB", "PXI_Trig0") as route:
            raise ZeroDivisionError
    assert states(machine) == []
    assert announced == [route.ticket]


def test_exceptional_destruction_is_announced_to_the_library(session: Session) -> None:
    route = session.plan("TRIG_SMB", "PXI_Trig0")
    route._end(after_failure=True)
    assert route.is_destroyed


def test_close_of_the_session_destroys_its_routes(library: str, machine: Machine) -> None:
    session = Session(library=library)
    first = session.connect("TRIG_SMB", "PXI_Trig0")
    second = session.plan("TRIG_SMB", "PXI_Trig1")
    machine.clearLog()
    session.close()
    assert first.is_destroyed and second.is_destroyed
    assert sum("destroy-route" in line for line in machine.lines("log")) == 2


def test_conflict_raises_with_the_holders(
    session: Session, library: str, machine: Machine
) -> None:
    with session.connect("TRIG_SMB", "PXI_Trig0") as held:
        with Session(library=library) as other:
            with pytest.raises(quenra.RouteConflictError) as caught:
                other.connect("WD_Terminal", "PXI_Trig0")
            (holder,) = caught.value.holders
            assert holder.ticket == held.ticket
            assert caught.value.code == Status.ROUTE_CONFLICT
            assert states(machine) == ["programmed"], "the refused route is destroyed"


def test_connect_with_a_refused_program_leaves_no_route(
    session: Session, machine: Machine
) -> None:
    machine.answerRequests(DEVICE_PATH, 0, 2, 1, -123456)
    with pytest.raises(quenra.StatusError, match="cannot program the route") as caught:
        session.connect("TRIG_SMB", "PXI_Trig0")
    assert caught.value.code == -123456
    assert states(machine) == []


def test_route_connect_with_a_refused_program_is_not_reserved(
    session: Session, machine: Machine
) -> None:
    route = session.plan("TRIG_SMB", "PXI_Trig0")
    machine.answerRequests(DEVICE_PATH, 0, 1, 1, -123456)
    with pytest.raises(quenra.StatusError):
        route.connect()
    assert states(machine) == ["calculated"]


def test_path_that_the_driver_refuses_raises(session: Session, machine: Machine) -> None:
    route = session.plan("TRIG_SMB", "PXI_Trig0")
    machine.answerRequests(DEVICE_PATH, 0, 0, 1, -123456)
    with pytest.raises(quenra.StatusError, match="cannot read the path of the route"):
        route.path()


def test_path_of_a_thousand_terminals_is_complete(session: Session, machine: Machine) -> None:
    route = session.plan("TRIG_SMB", "PXI_Trig0")
    machine.setPathLength(1000)
    assert len(route.path()) == 1000


def test_plan_inverted_returns_an_inverting_route(session: Session) -> None:
    assert session.plan("TRIG_SMB", "PXI_Trig0", inverted=True).inverted


def test_plan_without_a_route_raises(session: Session, functions: Any) -> None:
    calculate = functions["zoroco_ra_quenra_calculateRoute"]

    def none(pointer: int, seeds: bytes, destinations: bytes, modifiers: bytes, *rest: Any) -> Any:
        return calculate(pointer, seeds, b"[]", modifiers, *rest)

    functions["zoroco_ra_quenra_calculateRoute"] = none
    with pytest.raises(NoRouteError, match="no inverting route from 'TRIG_SMB' to 'PXI_Trig0'"):
        session.plan("TRIG_SMB", "PXI_Trig0", inverted=True)


def test_plan_with_an_unknown_terminal_raises(session: Session) -> None:
    with pytest.raises(quenra.StatusError, match="a route from 'nowhere' to 'PXI_Trig0'") as caught:
        session.plan("nowhere", "PXI_Trig0")
    assert caught.value.status is Status.NO_SUCH_TERMINAL


def test_plan_that_ignores_reservations_sends_the_modifier(
    session: Session, functions: Any
) -> None:
    calculate = functions["zoroco_ra_quenra_calculateRoute"]
    documents = []

    def record(pointer: int, *arguments: Any) -> Any:
        documents.append(arguments[2])
        return calculate(pointer, *arguments)

    functions["zoroco_ra_quenra_calculateRoute"] = record
    session.plan("TRIG_SMB", "PXI_Trig0", ignore_reservations=True)
    assert documents == [b'{"required":{"calculateIgnoresReservations":true},"optional":{}}']


def test_plan_keeps_the_cheapest_of_two_routes(
    session: Session, machine: Machine, functions: Any
) -> None:
    calculate = functions["zoroco_ra_quenra_calculateRoute"]

    def optional(pointer: int, seeds: bytes, destinations: bytes, _: bytes, *rest: Any) -> Any:
        document = b'{"optional":{"inversionNeeded":true}}'
        return calculate(pointer, seeds, destinations, document, *rest)

    functions["zoroco_ra_quenra_calculateRoute"] = optional
    session.plan("TRIG_SMB", "PXI_Trig0")
    assert states(machine) == ["calculated"]


def test_calculate_with_an_optional_constraint_returns_two_routes(session: Session) -> None:
    routes = session.calculate(
        [Seed("WD_Terminal", cost=7, device_token="generator"), "TRIG_SMB"],
        ["PXI_Trig0", "PXI_Trig1"],
        optional={"inversionNeeded": True},
    )
    assert {(route.destination, route.inverted) for route in routes} == {
        ("PXI_Trig0", False),
        ("PXI_Trig0", True),
        ("PXI_Trig1", False),
        ("PXI_Trig1", True),
    }
    assert {route.source for route in routes} <= {"WD_Terminal", "TRIG_SMB"}
    assert len({route.ticket for route in routes}) == 4


def test_calculate_with_an_inverted_seed_inverts(session: Session) -> None:
    (route,) = session.calculate([Seed("TRIG_SMB", inversion_needed=True)], ["PXI_Trig0"])
    assert route.inverted


def test_calculate_with_a_negative_cost_raises_with_the_fault(session: Session) -> None:
    with pytest.raises(quenra.StatusError, match="cost field missing or invalid") as caught:
        session.calculate([Seed("TRIG_SMB", cost=-1)], ["PXI_Trig0"])
    assert caught.value.status is Status.INVALID_PARAMETER
    assert caught.value.details["zoroco_debug"] == "cost field missing or invalid"


def test_calculate_with_a_large_faulty_document_keeps_all_of_it(session: Session) -> None:
    with pytest.raises(quenra.StatusError) as caught:
        session.calculate([Seed("x" * 100_000, cost=-1)], ["PXI_Trig0"])
    assert "x" * 100_000 in caught.value.details["json"]


def test_calculate_without_memory_for_the_answer_raises(
    session: Session, monkeypatch: pytest.MonkeyPatch
) -> None:
    def refuse(size: int) -> Any:
        raise MemoryError

    monkeypatch.setattr(ctypes, "create_string_buffer", refuse)
    with pytest.raises(quenra.StatusError) as caught:
        session.constraints()
    monkeypatch.undo()
    assert caught.value.status is Status.MEMORY_FULL
    assert caught.value.details == {}


def test_driver_warning_in_a_calculation_treated_as_error_keeps_the_route_known(
    library: str, machine: Machine
) -> None:
    with Session(library=library) as session:
        machine.answerRequests(DEVICE_PATH, 0, 0, 1, 12)
        with pytest.raises(quenra.DriverWarning):
            session.plan("TRIG_SMB", "PXI_Trig0")
        assert states(machine) == ["calculated"]
        machine.clearLog()
    assert any("destroy-route" in line for line in machine.lines("log"))


def test_description_buffer_has_the_form_of_the_header() -> None:
    status = quenra.routing._Status()
    record = status.record
    resize = ctypes.cast(record.reallocate, quenra._library.ReallocateStatus)
    address = ctypes.addressof(record)

    def content() -> bytes:
        return ctypes.string_at(record.description, record.capacity)

    assert resize(address, 10)
    assert content() == b"{}" + bytes(record.capacity - 3) + b"J"
    ctypes.memmove(record.description, b'{"line":5}', 10)
    before = record.description
    assert resize(address, record.capacity)
    assert record.description == before
    assert resize(address, 5000)
    assert record.capacity >= 5000
    assert content() == b'{"line":5}' + bytes(record.capacity - 11) + b"J"
    before = record.description
    assert not resize(address, 0x80000000)
    assert record.description == before
    assert resize(address, 0)
    assert (record.capacity, record.description) == (0, None)
    assert quenra.routing._descriptions == {}


# ---- Demotion ----


def catch_unraisable(monkeypatch: pytest.MonkeyPatch) -> List[Any]:
    """The exceptions that reach sys.unraisablehook. Call it in the test: pytest sets a hook before."""
    caught: List[Any] = []
    monkeypatch.setattr(sys, "unraisablehook", lambda report: caught.append(report.exc_value))
    return caught


def wait_until(condition: Callable[[], bool]) -> None:
    end = time.monotonic() + TIMEOUT_SECONDS
    while not condition():
        assert time.monotonic() < end, "not within the time limit"
        time.sleep(0.005)


def test_demotion_calls_the_callback_on_another_thread(library: str, machine: Machine) -> None:
    called = threading.Event()
    reports: List[Any] = []

    def on_demotion(reason: int) -> None:
        reports.append((reason, threading.get_ident()))
        called.set()

    with Session(library=library, on_demotion=on_demotion) as session:
        with session.connect("TRIG_SMB", "PXI_Trig0") as route:
            machine.demoteRoute(route.ticket)
            assert called.wait(TIMEOUT_SECONDS)
            assert states(machine) == ["calculated"]
            route.connect()
            assert states(machine) == ["programmed"]
    ((reason, thread),) = reports
    assert reason == quenra.routing.REASON_DEMOTED
    assert thread != threading.get_ident()


def test_demotion_after_a_collection_still_reaches_the_callback(
    library: str, machine: Machine
) -> None:
    called = threading.Event()
    with Session(library=library, on_demotion=lambda reason: called.set()) as session:
        route = session.connect("TRIG_SMB", "PXI_Trig0")
        for _ in range(3):
            gc.collect()
            ctypes.create_string_buffer(100_000)
        machine.demoteRoute(route.ticket)
        assert called.wait(TIMEOUT_SECONDS)


def test_demotion_without_a_callback_is_dropped(session: Session, machine: Machine) -> None:
    route = session.connect("TRIG_SMB", "PXI_Trig0")
    machine.demoteRoute(route.ticket)
    assert states(machine) == ["calculated"]


def test_exception_in_a_callback_reaches_the_hook_only(
    library: str, machine: Machine, monkeypatch: pytest.MonkeyPatch
) -> None:
    unraisable = catch_unraisable(monkeypatch)

    def on_demotion(reason: int) -> None:
        raise ZeroDivisionError("in the callback")

    with Session(library=library, on_demotion=on_demotion) as session:
        for _ in range(2):
            with session.connect("TRIG_SMB", "PXI_Trig0") as route:
                machine.demoteRoute(route.ticket)
        wait_until(lambda: len(unraisable) == 2)
        assert session.terminals()
    assert [str(failure) for failure in unraisable] == ["in the callback"] * 2


def test_callback_may_use_its_session_but_not_close_it(
    library: str, machine: Machine, monkeypatch: pytest.MonkeyPatch
) -> None:
    unraisable = catch_unraisable(monkeypatch)

    names: List[str] = []
    called = threading.Event()

    def on_demotion(reason: int) -> None:
        try:
            names.append(session.terminals()[0].name)
            session.close()
        finally:
            called.set()

    session = Session(library=library, on_demotion=on_demotion)
    route = session.connect("TRIG_SMB", "PXI_Trig0")
    machine.demoteRoute(route.ticket)
    assert called.wait(TIMEOUT_SECONDS)
    wait_until(lambda: len(unraisable) == 1)
    assert names == ["FLOAT"]
    assert isinstance(unraisable[0], RuntimeError)
    assert "cannot close its own session" in str(unraisable[0])
    assert not session.closed
    session.close()


def test_close_waits_for_a_callback_that_uses_the_session(library: str, machine: Machine) -> None:
    entered = threading.Event()
    outcomes: List[quenra.ClosedError] = []

    def on_demotion(reason: int) -> None:
        entered.set()
        wait_until(lambda: session.closed)
        try:
            session.terminals()
        except quenra.ClosedError as failure:
            outcomes.append(failure)

    session = Session(library=library, on_demotion=on_demotion)
    machine.demoteRoute(session.connect("TRIG_SMB", "PXI_Trig0").ticket)
    assert entered.wait(TIMEOUT_SECONDS)
    session.close()
    assert len(outcomes) == 1


def test_process_that_ends_with_an_open_session_ends_normally(library: str) -> None:
    program = f"""
import ctypes, quenra
session = quenra.routing.Session(library={library!r}, on_demotion=lambda reason: None)
route = session.connect("TRIG_SMB", "PXI_Trig0")
ctypes.CDLL({library!r}).fakequenra_demoteRoute(route.ticket)
print(route.path())
"""
    result = subprocess.run(
        [sys.executable, "-c", program],
        capture_output=True,
        text=True,
        timeout=TIMEOUT_SECONDS,
        env={"PYTHONPATH": str(REPOSITORY / "bindings/python"), "PYTHONDONTWRITEBYTECODE": "1"},
    )
    assert (result.returncode, result.stdout, result.stderr) == (
        0,
        "['TRIG_SMB', 'PXI_Trig0']\n",
        "",
    )


# ---- Threads ----


def test_threads_with_one_session_follow_one_another(session: Session, machine: Machine) -> None:
    def connect(line: int) -> bool:
        for _ in range(20):
            with session.connect("TRIG_SMB", f"PXI_Trig{line}") as route:
                assert route.path() == ["TRIG_SMB", f"PXI_Trig{line}"]
        return True

    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        assert all(pool.map(connect, range(8)))
    assert states(machine) == []


def test_threads_with_a_session_each_are_independent(library: str, machine: Machine) -> None:
    def connect(line: int) -> bool:
        for _ in range(10):
            with Session(library=library, on_demotion=lambda reason: None) as session:
                with session.connect("TRIG_SMB", f"PXI_Trig{line}"):
                    pass
        return True

    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        assert all(pool.map(connect, range(8)))
    assert states(machine) == []


def test_session_used_inside_its_own_call_raises(session: Session, functions: Any) -> None:
    path = functions["zoroco_ra_quenra_getHandledConstraints"]

    def interrupted(*arguments: Any) -> None:
        # As a signal handler that runs between two steps of the same thread.
        for use in (session.terminals, session.close):
            with pytest.raises(RuntimeError, match="in use by this thread"):
                use()
        path(*arguments)

    functions["zoroco_ra_quenra_getHandledConstraints"] = interrupted
    assert session.constraints() == ["inversionNeeded"]
    assert isinstance(session.plan("TRIG_SMB", "PXI_Trig0"), Route)
