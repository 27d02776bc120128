#include "app/settings.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <optional>

#include "app/ini_document.h"
#include "app/program.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kFileName = "quorvel.ini";
constexpr std::string_view kOlderFileName = "quoran.ini";

constexpr ErrorCode kTooLong = ErrorCode::Overflow;

struct DefaultSetting {
  std::string_view section;
  std::string_view key;
  std::string_view value;
};

/// The entries of a fresh file in their order there.
constexpr DefaultSetting kDefaultSettings[] = {
    {"MAIN", "Version", kVersion},
    {"MAIN", "LastOpenPath", ""},
    {"MAIN", "LastOpenFileType", ""},
    {"MAIN", "LastSavePath", ""},
    {"MAIN", "TrunkLongUsernames", "1"},
    {"POSITION", "MainTop", ""},
    {"POSITION", "MainLeft", ""},
    {"POSITION", "MainWidth", ""},
    {"POSITION", "MainHeight", ""},
    {"POSITION", "Maximized", "False"},
    {"OPTION-FILTER", "AutoFilterSession", "1"},
    {"OPTION-FILTER", "FilterEntireSession", "1"},
    {"OPTION-FILTER", "FilterTransfers", "2"},
    {"OPTION-FILTER", "FilterDeletes", "2"},
    {"OPTION-FILTER", "FilterHELP", "2"},
    {"OPTION-FILTER", "FilterMDTM", "2"},
    {"OPTION-FILTER", "FilterSITE", "2"},
    {"OPTION-FILTER", "FilterSYST", "2"},
    {"OPTION-SAVE-SHORT-INFO", "SaveName", "1"},
    {"OPTION-SAVE-SHORT-INFO", "SaveIP", "1"},
    {"OPTION-SAVE-SHORT-INFO", "SaveLogonTime", "1"},
    {"OPTION-SAVE-SHORT-INFO", "SaveLogoffTime", "1"},
    {"OPTION-SAVE-SHORT-INFO", "SaveNumberInLog", "1"},
    {"OPTION-SAVE-SHORT-INFO", "SavePosition", "1"},
    {"OPTION-SAVE-SHORT-INFO", "SaveLogonNo", "1"},
    {"OPTION-SAVE-SHORT-INFO", "SaveTreeIndex", "0"},
    {"OPTION-SAVE", "AppendWhenFilter", "1"},
    {"OPTION-TREEVIEW", "TreeViewType", "0"},
    {"OPTION-TREEVIEW", "CheckBoxInTreeView", "0"},
    {"OPTION-TREEVIEW", "DisplayQUITUsers", "1"},
    {"OPTION-COUNTER", "CountBytes", "1"},
    {"OPTION-COUNTER", "GetFilenameOnTransferError", "0"},
    {"OPTION-COUNTER", "AutoCountWhenFilter", "0"},
    {"OPTION-FIND-USER", "FindUserBuffer", "4000"},
    {"COMPUTER-IP", "AutoClear", "1"},
    {"COMMAND-LINE-ARGUMENTS", "MaxArguments", "50"},
    {"COMMAND-LINE-ARGUMENTS", "AutoExit", "1"},
};

/// The recent files, newest first.
constexpr std::array<std::string_view, 5> kRecentFileKeys = {"LastOpenFile01", "LastOpenFile02", "LastOpenFile03",
                                                             "LastOpenFile04", "LastOpenFile05"};

std::string valueIn(std::string_view text, std::string_view section, std::string_view key) {
  return std::string(findIniValue(text, section, key).value_or("").substr(0, kMaxSettingLength));
}

std::string withRecentFilesMovedDown(std::string text, std::string_view section) {
  for (std::size_t i = kRecentFileKeys.size() - 1; i > 0; --i) {
    text = withIniValue(text, section, kRecentFileKeys[i], valueIn(text, section, kRecentFileKeys[i - 1]));
  }
  return text;
}

