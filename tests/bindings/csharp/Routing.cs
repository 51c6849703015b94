// Promises of Quenra.RoutingSession and its routes.

using System;
using System.Collections.Generic;
using System.Linq;
using System.Threading;
using System.Threading.Tasks;

namespace Quenra.Tests
{
    internal static class Routing
    {
        private static RoutingSession Open()
        {
            return new RoutingSession(Controller.DevicePath);
        }

        // The requests of the log that concern routes: "unprogram-route ticket=1".
        private static string[] RouteRequests()
        {
            return Fake.Log().Where(line => line.Contains("-route ticket="))
                       .Select(line => string.Join(" ", line.Split(' ').Skip(4).Take(2))).ToArray();
        }

        // ---- Sessions ----

        public static void ApiVersion_IsThree()
        {
            Assert.Equal(3u, RoutingSession.ApiVersion);
        }

        public static void Open_UnknownDevice_ReportsThePathAndTheLocation()
        {
            QuenraException failure = Assert.Fails(Status.NotFound, () => new RoutingSession(@"\\?\nothing"));
            Assert.Contains(@"opening the routing device '\\?\nothing' failed", failure.Message);
            Assert.Contains("\"line\":", failure.Details);
        }

        public static void Open_InvalidPath_ThrowsArgumentException()
        {
            Assert.Throws<ArgumentNullException>(() => new RoutingSession(null));
            Assert.Throws<ArgumentException>(() => new RoutingSession("a\0b"));
            var failure = Assert.Throws<ArgumentException>(() => new RoutingSession(new string('x', 257)));
            Assert.Contains("has 257", failure.Message);
            Assert.Fails(Status.NotFound, () => new RoutingSession(new string('x', 256)));
        }

        public static void Open_DeviceThatCannotBeOpened_ReportsTheReasonAndReleasesEverything()
        {
            string path = Controller.DevicePath;
            for (uint nth = 1; nth <= 2; ++nth)
            {
                Fake.FailCall("CreateFileA", 1, 5);
                Assert.Fails(Status.AccessDenied, () => new RoutingSession(path));
            }
            Fake.FailCall("_beginthreadex", 1, 0);
            Assert.Throws<QuenraException>(() => new RoutingSession(path));
            Assert.Equal(0, Fake.OpenObjects().Length);
        }

        public static void OpenRoutingSession_OfAController_OutlivesIt()
        {
            Controller controller = Controller.Open();
            using (RoutingSession session = controller.OpenRoutingSession())
            {
                controller.Dispose();
                Assert.Equal(11, session.Terminals.Count());
            }
        }

        public static void HandledConstraints_AreThoseOfTheLibrary()
        {
            using (RoutingSession session = Open())
            {
                Assert.Sequence(new[] { "inversionNeeded" }, session.HandledConstraints);
            }
        }

        public static void Dispose_ThenAnyMember_ThrowsObjectDisposed()
        {
            RoutingSession session = Open();
            Reservation reservation = session.Connect("TRIG_SMB", "PXI_Trig0");
            RoutePlan plan = session.Plan("TRIG_SMB", "PXI_Trig1");
            session.Dispose();
            session.Dispose();
            var calls = new Action[]
            {
                () => session.HandledConstraints.ToString(), () => session.Terminals.Count(),
                () => session.ResetTerminal("TRIG_SMB", ResetMode.Default),
                () => session.CalculateReset("TRIG_SMB", ResetMode.Default), () => session.Plan("TRIG_SMB", "PXI_Trig0"),
                () => session.Connect("TRIG_SMB", "PXI_Trig0"), () => plan[0].Reserve(), () => plan[0].Path.ToString(),
                () => reservation.Program(), () => reservation.Unprogram(), () => reservation.Renew()
            };
            foreach (Action call in calls)
            {
                var failure = Assert.Throws<ObjectDisposedException>(call);
                Assert.Equal("RoutingSession", failure.ObjectName);
            }
            reservation.Dispose();
            plan.Dispose();
        }

        public static void Finalizer_ForgottenSession_TearsDownItsRoutesAndCloses()
        {
            Collector.Forget(() => Open().Connect("TRIG_SMB", "PXI_Trig0"));
            Assert.Eventually(() => Fake.Routes().Length == 0, "a route exists");
            Assert.Eventually(() => Fake.OpenObjects().Length == 0, "the session is open");
            Assert.Sequence(new[]
            {
                "reserve-route ticket=1", "program-route ticket=1", "unprogram-route ticket=1",
                "unreserve-route ticket=1", "destroy-route ticket=1"
            }, RouteRequests());
        }

