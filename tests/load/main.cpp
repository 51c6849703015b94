// quenra_load: load tests of the library and the simulated machine, of configurable duration.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "tests/load/routeload.h"
#include "tests/load/routeworker.h"
#include "tests/load/soak.h"

namespace {

using namespace nTests;

int run(int argumentCount, char** arguments) {
  CLI::App app("Load on the library and the simulated machine", "quenra_load");
  app.require_subcommand(1);

  tRouteLoadPlan routes{10000, 0, 3, 1};
  CLI::App* const routesVerb =
      app.add_subcommand("routes", "Routing sessions in two processes, which are killed at times");
  routesVerb->add_option("--lives", routes.lives, "End when so many routes have lived");
  routesVerb->add_option("--seconds", routes.seconds, "... or after this time");
  routesVerb->add_option("--kill-every", routes.killsPer, "Seconds between two kills, on average");
  routesVerb->add_option("--seed", routes.seed, "Of what is random");

  tSoakPlan soak{300, 1};
  CLI::App* const soakVerb =
      app.add_subcommand("mixed", "Eight threads of everything there is to call");
  soakVerb->add_option("--seconds", soak.seconds, "For how long");
  soakVerb->add_option("--seed", soak.seed, "Of what is random");

  std::string loadName;
  uint32_t worker = 0;
  uint64_t workerSeed = 0;
  CLI::App* const workerVerb = app.add_subcommand("route-worker", "One of the two processes");
  workerVerb->add_option("load", loadName)->required();
  workerVerb->add_option("worker", worker)->required();
  workerVerb->add_option("seed", workerSeed)->required();

  CLI::App* const lastVerb =
      app.add_subcommand("take-every-line", "A client that takes every line at once");

  CLI11_PARSE(app, argumentCount, arguments);
  if (*soakVerb) {
    return runSoak(soak);
  }
  if (*workerVerb) {
    return runRouteWorker(loadName, worker, workerSeed);
  }
  return *lastVerb ? takeEveryLine() : runRouteLoad(routes);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  try {
    return run(argumentCount, arguments);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "quenra_load: %s\n", failure.what());
    return kPromiseBroken;
  }
}
