"""Trigger routes between the terminals of the controller.

    with quenra.routing.Session() as session:
        with session.connect("TRIG_SMB", "PXI_Trig0") as route:
            print(route.path())

A route is calculated, reserved and programmed, in this order. A route in a `with` statement is torn
down at its end, and all routes of a session when the session is closed.
"""

from __future__ import annotations

import atexit
import ctypes
import dataclasses
import enum
import json
import threading
import warnings
import weakref
from types import TracebackType
from typing import Any, Callable, Dict, List, Mapping, Optional, Sequence, Set, Type, TypeVar, Union

from ._constants import Status
from ._controller import device_path
from ._errors import Error, RouteConflictError, RouteHolder, closed, error_for, warn
from ._library import (
    CODE_PAGE,
    DemotionCallback,
    Library,
    Reallocate,
    ReallocateStatus,
    StatusRecord,
    StrPath,
    decode,
    encode,
    load,
)

__all__ = [
    "NoRouteError",
    "REASON_DEMOTED",
    "ResetMode",
    "Route",
    "Seed",
    "Session",
    "Terminal",
]

Result = TypeVar("Result")

REASON_DEMOTED = 101
"""The reason that a demotion callback receives."""

_API_VERSION = 3
_MAX_DEVICE_NAME_LENGTH = 256
_NO_BUS_LINE = 0xFFFFFFFF
_FIRST_DESCRIPTION_SIZE = 512
_MAX_DESCRIPTION_SIZE = 0x7FFFFFFF


class NoRouteError(Error):
    """The controller has no route between two terminals with these properties."""


class ResetMode(enum.Enum):
    """The state of a terminal after a reset."""

    DEFAULT = "default"
    FLOATING = "floating"


@dataclasses.dataclass(frozen=True)
class Terminal:
    """A terminal of the controller."""

    name: str
    """Unique."""
    id: int
    """Unique, from 1."""
    visibility: str
    """"public", or "private" for a terminal not offered to users."""
    bus_type: Optional[str]
    """"PXI_Trig" for a trigger line, otherwise None."""
    bus_name: Optional[str]
    canonical_name: Optional[str]
    bus_line: Optional[int]
    """The number of the trigger line, None for other terminals."""
    is_external: bool
    """The terminal leaves the controller."""
    is_owned: bool
    """The terminal belongs to the controller."""
    is_alias: bool
    is_masked_out: bool

    @property
    def is_public(self) -> bool:
        """True for a terminal offered to users."""
        return self.visibility == "public"


@dataclasses.dataclass(frozen=True)
class Seed:
    """A possible starting point of a route."""

    terminal: str
    """The name of the terminal."""
    cost: int = 0
    """The cost of this starting point, which is added to that of the route."""
    inversion_needed: bool = False
    """True: the signal of this starting point must be inverted."""
    device_token: Optional[str] = None
    """A token of the device that drives the terminal. The library does not use it."""


# ---- Status records ----

# The buffers of the descriptions of all records in use, by the address of the record.
_descriptions: Dict[int, Any] = {}


def _resize_description(address: int, capacity: int) -> bool:
    record = StatusRecord.from_address(address)
    if capacity == 0:
        _descriptions.pop(address, None)
        record.description = None
        record.capacity = 0
        return True
    if capacity <= record.capacity:
        return True
    if capacity > _MAX_DESCRIPTION_SIZE:
        return False
    size = max(capacity, 2 * record.capacity, _FIRST_DESCRIPTION_SIZE)
    try:
        buffer = ctypes.create_string_buffer(size)
    except MemoryError:
        return False
    text = ctypes.string_at(record.description) if record.description else b"{}"
    ctypes.memmove(buffer, text, len(text))
    # The interface requires this mark in the last byte.
    buffer[size - 1] = b"J"
    _descriptions[address] = buffer
    record.description = ctypes.addressof(buffer)
    record.capacity = size
    return True


_resize_function = ReallocateStatus(_resize_description)
_RESIZE_FUNCTION = ctypes.cast(_resize_function, ctypes.c_void_p).value


