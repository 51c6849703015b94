// Promises of Quenra.Controller.

using System;
using System.Collections.Generic;
using System.Linq;
using System.Text;
using System.Threading;
using System.Threading.Tasks;

namespace Quenra.Tests
{
    internal static class Controllers
    {
        // Byte 5 of System Information (type 1): the product name.
        private const byte systemInformation = 1;
        private const byte productName = 5;

        // ---- Open and close ----

        public static void Open_NoController_ReportsCodeConstantCauseAndAdvice()
        {
            Fake.SetPresence(0, 0, 0);
            QuenraException failure = Assert.Fails(Status.NoController, () => Controller.Open());
            Assert.Equal(-26932, failure.Code);
            Assert.Equal("QUENRA_STATUS_NO_CONTROLLER", failure.Constant);
            Assert.Equal(StatusText.Of(-26932).Cause, failure.Cause);
            Assert.Equal(StatusText.Of(-26932).Remedy, failure.Advice);
            Assert.Equal("opening the controller", failure.Operation);
            Assert.Contains("opening the controller failed: No controller could be reached", failure.Message);
            Assert.Contains("(QUENRA_STATUS_NO_CONTROLLER, -26932). Check in the system", failure.Message);
            Assert.Equal(null, failure.Details);
        }

        public static void Open_AfterAFailure_Succeeds()
        {
            Fake.SetPresence(0, 0, 0);
            Assert.Fails(Status.NoController, () => Controller.Open());
            Fake.SetPresence(1, 1, 1);
            using (Controller controller = Controller.Open())
            {
                controller.SelfTest();
            }
        }

        public static void Open_TwoControllers_ReportsGenericFailure()
        {
            Fake.SetPresence(2, 0, 0);
            Assert.Fails(Status.GenericFailure, () => Controller.Open());
        }

        public static void Open_AccessDenied_ReportsTheCodeOfWindows()
        {
            Fake.FailCall("CreateFileA", 1, 5);
            Assert.Fails(Status.AccessDenied, () => Controller.Open());
        }

        public static void Open_In32BitProcess_NamesTheRemedy()
        {
            Platform.RequirePointerSize(8);
            var failure = Assert.Throws<PlatformNotSupportedException>(() => Platform.RequirePointerSize(4));
            Assert.Contains("32-bit", failure.Message);
            Assert.Contains("x64", failure.Message);
        }

        public static void Dispose_OneOfTwo_LeavesTheOtherOpen()
        {
            Controller first = Controller.Open();
            Controller second = Controller.Open();
            first.Dispose();
            first.Dispose();
            first.Dispose();
            Assert.Equal("BW-8135", second.Get(Attributes.ProductName));
            second.Dispose();
            Assert.Equal(0, Fake.OpenObjects().Length);
        }

        public static void Dispose_ThenAnyMember_ThrowsObjectDisposed()
        {
            Controller controller = Controller.Open();
            controller.Dispose();
            string text;
            uint value;
            var calls = new Action[]
            {
                () => controller.Get(Attributes.ProductName), () => controller.Get(Attributes.MemorySize),
                () => controller.TryGet(Attributes.ProductName, out text),
                () => controller.TryGet(Attributes.MemorySize, out value),
                () => controller.Set(Attributes.TextSettingOfBoth, "x"),
                () => controller.Set(Attributes.DriverSetting1, 1), () => controller.GetSigned(0x30000000),
                () => controller.GetFloatingPoint(0x40000000), () => controller.SelfTest(),
                () => controller.UpdateFirmware(new byte[1]),
                () => controller.UpdateFirmware(new byte[1], UpdateOptions.Newer),
                () => controller.OpenRoutingSession()
            };
            foreach (Action call in calls)
            {
                Assert.Equal("Controller", Assert.Throws<ObjectDisposedException>(call).ObjectName);
            }
        }

