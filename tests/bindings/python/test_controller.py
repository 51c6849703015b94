"""The controller: opening, attributes, self-test and firmware."""

from __future__ import annotations

import concurrent.futures
import copy
import ctypes
import gc
import pathlib
import threading
import tracemalloc
import warnings
from typing import Any, Callable, List

import pytest

import quenra
from conftest import CONTROLLER, MARTEN, Machine
from quenra import Interface, Status, attributes

ACCESS_DENIED, TIMEOUT = 5, 121


# ---- Opening and closing ----


def test_open_default_machine_opens_and_closes_the_interfaces(library: str, machine: Machine) -> None:
    with quenra.open(library=library) as controller:
        assert not controller.closed
        assert repr(controller) == "<quenra.Controller open>"
        assert len(machine.lines("openObjects")) == 4
    assert controller.closed
    assert repr(controller) == "<quenra.Controller closed>"
    assert machine.lines("openObjects") == []


def test_open_accepts_a_path_object(library: str) -> None:
    quenra.open(library=pathlib.Path(library)).close()


def test_open_without_controller_raises(library: str, machine: Machine) -> None:
    machine.setPresence(0, 0, 0)
    with pytest.raises(quenra.NoControllerError) as caught:
        quenra.open(library=library)
    assert caught.value.code == Status.NO_CONTROLLER
    assert str(caught.value).startswith(
        "cannot open the controller: QUENRA_STATUS_NO_CONTROLLER (-26932): No controller"
    )


def test_open_with_two_controllers_raises_generic_failure(library: str, machine: Machine) -> None:
    machine.setPresence(2, 1, 1)
    with pytest.raises(quenra.StatusError) as caught:
        quenra.open(library=library)
    assert caught.value.status is Status.GENERIC_FAILURE


def test_open_refused_by_the_system_raises(library: str, machine: Machine) -> None:
    machine.failCall("CreateFileA", 1, ACCESS_DENIED)
    with pytest.raises(quenra.StatusError) as caught:
        quenra.open(library=library)
    assert caught.value.status is Status.ACCESS_DENIED
    quenra.open(library=library).close()


def test_open_with_driver_warning_treated_as_error_leaves_nothing_open(
    library: str, machine: Machine
) -> None:
    machine.answerRequests(CONTROLLER, 0, 1, 1, 17)
    with pytest.raises(quenra.DriverWarning) as caught:
        quenra.open(library=library)
    assert caught.value.code == 17
    assert machine.lines("openObjects") == []


def test_close_twice_closes_one_open_only(library: str) -> None:
    first = quenra.open(library=library)
    second = quenra.open(library=library)
    first.close()
    first.close()
    assert second.product_name == "BW-8135"
    second.close()


def test_closed_controller_while_another_is_open_raises(library: str) -> None:
    with quenra.open(library=library):
        controller = quenra.open(library=library)
        controller.close()
        uses: List[Callable[[], object]] = [
            lambda: controller.product_name,
            controller.self_test,
            lambda: controller.set(attributes.DRIVER_SETTING_1, 1),
            lambda: controller.update_firmware(b"HeaderVersion::1"),
        ]
        for use in uses:
            with pytest.raises(quenra.ClosedError) as caught:
                use()
            assert caught.value.code == Status.INVALID_HANDLE


def test_dropped_controller_warns_and_closes(library: str, machine: Machine) -> None:
    controller = quenra.open(library=library)
    with pytest.warns(ResourceWarning, match="unclosed controller"):
        del controller
        gc.collect()
    assert machine.lines("openObjects") == []


def test_controller_cannot_be_copied(controller: quenra.Controller) -> None:
    with pytest.raises(TypeError, match="cannot be copied"):
        copy.copy(controller)


def test_thousand_opens_leave_no_memory_and_no_handle(library: str, machine: Machine) -> None:
    def round_trip() -> None:
        with quenra.open(library=library) as controller:
            assert controller.product_name == "BW-8135"
            with pytest.raises(quenra.NotSupportedError):
                controller.get(attributes.MEMORY_SIZE, 9)

    round_trip()
    gc.collect()
    tracemalloc.start()
    before = tracemalloc.get_traced_memory()[0]
    for _ in range(1000):
        round_trip()
    gc.collect()
    growth = tracemalloc.get_traced_memory()[0] - before
    tracemalloc.stop()
    assert growth < 20_000
    assert machine.lines("openObjects") == []


# ---- Reading ----


