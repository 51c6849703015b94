// The declarations of Quenra.cs equal those of the headers: functions, their parameters, structures and
// constants.

using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Text.RegularExpressions;

namespace Quenra.Tests
{
    internal static class Declarations
    {
        internal static string SourceFolder { private get; set; }

        // Lines "NAME NUMBER", which layout.sh lets the C compiler print.
        internal static string LayoutFile { private get; set; }

        public static void Imports_EqualTheExportsOfTheLibrary()
        {
            IEnumerable<string> exports =
                File.ReadAllLines(Path.Combine(SourceFolder, "source/user/quenra.def"))
                    .Where(line => Regex.IsMatch(line, "^  [A-Za-z_0-9]+$")).Select(line => line.Trim());
            Assert.Sequence(exports.OrderBy(name => name, StringComparer.Ordinal),
                            Imports().Select(import => import.Name).Distinct()
                                     .OrderBy(name => name, StringComparer.Ordinal));
            Assert.Equal(33, exports.Count());
        }

        public static void Imports_HaveTheParametersOfTheHeaders()
        {
            Dictionary<string, string[]> prototypes = Prototypes();
            foreach (MethodInfo import in Imports())
            {
                string[] expected = prototypes[import.Name];
                IEnumerable<Type> actual =
                    new[] { import.ReturnType }.Concat(import.GetParameters().Select(each => each.ParameterType));
                Assert.Equal(expected.Length, actual.Count());
                foreach (var pair in expected.Zip(actual, (native, managed) => new { native, managed }))
                {
                    Assert.True(Fits(pair.native, pair.managed),
                                import.Name + ": " + pair.managed + " for '" + pair.native + "'");
                }
            }
        }

        public static void Imports_UseTheCallingConventionOfC()
        {
            foreach (MethodInfo import in Imports())
            {
                var declaration = import.GetCustomAttribute<DllImportAttribute>();
                Assert.Equal("quenra", declaration.Value);
                Assert.Equal(CallingConvention.Cdecl, declaration.CallingConvention);
                Assert.True(declaration.ExactSpelling && !declaration.SetLastError, import.Name);
                Assert.Equal(import.ReturnType == typeof(bool),
                             import.ReturnParameter.GetCustomAttribute<MarshalAsAttribute>()?.Value ==
                             UnmanagedType.I1);
            }
        }

        public static void Callbacks_UseTheCallingConventionOfC()
        {
            Type[] callbacks = typeof(NativeMethods).GetNestedTypes(BindingFlags.NonPublic);
            Assert.Equal(3, callbacks.Length);
            foreach (Type callback in callbacks)
            {
                Assert.Equal(CallingConvention.Cdecl,
                             callback.GetCustomAttribute<UnmanagedFunctionPointerAttribute>().CallingConvention);
                MethodInfo invoke = callback.GetMethod("Invoke");
                Assert.Equal(invoke.ReturnType == typeof(bool),
                             invoke.ReturnParameter.GetCustomAttribute<MarshalAsAttribute>()?.Value ==
                             UnmanagedType.I1);
            }
        }

        public static void StatusRecord_HasTheLayoutOfTheCompiler()
        {
            Dictionary<string, long> layout = Layout();
            Assert.Equal(layout["sizeof zoerr_Status"], Marshal.SizeOf(typeof(StatusRecord)));
            var fields = new Dictionary<string, string>
            {
                { "code", "Code" }, { "capacity", "Capacity" }, { "reallocate", "Reallocate" },
                { "description", "Description" }
            };
            foreach (KeyValuePair<string, string> field in fields)
            {
                Assert.Equal(layout["offsetof " + field.Key],
                             Marshal.OffsetOf(typeof(StatusRecord), field.Value).ToInt64());
            }
            Assert.Equal(fields.Count, typeof(StatusRecord)
                .GetFields(BindingFlags.Instance | BindingFlags.Public | BindingFlags.NonPublic).Length);
            Assert.Equal(layout["sizeof code"], sizeof(int));
            Assert.Equal(layout["sizeof capacity"], sizeof(uint));
            Assert.Equal(layout["sizeof bool"], 1);
            Assert.Equal(layout["sizeof size_t"], IntPtr.Size);
        }