        public static void Finalizer_ForgottenController_ClosesIt()
        {
            Collector.Forget(() => Controller.Open().SelfTest());
            Assert.Equal(0, Fake.OpenObjects().Length);
        }

        public static void Finalizer_ForgottenController_LeavesTheOtherOpen()
        {
            using (Controller controller = Controller.Open())
            {
                Collector.Forget(() => Controller.Open().SelfTest());
                controller.SelfTest();
            }
        }

        public static void Dispose_DuringCallsOfOtherThreads_ClosesOnceAfterThem()
        {
            for (int round = 0; round < 20; ++round)
            {
                Controller controller = Controller.Open();
                int reads = 0;
                Exception unexpected = null;
                var readers = new List<Thread>();
                for (int i = 0; i < 3; ++i)
                {
                    var reader = new Thread(() =>
                    {
                        try
                        {
                            while (true)
                            {
                                controller.Get(Attributes.ProductName);
                                Interlocked.Increment(ref reads);
                            }
                        }
                        catch (ObjectDisposedException)
                        {
                        }
                        catch (Exception failure)
                        {
                            unexpected = failure;
                        }
                    });
                    reader.Start();
                    readers.Add(reader);
                }
                Assert.Eventually(() => Volatile.Read(ref reads) > 30 || unexpected != null, "nothing was read");
                controller.Dispose();
                readers.ForEach(reader => reader.Join());
                Assert.Equal(null, unexpected);
                Assert.Equal(0, Fake.OpenObjects().Length);
            }
        }

        // ---- Device path ----

        public static void DevicePath_NoOpenController_IsRead()
        {
            Assert.Contains("quenra_devicepath", Controller.DevicePath);
        }

        public static void DevicePath_NoDevice_ReportsNoController()
        {
            Fake.SetPresence(1, 1, 0);
            QuenraException failure = Assert.Fails(Status.NoController, () => Controller.DevicePath.ToString());
            Assert.Contains("reading device-path (0x18000100) failed", failure.Message);
        }

        // ---- Reading ----

        public static void Get_EachAttribute_ReturnsAValueOfItsType()
        {
            using (Controller controller = Controller.Open())
            {
                int texts = 0;
                int numbers = 0;
                foreach (ControllerAttribute attribute in Attributes.All.Where(each => each.IsReadable))
                {
                    var text = attribute as TextAttribute;
                    if (text != null)
                    {
                        Assert.True(controller.Get(text).Length > 0, attribute + " is empty");
                        ++texts;
                    }
                    else
                    {
                        controller.Get((UnsignedAttribute)attribute);
                        ++numbers;
                    }
                }
                Assert.Equal(23, texts);
                Assert.Equal(27, numbers);
            }
        }

        public static void Get_Instance_ReadsThatInstance()
        {
            using (Controller controller = Controller.Open())
            {
                Assert.Equal("DIMM 0", controller.Get(Attributes.MemoryLocator));
                Assert.Equal("DIMM 2", controller.Get(Attributes.MemoryLocator, 1));
                Assert.Equal(8192u, controller.Get(Attributes.MemorySize));
                Assert.True(controller.Get(Attributes.MemorySize, 1) != 0, "the second module has no size");
                QuenraException failure =
                    Assert.Fails(Status.NotSupported, () => controller.Get(Attributes.MemorySize, 200));
                Assert.Contains("reading memory-size[200] (0x2000D0C8) failed", failure.Message);
            }
        }

        public static void Get_InstanceOutsideOfAByte_ThrowsArgumentOutOfRange()
        {
            using (Controller controller = Controller.Open())
            {
                Assert.Throws<ArgumentOutOfRangeException>(() => controller.Get(Attributes.MemorySize, 256));
                Assert.Throws<ArgumentOutOfRangeException>(() => controller.Get(Attributes.MemoryLocator, -1));
            }
        }