class _Status:
    """A status record whose description is in memory of Python."""

    def __init__(self) -> None:
        self.record = StatusRecord(0, 0, _RESIZE_FUNCTION, None)
        self.reference = ctypes.byref(self.record)

    @property
    def is_failure(self) -> bool:
        return int(self.record.code) < 0

    def details(self) -> Dict[str, Any]:
        if not self.record.description:
            return {}
        try:
            # The description repeats the document of a request, which need not be valid UTF-8.
            value = json.loads(decode(ctypes.string_at(self.record.description)))
        except ValueError:
            return {}
        return value if isinstance(value, dict) else {}

    def release(self) -> None:
        _descriptions.pop(ctypes.addressof(self.record), None)


# ---- Sessions ----

# The C functions of each open session, by the session's address. The library calls them until the
# session is destroyed, also if no other reference is left.
_functions_in_use: Dict[int, Any] = {}


class Session:
    """A session with the routing device. Close it, or use it in a `with` statement.

    A session is used by one thread at a time: calls of several threads follow one another.
    """

    def __init__(
        self,
        device: Optional[str] = None,
        *,
        on_demotion: Optional[Callable[[int], None]] = None,
        library: Optional[StrPath] = None,
    ) -> None:
        """Opens a session.

        `device` is the path of the device; by default that of the controller,
        :func:`quenra.device_path`. `library` is the path of the library; by default that of the wheel.

        `on_demotion` is called with :data:`REASON_DEMOTED` when a route of higher priority has taken
        the resources of a route of this session, which is then neither programmed nor reserved. It
        runs on a thread of the library and should return soon. It may call this session, except for
        :meth:`close`. An exception that it raises is passed to `sys.unraisablehook`.

        Raises :class:`NoControllerError` if no device is present, and :class:`StatusError`.
        """
        self._pointer: Optional[int] = None
        self._library: Library = load(library)
        self._lock = threading.RLock()
        self._is_busy = False
        self._routes: Dict[int, Route] = {}
        # The answer of the last call, in memory that the library fills.
        self._answer: List[Any] = [None]
        self._callback_threads: Set[int] = set()
        version = self._library["zoroco_ra_quenra_getAPIVersion"]()
        if version != _API_VERSION:
            raise Error(f"the library has routing interface {version} instead of {_API_VERSION}")
        name = encode(device_path(library=library) if device is None else device, CODE_PAGE)
        if len(name) > _MAX_DEVICE_NAME_LENGTH:
            # The library would end the process.
            raise ValueError(
                f"the device name has {len(name)} bytes, more than {_MAX_DEVICE_NAME_LENGTH}"
            )
        self._create(name, on_demotion)

    def _create(self, name: bytes, on_demotion: Optional[Callable[[int], None]]) -> None:
        operation = f"open a routing session with '{decode(name, CODE_PAGE)}'"
        # Neither function refers to the session, which could then not be collected.
        supply = Reallocate(_supplier(self._answer))
        demoted: Any = None
        status = _Status()
        try:
            if on_demotion is None:
                self._pointer = self._library["zoroco_ra_quenra_createSession"](
                    name, supply, status.reference
                )
            else:
                demoted = DemotionCallback(_notifier(on_demotion, self._callback_threads))
                self._pointer = self._library["zoroco_ra_quenra_createSessionWithDemotionFunc"](
                    name, supply, demoted, None, status.reference
                )
            code, details = status.record.code, status.details()
        finally:
            status.release()
        if self._pointer is None:
            raise error_for(code, operation, details)
        _functions_in_use[self._pointer] = (supply, demoted)
        _open_sessions.add(self)
        try:
            warn(code, operation)
        except BaseException:
            self.close()
            raise

    # ---- Lifetime ----

    def close(self) -> None:
        """Tears all routes of the session down and closes it. May be called more than once.

        Waits for a demotion callback that is running. A demotion callback cannot close its own
        session: RuntimeError.
        """
        if threading.get_ident() in self._callback_threads:
            raise RuntimeError("a demotion callback cannot close its own session")
        with self._lock:
            if self._is_busy:
                raise RuntimeError("the session is in use by this thread")
            if self._pointer is None:
                return
            for route in list(self._routes.values()):
                route._tear_down(self._pointer, after_failure=False)
            pointer, self._pointer = self._pointer, None
        # Not locked: a running callback, for which the library waits, may use the session.
        self._destroy(pointer)

    def _destroy(self, pointer: int) -> None:
        self._library["zoroco_ra_quenra_destroySession"](pointer)
        _functions_in_use.pop(pointer, None)

    @property
    def closed(self) -> bool:
        """True after :meth:`close`."""
        return self._pointer is None

    def __enter__(self) -> Session:
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        failure: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None:
        self.close()

    def __del__(self) -> None:
        pointer = getattr(self, "_pointer", None)
        if pointer is None:
            return
        # On the thread of a callback the library ignores the call: the session stays open, and its
        # functions stay alive.
        if threading.get_ident() not in self._callback_threads:
            for route in list(self._routes.values()):
                route._tear_down(pointer, after_failure=False)
            self._destroy(pointer)
        warnings.warn("unclosed routing session", ResourceWarning, source=self)

    def __reduce__(self) -> str:
        raise TypeError("a routing session cannot be copied or pickled")

    def __repr__(self) -> str:
        return f"<quenra.routing.Session {'closed' if self.closed else 'open'}>"

    # ---- Calls ----

    def _run(self, operation: str, work: Callable[[int, _Status], Result]) -> Result:
        """Performs calls with one status record. Raises its failure, or issues its warning."""
        with self._lock:
            if self._is_busy:
                raise RuntimeError("the session is in use by this thread")
            if self._pointer is None:
                raise closed(operation)
            self._is_busy = True
            status = _Status()
            try:
                result = work(self._pointer, status)
                code, details = int(status.record.code), status.details()
            finally:
                status.release()
                self._is_busy = False
        if code == Status.ROUTE_CONFLICT:
            raise RouteConflictError(code, operation, details, _holders_in(result))
        if code < 0:
            raise error_for(code, operation, details)
        warn(code, operation)
        return result

    def _query(self, pointer: int, status: _Status, function: str, *arguments: Any) -> Any:
        """Performs a call with an answer, and returns the answer, None without one."""
        self._answer[0] = None
        output = ctypes.c_void_p()
        self._library[function](pointer, *arguments, ctypes.byref(output), status.reference)
        if not output.value:
            return None
        return json.loads(decode(ctypes.string_at(output.value)))

    # ---- Terminals ----

    def terminals(self) -> List[Terminal]:
        """All terminals, in a fixed order."""

        def walk(pointer: int, status: _Status) -> List[Terminal]:
            return self._walk(pointer, status, lambda iterator: self._terminal_at(iterator, status))

        return self._run("list the terminals", walk)

    def reset_terminal(self, name: str, mode: ResetMode = ResetMode.DEFAULT) -> None:
        """Resets a terminal. Raises KeyError if no terminal has the name."""

        def reset(iterator: int, status: _Status) -> None:
            self._library["zoroco_ra_quenra_TerminalIterator_resetTerminal"](
                iterator, ResetMode(mode).value.encode(), status.reference
            )

        self._run_at(f"reset terminal '{name}'", name, lambda _, i, status: reset(i, status))

    def reset_source(self, name: str, mode: ResetMode = ResetMode.DEFAULT) -> int:
        """The id of the terminal that would drive a terminal after :meth:`reset_terminal`.

        Resets nothing. Raises KeyError if no terminal has the name.
        """

        def calculate(pointer: int, iterator: int, status: _Status) -> int:
            return int(
                self._library["zoroco_ra_quenra_TerminalIterator_calculateResetTerminal"](
                    pointer, iterator, ResetMode(mode).value.encode(), status.reference
                )
            )

        return self._run_at(f"calculate the reset of terminal '{name}'", name, calculate)

    def _run_at(
        self, operation: str, name: str, work: Callable[[int, int, _Status], Result]
    ) -> Result:
        """Performs calls with the iterator at the terminal of a name."""

        def find(pointer: int, status: _Status) -> List[Result]:
            found: List[Result] = []

            def visit(iterator: int) -> None:
                if not found and self._text_at(iterator, "name", status) == name:
                    found.append(work(pointer, iterator, status))

            self._walk(pointer, status, visit)
            return found

        results = self._run(operation, find)
        if not results:
            raise KeyError(f"there is no terminal '{name}'; Session.terminals() lists them")
        return results[0]

    def _walk(
        self, pointer: int, status: _Status, visit: Callable[[int], Result]
    ) -> List[Result]:
        results: List[Result] = []
        iterator = self._library["zoroco_ra_quenra_getAllTerminals"](pointer, status.reference, 0)
        try:
            # While the record holds a failure, the iterator does not move.
            while not status.is_failure and not self._library[
                "zoroco_ra_quenra_TerminalIterator_isEnd"
            ](iterator):
                results.append(visit(iterator))
                self._library["zoroco_ra_quenra_TerminalIterator_next"](iterator, status.reference)
        finally:
            self._library["zoroco_ra_quenra_TerminalIterator_destroy"](iterator)
        return results

    def _text_at(self, iterator: int, attribute: str, status: _Status) -> Optional[str]:
        text = self._library["zoroco_ra_quenra_TerminalIterator_getStringAttribute"](
            iterator, attribute.encode(), status.reference
        )
        return None if text is None else decode(text)

    def _terminal_at(self, iterator: int, status: _Status) -> Terminal:
        def flag(attribute: str) -> bool:
            return bool(
                self._library["zoroco_ra_quenra_TerminalIterator_getBoolAttribute"](
                    iterator, attribute.encode(), status.reference
                )
            )

        def number(attribute: str) -> int:
            return int(
                self._library["zoroco_ra_quenra_TerminalIterator_getU32Attribute"](
                    iterator, attribute.encode(), status.reference
                )
            )

        line = number("busLine")
        return Terminal(
            name=self._text_at(iterator, "name", status) or "",
            id=number("id"),
            visibility=self._text_at(iterator, "visibility", status) or "",
            bus_type=self._text_at(iterator, "busType", status),
            bus_name=self._text_at(iterator, "busName", status),
            canonical_name=self._text_at(iterator, "canonicalName", status),
            bus_line=None if line == _NO_BUS_LINE else line,
            is_external=flag("isExternal"),
            is_owned=flag("isOwned"),
            is_alias=flag("isAlias"),
            is_masked_out=flag("isMaskedOut"),
        )

    # ---- Routes ----

    def constraints(self) -> List[str]:
        """The names of the constraints that a calculation handles."""

        def read(pointer: int, status: _Status) -> List[str]:
            answer = self._query(pointer, status, "zoroco_ra_quenra_getHandledConstraints")
            return list(answer or ())

        return self._run("read the handled constraints", read)

    def calculate(
        self,
        seeds: Sequence[Union[Seed, str]],
        destinations: Sequence[str],
        *,
        required: Optional[Mapping[str, bool]] = None,
        optional: Optional[Mapping[str, bool]] = None,
    ) -> List[Route]:
        """Calculates routes from any of several starting points to each of several terminals.

        Every route fulfils the constraints in `required`. With one in `optional` the driver can return
        two routes for a destination, one without and one with it. Constraints are "inversionNeeded"
        and "calculateIgnoresReservations"; see docs/routing.md.

        Returns the routes, which may be none. :meth:`plan` is simpler for one route.
        """
        return self._calculate("calculate routes", seeds, destinations, required, optional)

    def _calculate(
        self,
        operation: str,
        seeds: Sequence[Union[Seed, str]],
        destinations: Sequence[str],
        required: Optional[Mapping[str, bool]],
        optional: Optional[Mapping[str, bool]],
    ) -> List[Route]:
        starts = [Seed(seed) if isinstance(seed, str) else seed for seed in seeds]
        documents = (
            _document([_seed_object(seed) for seed in starts]),
            _document(list(destinations)),
            _document({"required": dict(required or {}), "optional": dict(optional or {})}),
        )

        def calculate(pointer: int, status: _Status) -> List[Route]:
            answer = self._query(
                pointer, status, "zoroco_ra_quenra_calculateRoute", *documents
            )
            routes = [Route._of(self, starts, item) for item in answer or ()]
            # Known to the session from here on, so that closing it tears them down.
            self._routes.update((route.ticket, route) for route in routes)
            return routes

        return self._run(operation, calculate)

    def plan(
        self,
        source: str,
        destination: str,
        *,
        inverted: bool = False,
        ignore_reservations: bool = False,
    ) -> Route:
        """Calculates the cheapest route between two terminals, without reserving it.

        `inverted`: the route inverts the signal. `ignore_reservations`: the calculation ignores the
        reservations of other routes. Raises :class:`NoRouteError` if there is no route, and
        :class:`StatusError` with `Status.NO_SUCH_TERMINAL` for an unknown name.
        """
        required = {"inversionNeeded": True} if inverted else {}
        if ignore_reservations:
            required["calculateIgnoresReservations"] = True
        operation = f"calculate a route from '{source}' to '{destination}'"
        routes = self._calculate(operation, [source], [destination], required, None)
        if not routes:
            kind = "inverting route" if inverted else "route"
            raise NoRouteError(f"the controller has no {kind} from '{source}' to '{destination}'")
        routes.sort(key=lambda route: route.cost)
        for other in routes[1:]:
            other.destroy()
        return routes[0]

    def connect(self, source: str, destination: str, *, inverted: bool = False) -> Route:
        """Plans, reserves and programs a route. Use the result in a `with` statement.

        Raises as :meth:`plan`, and :class:`RouteConflictError` if other routes hold the resources.
        After a failure no route remains.
        """
        route = self.plan(source, destination, inverted=inverted)
        try:
            return route.connect()
        except BaseException:
            route._end(after_failure=True)
            raise