def test_get_reads_text_and_number(controller: quenra.Controller) -> None:
    assert controller.get(attributes.PRODUCT_NAME) == "BW-8135"
    assert controller.get(attributes.MEMORY_MODULE_COUNT) == 2
    assert controller[attributes.BUS_LOCATION] == "07:12"


def test_values_have_the_types_that_the_type_checker_infers(
    controller: quenra.Controller, machine: Machine
) -> None:
    name: str = controller.product_name
    count: int = controller.memory_module_count
    sizes: List[int] = controller.get_all(attributes.MEMORY_SIZE)
    locator: str = controller.get(attributes.MEMORY_LOCATOR)
    wrong: int = controller[attributes.PRODUCT_NAME]  # type: ignore[assignment]
    machine.allowWrites(CONTROLLER, attributes.DRIVER_SETTING_1.id)
    controller.driver_setting_1 = 3
    for value, kind in ((name, str), (count, int), (sizes[0], int), (locator, str), (wrong, str)):
        assert type(value) is kind


def test_get_instance_reads_that_instance(controller: quenra.Controller) -> None:
    assert controller.get(attributes.MEMORY_SIZE, instance=1) == 0x2002
    assert controller.get(attributes.MEMORY_LOCATOR, 1) == "DIMM 2"


def test_get_interface_reads_from_that_interface(
    controller: quenra.Controller, machine: Machine
) -> None:
    machine.setAttributeText(MARTEN, attributes.FIRMWARE_VERSION.id, "M-9.8")
    version = attributes.FIRMWARE_VERSION
    assert controller.get(version) == "M-9.8"
    assert controller.get(version, interface=Interface.CONTROLLER) == "B-1.23"


def test_get_all_reads_counted_and_uncounted_instances(controller: quenra.Controller) -> None:
    assert controller.get_all(attributes.MEMORY_SIZE) == [0x2000, 0x2002]
    assert controller.get_all(attributes.PROCESSOR_VERSION) == [
        "Processor version 0",
        "Processor version 1",
    ]
    assert controller.get_all(attributes.SLOT_NUMBER) == [21, 22, 23, 24]
    assert controller.get_all(attributes.PRODUCT_NAME) == ["BW-8135"]


def test_get_all_with_a_gap_in_counted_instances_raises(
    controller: quenra.Controller, functions: Any
) -> None:
    read = functions["QUENRA_getAttributeUTF8"]

    def refuse_second(handle: int, identifier: int, *rest: Any) -> Any:
        return Status.NOT_SUPPORTED if identifier & 0xFF == 1 else read(handle, identifier, *rest)

    functions["QUENRA_getAttributeUTF8"] = refuse_second
    with pytest.raises(quenra.NotSupportedError, match="read memory_locator, instance 1"):
        controller.get_all(attributes.MEMORY_LOCATOR)


def test_read_all_lists_every_attribute_of_the_machine(controller: quenra.Controller) -> None:
    values = controller.read_all()
    assert set(values) == {name for name, entry in attributes.ATTRIBUTES.items() if entry.readable}
    assert values["product_name"] == "BW-8135"
    assert values["memory_size"] == [0x2000, 0x2002]


def test_read_all_omits_attributes_that_the_machine_lacks(library: str, machine: Machine) -> None:
    machine.removeTableStructures(0x99)
    with quenra.open(library=library) as controller:
        values = controller.read_all()
    assert "link_kind" not in values
    assert "link_text" not in values
    assert "product_name" in values


def test_every_property_reads_its_attribute(controller: quenra.Controller) -> None:
    for name, attribute in attributes.ATTRIBUTES.items():
        if attribute.readable and attribute.instances is None:
            assert getattr(controller, name) == controller.get(attribute), name
            assert getattr(quenra.Controller, name).__doc__ == attribute.documentation


def test_attribute_of_an_unknown_id_is_read(
    controller: quenra.Controller, machine: Machine
) -> None:
    machine.setAttributeU32(MARTEN, 0x2020AA00, 0xFFFFFFFF)
    fan = quenra.Attribute(name="fan", constant="", id=0x2020AA00, type=int, documentation="")
    assert controller.get(fan) == 0xFFFFFFFF


def test_missing_instance_raises_not_supported(controller: quenra.Controller) -> None:
    with pytest.raises(quenra.NotSupportedError) as caught:
        controller.get(attributes.MEMORY_SIZE, instance=5)
    assert caught.value.operation == "read memory_size, instance 5"


