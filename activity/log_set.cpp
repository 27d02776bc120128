#include "activity/log_set.h"

#include <algorithm>
#include <array>
#include <span>
#include <system_error>
#include <utility>

#include "activity/log_start.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::size_t kPiece = 256 * 1024;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// A file whose place is looked for, with its first bytes.
struct Candidate {
  SetFile file;
  std::string head;
  std::uint64_t length = 0;  ///< where it was asked for
};

Result<std::size_t> readFully(LogSource& source, std::span<char> buffer) {
  std::size_t count = 0;
  while (count < buffer.size()) {
    const auto more = source.read(buffer.subspan(count));
    if (!more.isOk()) return more.error();
    if (more.value() == 0) break;
    count += more.value();
  }
  return count;
}

Error notRewindable(const LogSource& source) {
  return {ErrorCode::PathFileAccess, {}, source.name() + ": this cannot be one of several files of a log"};
}

Result<Candidate> candidateOf(std::unique_ptr<LogSource> source) {
  Candidate candidate;
  candidate.head.resize(kLogStartBytes);
  const auto count = readFully(*source, candidate.head);
  if (!count.isOk()) return count.error();
  candidate.head.resize(count.value());
  if (!source->rewind() && count.value() > 0) return notRewindable(*source);
  candidate.file.first = firstTimeOf(candidate.head, source->changedTime());
  candidate.file.source = std::move(source);
  return candidate;
}

/// With its line end; empty where there is none.
std::string firstLineOf(const std::string& text) {
  return text.substr(0, text.find('\n') + 1);  // npos + 1 is 0
}

/// Whether a file begins with that line of another, as far as it goes.
bool beginsLike(const std::string& text, const std::string& line) {
  return !line.empty() && !text.empty() && text.compare(0, line.size(), line, 0, text.size()) == 0;
}

Status goBack(LogSource& source) {
  if (!source.rewind()) return notRewindable(source);
  return {};
}

Result<std::uint64_t> lengthOf(LogSource& source) {
  std::vector<char> piece(kPiece);
  std::uint64_t length = 0;
  for (std::size_t count = kPiece; count == kPiece; length += count) {
    const auto read = readFully(source, piece);
    if (!read.isOk()) return read.error();
    count = read.value();
  }
  if (const Status status = goBack(source); !status.isOk()) return status.error();
  return length;
}

/// How many bytes of b, whole lines or all there are, a begins with too. a is no shorter.
Result<std::uint64_t> overlapOf(LogSource& a, LogSource& b) {
  std::vector<char> first(kPiece), second(kPiece);
  std::uint64_t whole = 0;
  for (std::uint64_t at = 0;; at += kPiece) {
    const auto firstCount = readFully(a, first);
    const auto secondCount = readFully(b, second);
    if (!firstCount.isOk()) return firstCount.error();
    if (!secondCount.isOk()) return secondCount.error();
    const std::size_t common = std::min(firstCount.value(), secondCount.value());
    const auto alike = static_cast<std::size_t>(
        std::mismatch(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(common), second.begin()).first -
        first.begin());
    const std::size_t lineEnd = std::string_view(first.data(), alike).rfind('\n');
    if (lineEnd != std::string_view::npos) whole = at + lineEnd + 1;
    if (alike == kPiece) continue;
    if (alike == secondCount.value()) whole = at + alike;
    break;
  }
  if (const Status status = goBack(a); !status.isOk()) return status.error();
  if (const Status status = goBack(b); !status.isOk()) return status.error();
  return whole;
}

/// Puts files that begin alike in order, the longest first, and notes what the others share with it.
Status orderCopies(std::span<Candidate> copies) {
  for (Candidate& copy : copies) {
    const auto length = lengthOf(*copy.file.source);
    if (!length.isOk()) return length.error();
    copy.length = length.value();
  }
  std::stable_sort(copies.begin(), copies.end(),
                   [](const Candidate& a, const Candidate& b) { return a.length > b.length; });
  for (Candidate& copy : copies.subspan(1)) {
    const auto overlap = overlapOf(*copies.front().file.source, *copy.file.source);
    if (!overlap.isOk()) return overlap.error();
    copy.file.repeatedBytes = overlap.value();
  }
  return {};
}

/// The packing's ending taken off.
std::string_view withoutPacking(std::string_view name) {
  static constexpr std::array<std::string_view, 7> kEndings = {".gz", ".bz2", ".xz", ".zst", ".lz4", ".zip", ".tar"};
  for (bool isTaken = true; isTaken;) {
    isTaken = false;
    for (const std::string_view ending : kEndings) {
      if (name.size() > ending.size() && equalsFolded(name.substr(name.size() - ending.size()), ending)) {
        name.remove_suffix(ending.size());
        isTaken = true;
      }
    }
  }
  return name;
}