        public static void Get_NullAttribute_ThrowsArgumentNull()
        {
            using (Controller controller = Controller.Open())
            {
                Assert.Throws<ArgumentNullException>(() => controller.Get((TextAttribute)null));
                Assert.Throws<ArgumentNullException>(() => controller.Get((UnsignedAttribute)null));
            }
        }

        public static void Get_Selector_ReadsThatInterface()
        {
            Fake.SetAttribute(Device.Marten, Attributes.FirmwareVersion, "9.8.7f6");
            Fake.SetTableText(0, 5, "2.3.4f5");
            using (Controller controller = Controller.Open())
            {
                Assert.Equal("9.8.7f6", controller.Get(Attributes.FirmwareVersion, 0, Selector.Marten));
                Assert.Equal("2.3.4f5", controller.Get(Attributes.FirmwareVersion, 0, Selector.Controller));
            }
        }

        public static void Get_MartenNotPresent_ReportsNoControllerAndTheSelector()
        {
            Fake.SetPresence(1, 0, 1);
            using (Controller controller = Controller.Open())
            {
                string text;
                QuenraException failure = Assert.Fails(
                    Status.NoController, () => controller.TryGet(Attributes.FirmwareVersion, out text, 0, Selector.Marten));
                Assert.Contains("reading firmware-version of Marten (0x10200400)", failure.Message);
            }
        }

        public static void Get_TextOfUtf8_IsDecoded()
        {
            Fake.SetTableText(systemInformation, productName, "Prüfstand ☂ 𝄞");
            using (Controller controller = Controller.Open())
            {
                Assert.Equal("Prüfstand ☂ 𝄞", controller.Get(Attributes.ProductName));
            }
        }

        public static void Get_TextThatIsNotUtf8_HasReplacementCharacters()
        {
            Fake.SetTableText(systemInformation, productName, new byte[] { 0x41, 0xFF, 0x42, 0 });
            using (Controller controller = Controller.Open())
            {
                Assert.Equal("A\uFFFDB", controller.Get(Attributes.ProductName));
            }
        }

        // The driver's text ends in the last byte that fits the buffer, one before and one after it.
        public static void Get_TextOfAnyLength_IsComplete()
        {
            using (Controller controller = Controller.Open())
            {
                foreach (int length in new[] { 0, 1, 127, 254, 255 })
                {
                    string text = new string('v', length);
                    Fake.SetAttribute(Device.Marten, Attributes.FirmwareVersion, text);
                    Assert.Equal(text, controller.Get(Attributes.FirmwareVersion, 0, Selector.Marten));
                }
            }
        }

        public static void ReadText_TextThatGrowsBetweenTwoCalls_IsComplete()
        {
            var sizes = new List<ulong>();
            byte[] text;
            int code = Controller.ReadText((byte[] buffer, ref ulong size) =>
            {
                sizes.Add(size);
                Assert.Equal((ulong)buffer.LongLength, size);
                Assert.Equal(0, buffer[0]);
                size += sizes.Count == 1 ? 1000ul : 1ul;
                return sizes.Count == 3 ? 0 : (int)Status.BufferTooSmall;
            }, () => "reading", out text);
            Assert.Equal(0, code);
            Assert.Sequence(new ulong[] { 256, 1256, 1257 }, sizes);
            Assert.Equal(1257, text.Length);
        }

        public static void ReadText_ImplausibleSize_ThrowsInsteadOfRepeating()
        {
            foreach (ulong needed in new ulong[] { 0, 256, int.MaxValue + 1ul, ulong.MaxValue })
            {
                int calls = 0;
                byte[] text;
                QuenraException failure = Assert.Fails(Status.BufferTooSmall, () => Controller.ReadText(
                    (byte[] buffer, ref ulong size) =>
                    {
                        ++calls;
                        size = needed;
                        return (int)Status.BufferTooSmall;
                    }, () => "reading a text", out text));
                Assert.Contains("reading a text failed", failure.Message);
                Assert.Equal(1, calls);
            }
        }