def test_marten_without_marten_raises_no_controller(library: str, machine: Machine) -> None:
    machine.setPresence(1, 0, 1)
    with quenra.open(library=library) as controller:
        with pytest.raises(quenra.NoControllerError, match="interface MARTEN"):
            controller.get(attributes.PRODUCT_NAME, interface=Interface.MARTEN)


@pytest.mark.parametrize("instance", [-1, 256])
def test_instance_out_of_range_raises_value_error(
    controller: quenra.Controller, instance: int
) -> None:
    with pytest.raises(ValueError, match="is not from 0 to 255"):
        controller.get(attributes.MEMORY_SIZE, instance)


def test_failed_requests_raise_for_texts_and_numbers(
    controller: quenra.Controller, machine: Machine
) -> None:
    machine.failRequests(MARTEN, 0, 0, 1, TIMEOUT)
    with pytest.raises(quenra.StatusError) as caught:
        controller.firmware_version
    assert caught.value.status is Status.TIME_OUT
    machine.answerRequests(CONTROLLER, 0, 0, 1, -123456)
    with pytest.raises(quenra.StatusError) as caught:
        controller.driver_setting_1
    assert (caught.value.code, caught.value.status) == (-123456, None)
    assert str(caught.value) == "cannot read driver_setting_1: code -123456 of the driver"


def test_driver_warning_is_issued_at_the_line_of_the_caller(
    controller: quenra.Controller, machine: Machine
) -> None:
    machine.answerRequests(CONTROLLER, 0, 0, 1, 3)
    with pytest.warns(quenra.DriverWarning) as caught:
        assert controller.driver_setting_1 == 5
    assert caught[0].filename == __file__
    warning = caught[0].message
    assert isinstance(warning, quenra.DriverWarning)
    assert (warning.code, warning.constant, warning.operation) == (3, None, "read driver_setting_1")


def test_text_that_is_not_utf8_is_readable(library: str, machine: Machine) -> None:
    machine.setTableText(1, 5, b"B\xffW")
    with quenra.open(library=library) as controller:
        assert controller.product_name == "B\\xffW"


def test_text_of_several_languages_is_read(library: str, machine: Machine) -> None:
    machine.setTableText(1, 5, "Prüfstand 试验")
    with quenra.open(library=library) as controller:
        assert controller.product_name == "Prüfstand 试验"


def test_text_longer_than_the_first_buffer_is_read(
    controller: quenra.Controller, monkeypatch: pytest.MonkeyPatch
) -> None:
    monkeypatch.setattr("quenra._controller._FIRST_BUFFER_SIZE", 3)
    assert controller.product_name == "BW-8135"
    assert controller.firmware_version == "1.4.0f7"
    assert controller.device_path.startswith("\\\\?\\")


@pytest.mark.parametrize("step, calls", [(0, 1), (1, 8), (2**40, 1)])
def test_text_size_of_a_misbehaving_driver_ends(
    controller: quenra.Controller, functions: Any, step: int, calls: int
) -> None:
    made = []

    def too_small(handle: int, identifier: int, buffer: Any, size: Any) -> int:
        made.append(identifier)
        number = ctypes.cast(size, ctypes.POINTER(ctypes.c_uint64)).contents
        number.value += step
        return Status.BUFFER_TOO_SMALL

    functions["QUENRA_getAttributeUTF8"] = too_small
    with pytest.raises(quenra.StatusError) as caught:
        controller.get(attributes.PRODUCT_NAME)
    assert caught.value.status is Status.BUFFER_TOO_SMALL
    assert len(made) == calls


def test_device_path_needs_no_controller(library: str, machine: Machine) -> None:
    assert quenra.device_path(library=library).startswith("\\\\?\\")
    machine.setPresence(1, 1, 0)
    with pytest.raises(quenra.NoControllerError, match="cannot read device_path"):
        quenra.device_path(library=library)


# ---- Writing ----


def test_set_number_writes_it(controller: quenra.Controller, machine: Machine) -> None:
    machine.allowWrites(CONTROLLER, attributes.DRIVER_SETTING_1.id)
    controller.set(attributes.DRIVER_SETTING_1, 0xFFFFFFFF)
    assert controller.driver_setting_1 == 0xFFFFFFFF
    controller.driver_setting_1 = 7
    assert controller[attributes.DRIVER_SETTING_1] == 7
    controller[attributes.DRIVER_SETTING_1] = 8
    assert controller.get(attributes.DRIVER_SETTING_1) == 8