        public static void Constants_EqualThoseOfTheHeaders()
        {
            Dictionary<string, long> layout = Layout();
            Assert.Equal(layout["QUENRA_UPDATE_NEWER"], (long)UpdateOptions.Newer);
            Assert.Equal(layout["QUENRA_UPDATE_ALL"], (long)UpdateOptions.All);
            Assert.Equal(layout["QUENRA_MAX_TEXT_SETTING_LENGTH"], Controller.MaxTextSettingLength);
            Assert.Equal(layout["ZOROCO_MAX_DEVICE_NAME_LENGTH"], RoutingSession.MaxDevicePathLength);
            Assert.Equal(layout["ZOROCO_API_VERSION"], RoutingSession.ApiVersion);
            using (Controller controller = Controller.Open())
            {
                var handle = (ControllerHandle)typeof(Controller)
                    .GetField("handle", BindingFlags.Instance | BindingFlags.NonPublic).GetValue(controller);
                Assert.Equal(layout["QUENRA_HANDLE"], handle.DangerousGetHandle().ToInt64());
            }
            Assert.Equal(layout["QUENRA_HANDLE"], (long)ConstantOf(typeof(Controller), "sharedHandle"));
            Assert.Equal(layout["QUENRA_ATTRIBUTE_SELECTOR_MASK"], (long)ConstantOf(typeof(Controller), "selectorMask"));
            Assert.Equal(layout["QUENRA_ATTRIBUTE_INSTANCE_MASK"], (long)ConstantOf(typeof(Controller), "instanceMask"));
            Assert.Equal(layout["ZOROCO_NO_BUS_LINE"], (long)ConstantOf(typeof(Terminal), "noBusLine"));
        }

        // A description grows as the library requires: the text, zeros, and 'J' as the last byte.
        public static void Description_Resized_KeepsItsForm()
        {
            StatusRecord status = StatusRecord.Initial();
            Assert.True(status.Resize(1), "no new buffer");
            Assert.Equal(512u, status.Capacity);
            Assert.Equal("{}", Utf8.Decode(status.Description));
            Assert.Equal((byte)'J', Marshal.ReadByte(status.Description, 511));
            IntPtr buffer = status.Description;
            Assert.True(status.Resize(512), "no buffer of the same size");
            Assert.Equal(buffer, status.Description);
            Marshal.Copy(new[] { (byte)'{', (byte)' ', (byte)'}', (byte)0 }, 0, status.Description, 4);
            Assert.True(status.Resize(513), "no larger buffer");
            Assert.Equal(1024u, status.Capacity);
            Assert.Equal("{ }", Utf8.Decode(status.Description));
            for (int i = 3; i < 1023; ++i)
            {
                Assert.Equal(0, Marshal.ReadByte(status.Description, i));
            }
            Assert.Equal((byte)'J', Marshal.ReadByte(status.Description, 1023));
            Assert.True(!status.Resize(uint.MaxValue), "a buffer of 4 GiB");
            Assert.Equal(1024u, status.Capacity);
            Assert.True(status.Resize(0), "not released");
            Assert.Equal(IntPtr.Zero, status.Description);
            Assert.Equal(0u, status.Capacity);
            Assert.True(status.Resize(0), "not released again");
        }

        public static void Json_ValidDocuments_AreRead()
        {
            var document = (IDictionary<string, object>)new JsonReader(
                " {\"a\":[1,-2.5e1,true,false,null],\"t\":\"\\u00e4\\n\\\"\\\\\\/ \\ud834\\udd1e\",\"o\":{},\"e\":[ ]} ")
                .ReadDocument();
            Assert.Sequence(new object[] { 1.0, -25.0, true, false, null }, (IList<object>)document["a"]);
            Assert.Equal("ä\n\"\\/ 𝄞", (string)document["t"]);
            Assert.Equal(0, ((IDictionary<string, object>)document["o"]).Count);
            Assert.Equal(0, ((IList<object>)document["e"]).Count);
        }

        public static void Json_InvalidDocuments_AreRejected()
        {
            foreach (string document in new[]
            {
                "", "[", "[1", "[1,]", "{\"a\"}", "{\"a\":1,}", "{a:1}", "\"a", "\"\\x\"", "\"\\u12\"", "\"\\u12g4\"",
                "tru", "nul", "1 2", "[1]]", "--1", new string('[', 65) + new string(']', 65)
            })
            {
                Assert.Throws<FormatException>(() => new JsonReader(document).ReadDocument());
            }
            new JsonReader(new string('[', 64) + new string(']', 64)).ReadDocument();
        }

