#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "phonesim/line/system.h"
#include "phonesim/options.h"
#include "phonesim/simulator.h"

int main(int argc, char** argv) {
  try {
    const phonesim::Options options = phonesim::parseOptions({argv + 1, argv + argc});
    if (options.help) {
      std::cout << phonesim::optionsHelp();
      return 0;
    }
    phonesim::Simulator simulator(options);
    simulator.run();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "phonesim: " << error.what() << '\n';
    return 1;
  }
}
