// The functions of tests/nativelibrary with which a test arranges the machine.

using System;
using System.Runtime.InteropServices;
using System.Text;

namespace Quenra.Tests
{
    internal enum Device : uint
    {
        Controller = 1,
        Marten = 2,
        Router = 3
    }

    internal static class Fake
    {
        internal static void Reset()
        {
            Require(fakequenra_reset());
        }

        internal static void SetPresence(uint controllers, uint martens, uint devicePaths)
        {
            Require(fakequenra_setPresence(controllers, martens, devicePaths));
        }

        internal static void SetTableText(byte type, byte offset, byte[] text)
        {
            Require(fakequenra_setTableText(type, offset, text));
        }

        internal static void SetTableText(byte type, byte offset, string text)
        {
            SetTableText(type, offset, Bytes(text));
        }

        internal static void SetTableByte(byte type, byte offset, byte value)
        {
            Require(fakequenra_setTableByte(type, offset, value));
        }

        internal static void PermitTextSettings()
        {
            Require(fakequenra_resizeTableStructure(0x9D, 6));
            SetTableByte(0x9D, 4, 1);
        }

        internal static void SetAttribute(Device device, ControllerAttribute attribute, uint value)
        {
            Require(fakequenra_setAttributeU32(device, attribute.Id, value));
        }

        internal static void SetAttribute(Device device, ControllerAttribute attribute, string text)
        {
            Require(fakequenra_setAttributeText(device, attribute.Id, Bytes(text)));
        }

        internal static void AllowWrites(Device device, ControllerAttribute attribute)
        {
            Require(fakequenra_allowWrites(device, attribute.Id));
        }

        internal static void RefuseWrites(Device device, ControllerAttribute attribute)
        {
            Require(fakequenra_refuseWrites(device, attribute.Id));
        }

        internal static void PrepareUpdates(string version)
        {
            Require(fakequenra_prepareUpdates(Bytes(version)));
        }

        internal static void EncryptDrive()
        {
            Require(fakequenra_encryptDrive());
        }

        internal static byte[] FirmwareImage(string device, string version, uint payloadSize)
        {
            byte[] text = Read((buffer, size) => fakequenra_firmwareImage(Bytes(device), Bytes(version), payloadSize,
                                                                         buffer, size));
            Array.Resize(ref text, text.Length - 1);
            return text;
        }

        internal static string[] ReceivedFirmware()
        {
            return Lines(fakequenra_receivedFirmware);
        }

        internal static void FailCall(string function, uint nth, uint error)
        {
            Require(fakequenra_failCall(Bytes(function), nth, error));
        }

        internal static void AnswerRequests(Device device, uint skip, uint times, int code)
        {
            Require(fakequenra_answerRequests(device, 0, skip, times, code));
        }

        internal static void DemoteRoute(uint ticket)
        {
            Require(fakequenra_demoteRoute(ticket));
        }

        internal static void SetPathLength(uint length)
        {
            Require(fakequenra_setPathLength(length));
        }

        // The driver's routes: "7 programmed".
        internal static string[] Routes()
        {
            return Lines(fakequenra_routes);
        }

        internal static string[] Log()
        {
            return Lines(fakequenra_log);
        }

        internal static void ClearLog()
        {
            Require(fakequenra_clearLog());
        }

        internal static string[] OpenObjects()
        {
            return Lines(fakequenra_openObjects);
        }

        internal static void RequireEverythingReleased()
        {
            Collector.Run();
            Assert.Eventually(() => OpenObjects().Length == 0 && Routes().Length == 0,
                              "the library has not released everything");
        }

        private delegate ulong Reader(byte[] buffer, ulong size);

        private static byte[] Read(Reader read)
        {
            ulong size = read(null, 0);
            while (true)
            {
                var buffer = new byte[size];
                ulong needed = read(buffer, size);
                if (needed == 0)
                {
                    throw new AssertionException(LastError());
                }
                if (needed <= size)
                {
                    Array.Resize(ref buffer, (int)needed);
                    return buffer;
                }
                size = needed;
            }
        }

        private static string[] Lines(Reader read)
        {
            byte[] text = Read(read);
            return Encoding.UTF8.GetString(text, 0, text.Length - 1)
                           .Split(new[] { '\n' }, StringSplitOptions.RemoveEmptyEntries);
        }

        private static byte[] Bytes(string text)
        {
            return Encoding.UTF8.GetBytes(text + "\0");
        }

        private static string LastError()
        {
            return Marshal.PtrToStringAnsi(fakequenra_lastError());
        }

        private static void Require(int result)
        {
            if (result != 0)
            {
                throw new AssertionException("arranging the machine failed: " + LastError());
            }
        }

        private const string library = "quenra";

        [DllImport(library)]
        private static extern IntPtr fakequenra_lastError();
        [DllImport(library)]
        private static extern int fakequenra_reset();
        [DllImport(library)]
        private static extern int fakequenra_setPresence(uint controllers, uint martens, uint devicePaths);
        [DllImport(library)]
        private static extern int fakequenra_setTableText(byte type, byte offset, byte[] text);
        [DllImport(library)]
        private static extern int fakequenra_setTableByte(byte type, byte offset, byte value);
        [DllImport(library)]
        private static extern int fakequenra_resizeTableStructure(byte type, byte length);
        [DllImport(library)]
        private static extern int fakequenra_setAttributeU32(Device device, uint attribute, uint value);
        [DllImport(library)]
        private static extern int fakequenra_setAttributeText(Device device, uint attribute, byte[] text);
        [DllImport(library)]
        private static extern int fakequenra_allowWrites(Device device, uint attribute);
        [DllImport(library)]
        private static extern int fakequenra_refuseWrites(Device device, uint attribute);
        [DllImport(library)]
        private static extern int fakequenra_prepareUpdates(byte[] version);
        [DllImport(library)]
        private static extern int fakequenra_encryptDrive();
        [DllImport(library)]
        private static extern ulong fakequenra_firmwareImage(byte[] device, byte[] version, uint payloadSize,
                                                             [In, Out] byte[] buffer, ulong size);
        [DllImport(library)]
        private static extern ulong fakequenra_receivedFirmware([In, Out] byte[] buffer, ulong size);
        [DllImport(library)]
        private static extern int fakequenra_failCall(byte[] function, uint nth, uint error);
        [DllImport(library)]
        private static extern int fakequenra_answerRequests(Device device, uint requestCode, uint skip, uint times,
                                                            int code);
        [DllImport(library)]
        private static extern int fakequenra_demoteRoute(uint ticket);
        [DllImport(library)]
        private static extern int fakequenra_setPathLength(uint length);
        [DllImport(library)]
        private static extern ulong fakequenra_routes([In, Out] byte[] buffer, ulong size);
        [DllImport(library)]
        private static extern ulong fakequenra_log([In, Out] byte[] buffer, ulong size);
        [DllImport(library)]
        private static extern int fakequenra_clearLog();
        [DllImport(library)]
        private static extern ulong fakequenra_openObjects([In, Out] byte[] buffer, ulong size);
    }
}