        private static MethodInfo[] Imports()
        {
            return typeof(NativeMethods).GetMethods(BindingFlags.Static | BindingFlags.NonPublic |
                                                    BindingFlags.DeclaredOnly)
                                        .Where(method => method.IsDefined(typeof(DllImportAttribute), false)).ToArray();
        }

        private static object ConstantOfType(Type type, string name)
        {
            return type.GetField(name, BindingFlags.Static | BindingFlags.NonPublic).GetRawConstantValue();
        }

        private static ulong ConstantOf(Type type, string name)
        {
            return Convert.ToUInt64(ConstantOfType(type, name), CultureInfo.InvariantCulture);
        }

        private static Dictionary<string, long> Layout()
        {
            return File.ReadAllLines(LayoutFile).ToDictionary(
                line => line.Substring(0, line.LastIndexOf(' ')),
                line => long.Parse(line.Substring(line.LastIndexOf(' ')), CultureInfo.InvariantCulture));
        }

        // The types of each function, the result first, as the headers write them without annotations.
        private static Dictionary<string, string[]> Prototypes()
        {
            var prototypes = new Dictionary<string, string[]>();
            foreach (string header in new[] { "quenra.h", "quenra_routing.h" })
            {
                string text = File.ReadAllText(Path.Combine(SourceFolder, "include", header));
                text = Regex.Replace(text, @"/\*.*?\*/", " ", RegexOptions.Singleline);
                text = Regex.Replace(text, @"QUENRA_(OUT_TEXT_OPT|IN_BYTES_OPT)\([^)]*\)", " ");
                text = Regex.Replace(text, @"QUENRA_(RETURNS_STATUS|NODISCARD|MAYBE_NULL|OUT|INOUT|INOUT_OPT|IN_TEXT)\b",
                                     " ");
                foreach (Match match in Regex.Matches(
                    text, @"([A-Za-z_0-9]+(?:\s+[a-z]+)?[\s*]+)((?:QUENRA|zoroco_ra_quenra)_\w+)\(([^)]*)\);"))
                {
                    IEnumerable<string> parameters =
                        match.Groups[3].Value.Trim() == "void"
                            ? new string[0]
                            : match.Groups[3].Value.Split(',').Select(each => Regex.Replace(each, @"\w+\s*$", ""));
                    prototypes[match.Groups[2].Value] =
                        new[] { match.Groups[1].Value }.Concat(parameters)
                                                       .Select(each => Regex.Replace(each, @"\s+|\bconst\b", "")).ToArray();
                }
            }
            return prototypes;
        }

        private static bool Fits(string native, Type managed)
        {
            var types = new Dictionary<string, Type[]>
            {
                { "void", new[] { typeof(void) } },
                { "bool", new[] { typeof(bool) } },
                { "int32_t", new[] { typeof(int) } },
                { "uint32_t", new[] { typeof(uint) } },
                // A handle is a number of 64 bits, as a pointer is.
                { "uint64_t", new[] { typeof(ulong), typeof(ControllerHandle) } },
                { "int32_t*", new[] { typeof(int).MakeByRefType() } },
                { "uint32_t*", new[] { typeof(uint).MakeByRefType() } },
                { "uint64_t*", new[] { typeof(ulong).MakeByRefType() } },
                { "double*", new[] { typeof(double).MakeByRefType() } },
                { "char*", new[] { typeof(byte[]), typeof(IntPtr) } },
                { "char**", new[] { typeof(IntPtr).MakeByRefType() } },
                { "void*", new[] { typeof(byte[]), typeof(IntPtr) } },
                { "zoerr_Status*", new[] { typeof(StatusRecord).MakeByRefType() } },
                { "zoroco_RoutingAdaptorSession*", new[] { typeof(IntPtr) } },
                { "zoroco_TerminalIterator*", new[] { typeof(IntPtr) } },
                { "zoroco_Reallocate", new[] { typeof(NativeMethods.Reallocate) } },
                { "zoroco_DemotionCallback", new[] { typeof(NativeMethods.DemotionCallback) } }
            };
            return types.ContainsKey(native) && types[native].Contains(managed);
        }
    }
}
