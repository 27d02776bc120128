// The two filters that choose which lines of a session are copied. They know neither files nor windows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "classic/find/user_act.h"
#include "classic/lines/session_lines.h"

namespace quorvel {

/// Adds the lines that stand above a session's filtered lines in a file, an empty line at the end included, to text.
void appendSessionBlockHeader(std::string& text, const UserAct& session);

enum class FilterHeader {
  None,
  Block,  ///< above each session, but those with Position 0
};

/// Copies every line of the session from its connect line to its closing line, or to a server start.
class EntireSessionFilter final : public LineRule {
 public:
  explicit EntireSessionFilter(FilterHeader header);

  [[nodiscard]] std::uint32_t marksOf(bool hasDash, std::string_view after) const override;
  [[nodiscard]] std::string_view header(const UserAct& session) override;
  bool take(const LogLine& line, std::uint32_t marks, bool hasServerStart, std::uint8_t& state,
            SessionTexts& texts) override;

 private:
  const FilterHeader m_kind;
  std::string m_header;
};

/// What the command filter copies.
struct CommandFilterOptions {
  bool transfers = false;
  bool deletes = false;
  bool site = false;
  bool mdtm = false;
  bool repliesEndTransfers = false;  ///< the server need not write a sentence about a file
};

/// Copies the chosen FTP commands with their replies, an empty line after each block.
class CommandFilter final : public LineRule {
 public:
  CommandFilter(const CommandFilterOptions& options, FilterHeader header);

  [[nodiscard]] std::uint32_t marksOf(bool hasDash, std::string_view after) const override;
  [[nodiscard]] std::string_view header(const UserAct& session) override;
  bool take(const LogLine& line, std::uint32_t marks, bool hasServerStart, std::uint8_t& state,
            SessionTexts& texts) override;

 private:
  [[nodiscard]] std::uint8_t withCommands(std::uint8_t state, std::uint32_t marks) const;

  const CommandFilterOptions m_options;
  const FilterHeader m_kind;
  std::string m_header;
};

}  // namespace quorvel
