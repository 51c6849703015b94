// The tests of the C# binding: runs each public static method of the test classes on a machine that was
// reset, and then requires that the library has released everything.
//
//   tests.exe SOURCE LAYOUT [NAME]     NAME: part of the names of the tests to run

using System;
using System.Collections.Generic;
using System.Reflection;
using System.Threading;

namespace Quenra.Tests
{
    internal static class Program
    {
        private static int Main(string[] arguments)
        {
            if (arguments.Length < 2)
            {
                Console.Error.WriteLine("usage: tests.exe SOURCE LAYOUT [NAME]");
                return 2;
            }
            Declarations.SourceFolder = arguments[0];
            Declarations.LayoutFile = arguments[1];
            string part = arguments.Length > 2 ? arguments[2] : "";
            int passed = 0;
            var failed = new List<string>();
            foreach (Type type in new[] { typeof(Declarations), typeof(Controllers), typeof(Routing) })
            {
                foreach (MethodInfo test in type.GetMethods(BindingFlags.Public | BindingFlags.Static |
                                                            BindingFlags.DeclaredOnly))
                {
                    if (test.IsSpecialName || !test.Name.Contains(part))
                    {
                        continue;
                    }
                    if (Passes(test))
                    {
                        ++passed;
                    }
                    else
                    {
                        failed.Add(test.Name);
                    }
                }
            }
            Console.WriteLine("{0} tests passed, {1} failed{2}", passed, failed.Count,
                              failed.Count == 0 ? "" : ": " + string.Join(", ", failed));
            return failed.Count == 0 && passed > 0 ? 0 : 1;
        }

        private static bool Passes(MethodInfo test)
        {
            Exception failure = null;
            // A thread of its own: the collector searches the stack of a thread, where remains of an earlier
            // test could keep objects from being finalized.
            var thread = new Thread(() =>
            {
                try
                {
                    Fake.Reset();
                    test.Invoke(null, null);
                }
                catch (TargetInvocationException caught)
                {
                    failure = caught.InnerException;
                }
                catch (Exception caught)
                {
                    failure = caught;
                }
            });
            thread.Start();
            thread.Join();
            if (failure == null)
            {
                failure = Failure.Of(() => Fake.RequireEverythingReleased());
            }
            Console.WriteLine("{0} {1}", failure == null ? "ok  " : "FAIL", test.Name);
            if (failure != null)
            {
                Console.WriteLine(failure);
            }
            return failure == null;
        }
    }

    internal static class Failure
    {
        internal static Exception Of(Action action)
        {
            try
            {
                action();
                return null;
            }
            catch (Exception caught)
            {
                return caught;
            }
        }
    }

    internal sealed class AssertionException : Exception
    {
        internal AssertionException(string message)
            : base(message)
        {
        }
    }

    internal static class Assert
    {
        internal static void Equal<T>(T expected, T actual)
        {
            if (!EqualityComparer<T>.Default.Equals(expected, actual))
            {
                throw new AssertionException("expected '" + expected + "', is '" + actual + "'");
            }
        }

        internal static void Sequence<T>(IEnumerable<T> expected, IEnumerable<T> actual)
        {
            Equal(string.Join("\n", expected), string.Join("\n", actual));
        }

        internal static void True(bool condition, string message)
        {
            if (!condition)
            {
                throw new AssertionException(message);
            }
        }

        internal static void Contains(string part, string text)
        {
            True(text != null && text.Contains(part), "expected '" + part + "' in '" + text + "'");
        }

        internal static T Throws<T>(Action action) where T : Exception
        {
            Exception caught = Failure.Of(action);
            if (caught == null)
            {
                throw new AssertionException("expected " + typeof(T).Name + ", nothing was thrown");
            }
            if (caught.GetType() != typeof(T))
            {
                throw new AssertionException("expected " + typeof(T).Name + ", is " + caught);
            }
            return (T)caught;
        }

        internal static QuenraException Fails(Status status, Action action)
        {
            QuenraException failure = Throws<QuenraException>(action);
            Equal(status, failure.Status);
            return failure;
        }

        // Waits until another thread has made the condition true.
        internal static void Eventually(Func<bool> condition, string message)
        {
            for (int attempt = 0; attempt < 1000; ++attempt)
            {
                if (condition())
                {
                    return;
                }
                Thread.Sleep(10);
            }
            throw new AssertionException("10 seconds have passed: " + message);
        }
    }

    // Finalizes the objects that nothing refers to.
    internal static class Collector
    {
        internal static void Run()
        {
            for (int i = 0; i < 3; ++i)
            {
                GC.Collect();
                GC.WaitForPendingFinalizers();
            }
        }

        // Runs an action whose objects are garbage afterwards.
        internal static void Forget(Action action)
        {
            Exception failure = null;
            var thread = new Thread(() => failure = Failure.Of(action));
            thread.Start();
            thread.Join();
            if (failure != null)
            {
                throw new AssertionException(failure.ToString());
            }
            Run();
        }
    }
}
