#include <iostream>

#include "command/cli.h"

int main(int argc, char** argv) {
  vexo::ignoreFileSizeSignal();
  return vexo::runCli(argc, argv, std::cout, std::cerr);
}
