// The settings file: sections of key=value lines, read and written one key at a time and never cached.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "log/file_system.h"

namespace quorvel {

/// A settings file longer than this is no settings file: it reads as empty, no key is written to it, and start-up
/// replaces it.
inline constexpr std::size_t kMaxSettingsFileSize = 1024 * 1024;

/// Longest value ReadSetting() returns.
inline constexpr std::size_t kMaxSettingLength = 79;

/// The text of a fresh settings file.
[[nodiscard]] std::string defaultSettingsText();

/// No operation reports a failure: reading yields the empty text, writing leaves the old file as it was.
class Settings {
 public:
  /// files must outlive the settings. Nothing is read or written yet.
  Settings(FileSystem& files, std::filesystem::path programFolder);

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

  /// First step of start-up: deletes the settings file of an older product name, creates the file when missing.
  void prepareFile();
  /// Second step: replaces a file that another version wrote by a fresh one. A file that is there but cannot be read
  /// stays: its version is not known.
  void resetOtherVersion();

  /// The value, cut to 79 characters; empty for a missing key, section or file. Sections and keys are found without
  /// regard to case. Blanks around the value and the quotes that then enclose it are not part of it.
  [[nodiscard]] std::string ReadSetting(std::string_view section, std::string_view key) const;
  /// Replaces the value, or adds the key at the end of its section, or the section at the end of the file. Every
  /// other line stays as it is. The file is created when missing and replaced as a whole; when that fails, or the
  /// file is there but cannot be read, the old one stays, silently.
  /// Control characters in value are dropped: a value is one line.
  /// Section "Main" with key "LastOpenFile01", in just this spelling, first moves the recent files down by one.
  void WriteSetting(std::string_view section, std::string_view key, std::string_view value);
  /// Writes the text of a fresh file in place of whatever is there.
  void WriteDefaultSettingsFile();

  /// The value as a number. Empty, garbled or out of 32 bits: the number a fresh file holds for the key, else 0.
  [[nodiscard]] std::int32_t readNumber(std::string_view section, std::string_view key) const;
  /// readNumber() is not 0; "True" and "False" are understood as well.
  [[nodiscard]] bool readFlag(std::string_view section, std::string_view key) const;

 private:
  [[nodiscard]] Result<std::string> readText() const;

  FileSystem& m_files;
  std::filesystem::path m_folder;
  std::filesystem::path m_path;
};

}  // namespace quorvel
