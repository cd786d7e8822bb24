#include <iostream>

#include "command/cli.h"

int main(int argc, char** argv) { return vexo::runCli(argc, argv, std::cout, std::cerr); }