class Route:
    """A calculated route. In a `with` statement it is torn down at the end."""

    def __init__(
        self, session: Session, source: str, destination: str, ticket: int, cost: int, inverted: bool
    ) -> None:
        self._session = session
        self._is_destroyed = False
        self.source = source
        """The name of the terminal where the route starts."""
        self.destination = destination
        """The name of the terminal where the route ends."""
        self.ticket = ticket
        """The number of the route in its session."""
        self.cost = cost
        """The cost, that of the starting point included."""
        self.inverted = inverted
        """True if the route inverts the signal."""

    @classmethod
    def _of(cls, session: Session, seeds: Sequence[Seed], item: Mapping[str, Any]) -> Route:
        return cls(
            session,
            source=seeds[item["indexOfStartingSeed"]].terminal,
            destination=item["destination"],
            ticket=item["ticket"],
            cost=item["cost"],
            inverted=bool(item["constraints"].get("inversionNeeded", False)),
        )

    def __repr__(self) -> str:
        state = " destroyed" if self._is_destroyed else ""
        return f"<quenra.routing.Route {self.ticket} {self.source} to {self.destination}{state}>"

    def __enter__(self) -> Route:
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        failure: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None:
        self._end(after_failure=kind is not None)

    # ---- Steps ----

    def reserve(self) -> None:
        """Reserves the resources. Raises :class:`RouteConflictError` if other routes hold them."""

        def reserve(pointer: int, status: _Status) -> Any:
            return self._session._query(
                pointer, status, "zoroco_ra_quenra_reserveRoute", self.ticket
            )

        self._run("reserve", reserve)

    def program(self) -> None:
        """Programs the reserved route into the hardware: the signal flows."""

        def program(pointer: int, status: _Status) -> None:
            self._session._library["zoroco_ra_quenra_programRoute"](
                pointer, self.ticket, status.reference
            )

        self._run("program", program)

    def connect(self) -> Route:
        """Reserves and programs the route. After a failure it is not reserved."""
        self.reserve()
        try:
            self.program()
        except BaseException:
            self.unreserve()
            raise
        return self

    def path(self) -> List[str]:
        """The names of the terminals along the route; an unknown terminal is empty."""

        def read(pointer: int, status: _Status) -> List[str]:
            answer = self._session._query(
                pointer, status, "zoroco_ra_quenra_getRouteTerminalPath", self.ticket
            )
            return list(answer or ())

        return self._run("read the path of", read)

    def unprogram(self) -> None:
        """Removes the route from the hardware. It stays reserved. Reports no refusal of the driver."""
        self._run("unprogram", lambda pointer, _: self._step(pointer, "unprogramRoute"))

    def unreserve(self) -> None:
        """Releases the resources. Reports no refusal of the driver."""
        self._run("unreserve", lambda pointer, _: self._step(pointer, "unreserveRoute"))

    def destroy(self) -> None:
        """Tears the route down, whatever its state. May be called more than once."""
        self._end(after_failure=False)

    @property
    def is_destroyed(self) -> bool:
        """True after :meth:`destroy` and after the end of the session."""
        return self._is_destroyed

    # ---- Calls ----

    def _run(self, verb: str, work: Callable[[int, _Status], Result]) -> Result:
        operation = f"{verb} the route from '{self.source}' to '{self.destination}'"
        if self._is_destroyed:
            raise closed(operation)
        return self._session._run(operation, work)

    def _step(self, pointer: int, function: str) -> None:
        self._session._library["zoroco_ra_quenra_" + function](pointer, self.ticket, 0, 0)

    def _end(self, after_failure: bool) -> None:
        with self._session._lock:
            if self._is_destroyed or self._session._pointer is None:
                return
            self._tear_down(self._session._pointer, after_failure)

    def _tear_down(self, pointer: int, after_failure: bool) -> None:
        self._is_destroyed = True
        self._session._routes.pop(self.ticket, None)
        if after_failure:
            self._step(pointer, "beginExceptionalRouteDestruction")
        # The driver refuses a step that does not apply, and the library drops the refusal.
        for function in ("unprogramRoute", "unreserveRoute", "destroyRoute"):
            self._step(pointer, function)


