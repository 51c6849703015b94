// quenra_load: load tests of the library and the simulated machine, of configurable duration.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "tests/load/loads.h"

namespace {

using namespace nTests;

int run(int argumentCount, char** arguments) {
  CLI::App app("Load on the library and the simulated machine", "quenra_load");
  app.require_subcommand(1);

  tRouteLoadPlan routes{10000, 0, 3, 1};
  CLI::App* const routesVerb =
      app.add_subcommand("routes", "Routing sessions in two processes, which are killed at random");
  routesVerb->add_option("--lives", routes.routes, "End after this number of routes");
  routesVerb->add_option("--seconds", routes.seconds, "End after this time");
  routesVerb->add_option("--kill-every", routes.killInterval,
                         "Seconds between two kills, on average");
  routesVerb->add_option("--seed", routes.seed, "Seed of the random numbers");

  tSoakPlan soak{300, 1};
  CLI::App* const soakVerb = app.add_subcommand("mixed", "Eight threads that call all functions");
  soakVerb->add_option("--seconds", soak.seconds, "Duration");
  soakVerb->add_option("--seed", soak.seed, "Seed of the random numbers");

  std::string loadName;
  uint32_t worker = 0;
  uint64_t workerSeed = 0;
  CLI::App* const workerVerb =
      app.add_subcommand("route-worker", "One of the two processes of 'routes'");
  workerVerb->add_option("load", loadName)->required();
  workerVerb->add_option("worker", worker)->required();
  workerVerb->add_option("seed", workerSeed)->required();

  CLI::App* const lastVerb =
      app.add_subcommand("reserve-every-line", "A client that reserves every line simultaneously");

  CLI11_PARSE(app, argumentCount, arguments);
  if (*soakVerb) {
    return runSoak(soak);
  }
  if (*workerVerb) {
    return runRouteWorker(loadName, worker, workerSeed);
  }
  return *lastVerb ? reserveEveryLine() : runRouteLoad(routes);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  try {
    return run(argumentCount, arguments);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "quenra_load: %s\n", failure.what());
    return kContractViolated;
  }
}