        public static void Get_TextOfAMalformedField_IsEmpty()
        {
            // A text of more than 128 characters.
            Fake.SetTableText(systemInformation, 4, new string('x', 200));
            using (Controller controller = Controller.Open())
            {
                Assert.Equal("", controller.Get(Attributes.SystemManufacturer));
            }
        }

        public static void TryGet_AttributeOfTheMachine_ReturnsIt()
        {
            using (Controller controller = Controller.Open())
            {
                string text;
                uint value;
                Assert.True(controller.TryGet(Attributes.MemoryLocator, out text, 1), "the locator is missing");
                Assert.Equal("DIMM 2", text);
                Assert.True(controller.TryGet(Attributes.MemorySize, out value), "the size is missing");
                Assert.Equal(8192u, value);
            }
        }

        public static void TryGet_AttributeThatTheMachineLacks_ReturnsFalse()
        {
            Fake.SetTableText(systemInformation, 7, "Not Applicable");
            using (Controller controller = Controller.Open())
            {
                string text = "old";
                uint value = 7;
                Assert.True(!controller.TryGet(Attributes.SerialNumber, out text), "a serial number was found");
                Assert.Equal(null, text);
                // The library stores the value of instance 0 although it refuses the instance.
                Assert.True(!controller.TryGet(Attributes.MemoryModuleCount, out value, 1), "a second count was found");
                Assert.Equal(0u, value);
            }
        }

        public static void GetSigned_AnyId_IsNotSupported()
        {
            using (Controller controller = Controller.Open())
            {
                QuenraException failure = Assert.Fails(Status.NotSupported, () => controller.GetSigned(0x30000100));
                Assert.Contains("reading attribute 0x30000100 failed", failure.Message);
                Assert.Fails(Status.NotSupported, () => controller.GetFloatingPoint(0x40000100));
            }
        }

        public static void GetById_EqualsGetByAttribute()
        {
            using (Controller controller = Controller.Open())
            {
                Assert.Equal(controller.Get(Attributes.ProductName), controller.GetText(0x10000100));
                Assert.Equal(controller.Get(Attributes.MemorySize, 1), controller.GetUnsigned(0x2000D001));
                Assert.Equal(Controller.DevicePath, controller.GetText(Attributes.DevicePath.Id));
            }
        }

        public static void Get_CodeOfTheDriver_IsReportedUnchanged()
        {
            using (Controller controller = Controller.Open())
            {
                Fake.AnswerRequests(Device.Controller, 0, 1, -7654321);
                var failure = Assert.Throws<QuenraException>(() => controller.Get(Attributes.DriverSetting1));
                Assert.Equal(-7654321, failure.Code);
                Assert.Equal(null, failure.Constant);
                Assert.Contains("reading driver-setting-1 (0x20044C00) failed: A failure that the library does not " +
                                "define; it is returned as the driver reported it (-7654321). Look the code up",
                                failure.Message);
            }
        }

        public static void Get_WarningOfTheDriver_ReturnsTheValueAndRaisesWarned()
        {
            using (Controller controller = Controller.Open())
            {
                var warnings = new List<string>();
                controller.Warned += (sender, warning) =>
                {
                    Assert.Equal((object)controller, sender);
                    warnings.Add(warning.Operation + ": " + warning.Code + " " + warning.Cause);
                };
                Assert.Equal((Status)0, controller.LastWarning);
                Fake.AnswerRequests(Device.Controller, 0, 1, 7654321);
                Assert.Equal(5u, controller.Get(Attributes.DriverSetting1));
                Assert.Equal(5u, controller.Get(Attributes.DriverSetting1));
                Assert.Sequence(new[]
                {
                    "reading driver-setting-1 (0x20044C00): 7654321 A warning that the library does not define; it is " +
                    "returned as the driver reported it."
                }, warnings);
                Assert.Equal((Status)7654321, controller.LastWarning);
            }
        }

