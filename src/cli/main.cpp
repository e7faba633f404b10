#include <string_view>
#include <vector>

#include "cli/Program.h"

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  return notlet::runProgram(arguments);
}