def test_set_text_writes_it_to_both_interfaces(library: str, machine: Machine) -> None:
    machine.resizeTableStructure(0x9D, 6)
    machine.setTableByte(0x9D, 4, 1)
    for interface in (CONTROLLER, MARTEN):
        machine.setAttributeText(interface, attributes.TEXT_SETTING_OF_BOTH.id, "")
        machine.allowWrites(interface, attributes.TEXT_SETTING_OF_BOTH.id)
    with quenra.open(library=library) as controller:
        machine.clearLog()
        controller.set(attributes.TEXT_SETTING_OF_BOTH, "Prüfstand")
        log = machine.lines("log")
    assert len(log) == 2
    assert "controller#" in log[0] and "marten#" in log[1]


def test_set_refused_attribute_raises(controller: quenra.Controller, machine: Machine) -> None:
    machine.refuseWrites(CONTROLLER, attributes.DRIVER_SETTING_1.id)
    with pytest.raises(quenra.NotSupportedError, match="cannot write driver_setting_1"):
        controller.driver_setting_1 = 5


def test_set_on_the_marten_interface_without_marten_raises(
    library: str, machine: Machine
) -> None:
    machine.setPresence(1, 0, 1)
    with quenra.open(library=library) as controller:
        with pytest.raises(quenra.NoControllerError):
            controller.set(attributes.DRIVER_SETTING_1, 5, interface=Interface.MARTEN)


@pytest.mark.parametrize("number", [-1, 2**32])
def test_set_number_beyond_32_bits_raises_and_sends_nothing(
    controller: quenra.Controller, machine: Machine, number: int
) -> None:
    machine.clearLog()
    with pytest.raises(ValueError, match=f"{number} is not from 0 to 4294967295"):
        controller.set(attributes.DRIVER_SETTING_1, number)
    assert machine.lines("log") == []


def test_set_text_with_nul_raises_and_sends_nothing(
    controller: quenra.Controller, machine: Machine
) -> None:
    machine.clearLog()
    with pytest.raises(ValueError, match="contains a NUL"):
        controller.set(attributes.TEXT_SETTING_OF_BOTH, "rack\0 7")
    assert machine.lines("log") == []


def test_set_text_of_256_bytes_raises_invalid_value(controller: quenra.Controller) -> None:
    with pytest.raises(quenra.StatusError) as caught:
        controller.set(attributes.TEXT_SETTING_OF_BOTH, "x" * 256)
    assert caught.value.status is Status.INVALID_VALUE


def test_set_value_of_the_wrong_type_raises(controller: quenra.Controller) -> None:
    with pytest.raises(TypeError, match="driver_setting_1 is a number"):
        controller.set(attributes.DRIVER_SETTING_1, "5")  # type: ignore[misc]
    with pytest.raises(TypeError, match="text_setting_of_both is a text"):
        controller.set(attributes.TEXT_SETTING_OF_BOTH, 5)  # type: ignore[misc]


def test_read_only_property_cannot_be_assigned(controller: quenra.Controller) -> None:
    with pytest.raises(AttributeError):
        controller.product_name = "other"  # type: ignore[misc]


# ---- Self-test and firmware ----


def test_self_test_of_an_open_controller_succeeds(controller: quenra.Controller) -> None:
    controller.self_test()


def test_self_test_failure_raises(controller: quenra.Controller, functions: Any) -> None:
    functions["QUENRA_performSelfTest"] = lambda handle: Status.INVALID_HANDLE
    with pytest.raises(quenra.ClosedError, match="cannot perform the self-test"):
        controller.self_test()


@pytest.fixture
def updatable(
    machine: Machine, library: str, tmp_path: pathlib.Path, monkeypatch: pytest.MonkeyPatch
) -> Any:
    machine.prepareUpdates("1.2.3f4")
    monkeypatch.setenv("TMPDIR", str(tmp_path))
    with quenra.open(library=library) as controller:
        yield controller


@pytest.mark.parametrize("make", [bytes, bytearray, memoryview])
def test_update_from_bytes_sends_the_payload(
    updatable: quenra.Controller, machine: Machine, make: Any
) -> None:
    updatable.update_firmware(make(machine.image("MARTEN", size=70000)))
    (received,) = machine.lines("receivedFirmware")
    assert received.startswith("marten 70000 ")
    assert updatable.firmware_version == "0.0.0f0"


def test_update_from_a_file_sends_the_payload(
    updatable: quenra.Controller, machine: Machine, tmp_path: pathlib.Path
) -> None:
    file = tmp_path / "image.fwi"
    file.write_bytes(machine.image("BIOS", size=500))
    updatable.update_firmware(file)
    updatable.update_firmware(str(file), quenra.UpdateOption.ALL)
    assert [line.split()[:2] for line in machine.lines("receivedFirmware")] == [
        ["controller", "500"]
    ] * 2


