// Lines of the shape web servers write, as FTP servers write them too:
// `10.0.0.5 ident alice [22/Nov/2026:03:14:26 +0000] "STOR up.bin" 226 12345`
#pragma once

#include <string_view>

#include "grammar/event.h"

namespace quorvel {

struct ClfLine {
  LogTime time = kNoTime;  ///< kNoTime: the line has another shape
  std::string_view address;
  std::string_view user;  ///< empty: nobody
  std::string_view request;
  std::string_view rest;  ///< behind the request and a blank
};
[[nodiscard]] ClfLine readClfLine(std::string_view line);

}  // namespace quorvel