# ---- Functions that the library calls ----


def _supplier(answer: List[Any]) -> Callable[..., Optional[int]]:
    def supply(current: Optional[int], required: int, text: Any, required_again: int) -> Optional[int]:
        try:
            answer[0] = ctypes.create_string_buffer(required)
        except MemoryError:
            return None
        return ctypes.addressof(answer[0])

    return supply


def _notifier(on_demotion: Callable[[int], None], threads: Set[int]) -> Callable[..., None]:
    def notify(context: Any, reason: int, status: Any, notification: Any) -> None:
        threads.add(threading.get_ident())
        try:
            # ctypes passes an exception to sys.unraisablehook.
            on_demotion(reason)
        finally:
            threads.discard(threading.get_ident())

    return notify


# ---- Documents of requests ----


def _document(value: Any) -> bytes:
    return json.dumps(value, separators=(",", ":")).encode()


def _seed_object(seed: Seed) -> Dict[str, Any]:
    constraints = {"inversionNeeded": True} if seed.inversion_needed else {}
    result: Dict[str, Any] = {
        "terminal": seed.terminal,
        "cost": seed.cost,
        "constraints": constraints,
    }
    if seed.device_token is not None:
        result["srcDeviceToken"] = seed.device_token
    return result


def _holders_in(answer: Any) -> tuple[RouteHolder, ...]:
    return tuple(RouteHolder(item["sessionId"], item["ticket"]) for item in answer or ())


# ---- End of the process ----

_open_sessions: weakref.WeakSet[Session] = weakref.WeakSet()


@atexit.register
def _close_sessions() -> None:
    # A callback must not run in an interpreter that has ended.
    for session in list(_open_sessions):
        session.close()
