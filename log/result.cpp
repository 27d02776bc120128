#include "log/result.h"

#include "log/text.h"

namespace quorvel {

std::string Error::description() const {
  if (!detail.empty()) return detail;
  switch (code) {
    case ErrorCode::Overflow:
      return "Overflow";
    case ErrorCode::SubscriptOutOfRange:
      return "Subscript out of range";
    case ErrorCode::FileNotFound:
      return "File not found";
    case ErrorCode::DeviceIoError:
      return "Device I/O error";
    case ErrorCode::BadRecordLength:
      return "Bad record length";
    case ErrorCode::DiskFull:
      return "Disk full";
    case ErrorCode::InputPastEnd:
      return "Input past end of file";
    case ErrorCode::DeviceUnavailable:
      return "Device unavailable";
    case ErrorCode::PermissionDenied:
      return "Permission denied";
    case ErrorCode::PathFileAccess:
      return "Path/File access error";
    case ErrorCode::PathNotFound:
      return "Path not found";
  }
  return "Application-defined or object-defined error";
}

std::string Error::sentence() const {
  return file.empty() ? description() + "." : pathText(file) + ": " + description() + ".";
}

}  // namespace quorvel
