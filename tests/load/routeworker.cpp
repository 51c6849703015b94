#include <cstdio>
#include <cstdlib>
#include <exception>
#include <thread>
#include <vector>

#include "tests/load/loads.h"
#include "tests/load/routeclient.h"
#include "tests/load/sharedload.h"

namespace nTests {
namespace {

constexpr uint32_t kMaxRoutesPerSession = 20;

// Uses a session from its creation to its destruction.
void runSession(const tRouteWork& work, const tLoad& load) {
  tRouteClient client(work);
  if (work.random->oneIn(4)) {
    client.iterateTerminals();
  }
  for (uint32_t routes = 1 + work.random->below(kMaxRoutesPerSession);
       routes != 0 && load.isEndRequested == 0; --routes) {
    client.useRoute();
  }
  if (work.random->oneIn(4)) {
    client.abandonRoute();
  }
  client.end();
}

void runThread(tLoad& load, tThreadLoad& own, const std::string& name, uint64_t seed) {
  try {
    tRandom random(seed);
    nSimulator::tSimulatedMachine machine;
    const tRouteWork work{routingDevicePath(), &random, &own.progress, &own.tally, &machine};
    while (load.isEndRequested == 0) {
      runSession(work, load);
    }
  } catch (const std::exception& failure) {
    recordFailure(load, name + ", " + nameOf(own.progress.step()) + ": " + failure.what());
  }
  own.progress.enter(tStep::ended);
}

// ---- All lines simultaneously ----

struct tLine {
  const char* from;
  const char* to;
};
constexpr tLine kLines[] = {
    {"WD_Terminal", "TRIG_SMB"}, {"TRIG_SMB", "PXI_Trig0"},  {"PXI_Trig0", "PXI_Trig1"},
    {"PXI_Trig1", "PXI_Trig2"},  {"PXI_Trig2", "PXI_Trig3"}, {"PXI_Trig3", "PXI_Trig4"},
    {"PXI_Trig4", "PXI_Trig5"},  {"PXI_Trig5", "PXI_Trig6"}, {"PXI_Trig6", "PXI_Trig7"},
};

char* reallocate(char* current, size_t required, const char*, size_t) {
  return static_cast<char*>(std::realloc(current, required));
}

void reserve(zoroco_RoutingAdaptorSession* session, const tLine& line) {
  zoerr_Status status = zoerr_Status_initial();
  char* output = nullptr;
  const std::string seeds =
      R"([{"terminal":")" + std::string(line.from) + R"(","cost":1,"constraints":{}}])";
  const std::string destinations = R"([")" + std::string(line.to) + R"("])";
  zoroco_ra_quenra_calculateRoute(session, seeds.c_str(), destinations.c_str(), "{}", &output,
                                  &status);
  const auto ticket =
      output == nullptr ? 0 : static_cast<uint32_t>(std::strtoul(output + 11, nullptr, 10));
  zoroco_ra_quenra_reserveRoute(session, ticket, &output, &status);
  zoroco_ra_quenra_programRoute(session, ticket, &status);
  const int32_t code = status.code;
  const std::string answer = output == nullptr ? "" : output;
  zoerr_Status_release(&status);
  std::free(output);
  require(code == 0, std::string("reserving ") + line.to + " from " + line.from + " returns " +
                         std::to_string(code) + " " + answer);
}

}  // namespace

int runRouteWorker(const std::string& loadName, uint32_t worker, uint64_t seed) {
  const tSharedLoad shared(loadName);
  tLoad& load = shared.load();
  std::vector<std::thread> threads;
  for (size_t i = 0; i < kThreadsPerWorker; ++i) {
    threads.emplace_back([&load, worker, seed, i] {
      runThread(load, load.workers[worker][i],
                "process " + std::to_string(worker) + " thread " + std::to_string(i),
                seed + i * UINT64_C(1000003));
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  return load.hasFailed == 0 ? 0 : 1;
}

int reserveEveryLine() {
  zoerr_Status status = zoerr_Status_initial();
  zoroco_RoutingAdaptorSession* const session =
      zoroco_ra_quenra_createSession(routingDevicePath().c_str(), &reallocate, &status);
  zoerr_Status_release(&status);
  require(session != nullptr, "the last client has a session");
  for (const tLine& line : kLines) {
    reserve(session, line);
  }
  // Closing the device releases the lines.
  zoroco_ra_quenra_destroySession(session);
  return 0;
}

}  // namespace nTests
