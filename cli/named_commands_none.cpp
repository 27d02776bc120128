#include "cli/named_commands.h"

namespace quorvel {

bool isNamedCommand(std::string_view) {
  return false;
}

int runNamedCommand(std::span<const std::string>, const Shell&) {
  return 2;
}

}  // namespace quorvel