        // ---- Terminals ----

        public static void Terminals_AreThoseOfTheController()
        {
            using (RoutingSession session = Open())
            {
                var expected = new List<string>
                {
                    "FLOAT 1 private internal owned bus= line=", "TRIG_SMB 2 public internal owned bus= line=",
                    "WD_Terminal 3 private internal owned bus= line="
                };
                for (int line = 0; line < 8; ++line)
                {
                    expected.Add("PXI_Trig" + line + " " + (4 + line) + " public external foreign bus=PXI_Trig line=" +
                                 line);
                }
                Assert.Sequence(expected, session.Terminals.Select(
                    each => each.Name + " " + each.Id + (each.IsPublic ? " public" : " private") +
                            (each.IsExternal ? " external" : " internal") + (each.IsOwned ? " owned" : " foreign") +
                            " bus=" + each.BusType + " line=" + each.BusLine));
                foreach (Terminal terminal in session.Terminals)
                {
                    Assert.Equal(null, terminal.BusName);
                    Assert.Equal(terminal.Name, terminal.CanonicalName);
                    Assert.Equal(terminal.Name, terminal.ToString());
                    Assert.True(!terminal.IsAlias && !terminal.IsMaskedOut, terminal + " is an alias or masked out");
                }
            }
        }

        public static void Terminals_UseOfTheSessionInTheLoop_IsPossible()
        {
            using (RoutingSession session = Open())
            {
                int pairs = 0;
                foreach (Terminal first in session.Terminals)
                {
                    pairs += session.Terminals.Count(second => second.Id != first.Id);
                }
                Assert.Equal(110, pairs);
            }
        }

        public static void Terminals_SessionDisposedInTheLoop_EndsTheLoopAndClosesTheSession()
        {
            RoutingSession session = Open();
            int read = 0;
            Assert.Throws<ObjectDisposedException>(() =>
            {
                foreach (Terminal terminal in session.Terminals)
                {
                    ++read;
                    session.Dispose();
                    Assert.True(Fake.OpenObjects().Length != 0, "the session was closed below its walk");
                }
            });
            Assert.Equal(1, read);
            Assert.Equal(0, Fake.OpenObjects().Length);
        }

        public static void Terminals_ForgottenEnumerator_ReleasesTheSession()
        {
            Collector.Forget(() =>
            {
                RoutingSession session = Open();
                IEnumerator<Terminal> walk = session.Terminals.GetEnumerator();
                Assert.True(walk.MoveNext(), "no terminal");
                session.Dispose();
                Assert.True(Fake.OpenObjects().Length != 0, "the session was closed below its walk");
            });
            Assert.Eventually(() => Fake.OpenObjects().Length == 0, "the session is open");
        }

        // The finalizer thread destroys walks while calls of the session are running.
        public static void Terminals_ForgottenEnumeratorsDuringCalls_DoNotDisturbThem()
        {
            using (RoutingSession session = Open())
            {
                for (int i = 0; i < 300; ++i)
                {
                    Assert.True(session.Terminals.GetEnumerator().MoveNext(), "no terminal");
                    if (i % 20 == 0)
                    {
                        GC.Collect();
                    }
                    session.Plan("TRIG_SMB", "PXI_Trig0").Dispose();
                }
            }
        }

        private static TerminalIteratorHandle OpenIterator(RoutingSession session)
        {
            var iterator = new TerminalIteratorHandle(session.Handle);
            session.Call("opening", (IntPtr handle, ref StatusRecord status) =>
            {
                iterator.Open(handle, ref status);
                return true;
            });
            return iterator;
        }

        // The library answers so for a destroyed iterator; one that was opened is at the first terminal.
        private static bool IsDestroyed(IntPtr iterator)
        {
            return NativeMethods.zoroco_ra_quenra_TerminalIterator_isEnd(iterator);
        }

        public static void TerminalIterator_Disposed_IsDestroyed()
        {
            using (RoutingSession session = Open())
            {
                TerminalIteratorHandle iterator = OpenIterator(session);
                IntPtr handle = iterator.DangerousGetHandle();
                Assert.True(!IsDestroyed(handle), "the iterator does not exist");
                iterator.Dispose();
                Assert.True(IsDestroyed(handle), "the iterator exists");
            }
        }

