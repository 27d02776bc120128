#include "report/output.h"

#include <system_error>
#include <utility>

namespace quorvel {
namespace {

class FileOutput final : public Output {
 public:
  FileOutput(std::unique_ptr<File> file, std::unique_ptr<ReplacingFile> replacing)
      : m_replacing(std::move(replacing)), m_file(std::move(file)) {}

 protected:
  Status write(std::string_view piece) override { return named(m_file->append(piece, {})); }
  Status close() override {
    if (m_replacing == nullptr) return {};
    if (Status synced = m_file->sync(); !synced.isOk()) return named(synced);
    m_file.reset();
    return m_replacing->replace();
  }

 private:
  [[nodiscard]] Status named(const Status& status) const {
    return status.isOk() || m_replacing == nullptr ? status : m_replacing->named(status.error());
  }

  std::unique_ptr<ReplacingFile> m_replacing;  ///< null: written to in place
  std::unique_ptr<File> m_file;                ///< closed before what it is called goes
};

}  // namespace

Status Output::flush() {
  if (m_status.isOk() && !m_text.empty()) m_status = write(m_text);
  m_text.clear();
  return m_status;
}

Status Output::finish() {
  if (Status written = flush(); !written.isOk()) return written;
  return close();
}

ReplacingFile::ReplacingFile(FileSystem& files, std::filesystem::path path) : m_files(files), m_path(std::move(path)) {
  std::error_code error;
  const auto target = std::filesystem::canonical(m_path, error);  // through links
  if (!error) m_path = target;
  m_temporary = temporaryName(m_path);
}

ReplacingFile::~ReplacingFile() {
  if (!m_isReplaced) (void)m_files.remove(m_temporary);
}

Status ReplacingFile::replace() {
  std::error_code error;
  const auto old = std::filesystem::status(m_path, error);
  if (!error && std::filesystem::exists(old)) std::filesystem::permissions(m_temporary, old.permissions(), error);
  const Status done = m_files.rename(m_temporary, m_path);
  m_isReplaced = done.isOk();
  return done.isOk() ? done : named(done.error());
}

Result<std::unique_ptr<Output>> openOutput(FileSystem& files, const std::filesystem::path& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  const bool isInPlace = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
  auto replacing = isInPlace ? nullptr : std::make_unique<ReplacingFile>(files, path);
  auto file = isInPlace ? files.open(path, OpenMode::Append) : files.open(replacing->temporary(), OpenMode::Replace);
  if (!file.isOk()) return isInPlace ? file.error() : replacing->named(file.error());
  return std::unique_ptr<Output>(std::make_unique<FileOutput>(std::move(file.value()), std::move(replacing)));
}

}  // namespace quorvel
