// The settings file: sections of key=value lines, read and written one key at a time and never cached.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/file_system.h"

namespace quorvel {

class Settings {
 public:
  /// files must outlive the settings. Nothing is read or written yet.
  Settings(FileSystem& files, std::filesystem::path programFolder);

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

  /// First step of start-up: deletes the settings file of an older product name, creates the file when missing.
  void prepareFile();
  /// Second step: replaces a file that another version wrote by a fresh one.
  void resetOtherVersion();

  /// The value, cut to 79 characters; empty for a missing key, section or file. Sections and keys are found without
  /// regard to case.
  [[nodiscard]] std::string ReadSetting(std::string_view section, std::string_view key) const;
  /// Replaces the value, or adds the key at the end of its section, or the section at the end of the file. Every
  /// other line stays as it is. The file is replaced as a whole; when that fails the old one stays, silently.
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
  FileSystem& m_files;
  std::filesystem::path m_folder;
  std::filesystem::path m_path;
};

}  // namespace quorvel