        public static void TerminalIterator_DisposedDuringACall_IsDestroyedByTheNextCall()
        {
            using (RoutingSession session = Open())
            {
                TerminalIteratorHandle iterator = OpenIterator(session);
                IntPtr handle = iterator.DangerousGetHandle();
                var running = new ManualResetEvent(false);
                var release = new ManualResetEvent(false);
                var call = new Thread(() => session.Handle.Serialize(ignored => running.Set() && release.WaitOne(10000)));
                call.Start();
                Assert.True(running.WaitOne(10000), "the call did not start");
                iterator.Dispose();
                Assert.True(!IsDestroyed(handle), "the iterator was destroyed during a call of its session");
                release.Set();
                call.Join();
                Assert.Equal(1, session.HandledConstraints.Count);
                Assert.True(IsDestroyed(handle), "the iterator exists");
            }
        }

        public static void ResetTerminal_Modes_ReachTheDriver()
        {
            using (RoutingSession session = Open())
            {
                Fake.ClearLog();
                session.ResetTerminal("PXI_Trig1", ResetMode.Floating);
                session.ResetTerminal("TRIG_SMB", ResetMode.Default);
                string[] log = Fake.Log();
                Assert.Equal(2, log.Length);
                Assert.Contains("reset-terminal terminal=5 floating=1", log[0]);
                Assert.Contains("reset-terminal terminal=2 floating=0", log[1]);
            }
        }

        public static void CalculateReset_AnyTerminal_ReturnsAnIdAndResetsNothing()
        {
            using (RoutingSession session = Open())
            {
                Fake.ClearLog();
                uint id = session.CalculateReset("PXI_Trig1", ResetMode.Floating);
                Assert.True(session.Terminals.Any(each => each.Id == id), "no terminal has the id " + id);
                Assert.Equal(1, Fake.Log().Length);
                Assert.Contains("calculate-reset-terminal terminal=5 floating=1", Fake.Log()[0]);
            }
        }

        public static void ResetTerminal_UnknownName_ListsTheTerminals()
        {
            using (RoutingSession session = Open())
            {
                var failure = Assert.Throws<ArgumentException>(
                    () => session.ResetTerminal("PXI_TRIG0", ResetMode.Default));
                Assert.Contains("No terminal is called 'PXI_TRIG0'. The terminals are FLOAT, TRIG_SMB, ", failure.Message);
                Assert.Throws<ArgumentNullException>(() => session.CalculateReset(null, ResetMode.Default));
            }
        }

        public static void ResetTerminal_RefusedByTheDriver_ReportsIt()
        {
            using (RoutingSession session = Open())
            {
                Fake.AnswerRequests(Device.Router, 0, 1, -52031);
                QuenraException failure =
                    Assert.Fails(Status.Busy, () => session.ResetTerminal("TRIG_SMB", ResetMode.Default));
                Assert.Contains("resetting terminal 'TRIG_SMB' failed", failure.Message);
            }
        }

        // ---- Plans ----

        public static void Plan_TwoTerminals_HasOneRoute()
        {
            using (RoutingSession session = Open())
            using (RoutePlan plan = session.Plan("TRIG_SMB", "PXI_Trig3"))
            {
                Route route = plan.Single();
                Assert.Equal("PXI_Trig3", route.Destination);
                Assert.Equal(0, route.SeedIndex);
                Assert.True(!route.IsInverted, "the route is inverted");
                Assert.Sequence(new[] { "TRIG_SMB", "PXI_Trig3" }, route.Path);
                Assert.Sequence(new[] { route.Ticket + " calculated" }, Fake.Routes());
            }
        }

        public static void Plan_SeveralSeedsAndDestinations_HasARouteForEachDestination()
        {
            using (RoutingSession session = Open())
            {
                var seeds = new[] { new RouteSeed("TRIG_SMB", 4294967295), new RouteSeed("PXI_Trig7", 3) };
                using (RoutePlan plan = session.Plan(seeds, new[] { "PXI_Trig1", "PXI_Trig2" }))
                {
                    Assert.Sequence(new[] { "PXI_Trig1", "PXI_Trig2" }, plan.Select(route => route.Destination));
                    foreach (Route route in plan)
                    {
                        Assert.Equal(1, route.SeedIndex);
                        Assert.Sequence(new[] { "PXI_Trig7", route.Destination }, route.Path);
                        Assert.True(route.Cost >= 3, "the cost of the seed is missing");
                    }
                    Assert.Equal(2, plan.Count);
                    Assert.Equal(plan[1].Ticket, plan.Last().Ticket);
                }
            }
        }

