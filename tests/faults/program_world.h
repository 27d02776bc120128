// The whole program without a screen.
#pragma once

#include <string>

#include "core/record_format.h"
#include "tests/app/scanned_log.h"

namespace quorvel::test {

/// A fresh settings file with what makes the commands touch more files, and an entry of somebody else's at its end.
inline std::string busySettings() {
  std::string text = defaultSettingsText();
  const auto turnOn = [&text](std::string_view key) { text[text.find(key) + key.size()] = '1'; };
  turnOn("GetFilenameOnTransferError=");
  turnOn("CheckBoxInTreeView=");
  return text + "[OTHER]\r\nKept=yes\r\n";
}

inline constexpr std::string_view kOldResults = "of an earlier run\r\n";

/// The lines of the small log over and over, each time with a line of padding dashes behind them.
inline std::string longLog(std::size_t size, std::size_t padding = 0) {
  std::string text;
  while (text.size() < size)
    text += logLines("") + (padding > 0 ? std::string(padding, '-') + "\r\n" : "");
  return text;
}

/// Every slot of a users file holds a record, or nothing.
inline void expectWholeRecords(std::string_view users) {
  for (std::size_t at = 0; at < users.size(); at += kRecordSize)
    EXPECT_TRUE(decodeRecord(users.substr(at, kRecordSize))) << "record at byte " << at;
}

struct ProgramWorld : Program {
  using Program::Program;

  /// Opens a log, finds its sessions, ticks two of them and clicks the first.
  void scan(const std::filesystem::path& log) {
    window.load();
    Program::scan(log);
    window.setNodeChecked(kFirstSession, true);
    window.setNodeChecked(kThirdSession, true);
    window.TreeView1_NodeClick(kFirstSession);
  }
  /// As behind every command: what it switched on is off again, what it took away is back.
  void expectIdle() {
    for (const std::string last :
         {"running off", "busy off", "progress off", "labels off", "tree enabled on", "tree visible on"}) {
      const auto calls = view.callsStartingWith(last.substr(0, last.rfind('o') + 1));
      EXPECT_TRUE(calls.empty() || calls.back() == last) << calls.back();
    }
    EXPECT_EQ(view.callsStartingWith("tree about").size(), view.callsStartingWith("tree changed").size());
    EXPECT_FALSE(state.commandRunning);
    EXPECT_TRUE(view.status(StatusPanel::Text).starts_with("Using")) << view.status(StatusPanel::Text);
  }
  [[nodiscard]] std::string allMessages() const {
    std::string text;
    for (const Message& message : view.messages())
      text += message.text + '\n';
    return text;
  }
};

}  // namespace quorvel::test
