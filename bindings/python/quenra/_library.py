"""The loaded library and the types of its functions."""

from __future__ import annotations

import ctypes
import functools
import os
import sys
from typing import Any, Callable, Dict, Optional, Tuple, Union

from ._errors import LibraryError

StrPath = Union[str, "os.PathLike[str]"]

DEFAULT_PATH = os.path.join(os.path.dirname(os.path.abspath(__file__)), "quenra.dll")
"""The library of the wheel."""

# The code page of the process, in which the library returns and receives device paths.
CODE_PAGE = "mbcs" if sys.platform == "win32" else "utf-8"


class StatusRecord(ctypes.Structure):
    """zoerr_Status of quenra_routing.h."""

    _fields_ = [
        ("code", ctypes.c_int32),
        ("capacity", ctypes.c_uint32),
        ("reallocate", ctypes.c_void_p),
        ("description", ctypes.c_void_p),
    ]


ReallocateStatus = ctypes.CFUNCTYPE(ctypes.c_bool, ctypes.c_void_p, ctypes.c_uint32)
"""The member `reallocate` of zoerr_Status."""

Reallocate = ctypes.CFUNCTYPE(
    ctypes.c_void_p, ctypes.c_void_p, ctypes.c_size_t, ctypes.c_void_p, ctypes.c_size_t
)
"""zoroco_Reallocate."""

DemotionCallback = ctypes.CFUNCTYPE(
    None, ctypes.c_void_p, ctypes.c_int32, ctypes.c_void_p, ctypes.c_void_p
)
"""zoroco_DemotionCallback."""

_i32, _u32, _u64 = ctypes.c_int32, ctypes.c_uint32, ctypes.c_uint64
_text, _pointer, _bool = ctypes.c_char_p, ctypes.c_void_p, ctypes.c_bool
_status = ctypes.POINTER(StatusRecord)
_answer = ctypes.POINTER(ctypes.c_void_p)

# Result and arguments of each function, as in quenra.h and quenra_routing.h.
SIGNATURES: Dict[str, Tuple[Any, Tuple[Any, ...]]] = {
    "QUENRA_openController": (_i32, (ctypes.POINTER(_u64),)),
    "QUENRA_closeController": (None, (_u64,)),
    "QUENRA_getAttributeUTF8": (_i32, (_u64, _u32, _pointer, ctypes.POINTER(_u64))),
    "QUENRA_getAttributeU32": (_i32, (_u64, _u32, ctypes.POINTER(_u32))),
    "QUENRA_getAttributeI32": (_i32, (_u64, _u32, ctypes.POINTER(_i32))),
    "QUENRA_getAttributeDBL": (_i32, (_u64, _u32, ctypes.POINTER(ctypes.c_double))),
    "QUENRA_setAttributeUTF8": (_i32, (_u64, _u32, _text)),
    "QUENRA_setAttributeU32": (_i32, (_u64, _u32, _u32)),
    "QUENRA_performSelfTest": (_i32, (_u64,)),
    "QUENRA_updateFirmware": (_i32, (_u64, _text, _u64)),
    "QUENRA_updateFirmware2": (_i32, (_u64, _text, _u64, _u32)),
    "zoroco_ra_quenra_getAPIVersion": (_u32, ()),
    "zoroco_ra_quenra_createSession": (_pointer, (_text, Reallocate, _status)),
    "zoroco_ra_quenra_createSessionWithDemotionFunc": (
        _pointer,
        (_text, Reallocate, DemotionCallback, _pointer, _status),
    ),
    "zoroco_ra_quenra_destroySession": (None, (_pointer,)),
    "zoroco_ra_quenra_getHandledConstraints": (None, (_pointer, _answer, _status)),
    "zoroco_ra_quenra_calculateRoute": (
        _u32,
        (_pointer, _text, _text, _text, _answer, _status),
    ),
    "zoroco_ra_quenra_reserveRoute": (None, (_pointer, _u32, _answer, _status)),
    "zoroco_ra_quenra_programRoute": (None, (_pointer, _u32, _status)),
    "zoroco_ra_quenra_unprogramRoute": (None, (_pointer, _u32, _u64, _u64)),
    "zoroco_ra_quenra_unreserveRoute": (None, (_pointer, _u32, _u64, _u64)),
    "zoroco_ra_quenra_destroyRoute": (None, (_pointer, _u32, _u64, _u64)),
    "zoroco_ra_quenra_beginExceptionalRouteDestruction": (None, (_pointer, _u32, _u64, _u64)),
    "zoroco_ra_quenra_getRouteTerminalPath": (None, (_pointer, _u32, _answer, _status)),
    "zoroco_ra_quenra_getAllTerminals": (_pointer, (_pointer, _status, _u64)),
    "zoroco_ra_quenra_TerminalIterator_next": (None, (_pointer, _status)),
    "zoroco_ra_quenra_TerminalIterator_isEnd": (_bool, (_pointer,)),
    "zoroco_ra_quenra_TerminalIterator_getStringAttribute": (_text, (_pointer, _text, _status)),
    "zoroco_ra_quenra_TerminalIterator_getBoolAttribute": (_bool, (_pointer, _text, _status)),
    "zoroco_ra_quenra_TerminalIterator_getU32Attribute": (_u32, (_pointer, _text, _status)),
    "zoroco_ra_quenra_TerminalIterator_resetTerminal": (None, (_pointer, _text, _status)),
    "zoroco_ra_quenra_TerminalIterator_calculateResetTerminal": (
        _u32,
        (_pointer, _pointer, _text, _status),
    ),
    "zoroco_ra_quenra_TerminalIterator_destroy": (None, (_pointer,)),
}


class Library:
    """A loaded library. ``library["QUENRA_performSelfTest"]`` is the function of that name."""

    def __init__(self, path: str) -> None:
        try:
            loaded = ctypes.CDLL(path)
        except OSError as failure:
            raise LibraryError(
                f"cannot load '{path}': {failure}. The library is for 64-bit Python on Windows; the "
                "wheel contains it. Pass the path of another copy as 'library'."
            ) from failure
        self._functions: Dict[str, Callable[..., Any]] = {}
        for name, (result, arguments) in SIGNATURES.items():
            try:
                function = loaded[name]
            except AttributeError as failure:
                raise LibraryError(
                    f"'{path}' has no function '{name}'. Use the quenra.dll of this version."
                ) from failure
            function.restype = result
            function.argtypes = arguments
            self._functions[name] = function

    def __getitem__(self, name: str) -> Callable[..., Any]:
        return self._functions[name]


@functools.lru_cache(maxsize=None)
def _load(path: str) -> Library:
    return Library(path)


def load(path: Optional[StrPath]) -> Library:
    """The library at a path, or that of the wheel. Each is loaded once and stays loaded."""
    return _load(os.path.abspath(DEFAULT_PATH if path is None else os.fspath(path)))


def encode(text: str, encoding: str = "utf-8") -> bytes:
    """A text as the library receives it. Raises ValueError if it contains a NUL, which would cut it."""
    if "\0" in text:
        raise ValueError(f"the text {text!r} contains a NUL character")
    return text.encode(encoding)


def decode(text: bytes, encoding: str = "utf-8") -> str:
    """A text of the library. Bytes that are not text, such as 0xFF, appear as "\\xff"."""
    return text.decode(encoding, "backslashreplace")
