"""The controller of a PXI chassis: attributes, self-test, firmware updates and trigger routes.

    import quenra

    with quenra.open() as controller:
        print(controller.product_name)
        print(controller.get(quenra.attributes.MEMORY_SIZE, instance=1))

The package calls quenra.dll, which the wheel contains. A failure of the library raises a
:class:`StatusError` with the code, its cause and an advice; a warning of the driver is a
:class:`DriverWarning` of the module `warnings`. Trigger routes are in :mod:`quenra.routing`.
"""

from __future__ import annotations

from importlib.metadata import PackageNotFoundError as _PackageNotFoundError
from importlib.metadata import version as _version

from . import attributes, routing
from ._constants import Attribute, ExpansionKind, LinkKind, Status
from ._constants import Selector as Interface
from ._controller import Controller, UpdateOption, device_path, open
from ._errors import (
    ClosedError,
    DriverWarning,
    Error,
    LibraryError,
    NoControllerError,
    NotSupportedError,
    RouteConflictError,
    RouteHolder,
    StatusError,
)

try:
    __version__ = _version("quenra")
except _PackageNotFoundError:
    # The package is used from a source tree, without an installation that has a version.
    __version__ = "0"

__all__ = [
    "Attribute",
    "ClosedError",
    "Controller",
    "DriverWarning",
    "Error",
    "ExpansionKind",
    "Interface",
    "LibraryError",
    "LinkKind",
    "NoControllerError",
    "NotSupportedError",
    "RouteConflictError",
    "RouteHolder",
    "Status",
    "StatusError",
    "UpdateOption",
    "__version__",
    "attributes",
    "device_path",
    "open",
    "routing",
]