def test_update_newer_skips_a_current_device(
    updatable: quenra.Controller, machine: Machine
) -> None:
    updatable.update_firmware(machine.image("BIOS", "1.2.3f4"), quenra.UpdateOption.NEWER)
    assert machine.lines("receivedFirmware") == []
    updatable.update_firmware(machine.image("BIOS", "1.2.3f5"), quenra.UpdateOption.NEWER)
    assert len(machine.lines("receivedFirmware")) == 1


def test_update_with_an_encrypted_drive_raises(
    updatable: quenra.Controller, machine: Machine
) -> None:
    machine.encryptDrive()
    with pytest.raises(quenra.StatusError) as caught:
        updatable.update_firmware(machine.image())
    assert caught.value.status is Status.DRIVE_PROTECTED
    assert caught.value.advice == "Suspend the protection, update, and resume it afterwards."


def test_update_of_a_machine_without_updates_raises(
    library: str, machine: Machine
) -> None:
    machine.setTableByte(0x9E, 4, 0)
    with quenra.open(library=library) as controller:
        with pytest.raises(quenra.NotSupportedError):
            controller.update_firmware(machine.image())


def test_update_with_a_damaged_image_raises(
    updatable: quenra.Controller, machine: Machine, tmp_path: pathlib.Path
) -> None:
    file = tmp_path / "damaged.fwi"
    file.write_bytes(machine.image().replace(b"CRC::", b"CRC::7"))
    with pytest.raises(quenra.StatusError, match="from '.*damaged.fwi'") as caught:
        updatable.update_firmware(file)
    assert caught.value.status is Status.INVALID_IMAGE


@pytest.mark.parametrize("content", [b"", b"PK\x03\x04 an archive"])
def test_update_with_bytes_that_are_no_image_raises_and_sends_nothing(
    updatable: quenra.Controller, machine: Machine, content: bytes
) -> None:
    machine.clearLog()
    with pytest.raises(ValueError, match="not a firmware image"):
        updatable.update_firmware(content)
    assert machine.lines("log") == []


def test_update_with_an_unknown_option_raises(
    updatable: quenra.Controller, machine: Machine
) -> None:
    with pytest.raises(ValueError, match="2 is not a valid UpdateOption"):
        updatable.update_firmware(machine.image(), 2)  # type: ignore[arg-type]


def test_update_from_a_missing_file_raises_os_error(
    updatable: quenra.Controller, tmp_path: pathlib.Path
) -> None:
    with pytest.raises(FileNotFoundError):
        updatable.update_firmware(tmp_path / "missing.fwi")


# ---- Threads ----


def test_threads_read_their_own_answers(controller: quenra.Controller, machine: Machine) -> None:
    fans = [
        quenra.Attribute(name="fan", constant="", id=0x20200000 + 256 * i, type=int, documentation="")
        for i in range(8)
    ]
    for number, fan in enumerate(fans):
        machine.setAttributeU32(MARTEN, fan.id, 1000 + number)

    def read(number: int) -> bool:
        return all(controller.get(fans[number]) == 1000 + number for _ in range(200))

    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        assert all(pool.map(read, range(8)))


def test_threads_open_and_close_balanced(library: str, machine: Machine) -> None:
    def round_trips(_: int) -> bool:
        for _ in range(50):
            with quenra.open(library=library) as controller:
                assert controller.product_name == "BW-8135"
        return True

    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        assert all(pool.map(round_trips, range(8)))
    assert machine.lines("openObjects") == []


def test_close_during_a_call_waits_for_its_end(
    library: str, machine: Machine, functions: Any
) -> None:
    entered, finish = threading.Event(), threading.Event()
    self_test = functions["QUENRA_performSelfTest"]

    def slow(handle: int) -> Any:
        entered.set()
        assert finish.wait(30)
        return self_test(handle)

    functions["QUENRA_performSelfTest"] = slow
    controller = quenra.open(library=library)
    with concurrent.futures.ThreadPoolExecutor(1) as pool:
        running = pool.submit(controller.self_test)
        assert entered.wait(30)
        controller.close()
        assert controller.closed
        assert machine.lines("openObjects") != []
        with pytest.raises(quenra.ClosedError):
            controller.product_name
        finish.set()
        running.result(30)
    assert machine.lines("openObjects") == []


def test_no_warning_without_cause(library: str) -> None:
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        with quenra.open(library=library) as controller:
            controller.read_all()
