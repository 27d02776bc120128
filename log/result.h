// Success or failure as a value: an operation that can fail returns a Status or a Result<T>, never throws.
#pragma once

#include <cassert>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace quorvel {

/// Run-time error numbers as they stand in error.log and in the program's messages. Values are shown to users and
/// written to disk, do not change.
enum class ErrorCode {
  Overflow = 6,
  SubscriptOutOfRange = 9,
  FileNotFound = 53,
  DeviceIoError = 57,
  BadRecordLength = 59,
  DiskFull = 61,
  InputPastEnd = 62,
  DeviceUnavailable = 68,
  PermissionDenied = 70,
  PathFileAccess = 75,
  PathNotFound = 76,
};

/// What went wrong: the number and its standard description ("Disk full"), and the file it happened to, empty where
/// no file is involved.
struct Error {
  ErrorCode code;
  std::filesystem::path file;
  std::string detail{};  ///< what went wrong where no standard text says it: "The archive is damaged"; else empty

  [[nodiscard]] int number() const { return static_cast<int>(code); }
  /// The detail, or the standard text of the number, e.g. "Bad record length".
  [[nodiscard]] std::string description() const;
  /// A full sentence naming the file, e.g. "a.log: File not found.".
  [[nodiscard]] std::string sentence() const;
};

/// Outcome of an operation without a value. Default constructed it is a success.
class [[nodiscard]] Status {
 public:
  Status() = default;
  Status(Error error) : m_error(std::move(error)) {}  // NOLINT(google-explicit-constructor): return an Error as is

  [[nodiscard]] bool isOk() const { return !m_error; }
  /// Only valid when not isOk().
  [[nodiscard]] const Error& error() const {
    assert(m_error);
    return *m_error;
  }

 private:
  std::optional<Error> m_error;
};

/// A value, or the error that kept the operation from producing one.
template <typename T>
class [[nodiscard]] Result {
 public:
  Result(T value) : m_content(std::move(value)) {}      // NOLINT(google-explicit-constructor): return a value as is
  Result(Error error) : m_content(std::move(error)) {}  // NOLINT(google-explicit-constructor): return an Error as is

  [[nodiscard]] bool isOk() const { return m_content.index() == 0; }
  /// Only valid when isOk().
  [[nodiscard]] T& value() {
    assert(isOk());
    return *std::get_if<0>(&m_content);
  }
  [[nodiscard]] const T& value() const {
    assert(isOk());
    return *std::get_if<0>(&m_content);
  }
  [[nodiscard]] const Error& error() const {
    assert(!isOk());
    return *std::get_if<1>(&m_content);
  }

 private:
  std::variant<T, Error> m_content;
};

}  // namespace quorvel