        public static void Open_WarningOfTheDriver_IsTheLastWarning()
        {
            Fake.AnswerRequests(Device.Controller, 1, 1, 7654321);
            using (Controller controller = Controller.Open())
            {
                Assert.Equal((Status)7654321, controller.LastWarning);
                Assert.Equal("BW-8135", controller.Get(Attributes.ProductName));
            }
        }

        public static void Get_OnSeveralThreads_ReturnsTheSame()
        {
            using (Controller controller = Controller.Open())
            {
                Parallel.For(0, 2000, i =>
                {
                    using (Controller another = Controller.Open())
                    {
                        Assert.Equal("DIMM 2", another.Get(Attributes.MemoryLocator, 1));
                        Assert.Equal(5u, controller.Get(Attributes.DriverSetting1));
                    }
                });
            }
        }

        // ---- Writing ----

        public static void Set_Unsigned_WritesTheValue()
        {
            Fake.AllowWrites(Device.Controller, Attributes.DriverSetting1);
            using (Controller controller = Controller.Open())
            {
                controller.Set(Attributes.DriverSetting1, 0xFFFFFFFE);
                Assert.Equal(0xFFFFFFFEu, controller.Get(Attributes.DriverSetting1));
                controller.SetUnsigned(Attributes.DriverSetting1.Id, 3);
                Assert.Equal(3u, controller.Get(Attributes.DriverSetting1));
            }
        }

        public static void Set_UnsignedOfMarten_WritesToTheMarten()
        {
            Fake.SetAttribute(Device.Marten, Attributes.DriverSetting1, 1u);
            Fake.AllowWrites(Device.Marten, Attributes.DriverSetting1);
            using (Controller controller = Controller.Open())
            {
                controller.Set(Attributes.DriverSetting1, 77, Selector.Marten);
                Assert.Equal(77u, controller.Get(Attributes.DriverSetting1, 0, Selector.Marten));
                Assert.Equal(5u, controller.Get(Attributes.DriverSetting1, 0, Selector.Controller));
            }
        }

        public static void Set_RefusedByTheDriver_ReportsIt()
        {
            Fake.RefuseWrites(Device.Controller, Attributes.DriverSetting1);
            using (Controller controller = Controller.Open())
            {
                QuenraException failure =
                    Assert.Fails(Status.NotSupported, () => controller.Set(Attributes.DriverSetting1, 1));
                Assert.Contains("writing driver-setting-1 (0x20044C00) failed", failure.Message);
            }
        }

        public static void Set_Text_SendsUtf8ToBothInterfaces()
        {
            const string text = "Maß ☂";
            Fake.PermitTextSettings();
            foreach (Device device in new[] { Device.Controller, Device.Marten })
            {
                Fake.SetAttribute(device, Attributes.TextSettingOfBoth, "");
                Fake.AllowWrites(device, Attributes.TextSettingOfBoth);
            }
            using (Controller controller = Controller.Open())
            {
                Fake.ClearLog();
                controller.Set(Attributes.TextSettingOfBoth, text);
                string[] writes = Fake.Log().Where(line => line.Contains("set-attribute")).ToArray();
                Assert.Equal(2, writes.Length);
                // With its NUL.
                string size = "size=" + (Encoding.UTF8.GetByteCount(text) + 1) + " ";
                Assert.Contains("controller#", writes[0]);
                Assert.Contains(size, writes[0]);
                Assert.Contains("marten#", writes[1]);
                Assert.Contains(size, writes[1]);
            }
        }