std::string withoutControlCharacters(std::string_view value) {
  std::string clean;
  std::copy_if(value.begin(), value.end(), std::back_inserter(clean), [](char c) {
    constexpr char kDelete = 0x7F;
    return static_cast<unsigned char>(c) >= ' ' && c != kDelete;
  });
  return clean;
}

std::optional<std::int32_t> toNumber(std::string_view value) {
  using Limits = std::numeric_limits<std::int32_t>;
  const auto number = parseInteger(value);
  if (!number || *number < Limits::min() || *number > Limits::max()) return std::nullopt;
  return static_cast<std::int32_t>(*number);
}

std::int32_t defaultNumber(std::string_view section, std::string_view key) {
  const auto* const entry = std::find_if(std::begin(kDefaultSettings), std::end(kDefaultSettings), [&](const auto& e) {
    return equalsFolded(e.section, section) && equalsFolded(e.key, key);
  });
  return entry == std::end(kDefaultSettings) ? 0 : toNumber(entry->value).value_or(0);
}

}  // namespace

std::string defaultSettingsText() {
  std::string text;
  std::string_view section;
  for (const auto& entry : kDefaultSettings) {
    if (entry.section != section) {
      if (!section.empty()) text.append(kLineEnd);
      section = entry.section;
      text.append("[").append(section).append("]").append(kLineEnd);
    }
    text.append(entry.key).append("=").append(entry.value).append(kLineEnd);
  }
  return text.append(kLineEnd);
}

Settings::Settings(FileSystem& files, std::filesystem::path programFolder)
    : m_files(files), m_folder(std::move(programFolder)), m_path(m_folder / kFileName) {}

void Settings::prepareFile() {
  const auto older = m_folder / kOlderFileName;
  if (m_files.Exist(older)) (void)m_files.remove(older);
  if (m_files.Exist(m_path)) return;
  // Exist() says no for any trouble: only a file that is really missing may be written anew.
  const auto text = readText();
  if (!text.isOk() && text.error().code == ErrorCode::FileNotFound) WriteDefaultSettingsFile();
}

void Settings::resetOtherVersion() {
  const auto text = readText();
  const bool isUnknown = !text.isOk() && text.error().code != ErrorCode::FileNotFound && text.error().code != kTooLong;
  const bool isOurs = text.isOk() && valueIn(text.value(), "MAIN", "Version") == kVersion;
  if (!isUnknown && !isOurs) WriteDefaultSettingsFile();
}

std::string Settings::ReadSetting(std::string_view section, std::string_view key) const {
  const auto text = readText();
  return text.isOk() ? valueIn(text.value(), section, key) : std::string();
}

void Settings::WriteSetting(std::string_view section, std::string_view key, std::string_view value) {
  const auto stored = readText();
  if (!stored.isOk() && stored.error().code != ErrorCode::FileNotFound) return;
  std::string text = stored.isOk() ? stored.value() : std::string();
  if (section == "Main" && key == kRecentFileKeys.front()) text = withRecentFilesMovedDown(std::move(text), section);
  (void)m_files.replaceWhole(m_path, withIniValue(text, section, key, withoutControlCharacters(value)));
}

void Settings::WriteDefaultSettingsFile() {
  (void)m_files.replaceWhole(m_path, defaultSettingsText());
}

std::int32_t Settings::readNumber(std::string_view section, std::string_view key) const {
  const auto number = toNumber(ReadSetting(section, key));
  return number ? *number : defaultNumber(section, key);
}

bool Settings::readFlag(std::string_view section, std::string_view key) const {
  const std::string value = ReadSetting(section, key);
  if (equalsFolded(value, "True")) return true;
  if (equalsFolded(value, "False")) return false;
  return toNumber(value).value_or(defaultNumber(section, key)) != 0;
}

Result<std::string> Settings::readText() const {
  const auto stamp = m_files.stamp(m_path);
  if (stamp.isOk() && stamp.value().size > kMaxSettingsFileSize) return Error{kTooLong, m_path};
  return m_files.readWhole(m_path);
}

}  // namespace quorvel
