// Every grammar there is, in the order of Event::server.
#include <array>

#include "grammar/all_grammars.h"

namespace quorvel {

std::span<const Grammar* const> grammars() {
  static const std::array<const Grammar*, 4> kAll = {&servUClassic(), &servU(), &vsftpd(), &xferlog()};
  return kAll;
}

}  // namespace quorvel
