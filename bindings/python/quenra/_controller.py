"""The controller: attributes, self-test and firmware update."""

from __future__ import annotations

import ctypes
import enum
import os
import threading
import warnings
from types import TracebackType
from typing import Any, Dict, Generic, List, Optional, Type, TypeVar, Union, cast, overload

from . import _constants as constants
from ._constants import ATTRIBUTES, Attribute, Status
from ._constants import Selector as Interface
from ._errors import NoControllerError, NotSupportedError, check, closed, warn
from ._library import CODE_PAGE, Library, StrPath, decode, encode, load

Value = TypeVar("Value", str, int)

_FIRST_BUFFER_SIZE = 256
# More than any real text needs. A greater size is a misbehaving driver: do not allocate it.
_MAX_BUFFER_SIZE = 1024 * 1024
# A text may grow between two calls; the limit ends the loop under a misbehaving driver.
_MAX_ATTEMPTS = 8

_MAX_INSTANCE = 255
_MAX_NUMBER = 0xFFFFFFFF
_SECTION = b"HeaderVersion::"


class UpdateOption(enum.IntEnum):
    """The firmware that an update sends to the devices."""

    NEWER = 0
    """Skip a device if its installed version is not older than that of one of its sections."""
    ALL = 1
    """Skip nothing."""


class _AttributeProperty(Generic[Value]):
    """A property of the controller that reads an attribute."""

    def __init__(self, attribute: Attribute[Value]) -> None:
        self._attribute: Attribute[Value] = attribute
        self.__doc__ = attribute.documentation

    @overload
    def __get__(self, controller: None, owner: Any) -> _AttributeProperty[Value]: ...
    @overload
    def __get__(self, controller: Controller, owner: Any) -> Value: ...
    def __get__(
        self, controller: Optional[Controller], owner: Any
    ) -> Union[_AttributeProperty[Value], Value]:
        return self if controller is None else controller.get(self._attribute)


class _WritableProperty(_AttributeProperty[Value]):
    """A property that also writes the attribute."""

    def __set__(self, controller: Controller, value: Value) -> None:
        controller.set(self._attribute, value)