        public static void Plan_Inversion_IsRequestedBySeedOrModifier()
        {
            using (RoutingSession session = Open())
            {
                using (RoutePlan plan = session.Plan(new[] { new RouteSeed("TRIG_SMB", 0, true) }, new[] { "PXI_Trig0" }))
                {
                    Assert.True(plan[0].IsInverted, "the seed's constraint is missing");
                }
                using (RoutePlan plan = session.Plan(new[] { new RouteSeed("TRIG_SMB") }, new[] { "PXI_Trig0" },
                                                     RouteModifiers.Inversion))
                {
                    Assert.Sequence(new[] { true }, plan.Select(route => route.IsInverted));
                }
                using (RoutePlan plan = session.Plan(new[] { new RouteSeed("TRIG_SMB") }, new[] { "PXI_Trig0" },
                                                     RouteModifiers.None, RouteModifiers.Inversion))
                {
                    Assert.Sequence(new[] { false, true }, plan.Select(route => route.IsInverted));
                }
            }
        }

        public static void Plan_IgnoreReservations_FindsTheRouteOfAHeldLine()
        {
            using (RoutingSession holder = Open())
            using (RoutingSession session = Open())
            using (holder.Connect("TRIG_SMB", "PXI_Trig0"))
            {
                Fake.ClearLog();
                session.Plan(new[] { new RouteSeed("PXI_Trig1") }, new[] { "PXI_Trig0" },
                             RouteModifiers.IgnoreReservations).Dispose();
                session.Plan(new[] { new RouteSeed("PXI_Trig1") }, new[] { "PXI_Trig0" }).Dispose();
                string[] options = Fake.Log().Where(line => line.Contains("calculate-route"))
                                       .Select(line => line.Split(' ').Single(part => part.StartsWith("options=")))
                                       .ToArray();
                Assert.Equal(2, options.Length);
                Assert.True(options[0] != options[1], "the driver received the same options: " + options[0]);
                Assert.Equal("options=0x0", options[1]);
            }
        }

        public static void Plan_UnknownTerminal_ReportsTheNames()
        {
            using (RoutingSession session = Open())
            {
                QuenraException failure = Assert.Fails(Status.NoSuchTerminal, () => session.Plan("TRIG_SMB", "PXI_Trig9"));
                Assert.Contains("calculating a route from TRIG_SMB to PXI_Trig9 failed", failure.Message);
            }
        }

        // Characters that JSON escapes reach the driver as parts of a name, and do not end the text.
        public static void Plan_NameWithControlCharacters_IsQuoted()
        {
            using (RoutingSession session = Open())
            {
                Assert.Fails(Status.NoSuchTerminal, () => session.Plan("a\"b\\c\n\t\u0001ä", "PXI_Trig0"));
            }
        }

        public static void Plan_InvalidArguments_ThrowArgumentException()
        {
            using (RoutingSession session = Open())
            {
                Fake.ClearLog();
                Assert.Throws<ArgumentNullException>(() => session.Plan(null, "PXI_Trig0"));
                Assert.Throws<ArgumentNullException>(() => session.Plan("TRIG_SMB", (string[])null));
                Assert.Throws<ArgumentException>(() => session.Plan("TRIG_SMB", "PXI_Trig0", null));
                Assert.Throws<ArgumentException>(() => session.Plan(new RouteSeed[] { null }, new[] { "PXI_Trig0" }));
                Assert.Throws<ArgumentNullException>(
                    () => session.Plan((IEnumerable<RouteSeed>)null, new[] { "PXI_Trig0" }));
                Assert.Throws<ArgumentException>(() => session.Plan("\uDC00", "PXI_Trig0"));
                Assert.Equal(0, Fake.Log().Length);
            }
        }

        public static void Plan_DocumentThatIsTooLarge_ReportsTheFault()
        {
            using (RoutingSession session = Open())
            {
                QuenraException failure = Assert.Fails(
                    Status.InvalidParameter, () => session.Plan("TRIG_SMB", new string('x', 5000000)));
                Assert.Contains("xxx... failed: document too large. An argument is invalid", failure.Message);
                Assert.Contains("\"offset\":4194304", failure.Details);
                Assert.True(failure.Message.Length < 1000, "the message repeats the document");
            }
        }

