#include "ui/qt/text.h"

#include <QFile>
#include <algorithm>
#include <array>
#include <utility>

#include "log/text.h"

namespace quorvel {
namespace {

std::array<QChar, 256> characterTable() {
  std::array<QChar, 256> table;
  for (std::size_t byte = 0; byte < table.size(); ++byte)
    table[byte] = QString::fromStdString(toUtf8(std::string(1, static_cast<char>(byte)))).front();
  return table;
}

}  // namespace

QString toQString(std::string_view bytes) {
  static const std::array<QChar, 256> kCharacters = characterTable();
  QString text(static_cast<qsizetype>(bytes.size()), Qt::Uninitialized);
  std::transform(bytes.begin(), bytes.end(), text.data(),
                 [](char byte) { return kCharacters[static_cast<unsigned char>(byte)]; });
  return text;
}

std::string toBytes(const QString& text) {
  const QByteArray utf8 = text.toUtf8();
  return toWindows1252({utf8.constData(), static_cast<std::size_t>(utf8.size())});
}

QString withoutDirectionMarks(QString text) {
  const auto isMark = [](QChar c) {
    return c == u'\u061C' || c == u'\u200E' || c == u'\u200F' || (c >= u'\u2028' && c <= u'\u202E') ||
           (c >= u'\u2066' && c <= u'\u2069');
  };
  std::replace_if(text.begin(), text.end(), isMark, QChar(QChar::ReplacementCharacter));
  return text;
}

QString toOneLine(QString text) {
  constexpr char16_t kControlPictures = 0x2400;
  constexpr char16_t kDelete = 0x7F;
  constexpr char16_t kDeletePicture = 0x2421;
  for (QChar& c : text) {
    if (c.unicode() < u' ') c = QChar(static_cast<char16_t>(kControlPictures + c.unicode()));
    if (c.unicode() == kDelete) c = QChar(kDeletePicture);
  }
  return withoutDirectionMarks(std::move(text));
}

QString toTitle(std::string_view bytes) {
  return toOneLine(toQString(bytes)).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

QString toFileName(const std::filesystem::path& path) {
#ifdef _WIN32
  return QString::fromStdWString(path.native());
#else
  return QFile::decodeName(QByteArray::fromStdString(path.native()));
#endif
}

std::filesystem::path toPath(const QString& fileName) {
#ifdef _WIN32
  return fileName.toStdWString();
#else
  return QFile::encodeName(fileName).toStdString();
#endif
}

}  // namespace quorvel
