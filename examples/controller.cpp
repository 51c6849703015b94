// Prints the controller with its memory modules, and connects two trigger terminals until Enter.
#include <iostream>

#include "quenra.hpp"

static void printMemory(const quenra::controller& controller) {
  const std::uint32_t count = controller.get(quenra::memory_module_count);
  for (std::uint32_t module = 0; module < count; ++module) {
    std::cout << controller.get(quenra::memory_locator[module]) << ": "
              << controller.get(quenra::memory_size[module]).mebibytes() << " MiB, "
              << controller.get(quenra::memory_speed[module]).count() << " MT/s\n";
  }
}

static void printFirmware(const quenra::controller& controller) {
  std::error_code code;
  const std::string marten = controller.get(quenra::firmware_version.on(quenra::marten), code);
  if (!code) {
    std::cout << "Marten firmware: " << marten << '\n';
  } else if (code == quenra::status::no_controller) {
    std::cout << "no Marten\n";
  } else {
    std::cout << "Marten: " << code.message() << '\n';
  }
}

static void connect(const char* from, const char* to) {
  quenra::routing::session session(
      [](quenra::routing::demotion) { std::cout << "the route was demoted\n"; });
  const quenra::routing::route route = session.connect(from, to);
  for (const std::string& terminal : route.path()) {
    std::cout << terminal << '\n';
  }
  std::cout << "press Enter to disconnect\n";
  std::cin.get();
}

int main(int argc, char** argv) {
  try {
    const quenra::controller controller;
    std::cout << controller.get(quenra::product_name) << '\n';
    printMemory(controller);
    printFirmware(controller);
    if (argc == 3) {
      connect(argv[1], argv[2]);
    }
  } catch (const quenra::error& error) {
    std::cerr << error.what() << '\n' << error.advice() << '\n';
    return 1;
  }
  return 0;
}
