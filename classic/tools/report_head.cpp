#include "classic/tools/report_head.h"

#include "log/text.h"

namespace quorvel {

std::string reportHead(const std::filesystem::path& log, const DateTime& now) {
  constexpr std::size_t kValueColumn = 12;
  std::string head = atColumn("Log: ", kValueColumn, pathText(log));
  head += kLineEnd;
  head += atColumn("Processed: ", kValueColumn, now.date + " " + now.time);
  head += kLineEnd;
  head += kLineEnd;
  return head;
}

}  // namespace quorvel