        public static void Plan_Disposed_DestroysTheRoutesThatAreNotReserved()
        {
            using (RoutingSession session = Open())
            {
                RoutePlan plan = session.Plan("TRIG_SMB", "PXI_Trig0", "PXI_Trig1", "PXI_Trig2");
                using (Reservation reservation = plan[1].Reserve())
                {
                    plan.Dispose();
                    plan.Dispose();
                    Assert.Sequence(new[] { reservation.Route.Ticket + " reserved" }, Fake.Routes());
                    Assert.Equal("PXI_Trig1", reservation.Route.Destination);
                    Assert.Fails(Status.NoSuchTicket, () => plan[0].Path.ToString());
                }
                Assert.Equal(0, Fake.Routes().Length);
            }
        }

        public static void Path_OfThousandTerminals_IsComplete()
        {
            using (RoutingSession session = Open())
            using (RoutePlan plan = session.Plan("TRIG_SMB", "PXI_Trig0"))
            {
                Fake.SetPathLength(1024);
                Assert.Equal(1024, plan[0].Path.Count);
                Fake.SetPathLength(1025);
                QuenraException failure = Assert.Fails(Status.MemoryFull, () => plan[0].Path.ToString());
                Assert.Contains("reading the path of route " + plan[0].Ticket, failure.Message);
                Assert.Contains("zoapalerr_memoryFull", failure.Details);
            }
        }

        // ---- Reservations ----

        public static void Reservation_Program_ConnectsAndDisposeTearsDownInOrder()
        {
            using (RoutingSession session = Open())
            {
                uint ticket;
                using (RoutePlan plan = session.Plan("TRIG_SMB", "PXI_Trig0"))
                using (Reservation reservation = plan[0].Reserve())
                {
                    ticket = reservation.Route.Ticket;
                    Assert.Sequence(new[] { ticket + " reserved" }, Fake.Routes());
                    reservation.Program();
                    Assert.Sequence(new[] { ticket + " programmed" }, Fake.Routes());
                    reservation.Unprogram();
                    Assert.Sequence(new[] { ticket + " reserved" }, Fake.Routes());
                    reservation.Program();
                    Fake.ClearLog();
                    reservation.Dispose();
                }
                Assert.Sequence(new[]
                {
                    "unprogram-route ticket=" + ticket, "unreserve-route ticket=" + ticket,
                    "destroy-route ticket=" + ticket
                }, RouteRequests());
            }
        }

        public static void Reservation_NotProgrammed_IsNotUnprogrammed()
        {
            using (RoutingSession session = Open())
            using (RoutePlan plan = session.Plan("TRIG_SMB", "PXI_Trig0"))
            {
                Reservation reservation = plan[0].Reserve();
                Fake.ClearLog();
                reservation.Dispose();
                reservation.Dispose();
                Assert.Sequence(new[]
                {
                    "unreserve-route ticket=" + plan[0].Ticket, "destroy-route ticket=" + plan[0].Ticket
                }, RouteRequests());
            }
        }

        public static void Reserve_LineOfAnotherRoute_ListsTheConflicts()
        {
            using (RoutingSession holder = Open())
            using (RoutingSession session = Open())
            using (Reservation held = holder.Connect("TRIG_SMB", "PXI_Trig0"))
            using (RoutePlan plan = session.Plan("PXI_Trig1", "PXI_Trig0"))
            {
                var failure = Assert.Throws<RouteConflictException>(() => plan[0].Reserve());
                Assert.Equal(Status.RouteConflict, failure.Status);
                Assert.Equal(held.Route.Ticket, failure.Conflicts.Single().Ticket);
                Assert.Contains("reserving route " + plan[0].Ticket + " failed: ", failure.Message);
                Assert.Contains("Held by route " + held.Route.Ticket + " of session " +
                                failure.Conflicts[0].SessionId + ". Release", failure.Message);
                Assert.Equal(2, Fake.Routes().Length);
                held.Dispose();
                plan[0].Reserve().Dispose();
            }
        }

        public static void Program_RefusedByTheDriver_ReportsItAndDisposeTearsEverythingDown()
        {
            using (RoutingSession session = Open())
            using (RoutePlan plan = session.Plan("TRIG_SMB", "PXI_Trig0"))
            {
                Reservation reservation = plan[0].Reserve();
                Fake.AnswerRequests(Device.Router, 0, 1, -52007);
                Assert.Fails(Status.TimeOut, () => reservation.Program());
                Fake.ClearLog();
                reservation.Dispose();
                Assert.Sequence(new[]
                {
                    "unprogram-route ticket=" + plan[0].Ticket, "unreserve-route ticket=" + plan[0].Ticket,
                    "destroy-route ticket=" + plan[0].Ticket
                }, RouteRequests());
                Assert.Equal(0, Fake.Routes().Length);
            }
        }