class Controller:
    """The opened controller. Close it, or use it in a `with` statement.

    Any thread may use a controller, also during an update. Several controllers of one process share
    the library's session, which ends with the last of them.

    Each attribute with one instance is a property, such as :attr:`product_name`. Reading it raises
    :class:`NotSupportedError` on a machine without the attribute.
    """

    __slots__ = ("_library", "_handle", "_lock", "_calls", "_closed", "__weakref__")

    def __init__(self, *, library: Optional[StrPath] = None) -> None:
        """Opens the controller.

        `library` is the path of the library; by default that of the wheel.

        Raises :class:`NoControllerError` if no controller is present, :class:`LibraryError` if the
        library cannot be loaded, :class:`StatusError` for other failures.
        """
        self._closed = True
        self._library = load(library)
        self._lock = threading.RLock()
        self._calls = 0
        handle = ctypes.c_uint64()
        code = self._library["QUENRA_openController"](ctypes.byref(handle))
        if code < 0:
            check(code, "open the controller")
        self._handle = handle.value
        self._closed = False
        try:
            warn(code, "open the controller")
        except BaseException:
            self.close()
            raise

    # ---- Lifetime ----

    def close(self) -> None:
        """Closes the controller. May be called more than once.

        Calls that other threads have begun run to their end: the last of them closes the controller.
        """
        with self._lock:
            if self._closed:
                return
            self._closed = True
            is_idle = self._calls == 0
        if is_idle:
            self._drop()

    @property
    def closed(self) -> bool:
        """True after :meth:`close`."""
        return self._closed

    def __enter__(self) -> Controller:
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        failure: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None:
        self.close()

    def __del__(self) -> None:
        # A failed constructor leaves no member but this one.
        if not getattr(self, "_closed", True):
            self.close()
            warnings.warn("unclosed controller", ResourceWarning, source=self)

    def __reduce__(self) -> str:
        raise TypeError("a controller cannot be copied or pickled")

    def __repr__(self) -> str:
        return f"<quenra.Controller {'closed' if self._closed else 'open'}>"

    def _drop(self) -> None:
        self._library["QUENRA_closeController"](self._handle)

    def _call(self, operation: str, function: str, *arguments: Any) -> int:
        with self._lock:
            if self._closed:
                raise closed(operation)
            self._calls += 1
        try:
            return cast(int, self._library[function](self._handle, *arguments))
        finally:
            with self._lock:
                self._calls -= 1
                is_last = self._closed and self._calls == 0
            if is_last:
                self._drop()

    # ---- Attributes ----

    def get(
        self,
        attribute: Attribute[Value],
        instance: int = 0,
        interface: Interface = Interface.DEFAULT,
    ) -> Value:
        """Reads an attribute.

        `instance` counts memory modules, processors, slots and bridges from 0. `interface` selects
        the interface that answers, where there is a choice.

        Raises :class:`NotSupportedError` if the machine does not have the attribute or the instance,
        :class:`NoControllerError` if the selected interface is not open.
        """
        operation = _describe("read", attribute, instance, interface)
        identifier = _identify(attribute, instance, interface)
        value: Any
        if attribute.type is str:
            value = self._read_text(identifier, operation)
        else:
            value = self._read_number(identifier, operation)
        return cast(Value, value)

    def __getitem__(self, attribute: Attribute[Value]) -> Value:
        """The value of an attribute: ``controller[quenra.attributes.PRODUCT_NAME]``."""
        return self.get(attribute)

    def get_all(
        self, attribute: Attribute[Value], interface: Interface = Interface.DEFAULT
    ) -> List[Value]:
        """Reads all instances of an attribute, in order."""
        count = attribute.maximum_instances
        if attribute.counted_by is not None:
            count = min(count, self.get(ATTRIBUTES[attribute.counted_by]))
        values: List[Value] = []
        for instance in range(count):
            try:
                values.append(self.get(attribute, instance, interface))
            except NotSupportedError:
                if attribute.counted_by is not None:
                    raise
                break
        return values

    def read_all(self) -> Dict[str, Union[str, int, List[str], List[int]]]:
        """Reads the attributes that the machine has, by name; a list for one with instances.

        For reports: an attribute that is not supported or not available is absent.
        """
        result: Dict[str, Union[str, int, List[str], List[int]]] = {}
        for name, attribute in ATTRIBUTES.items():
            if not attribute.readable:
                continue
            try:
                if attribute.instances is None:
                    result[name] = self.get(attribute)
                else:
                    result[name] = self.get_all(attribute)
            except (NotSupportedError, NoControllerError):
                continue
        return result

    def set(
        self,
        attribute: Attribute[Value],
        value: Value,
        interface: Interface = Interface.DEFAULT,
    ) -> None:
        """Writes an attribute. The driver decides which attributes it accepts.

        A number must fit 32 bits without sign, a text must not contain a NUL; otherwise ValueError.
        Raises :class:`NotSupportedError` if the driver does not accept the attribute.
        """
        operation = _describe("write", attribute, 0, interface)
        identifier = _identify(attribute, 0, interface)
        if attribute.type is str:
            if not isinstance(value, str):
                raise TypeError(f"{attribute.name} is a text, not {value!r}")
            code = self._call(operation, "QUENRA_setAttributeUTF8", identifier, encode(value))
        else:
            if not isinstance(value, int):
                raise TypeError(f"{attribute.name} is a number, not {value!r}")
            if not 0 <= value <= _MAX_NUMBER:
                raise ValueError(f"{value} is not from 0 to {_MAX_NUMBER}")
            code = self._call(operation, "QUENRA_setAttributeU32", identifier, value)
        check(code, operation)

    def __setitem__(self, attribute: Attribute[Value], value: Value) -> None:
        """Writes an attribute: ``controller[quenra.attributes.DRIVER_SETTING_1] = 5``."""
        self.set(attribute, value)

    def _read_text(self, identifier: int, operation: str) -> str:
        # The device path is text of the process's code page and needs no open controller.
        is_device_path = identifier == constants.DEVICE_PATH.id

        def read(buffer: Any, size: Any) -> int:
            return self._call(operation, "QUENRA_getAttributeUTF8", identifier, buffer, size)

        return _read_text(read, operation, CODE_PAGE if is_device_path else "utf-8")

    def _read_number(self, identifier: int, operation: str) -> int:
        value = ctypes.c_uint32()
        code = self._call(
            operation, "QUENRA_getAttributeU32", identifier, ctypes.byref(value)
        )
        check(code, operation)
        return value.value

    # ---- Operations ----

    def self_test(self) -> None:
        """Performs the self-test, which succeeds while the controller is open."""
        operation = "perform the self-test"
        check(self._call(operation, "QUENRA_performSelfTest"), operation)

    def update_firmware(
        self,
        image: Union[bytes, bytearray, memoryview, str, os.PathLike[str]],
        option: UpdateOption = UpdateOption.ALL,
    ) -> None:
        """Applies a firmware image: its bytes, or the path of a file.

        The call can take minutes; other threads run meanwhile. Updates that overlap, in several threads
        or processes, mix their effects. The calling thread must not use COM in a single-threaded
        apartment. The library does not report whether Windows has installed a driver package.

        Raises ValueError for bytes without a section of firmware, OSError if the file cannot be read,
        :class:`NotSupportedError` if the machine accepts no updates, and :class:`StatusError` with
        `Status.DRIVE_PROTECTED` (the system drive is encrypted), `INVALID_IMAGE`, `IMAGE_VERSION`,
        `UPDATE_ENVIRONMENT` and codes of the driver.
        """
        operation = "update the firmware"
        if isinstance(image, (bytes, bytearray, memoryview)):
            content = bytes(image)
        else:
            operation += f" from '{os.fspath(image)}'"
            with _open_file(image, "rb") as file:
                content = file.read()
        if _SECTION not in content:
            # The library accepts an image without a section and marks the Marten as updated.
            raise ValueError(f"cannot {operation}: not a firmware image, it has no '{_SECTION.decode()}'")
        # Raises ValueError for any other number.
        chosen = UpdateOption(option)
        if chosen is UpdateOption.ALL:
            code = self._call(operation, "QUENRA_updateFirmware", content, len(content))
        else:
            code = self._call(operation, "QUENRA_updateFirmware2", content, len(content), chosen)
        check(code, operation)

    # ---- Properties: attributes with one instance ----

    system_manufacturer = _AttributeProperty(constants.SYSTEM_MANUFACTURER)
    product_name = _AttributeProperty(constants.PRODUCT_NAME)
    serial_number = _AttributeProperty(constants.SERIAL_NUMBER)
    system_version = _AttributeProperty(constants.SYSTEM_VERSION)
    firmware_version = _AttributeProperty(constants.FIRMWARE_VERSION)
    platform_identifier = _AttributeProperty(constants.PLATFORM_IDENTIFIER)
    controller_kind = _AttributeProperty(constants.CONTROLLER_KIND)
    platform_code = _AttributeProperty(constants.PLATFORM_CODE)
    platform_text_1 = _AttributeProperty(constants.PLATFORM_TEXT_1)
    platform_text_2 = _AttributeProperty(constants.PLATFORM_TEXT_2)
    platform_text_3 = _AttributeProperty(constants.PLATFORM_TEXT_3)
    platform_generation = _AttributeProperty(constants.PLATFORM_GENERATION)
    platform_option = _AttributeProperty(constants.PLATFORM_OPTION)
    platform_revision = _AttributeProperty(constants.PLATFORM_REVISION)
    platform_revision_base = _AttributeProperty(constants.PLATFORM_REVISION_BASE)
    capability_1 = _AttributeProperty(constants.CAPABILITY_1)
    capability_2 = _AttributeProperty(constants.CAPABILITY_2)
    firmware_update_support = _AttributeProperty(constants.FIRMWARE_UPDATE_SUPPORT)
    text_setting_support = _AttributeProperty(constants.TEXT_SETTING_SUPPORT)
    memory_module_count = _AttributeProperty(constants.MEMORY_MODULE_COUNT)
    processor_setting = _AttributeProperty(constants.PROCESSOR_SETTING)
    bus_location = _AttributeProperty(constants.BUS_LOCATION)
    slot_count = _AttributeProperty(constants.SLOT_COUNT)
    link_kind = _AttributeProperty(constants.LINK_KIND)
    link_location = _AttributeProperty(constants.LINK_LOCATION)
    link_text = _AttributeProperty(constants.LINK_TEXT)
    expansion_kind = _AttributeProperty(constants.EXPANSION_KIND)
    expansion_location = _AttributeProperty(constants.EXPANSION_LOCATION)
    bridge_count = _AttributeProperty(constants.BRIDGE_COUNT)
    interfaces_present = _AttributeProperty(constants.INTERFACES_PRESENT)
    device_path = _AttributeProperty(constants.DEVICE_PATH)
    driver_setting_1 = _WritableProperty(constants.DRIVER_SETTING_1)
    driver_setting_2 = _WritableProperty(constants.DRIVER_SETTING_2)


