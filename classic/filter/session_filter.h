// The two filters that choose which lines of a session are copied. They know neither files nor windows.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "classic/find/session_lines.h"
#include "classic/find/user_act.h"

namespace quorvel {

/// Takes the lines a filter chose, without line ends; an empty line separates blocks.
class FilterOutput {
 public:
  virtual ~FilterOutput() = default;
  virtual void writeLine(std::string_view line) = 0;
};

/// Where the filtered lines of one session after the other go.
class FilterTarget : public FilterOutput {
 public:
  virtual void beginSession(const UserAct& session) = 0;
  virtual void endSession() = 0;
  /// Makes every line written so far visible.
  virtual void flush() = 0;
  /// False when a write failed; later ones do nothing then.
  [[nodiscard]] virtual bool isOk() const = 0;
};

class SessionFilter {
 public:
  virtual ~SessionFilter() = default;
  virtual void begin(const UserAct& session) = 0;
  /// Takes the next line that readSessionLines() hands out for the session. Lines that concern neither the session nor
  /// a server start have no effect in any filter and need not be handed in. Returns false when the session is over.
  virtual bool line(const SessionLine& line, FilterOutput& output) = 0;
};

/// Copies every line of the session from its connect line to its closing line, or to a server start.
class EntireSessionFilter final : public SessionFilter {
 public:
  void begin(const UserAct& session) override;
  bool line(const SessionLine& line, FilterOutput& output) override;

 private:
  [[nodiscard]] bool isConnectLine(const SessionLine& line) const;

  std::string m_connectTime;
  std::string m_ip;
  bool m_isConnected = false;
};

/// What the command filter copies.
struct CommandFilterOptions {
  bool transfers = false;
  bool deletes = false;
  bool site = false;
  bool mdtm = false;
};

/// Copies the chosen FTP commands with their replies, an empty line behind each block.
class CommandFilter final : public SessionFilter {
 public:
  explicit CommandFilter(const CommandFilterOptions& options) : m_options(options) {}

  void begin(const UserAct& session) override;
  bool line(const SessionLine& line, FilterOutput& output) override;

 private:
  void detectCommands(std::uint32_t marks);
  void writeBlockLine(std::uint32_t marks, std::string_view text, FilterOutput& output);
  void writeDeleteReply(std::uint32_t marks, std::string_view text, FilterOutput& output);

  CommandFilterOptions m_options;
  bool m_inTransfer = false;
  bool m_inDelete = false;
  bool m_deleteFirstLine = false;
  bool m_inSite = false;
  bool m_inMdtm = false;
};

}  // namespace quorvel