        public static void Connect_FailingStep_LeavesNoRoute()
        {
            using (RoutingSession session = Open())
            {
                for (uint skip = 0; skip < 3; ++skip)
                {
                    Fake.AnswerRequests(Device.Router, skip, 1, -52031);
                    Assert.Fails(Status.Busy, () => session.Connect("TRIG_SMB", "PXI_Trig0"));
                    Assert.Equal(0, Fake.Routes().Length);
                }
                session.Connect("TRIG_SMB", "PXI_Trig0").Dispose();
            }
        }

        public static void Connect_WarningOfTheDriver_RaisesWarned()
        {
            using (RoutingSession session = Open())
            {
                var warnings = new List<string>();
                session.Warned += (sender, warning) => warnings.Add(warning.Operation + ": " + warning.Code);
                Fake.AnswerRequests(Device.Router, 1, 2, 1234567);
                using (Reservation reservation = session.Connect("TRIG_SMB", "PXI_Trig0"))
                {
                    string ticket = reservation.Route.Ticket.ToString();
                    Assert.Sequence(new[] { "reserving route " + ticket + ": 1234567",
                                            "programming route " + ticket + ": 1234567" }, warnings);
                    Assert.Equal((Status)1234567, session.LastWarning);
                    Assert.Sequence(new[] { ticket + " programmed" }, Fake.Routes());
                }
            }
        }

        public static void Warned_HandlerThatWaitsForAnotherThread_DoesNotBlockTheSession()
        {
            using (RoutingSession session = Open())
            {
                bool joined = false;
                session.Warned += (sender, warning) =>
                {
                    var thread = new Thread(() => session.Terminals.Count());
                    thread.Start();
                    joined = thread.Join(10000);
                };
                Fake.AnswerRequests(Device.Router, 0, 1, 1234567);
                session.Plan("TRIG_SMB", "PXI_Trig0").Dispose();
                Assert.True(joined, "the other thread waits for the handler");
            }
        }

        public static void Open_WarningOfTheDriver_IsTheLastWarning()
        {
            string path = Controller.DevicePath;
            Fake.AnswerRequests(Device.Router, 2, 1, 1234567);
            using (var session = new RoutingSession(path))
            {
                Assert.Equal((Status)1234567, session.LastWarning);
                Assert.Equal(11, session.Terminals.Count());
            }
        }

        public static void Dispose_SessionWithRoutes_TearsThemDownBeforeItCloses()
        {
            RoutingSession session = Open();
            Reservation programmed = session.Connect("TRIG_SMB", "PXI_Trig0");
            Reservation reserved = session.Plan("TRIG_SMB", "PXI_Trig1")[0].Reserve();
            RoutePlan calculated = session.Plan("TRIG_SMB", "PXI_Trig2");
            Fake.ClearLog();
            session.Dispose();
            string[] requests = RouteRequests();
            Assert.Sequence(new[]
            {
                "unprogram-route ticket=" + programmed.Route.Ticket, "unreserve-route ticket=" + programmed.Route.Ticket,
                "destroy-route ticket=" + programmed.Route.Ticket, "unreserve-route ticket=" + reserved.Route.Ticket,
                "destroy-route ticket=" + reserved.Route.Ticket, "destroy-route ticket=" + calculated[0].Ticket
            }, requests);
            Assert.Contains(" close", Fake.Log().Last());
        }

        // ---- Demotion ----