/// Length of a month's name that text begins with; 0: none.
std::size_t monthLength(std::string_view text) {
  static constexpr std::string_view kMonths = "janfebmaraprmayjunjulaugsepoctnovdec";
  for (std::size_t at = 0; at < kMonths.size(); at += 3) {
    if (text.size() >= 3 && equalsFolded(text.substr(0, 3), kMonths.substr(at, 3))) return 3;
  }
  return 0;
}

/// A run of digits, month names and what stands between them, from the first digit on.
struct DateRun {
  std::size_t end = 0;
  std::size_t digits = 0;
  bool hasMonth = false;
};

DateRun dateRunAt(std::string_view name, std::size_t from) {
  DateRun run{from, 0, false};
  for (std::size_t at = from; at < name.size();) {
    const std::size_t month = monthLength(name.substr(at));
    if (isDigit(name[at])) {
      ++run.digits;
      run.end = ++at;
    } else if (run.end - from == run.digits && run.digits % 2 != 0) {
      break;  // a counter: years, months and days have two digits or four
    } else if (month > 0 && run.digits > 0 && at + month < name.size() && isDigit(name[at + month])) {
      run.hasMonth = true;
      at += month;
    } else if (run.digits > 0 && (name[at] == '-' || name[at] == '_' || name[at] == '.') && at + 1 < name.size() &&
               (isDigit(name[at + 1]) || monthLength(name.substr(at + 1)) > 0)) {
      ++at;
    } else {
      break;
    }
  }
  return run;
}

std::vector<std::filesystem::path> sortedPlainFiles(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder.empty() ? "." : folder, error)) {
    std::error_code ignored;
    if (entry.is_regular_file(ignored)) files.push_back(folder / entry.path().filename());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string nameOf(const std::filesystem::path& path) {
  return pathBytes(path.filename());
}

}  // namespace

Result<std::vector<SetFile>> orderSet(std::vector<std::unique_ptr<LogSource>> sources) {
  std::vector<Candidate> candidates;
  for (auto& source : sources) {
    auto candidate = candidateOf(std::move(source));
    if (!candidate.isOk()) return candidate.error();
    candidates.push_back(std::move(candidate.value()));
  }
  std::stable_sort(candidates.begin(), candidates.end(), [](const Candidate& a, const Candidate& b) {
    return (a.file.first == kNoTime ? ~LogTime{0} : a.file.first) <
           (b.file.first == kNoTime ? ~LogTime{0} : b.file.first);
  });
  // Copies of one file have one first stamp; bring those that begin with the same line together.
  for (auto begin = candidates.begin(); begin != candidates.end();) {
    const std::string line = firstLineOf(begin->head);
    const auto sameStamp = std::find_if(begin, candidates.end(), [first = begin->file.first](const Candidate& other) {
      return other.file.first != first;
    });
    const auto end = std::stable_partition(begin, sameStamp,
                                           [&line](const Candidate& other) { return beginsLike(other.head, line); });
    if (end - begin > 1) {
      if (const Status status = orderCopies({begin, end}); !status.isOk()) return status.error();
    }
    begin = std::max(end, begin + 1);
  }
  std::vector<SetFile> files;
  for (Candidate& candidate : candidates)
    files.push_back(std::move(candidate.file));
  return files;
}

std::string rotationStem(std::string_view fileName) {
  const std::string_view name = withoutPacking(fileName);
  std::string stem;
  for (std::size_t at = 0; at < name.size();) {
    const DateRun run = isDigit(name[at]) ? dateRunAt(name, at) : DateRun{};
    const bool hasSeparator = !stem.empty() && (stem.back() == '.' || stem.back() == '-' || stem.back() == '_');
    const bool isCounter = run.end == name.size() && hasSeparator;
    const bool isDate = run.digits >= 6 || (run.hasMonth && run.digits >= 2);
    if (run.digits > 0 && (isCounter || isDate)) {
      if (hasSeparator) stem.pop_back();
      at = run.end;
    } else if (run.digits > 0) {
      for (; at < name.size() && isDigit(name[at]); ++at)
        stem += name[at];
    } else {
      stem += name[at++];
    }
  }
  return foldCase(stem);
}

std::vector<std::filesystem::path> rotatedSiblings(const std::filesystem::path& path) {
  const std::string stem = rotationStem(nameOf(path));
  std::vector<std::filesystem::path> siblings = sortedPlainFiles(path.parent_path());
  std::erase_if(siblings, [&stem](const auto& file) { return rotationStem(nameOf(file)) != stem; });
  if (siblings.empty()) siblings.push_back(path);
  return siblings;
}

std::vector<std::filesystem::path> filesOfFolder(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files = sortedPlainFiles(folder);
  std::erase_if(files, [](const auto& file) { return nameOf(file).starts_with('.'); });
  return files;
}

}  // namespace quorvel
