"""Exceptions and warnings, made from status codes."""

from __future__ import annotations

import dataclasses
import sys
import warnings
from typing import Any, Dict, Mapping, Optional, Tuple, Type

from ._constants import Status


class Error(Exception):
    """Base class of the exceptions of this package."""


class LibraryError(Error):
    """The library cannot be loaded."""


def _status_of(code: int) -> Optional[Status]:
    try:
        return Status(code)
    except ValueError:
        return None


class _Outcome:
    """A status code and the operation that returned it, in words."""

    code: int
    operation: str

    @property
    def status(self) -> Optional[Status]:
        """The code as a member of :class:`Status`; None for a code of the driver."""
        return _status_of(self.code)

    @property
    def constant(self) -> Optional[str]:
        """The name in quenra_status.h: "QUENRA_STATUS_NOT_SUPPORTED"; None for a code of the driver."""
        return None if self.status is None else self.status.constant

    @property
    def cause(self) -> Optional[str]:
        """The meaning of the code, a sentence; None for a code of the driver."""
        return None if self.status is None else self.status.cause

    @property
    def advice(self) -> Optional[str]:
        """The remedy, a sentence; None for a code of the driver."""
        return None if self.status is None else self.status.remedy

    def _code_text(self) -> str:
        if self.constant is None:
            return f"code {self.code} of the driver"
        return f"{self.constant} ({self.code}): {self.cause}"


class StatusError(Error, _Outcome):
    """A function of the library failed."""

    def __init__(self, code: int, operation: str, details: Optional[Mapping[str, Any]] = None):
        super().__init__(code, operation, details)
        self.code = int(code)
        """The status code, negative."""
        self.operation = operation
        """The operation that failed: "read product_name"."""
        self.details: Dict[str, Any] = dict(details or {})
        """The description of a failed routing function, see docs/routing.md; otherwise empty."""

    def __str__(self) -> str:
        text = f"cannot {self.operation}: {self._code_text()}"
        fault = self.details.get("zoroco_debug")
        if fault is not None:
            text += f" {fault}."
        return text if self.advice is None else f"{text} {self.advice}"


class NotSupportedError(StatusError):
    """The machine does not have the attribute, the instance or the operation."""


class NoControllerError(StatusError):
    """No controller can be reached, or the selected interface is not open."""


class ClosedError(StatusError):
    """The controller, session or route is closed."""


@dataclasses.dataclass(frozen=True)
class RouteHolder:
    """A route that holds resources which another route requires."""

    session_id: int
    """The driver's number of the session."""
    ticket: int
    """The route in that session."""


class RouteConflictError(StatusError):
    """Other routes hold the lines of a route."""

    def __init__(
        self,
        code: int,
        operation: str,
        details: Optional[Mapping[str, Any]] = None,
        holders: Tuple[RouteHolder, ...] = (),
    ):
        super().__init__(code, operation, details)
        self.holders = holders
        """The conflicting routes."""


class DriverWarning(UserWarning, _Outcome):
    """The driver carried an operation out and reported a warning, a positive code."""

    def __init__(self, code: int, operation: str):
        super().__init__(code, operation)
        self.code = int(code)
        """The status code, positive."""
        self.operation = operation
        """The operation: "read product_name"."""

    def __str__(self) -> str:
        return f"the driver warns: {self.operation}: {self._code_text()}"


_CLASSES: Dict[int, Type[StatusError]] = {
    Status.NOT_SUPPORTED: NotSupportedError,
    Status.NO_CONTROLLER: NoControllerError,
    Status.INVALID_HANDLE: ClosedError,
    Status.ROUTE_CONFLICT: RouteConflictError,
}


def error_for(
    code: int, operation: str, details: Optional[Mapping[str, Any]] = None
) -> StatusError:
    """The exception for a negative code."""
    return _CLASSES.get(code, StatusError)(code, operation, details)


def closed(operation: str) -> ClosedError:
    """The exception for the use of a closed object."""
    return ClosedError(Status.INVALID_HANDLE, operation)


def warn(code: int, operation: str) -> None:
    """Issues the warning for a positive code, at the line that called the package."""
    if code <= 0:
        return
    level = 1
    frame = sys._getframe()
    while frame.f_back is not None and frame.f_globals.get("__package__") == __package__:
        level += 1
        frame = frame.f_back
    warnings.warn(DriverWarning(code, operation), stacklevel=level)


def check(code: int, operation: str) -> None:
    """Raises the exception for a negative code, issues the warning for a positive one."""
    if code < 0:
        raise error_for(code, operation)
    warn(code, operation)