        public static void Set_TextOfMarten_SendsItToTheMartenAlone()
        {
            Fake.SetAttribute(Device.Marten, Attributes.TextSettingOfBoth, "");
            Fake.AllowWrites(Device.Marten, Attributes.TextSettingOfBoth);
            using (Controller controller = Controller.Open())
            {
                Fake.ClearLog();
                controller.Set(Attributes.TextSettingOfBoth, "x", Selector.Marten);
                string[] writes = Fake.Log().Where(line => line.Contains("set-attribute")).ToArray();
                Assert.Equal(1, writes.Length);
                Assert.Contains("marten#", writes[0]);
            }
        }

        public static void Set_TextOfMoreThan255Bytes_IsAnInvalidValue()
        {
            Fake.PermitTextSettings();
            Fake.SetAttribute(Device.Controller, Attributes.TextSettingOfBoth, "");
            Fake.AllowWrites(Device.Controller, Attributes.TextSettingOfBoth);
            using (Controller controller = Controller.Open())
            {
                Assert.Equal(255, Controller.MaxTextSettingLength);
                controller.Set(Attributes.TextSettingOfBoth, new string('x', 255));
                Assert.Fails(Status.InvalidValue,
                             () => controller.Set(Attributes.TextSettingOfBoth, new string('x', 256)));
                Assert.Fails(Status.InvalidValue,
                             () => controller.Set(Attributes.TextSettingOfBoth, new string('ä', 128)));
            }
        }

        public static void Set_TextThatCannotBePassed_ThrowsArgumentException()
        {
            using (Controller controller = Controller.Open())
            {
                Fake.ClearLog();
                Assert.Throws<ArgumentNullException>(() => controller.Set(Attributes.TextSettingOfBoth, null));
                var nul = Assert.Throws<ArgumentException>(() => controller.Set(Attributes.TextSettingOfBoth, "ab\0c"));
                Assert.Contains("NUL at position 2", nul.Message);
                var half = Assert.Throws<ArgumentException>(
                    () => controller.Set(Attributes.TextSettingOfBoth, "abc\uD800"));
                Assert.Contains("position 3", half.Message);
                Assert.Equal(0, Fake.Log().Length);
            }
        }

        // ---- Self-test and firmware ----

        public static void SelfTest_OpenController_Succeeds()
        {
            using (Controller controller = Controller.Open())
            {
                controller.SelfTest();
            }
        }

        public static void UpdateFirmware_Image_ReachesTheDevice()
        {
            Fake.PrepareUpdates("1.2.3f4");
            byte[] image = Fake.FirmwareImage("MARTEN", "1.0.0f0", 1000);
            using (Controller controller = Controller.Open())
            {
                controller.UpdateFirmware(image);
                Assert.Equal(1, Fake.ReceivedFirmware().Length);
                Assert.Contains("marten 1000 ", Fake.ReceivedFirmware()[0]);
            }
        }

        public static void UpdateFirmware_OlderImage_IsAppliedWithAllAndSkippedWithNewer()
        {
            Fake.PrepareUpdates("1.2.3f4");
            byte[] image = Fake.FirmwareImage("BIOS", "1.0.0f0", 500);
            using (Controller controller = Controller.Open())
            {
                controller.UpdateFirmware(image, UpdateOptions.Newer);
                Assert.Equal(0, Fake.ReceivedFirmware().Length);
                controller.UpdateFirmware(image, UpdateOptions.All);
                Assert.Equal(1, Fake.ReceivedFirmware().Length);
            }
        }

        public static void UpdateFirmware_LargeImage_ReachesTheDeviceUnchanged()
        {
            Fake.PrepareUpdates("1.2.3f4");
            byte[] image = Fake.FirmwareImage("MARTEN", "2.0.0f0", 3000000);
            using (Controller controller = Controller.Open())
            {
                controller.UpdateFirmware(image, UpdateOptions.Newer);
                Assert.Contains("marten 3000000 ", Fake.ReceivedFirmware()[0]);
            }
        }