        public static void Demoted_RouteOfTheSession_RunsTheHandlersOnAnotherThread()
        {
            using (RoutingSession session = Open())
            using (RoutingSession other = Open())
            {
                int calls = 0;
                int thread = 0;
                int reason = 0;
                object sender = null;
                EventHandler<DemotedEventArgs> removed = (source, demotion) => Interlocked.Add(ref calls, 100);
                session.Demoted += removed;
                session.Demoted += (source, demotion) =>
                {
                    thread = Thread.CurrentThread.ManagedThreadId;
                    reason = demotion.Reason;
                    sender = source;
                    Interlocked.Increment(ref calls);
                };
                session.Demoted -= removed;
                other.Demoted += removed;
                using (Reservation reservation = session.Connect("TRIG_SMB", "PXI_Trig0"))
                {
                    Fake.DemoteRoute(reservation.Route.Ticket);
                    Assert.Eventually(() => Volatile.Read(ref calls) != 0, "no handler ran");
                    Assert.Equal(1, calls);
                    Assert.Equal(101, reason);
                    Assert.Equal((object)session, sender);
                    Assert.True(thread != Thread.CurrentThread.ManagedThreadId, "the handler ran on the test's thread");
                    Assert.Sequence(new[] { reservation.Route.Ticket + " calculated" }, Fake.Routes());
                    Assert.Throws<QuenraException>(() => reservation.Program());
                    reservation.Renew();
                    reservation.Program();
                    Assert.Sequence(new[] { reservation.Route.Ticket + " programmed" }, Fake.Routes());
                }
                Assert.Equal(0, Fake.Routes().Length);
            }
        }

        public static void Demoted_ExceptionOfAHandler_StaysInTheProcess()
        {
            using (RoutingSession session = Open())
            {
                int reported = 0;
                int following = 0;
                session.Demoted += (source, demotion) => { throw new InvalidOperationException("planned"); };
                session.Demoted += (source, demotion) => Interlocked.Increment(ref following);
                session.DemotedHandlerFailed += (source, failure) =>
                {
                    if (((Exception)failure.ExceptionObject).Message == "planned" && !failure.IsTerminating)
                    {
                        Interlocked.Increment(ref reported);
                    }
                    throw new InvalidOperationException("planned as well");
                };
                for (int i = 1; i <= 3; ++i)
                {
                    using (Reservation reservation = session.Connect("TRIG_SMB", "PXI_Trig0"))
                    {
                        Fake.DemoteRoute(reservation.Route.Ticket);
                        Assert.Eventually(() => Volatile.Read(ref following) == i, "the second handler did not run");
                        Assert.Equal(i, reported);
                    }
                }
            }
        }

        public static void Demoted_Collections_KeepTheCallbackAlive()
        {
            RoutingSession session = null;
            // On another thread, whose stack does not keep the delegates that the library received.
            Collector.Forget(() => session = Open());
            using (session)
            {
                int calls = 0;
                session.Demoted += (source, demotion) => Interlocked.Increment(ref calls);
                for (int i = 1; i <= 100; ++i)
                {
                    using (Reservation reservation = session.Connect("TRIG_SMB", "PXI_Trig0"))
                    {
                        GC.Collect();
                        GC.WaitForPendingFinalizers();
                        Fake.DemoteRoute(reservation.Route.Ticket);
                        GC.Collect();
                        Assert.Eventually(() => Volatile.Read(ref calls) == i, "no handler ran");
                    }
                }
            }
        }

        public static void Demoted_CollectionsOnOtherThreads_DisturbNoCall()
        {
            using (RoutingSession session = Open())
            {
                int calls = 0;
                bool ended = false;
                session.Demoted += (source, demotion) =>
                {
                    GC.Collect();
                    Interlocked.Increment(ref calls);
                };
                var collector = new Thread(() =>
                {
                    while (!Volatile.Read(ref ended))
                    {
                        GC.Collect();
                        Thread.Sleep(1);
                    }
                });
                collector.Start();
                for (int i = 1; i <= 50; ++i)
                {
                    using (Reservation reservation = session.Connect("TRIG_SMB", "PXI_Trig0"))
                    {
                        Assert.Equal(2, reservation.Route.Path.Count);
                        Assert.Equal(11, session.Terminals.Count());
                        Assert.Fails(Status.NoSuchTerminal, () => session.Plan("TRIG_SMB", "x"));
                        Fake.DemoteRoute(reservation.Route.Ticket);
                        Assert.Eventually(() => Volatile.Read(ref calls) == i, "no handler ran");
                    }
                }
                Volatile.Write(ref ended, true);
                collector.Join();
            }
        }

        public static void Demoted_HandlerThatUsesTheSession_IsSerialisedWithOtherCalls()
        {
            using (RoutingSession session = Open())
            {
                int terminals = 0;
                session.Demoted += (source, demotion) => Interlocked.Exchange(
                    ref terminals, ((RoutingSession)source).Terminals.Count());
                using (Reservation reservation = session.Connect("TRIG_SMB", "PXI_Trig0"))
                {
                    Fake.DemoteRoute(reservation.Route.Ticket);
                    Assert.Eventually(() =>
                    {
                        session.Plan("TRIG_SMB", "PXI_Trig1").Dispose();
                        return Volatile.Read(ref terminals) != 0;
                    }, "the handler could not use the session");
                    Assert.Equal(11, terminals);
                }
            }
        }

