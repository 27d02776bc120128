// Every grammar there is, in the order of Event::server.
#include <array>

#include "grammar/all_grammars.h"

namespace quorvel {

std::span<const Grammar* const> grammars() {
  static const std::array<const Grammar*, 10> kAll = {&servUClassic(), &servU(),    &vsftpd(),  &xferlog(),   &syslog(),
                                                      &proftpd(),      &pureFtpd(), &openSsh(), &fileZilla(), &iis()};
  return kAll;
}

}  // namespace quorvel
