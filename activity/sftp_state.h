// The requests of an SFTP session that wait for their answers, and its open files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "grammar/event.h"

namespace quorvel {

/// No action tells of a file yet.
inline constexpr std::uint32_t kNotTold = 0xFFFFFFFF;

/// A file between the answer that gave its handle and the answer to its close.
struct SftpFile {
  std::string handle;
  std::string path;
  FileAction action = FileAction::Download;
  bool isMoved = false;          ///< something of it was read or written
  bool isForWriting = false;     ///< as its open says
  std::uint32_t row = kNotTold;  ///< number of the action that tells of it
  LogTime time = kNoTime;
};

/// A request whose answer is waited for.
struct SftpRequest {
  std::uint32_t number = 0;
  Verb verb = Verb::Other;
  FileAction action = FileAction::Download;
  LogTime time = kNoTime;
  std::string path;
  std::string toPath;
  std::string handle;
};

/// As many as a client has at a time; beyond that the oldest are forgotten.
class SftpState {
 public:
  void addRequest(SftpRequest request);
  /// The request of that number, which is no longer waited for.
  [[nodiscard]] std::optional<SftpRequest> takeRequest(std::uint32_t number);

  void addFile(SftpFile file);
  /// A file of which something went that way and no action tells yet; null: there is none. Valid as below.
  [[nodiscard]] SftpFile* untoldFile(FileAction action);
  /// Null where no file has that handle. Valid until the next call of addFile() or takeFile().
  [[nodiscard]] SftpFile* file(std::string_view handle);
  [[nodiscard]] std::optional<SftpFile> takeFile(std::string_view handle);
  /// All that are still open, which are forgotten.
  [[nodiscard]] std::vector<SftpFile> takeFiles();

  /// What it holds, roughly.
  [[nodiscard]] std::size_t bytes() const { return sizeof *this + m_bytes; }

 private:
  static std::size_t bytesOf(const SftpFile& file) { return sizeof file + file.handle.size() + file.path.size(); }
  static std::size_t bytesOf(const SftpRequest& request) {
    return sizeof request + request.path.size() + request.toPath.size() + request.handle.size();
  }

  std::vector<SftpFile> m_files;
  std::vector<SftpRequest> m_requests;
  std::size_t m_oldestFile = 0;
  std::size_t m_oldestRequest = 0;
  std::size_t m_bytes = 0;
};

}  // namespace quorvel
