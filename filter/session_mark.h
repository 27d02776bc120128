// The session number as the filters look for it in lines: every occurrence, without regard to case.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvel {

class SessionMark {
 public:
  SessionMark() = default;
  explicit SessionMark(std::string_view numberInLog);

  [[nodiscard]] std::string_view text() const { return m_text; }
  /// Index of the first occurrence in line at or after from, std::string_view::npos when there is none.
  [[nodiscard]] std::size_t find(std::string_view line, std::size_t from = 0) const;

  /// Calls what(before, after) with the text in front of and behind each occurrence until it returns true; returns
  /// whether it did.
  template <typename Function>
  bool anyOccurrence(std::string_view line, Function what) const {
    for (std::size_t at = find(line); at != std::string_view::npos; at = find(line, at + 1)) {
      if (what(line.substr(0, at), line.substr(at + m_text.size()))) return true;
    }
    return false;
  }

 private:
  std::string m_text;
  std::size_t m_anchor = std::string::npos;  ///< index of a byte that is the same in either case; npos: there is none
};

}  // namespace quorvel