        public static void UpdateFirmware_UnknownOptions_IsAnInvalidValue()
        {
            Fake.PrepareUpdates("1.2.3f4");
            using (Controller controller = Controller.Open())
            {
                QuenraException failure = Assert.Fails(
                    Status.InvalidValue, () => controller.UpdateFirmware(new byte[0], (UpdateOptions)2));
                Assert.Contains("the firmware update failed", failure.Message);
            }
        }

        public static void UpdateFirmware_EmptyImage_Succeeds()
        {
            Fake.PrepareUpdates("1.2.3f4");
            using (Controller controller = Controller.Open())
            {
                controller.UpdateFirmware(new byte[0]);
                Assert.Equal(0, Fake.ReceivedFirmware().Length);
            }
        }

        public static void UpdateFirmware_RefusedUpdates_ReportTheReason()
        {
            Fake.PrepareUpdates("1.2.3f4");
            byte[] image = Fake.FirmwareImage("MARTEN", "2.0.0f0", 100);
            using (Controller controller = Controller.Open())
            {
                Assert.Throws<ArgumentNullException>(() => controller.UpdateFirmware(null));
                Assert.Throws<ArgumentNullException>(() => controller.UpdateFirmware(null, UpdateOptions.All));
                byte[] cut = image.Take(image.Length - 20).ToArray();
                Assert.Fails(Status.InvalidImage, () => controller.UpdateFirmware(cut));
                Fake.EncryptDrive();
                Assert.Fails(Status.DriveProtected, () => controller.UpdateFirmware(image));
                Assert.Equal(0, Fake.ReceivedFirmware().Length);
            }
        }

        public static void UpdateFirmwareAsync_Image_ReachesTheDevice()
        {
            Fake.PrepareUpdates("1.2.3f4");
            byte[] image = Fake.FirmwareImage("MARTEN", "2.0.0f0", 1000);
            using (Controller controller = Controller.Open())
            {
                controller.UpdateFirmwareAsync(image, UpdateOptions.Newer).Wait();
                Assert.Contains("marten 1000 ", Fake.ReceivedFirmware()[0]);
            }
        }

        public static void UpdateFirmwareAsync_Failure_FailsTheTask()
        {
            Fake.PrepareUpdates("1.2.3f4");
            Fake.EncryptDrive();
            using (Controller controller = Controller.Open())
            {
                Task update = controller.UpdateFirmwareAsync(new byte[1], UpdateOptions.All);
                var failure = Assert.Throws<AggregateException>(() => update.Wait());
                Assert.Equal(Status.DriveProtected, ((QuenraException)failure.InnerException).Status);
                Assert.Throws<ArgumentNullException>(() => controller.UpdateFirmwareAsync(null, UpdateOptions.All));
            }
        }

        public static void UpdateFirmware_SingleThreadedApartment_RunsOnAnotherThread()
        {
            int own = 0;
            int used = 0;
            int usedByFailing = 0;
            Exception failure = null;
            var thread = new Thread(() =>
            {
                own = Thread.CurrentThread.ManagedThreadId;
                Assert.Equal(41, Apartment.CallOutsideSingleThreaded(() =>
                {
                    used = Thread.CurrentThread.ManagedThreadId;
                    return 41;
                }));
                failure = Failure.Of(() => Apartment.CallOutsideSingleThreaded(() =>
                {
                    usedByFailing = Thread.CurrentThread.ManagedThreadId;
                    throw new ObjectDisposedException("controller");
                }));
            });
            thread.SetApartmentState(ApartmentState.STA);
            thread.Start();
            thread.Join();
            Assert.True(used != 0 && used != own, "the call ran in the single-threaded apartment");
            Assert.True(usedByFailing != 0 && usedByFailing != own, "the failing call ran in the apartment");
            Assert.Equal(typeof(ObjectDisposedException), failure.GetType());
            int here = 0;
            Apartment.CallOutsideSingleThreaded(() => here = Thread.CurrentThread.ManagedThreadId);
            Assert.Equal(Thread.CurrentThread.ManagedThreadId, here);
        }
    }
}
