// W3C extended logs: fields by a `#Fields` line, which may change inside of a log.
#pragma once

#include <array>
#include <string_view>

#include "grammar/grammar.h"

namespace quorvel {

/// The fields that tell something; numbers of Dialect::fields.
enum class W3cField {
  Other,
  Date,
  Time,
  Address,
  User,
  Method,
  Path,
  FullPath,
  Status,
  Win32Status,
  SentBytes,
  ReceivedBytes,
  TimeTaken,
  Session,
  Count
};

/// Takes `#Fields:` and `#Date:`.
void takeW3cDirective(std::string_view line, Dialect& dialect);

/// A line of values; empty where a field is not there or holds "-".
class W3cLine {
 public:
  /// No values where line has more or fewer of them than there are fields.
  W3cLine(std::string_view line, const Dialect& dialect);
  [[nodiscard]] bool isValid() const { return m_time != kNoTime; }
  [[nodiscard]] LogTime time() const { return m_time; }
  [[nodiscard]] std::string_view operator[](W3cField field) const { return m_values[static_cast<std::size_t>(field)]; }

 private:
  std::array<std::string_view, static_cast<std::size_t>(W3cField::Count)> m_values;
  LogTime m_time = kNoTime;
};

}  // namespace quorvel
