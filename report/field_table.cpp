#include "report/field_table.h"

#include "log/text.h"

namespace quorvel {

Cell CellMaker::text(TextId id, LogNumber log) const {
  if (id == kNoText) return {};
  const std::string_view bytes = m_activity.text(id);
  const bool isWindows1252 = m_activity.logs[log].encoding == TextEncoding::Windows1252;
  if (isWindows1252 ? isAscii(bytes) : isUtf8(bytes)) return {CellKind::Text, 0, bytes};
  m_text = utf8Of(bytes, m_activity.logs[log].encoding);
  return {CellKind::Text, 0, m_text};
}

Cell CellMaker::logName(LogNumber log) const {
  return keptText(m_activity.logs[log].name);
}

Cell CellMaker::name(std::string_view text, std::int64_t number) {
  return text.empty() ? Cell{} : Cell{CellKind::Name, number, text};
}

Cell CellMaker::keptName(std::string text) const {
  m_text = std::move(text);
  return name(m_text);
}

Cell CellMaker::keptText(std::string_view text) const {
  if (text.empty()) return {};
  m_text = validUtf8(text);
  return {CellKind::Text, 0, m_text};
}

}  // namespace quorvel
