#include "ui/console/plain_line.h"

#include <algorithm>

#include "log/text.h"

namespace quorvel {
namespace {

/// The bytes below the blank, the delete character, and the bytes the code page leaves unassigned: these are control
/// characters in UTF-8.
bool isControl(char c) {
  constexpr std::string_view kUnassigned = "\x7F\x81\x8D\x8F\x90\x9D";
  return static_cast<unsigned char>(c) < ' ' || kUnassigned.find(c) != std::string_view::npos;
}

}  // namespace

std::string plainLine(std::string_view text) {
  std::string line;
  while (!text.empty()) {
    const auto piece = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(std::min(text.size(), piece.size() + 1));
    const auto words = trimBlanks(piece);
    if (words.empty()) continue;
    if (!line.empty()) line += ' ';
    line += words;
  }
  std::replace_if(line.begin(), line.end(), isControl, '?');
  return toUtf8(line);
}

}  // namespace quorvel