        public static void Demoted_HandlerThatDisposesTheSession_ClosesItAfterwards()
        {
            RoutingSession session = Open();
            var wasOpen = new ManualResetEvent(false);
            session.Demoted += (source, demotion) =>
            {
                session.Dispose();
                wasOpen.Set();
            };
            Reservation reservation = session.Connect("TRIG_SMB", "PXI_Trig0");
            Fake.DemoteRoute(reservation.Route.Ticket);
            Assert.True(wasOpen.WaitOne(10000), "no handler ran");
            Assert.Eventually(() => Fake.OpenObjects().Length == 0, "the session is open");
            Assert.Throws<ObjectDisposedException>(() => session.Plan("TRIG_SMB", "PXI_Trig0"));
        }

        public static void Dispose_WhileAHandlerUsesTheSession_WaitsForTheHandler()
        {
            for (int round = 0; round < 20; ++round)
            {
                RoutingSession session = Open();
                var started = new ManualResetEvent(false);
                int handled = 0;
                session.Demoted += (source, demotion) =>
                {
                    started.Set();
                    Failure.Of(() => session.Terminals.Count());
                    Thread.Sleep(5);
                    Interlocked.Increment(ref handled);
                };
                Fake.DemoteRoute(session.Connect("TRIG_SMB", "PXI_Trig0").Route.Ticket);
                Assert.True(started.WaitOne(10000), "no handler ran");
                session.Dispose();
                Assert.Eventually(() => Fake.OpenObjects().Length == 0, "the session is open");
                Assert.Equal(1, handled);
            }
        }

        public static void Demoted_ForgottenSession_IsFinalizedDespiteItsHandlers()
        {
            Collector.Forget(() =>
            {
                RoutingSession session = Open();
                session.Demoted += (source, demotion) => session.ToString();
            });
            Assert.Eventually(() => Fake.OpenObjects().Length == 0, "the session is open");
        }

        // ---- Threads ----

        public static void Session_OnSeveralThreads_AnswersEachCorrectly()
        {
            using (RoutingSession session = Open())
            {
                Parallel.For(0, 400, i =>
                {
                    string line = "PXI_Trig" + i % 8;
                    using (RoutePlan plan = session.Plan("TRIG_SMB", line))
                    {
                        Assert.Equal(line, plan.Single().Destination);
                        Assert.Sequence(new[] { "TRIG_SMB", line }, plan[0].Path);
                        Assert.Equal("PXI_Trig" + i % 8, session.Terminals.ElementAt(3 + i % 8).Name);
                    }
                });
                Assert.Equal(0, Fake.Routes().Length);
            }
        }

        public static void Session_CallOfAnotherThread_WaitsForTheRunningOne()
        {
            using (RoutingSession session = Open())
            {
                var running = new ManualResetEvent(false);
                var release = new ManualResetEvent(false);
                bool overlapped = false;
                bool done = false;
                var first = new Thread(() => session.Handle.Serialize(handle =>
                {
                    running.Set();
                    release.WaitOne(10000);
                    overlapped = Volatile.Read(ref done);
                    return true;
                }));
                first.Start();
                Assert.True(running.WaitOne(10000), "the first call did not start");
                var second = new Thread(() =>
                {
                    session.Plan("TRIG_SMB", "PXI_Trig0").Dispose();
                    Volatile.Write(ref done, true);
                });
                second.Start();
                Thread.Sleep(200);
                release.Set();
                first.Join();
                second.Join();
                Assert.True(!overlapped, "two calls of a session overlapped");
                Assert.True(done, "the second call did not return");
            }
        }

        public static void Session_ThousandOpensAndCloses_LeaveNothingOpen()
        {
            string path = Controller.DevicePath;
            for (int i = 0; i < 1000; ++i)
            {
                using (var session = new RoutingSession(path))
                {
                    session.Plan("TRIG_SMB", "PXI_Trig0");
                }
            }
            Assert.Equal(0, Fake.Routes().Length);
            Assert.Equal(0, Fake.OpenObjects().Length);
        }
    }
}