def _read_text(read: Any, operation: str, encoding: str) -> str:
    size = _FIRST_BUFFER_SIZE
    for _ in range(_MAX_ATTEMPTS):
        # Zeroed, and one byte longer: the library leaves the buffer unchanged for a malformed field.
        buffer = ctypes.create_string_buffer(size + 1)
        reported = ctypes.c_uint64(size)
        code = read(buffer, ctypes.byref(reported))
        if code != Status.BUFFER_TOO_SMALL or not size < reported.value <= _MAX_BUFFER_SIZE:
            break
        size = reported.value
    check(code, operation)
    return decode(buffer.value, encoding)


def _identify(attribute: Attribute[Any], instance: int, interface: Interface) -> int:
    if not 0 <= instance <= _MAX_INSTANCE:
        raise ValueError(f"instance {instance} is not from 0 to {_MAX_INSTANCE}")
    return attribute.id + Interface(interface) + instance


def _describe(verb: str, attribute: Attribute[Any], instance: int, interface: Interface) -> str:
    text = f"{verb} {attribute.name}"
    if attribute.instances is not None or instance != 0:
        text += f", instance {instance}"
    if interface != Interface.DEFAULT:
        text += f", interface {Interface(interface).name}"
    return text


def device_path(*, library: Optional[StrPath] = None) -> str:
    """The path of the controller's device, for which no controller needs to be open.

    Raises :class:`NoControllerError` if no device is present.
    """
    loaded: Library = load(library)

    def read(buffer: Any, size: Any) -> int:
        return cast(
            int, loaded["QUENRA_getAttributeUTF8"](0, constants.DEVICE_PATH.id, buffer, size)
        )

    return _read_text(read, "read device_path", CODE_PAGE)


_open_file = open


def open(*, library: Optional[StrPath] = None) -> Controller:  # noqa: A001
    """Opens the controller: the same as `Controller()`."""
    return Controller(library=library)
