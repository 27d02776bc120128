// The one place where bytes (Windows-1252) become characters and characters become bytes.
#pragma once

#include <QString>
#include <filesystem>
#include <string>
#include <string_view>

namespace quorvel {

/// Every byte becomes exactly one character, the five unassigned ones too, and toBytes() turns it back.
[[nodiscard]] QString toQString(std::string_view bytes);
/// Characters that Windows-1252 lacks become "?".
[[nodiscard]] std::string toBytes(const QString& text);

/// Without what makes a text read as another one: marks that turn its direction, and line ends of other alphabets,
/// become "\uFFFD". File names may hold them.
[[nodiscard]] QString withoutDirectionMarks(QString text);
/// The same for a place with room for one line: control characters, line ends among them, become visible symbols too.
[[nodiscard]] QString toOneLine(QString text);
/// For a window title: one line, and "[*]" stays as it is instead of standing for "modified".
[[nodiscard]] QString toTitle(std::string_view bytes);

[[nodiscard]] QString toFileName(const std::filesystem::path& path);
[[nodiscard]] std::filesystem::path toPath(const QString& fileName);

}  // namespace quorvel
