#include "ui/qt/file_dialogs.h"

#include <QFileDialog>
#include <QFileInfo>

#include "ui/qt/plain_message.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

std::pair<QString, QString> splitFilter(const std::string& filter) {
  const QString text = toQString(filter);
  return {text.section(u'|', 0, 0), text.section(u'|', 1, 1)};
}

void prepare(QFileDialog& dialog, const FileRequest& request) {
  if (!request.title.empty()) dialog.setWindowTitle(toTitle(request.title));
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  dialog.setNameFilter(nameFilter(request.filter));
  if (!request.folder.empty()) dialog.setDirectory(toFileName(request.folder));
}

/// The file picked, or a cancelled choice.
FileChoice run(QFileDialog& dialog, const FileRequest& request) {
  FileChoice choice;
  choice.filterIndex = request.filterIndex;
  const PlainMessages plainMessages;
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return choice;
  const QString fileName = QDir::toNativeSeparators(QFileInfo(dialog.selectedFiles().constFirst()).absoluteFilePath());
  choice.path = toPath(fileName);
  choice.outcome = FileChoice::Outcome::Chosen;
  return choice;
}

bool mayWriteTo(QWidget* parent, const std::filesystem::path& path, ExistingFile existing) {
  const QString name = toFileName(path);
  if (existing == ExistingFile::Taken || !QFileInfo::exists(name)) return true;
  const QString question = existing == ExistingFile::AskedToReplace
                               ? QStringLiteral(" already exists and will be replaced.\nDo you want to replace it?")
                               : QStringLiteral(
                                     " already exists. The results are added at its end, what is in it "
                                     "stays.\nDo you want to add to it?");
  return showPlainMessage(parent, name + question, Buttons::YesNo);
}

}  // namespace

FileChoice QtFileDialogs::askOpenFile(QWidget* parent, const FileRequest& request) {
  QFileDialog dialog(parent);
  prepare(dialog, request);
  dialog.setFileMode(request.fileMustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
  return run(dialog, request);
}

FileChoice QtFileDialogs::askSaveFile(QWidget* parent, const FileRequest& request) {
  QFileDialog dialog(parent);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  prepare(dialog, request);
  while (true) {
    FileChoice choice = run(dialog, request);
    if (choice.outcome != FileChoice::Outcome::Chosen) return choice;
    choice.path = toPath(withSuffix(toFileName(choice.path), request.filter));
    if (mayWriteTo(parent, choice.path, request.existing)) return choice;
  }
}

QString nameFilter(const std::string& filter) {
  const auto [description, pattern] = splitFilter(filter);
  const bool isEveryFile = pattern.isEmpty() || pattern == QStringLiteral("*.*");
  return description + QStringLiteral(" (") + (isEveryFile ? QStringLiteral("*") : pattern) + u')';
}

QString filterSuffix(const std::string& filter) {
  const QString pattern = splitFilter(filter).second;
  if (!pattern.startsWith(QStringLiteral("*."))) return {};
  const QString suffix = pattern.mid(2);
  const bool isPlain = !suffix.isEmpty() && !suffix.contains(u'*') && !suffix.contains(u'?') && !suffix.contains(u';');
  return isPlain ? suffix : QString();
}

QString withSuffix(const QString& fileName, const std::string& filter) {
  const QString suffix = filterSuffix(filter);
  if (suffix.isEmpty() || QFileInfo(fileName).fileName().contains(u'.')) return fileName;
  return fileName + u'.' + suffix;
}

}  // namespace quorvel
