// The whole program without a screen, in files that can be made to fail.
#pragma once

#include <string>

#include "app/main_window.h"
#include "tests/app/scanned_log.h"
#include "tests/support/fault_files.h"
#include "tests/support/recording_view.h"

namespace quorvel::test {

/// A fresh settings file with what makes the commands touch more files, and an entry of somebody else's at its end.
inline std::string busySettings() {
  std::string text = defaultSettingsText();
  const auto turnOn = [&text](std::string_view key) { text[text.find(key) + key.size()] = '1'; };
  turnOn("GetFilenameOnTransferError=");
  turnOn("CheckBoxInTreeView=");
  return text + "[OTHER]\r\nKept=yes\r\n";
}

/// real must outlive the world.
struct ProgramWorld {
  explicit ProgramWorld(FileSystem& real, const std::filesystem::path& programFolder)
      : files(real), settings(files, programFolder), window(files, settings, view, pacer, programFolder) {}

  FaultFiles files;
  Settings settings;
  RecordingView view;
  Pacer pacer{Pacer::Clock::duration::zero()};
  frmMain window;

  /// Opens a log, finds its sessions, ticks two of them and clicks the first.
  void scan(const std::filesystem::path& log) {
    window.load();
    window.useLog(log, log.filename().string(), LogType::ServU);
    window.mnuFindUsers_Click();
    window.setNodeChecked(kFirstSession, true);
    window.setNodeChecked(kThirdSession, true);
    window.TreeView1_NodeClick(kFirstSession);
  }
  [[nodiscard]] std::string allMessages() const {
    std::string text;
    for (const Message& message : view.messages())
      text += message.text + '\n';
    return text;
  }
};

}  // namespace quorvel::test
