#include "ui/qt/pages/shown_text.h"

#include <QDateTime>
#include <QLocale>

#include "ui/qt/text.h"

namespace quorvel {
namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

QString twoParts(std::int64_t value, std::int64_t unit, const QString& name, std::int64_t part,
                 const QString& partName) {
  const QString whole = shownCount(value / unit) + u' ' + name;
  const std::int64_t rest = value % unit / part;
  return rest == 0 ? whole : whole + u' ' + QString::number(rest) + u' ' + partName;
}

}  // namespace

QString plainLine(std::string_view utf8) {
  return toOneLine(QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())));
}

QString shownSize(std::int64_t bytes) {
  constexpr int kDigits = 1;
  constexpr std::int64_t kKilo = 1000;
  if (bytes < kKilo) return shownCount(bytes) + QStringLiteral(" bytes");
  return QLocale().formattedDataSize(bytes, kDigits, QLocale::DataSizeSIFormat);
}

QString shownCount(std::int64_t count) {
  return QLocale().toString(static_cast<qlonglong>(count));
}

QString shownSeconds(std::int64_t seconds) {
  const QString s = QStringLiteral("s");
  const QString min = QStringLiteral("min");
  const QString h = QStringLiteral("h");
  if (seconds < kMinute) return shownCount(seconds) + u' ' + s;
  if (seconds < kHour) return twoParts(seconds, kMinute, min, 1, s);
  if (seconds < kDay) return twoParts(seconds, kHour, h, kMinute, min);
  return twoParts(seconds, kDay, QStringLiteral("d"), kHour, h);
}

QString shownTime(LogTime time) {
  if (time == kNoTime) return {};
  return QDateTime::fromSecsSinceEpoch(time, Qt::UTC).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString shownName(std::string_view name) {
  return plainLine(name).replace(u'_', u' ');
}

QString shownText(const Cell& cell) {
  constexpr double kHundredths = 100;
  switch (cell.kind) {
    case CellKind::Null:
      return {};
    case CellKind::Text:
      return plainLine(cell.text);
    case CellKind::Name:
      return shownName(cell.text);
    case CellKind::Count:
      return shownCount(cell.number);
    case CellKind::Bytes:
      return shownSize(cell.number);
    case CellKind::Seconds:
      return shownSeconds(cell.number);
    case CellKind::Percent:
      return QLocale().toString(static_cast<double>(cell.number) / kHundredths, 'f', 2) + QStringLiteral(" %");
    case CellKind::Time:
      return shownTime(static_cast<LogTime>(cell.number));
    case CellKind::Flag:
      return cell.number != 0 ? QStringLiteral("yes") : QString();
  }
  return {};
}

QString exactText(const Cell& cell) {
  if (cell.kind == CellKind::Bytes) return shownCount(cell.number) + QStringLiteral(" bytes");
  if (cell.kind == CellKind::Seconds) return shownCount(cell.number) + QStringLiteral(" seconds");
  return shownText(cell);
}

QString plainToolTip(const QString& plain) {
  if (plain.isEmpty()) return {};
  return QStringLiteral("<span style=\"white-space: pre-wrap\">") + plain.toHtmlEscaped() + QStringLiteral("</span>");
}

bool isNumber(CellKind kind) {
  return kind == CellKind::Count || kind == CellKind::Bytes || kind == CellKind::Seconds || kind == CellKind::Percent;
}

}  // namespace quorvel
