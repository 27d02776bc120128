// What every command of the main window is given.
#pragma once

#include "app/main_window_state.h"
#include "app/pacer.h"
#include "app/settings.h"
#include "app/view.h"
#include "log/file_system.h"

namespace quorvel {

/// All references outlive the command.
struct CommandContext {
  FileSystem& files;
  Settings& settings;
  MainWindowState& state;
  MainWindowView& view;
  Pacer& pacer;
};

/// Keeps commands from nesting: a command that runs the interface would otherwise let the user start a second one. Each
/// begins with the Stop flag down: a Stop that came when nothing was left to stop is not its own.
/// Usage: CommandGuard guard(context); if (!guard) return;
class CommandGuard {
 public:
  explicit CommandGuard(CommandContext& context) : m_context(context), m_entered(!context.state.commandRunning) {
    if (!m_entered) return;
    m_context.state.commandRunning = true;
    m_context.state.stopFlag = false;
    m_context.view.setCommandRunning(true);
  }
  ~CommandGuard() {
    if (!m_entered) return;
    m_context.state.commandRunning = false;
    m_context.view.setCommandRunning(false);
  }
  CommandGuard(const CommandGuard&) = delete;
  CommandGuard& operator=(const CommandGuard&) = delete;

  /// False when another command is running already.
  explicit operator bool() const { return m_entered; }

 private:
  CommandContext& m_context;
  bool m_entered;
};

}  // namespace quorvel
