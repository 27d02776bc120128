// Logs of real servers, held against what was done while they were made. scripts/record-server-logs makes both.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/activity_text.h"

namespace quorvel::test {
namespace {

std::string fileText(const std::string& name, std::string_view folder = QUORVEL_RECORDED) {
  std::ifstream file(std::string(folder) + "/" + name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

/// One log-on or file action, as done.tsv tells it or as the tables do.
struct Deed {
  std::string outcome;  ///< ok, failed, aborted
  std::string action;
  std::string user;
  std::string path;
  std::string toPath;
  std::string bytes;

  [[nodiscard]] std::string text() const {
    std::string all = outcome + " " + action + " " + user;
    for (const std::string& part : {path, toPath, bytes})
      if (!part.empty()) all += " | " + part;
    return all;
  }
};

std::vector<Deed> readTsv(const std::string& name) {
  std::vector<Deed> deeds;
  const std::string text = fileText(name);
  for (std::string_view line : linesOf(text)) {
    std::vector<std::string> fields(6);
    for (std::string& field : fields) {
      field = line.substr(0, line.find('\t'));
      line.remove_prefix(std::min(field.size() + 1, line.size()));
    }
    deeds.push_back({fields[0], fields[1], fields[2], fields[3], fields[4], fields[5]});
  }
  return deeds;
}

/// The log-ons and actions in the order of their lines.
std::vector<Deed> deedsIn(const Activity& activity) {
  std::vector<std::pair<std::uint64_t, Deed>> told;
  for (std::size_t i = 0; i < activity.logons.size(); ++i) {
    const LogonRow& row = activity.logons[i];
    told.push_back(
        {row.position, {row.isOk() ? "ok" : "failed", "logon", std::string(activity.text(row.user)), {}, {}, {}}});
  }
  for (std::size_t i = 0; i < activity.actions.size(); ++i) {
    const ActionRow& row = activity.actions[i];
    const bool isAborted = row.cause == FailureCause::Aborted || row.cause == FailureCause::Closed;
    told.push_back({row.position,
                    {row.outcome == Outcome::Ok       ? "ok"
                     : isAborted                      ? "aborted"
                     : row.outcome == Outcome::Failed ? "failed"
                                                      : "?",
                     std::string(actionName(row.action)), std::string(activity.text(row.user)),
                     std::string(activity.text(row.path)), std::string(activity.text(row.toPath)),
                     row.bytes < 0 || isAborted ? "" : std::to_string(row.bytes)}});
  }
  std::stable_sort(told.begin(), told.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<Deed> deeds;
  for (auto& [position, deed] : told)
    deeds.push_back(std::move(deed));
  return deeds;
}

/// What a log can tell of what was done. Where it cannot, it is not expected.
struct Recording {
  const char* log;
  const char* server;
  std::size_t sessions;
  const char* guest = "ftp";         ///< how it names the user who gave "anonymous"; where it differs, "given/acting"
  const char* leaves = "";           ///< actions it leaves out; "!logon" where those that failed are all it holds
  const char* broken = "ok failed";  ///< what it says of an upload and of a download that the client broke off
  std::string (*path)(std::string) = nullptr;  ///< how it writes paths
  const char* failures = "upload delete";      ///< failed actions it holds
  bool hasCommandsOnly = false;                ///< without replies: how a transfer ended that is not told of is unknown
};

bool holds(std::string_view list, std::string_view word) {
  return (" " + std::string(list) + " ").find(" " + std::string(word) + " ") != std::string::npos;
}

std::string replaced(std::string text, std::string_view what, std::string_view with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
    text.replace(at, what.size(), with);
  return text;
}

constexpr std::string_view kHome = "/srv/ftp/alice/";

std::string withQuestionMarks(std::string path) {
  for (char& c : path)
    if (static_cast<unsigned char>(c) >= 0x80) c = '?';
  return replaced(path, "/srv/ftp/public", "");
}
std::string withoutPublic(std::string path) {
  return replaced(path, "/srv/ftp/public", "");
}
std::string withUnderscores(std::string path) {
  return replaced(path, " ", "_");
}
std::string asVsftpdXferlog(std::string path) {
  return withUnderscores(withQuestionMarks(path));
}
/// As the client gave it; quotes are lost.
std::string asArgument(std::string path) {
  path = replaced(replaced(path, kHome, ""), "/srv/ftp/public/", "");
  return replaced(replaced(path, "say \"hi\"", "say hi "), "\"", "");
}
std::string withDoubleSlash(std::string path) {
  return replaced(replaced(path, "/srv/ftp/public/", "/srv/ftp/public//"), kHome, "/" + std::string(kHome));
}
std::string withPercents(std::string path) {
  std::string text;
  for (const char c : path) {
    const bool isPlain =
        std::isalnum(static_cast<unsigned char>(c)) != 0 || std::string_view("/._-").find(c) != std::string_view::npos;
    char code[4];
    std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(c));
    text += isPlain ? std::string(1, c) : std::string(code);
  }
  return text;
}
std::string withOctals(std::string path) {
  return replaced(replaced(path, "\xC3\xBC", "\\303\\274"), "\xC3\x9F", "\\303\\237");
}

constexpr const char* kTransfersOnly = "logon delete rename make_folder remove_folder";

const Recording kRecordings[] = {
    {"vsftpd/vsftpd.log", "vsftpd", 19, "ftp", "", "ok failed", withQuestionMarks},
    {"vsftpd/xferlog", "xferlog", 2, "anonymous", kTransfersOnly, "ok aborted", asVsftpdXferlog, "upload"},
    {"vsftpd-protocol/vsftpd.log", "vsftpd", 19, "ftp", "", "ok failed", withQuestionMarks},
    {"vsftpd-syslog/syslog", "syslog", 18, "ftp", "", "ok failed", withoutPublic},
    {"vsftpd-syslog/syslog-iso", "syslog", 18, "ftp", "", "ok failed", withoutPublic},
    {"proftpd/system.log", "proftpd", 4, "ftp", "!logon"},
    {"proftpd/xferlog", "xferlog", 2, "anonymous", "logon rename make_folder remove_folder", "ok aborted",
     withUnderscores, ""},
    {"proftpd/extended.log", "proftpd", 14, "anonymous/ftp", "", "ok failed", asArgument},
    {"proftpd/extended-process.log", "proftpd", 18, "anonymous/ftp", "", "ok failed", asArgument},
    {"proftpd-syslog/syslog", "syslog", 19, "ftp", "download upload delete rename make_folder remove_folder"},
    {"proftpd-syslog/syslog-iso", "syslog", 19, "ftp", "download upload delete rename make_folder remove_folder"},
    {"pure-ftpd/syslog", "syslog", 19, "ftp", "make_folder remove_folder", "ok ok", withDoubleSlash, ""},
    {"pure-ftpd/clf.log", "pure-ftpd", 2, "ftp", kTransfersOnly, "ok ok", withPercents, ""},
    {"pure-ftpd-stats/stats.log", "pure-ftpd", 12, "ftp", kTransfersOnly, "ok ok", nullptr, ""},
    {"pure-ftpd-stats/syslog", "syslog", 19, "ftp", "make_folder remove_folder", "ok ok", withDoubleSlash, ""},
    {"pure-ftpd-w3c/syslog", "syslog", 19, "ftp", "make_folder remove_folder", "ok ok", withDoubleSlash, "", true},
    {"pure-ftpd-w3c/w3c.log", "pure-ftpd", 2, "ftp", kTransfersOnly, "ok ok", withPercents, ""},
    {"pure-ftpd-xferlog/xferlog", "xferlog", 2, "ftp", kTransfersOnly, "ok ok", withUnderscores, ""},
    {"openssh-internal/syslog", "syslog", 18, "", "", "aborted aborted", withOctals, "upload delete remove_folder"},
    {"openssh-internal/syslog-iso", "syslog", 18, "", "", "aborted aborted", withOctals, "upload delete remove_folder"},
    {"openssh-server/syslog", "syslog", 18, "", "", "aborted aborted", withOctals, "upload delete remove_folder"},
};

/// What the log should tell of a deed; nothing where it cannot.
std::optional<Deed> expectedOf(const Recording& recording, Deed deed) {
  const bool isLogon = deed.action == "logon";
  if (std::string_view(recording.leaves) == "!logon" && (!isLogon || deed.outcome == "ok")) return std::nullopt;
  if (holds(recording.leaves, deed.action)) return std::nullopt;
  if (recording.hasCommandsOnly && deed.outcome == "failed" && deed.action == "upload") {
    deed.outcome = "?";
    deed.path = asArgument(deed.path);
    return deed;
  }
  if (!isLogon && deed.outcome == "failed" && !holds(recording.failures, deed.action)) return std::nullopt;
  const std::string_view broken = recording.broken;
  if (deed.outcome == "aborted")
    deed.outcome = deed.action == "upload" ? broken.substr(0, broken.find(' ')) : broken.substr(broken.find(' ') + 1);
  if (deed.user == "anonymous") {
    const std::string_view guest = recording.guest;
    deed.user = isLogon ? guest.substr(0, guest.find('/')) : guest.substr(guest.find('/') + 1);
  }
  const bool isFromTheClient = recording.path == asArgument;
  if (isLogon && isFromTheClient) deed.user = replaced(deed.user, "\"", "");
  const bool isRenameByName = deed.action == "rename" && recording.path == withDoubleSlash;
  for (std::string* const path : {&deed.path, &deed.toPath}) {
    if (path->empty() || recording.path == nullptr) continue;
    *path = isRenameByName ? asArgument(*path) : recording.path(*path);
  }
  return deed;
}

std::string textOf(const std::vector<Deed>& deeds) {
  std::string text;
  for (Deed deed : deeds) {
    // How far a broken transfer came, only the server knows.
    const std::string_view path = deed.path;
    if (path.ends_with("broken-up.bin") || path.ends_with("large.bin") || deed.outcome == "failed") deed.bytes.clear();
    text += deed.text() + "\n";
  }
  return text;
}

TEST(Recorded, TablesHoldWhatWasDone) {
  for (const Recording& recording : kRecordings) {
    const std::string name = recording.log;
    const std::string log = fileText(name);
    const Activity activity = readActivity(log, {});
    const LogInfo& info = activity.logs.at(0);
    EXPECT_EQ(info.grammar->name(), recording.server) << name;
    EXPECT_EQ(info.ledger.setAside.lines, 0u) << name << ": " << info.ledger.shapes.at(0).example;
    EXPECT_EQ(info.ledger.bytes(), log.size()) << name;
    EXPECT_EQ(activity.sessions.size(), recording.sessions) << name;
    std::vector<Deed> expected;
    for (const Deed& deed : readTsv(name.substr(0, name.find('/')) + "/done.tsv"))
      if (auto told = expectedOf(recording, deed)) expected.push_back(*std::move(told));
    EXPECT_EQ(textOf(deedsIn(activity)), textOf(expected)) << name;
  }
}

// FileZilla Server and IIS could not be run here: their samples are made up.
TEST(MadeUp, TablesHoldWhatTheSamplesSay) {
  struct Sample {
    const char* log;
    const char* server;
    const char* sessions;  ///< user, address, lines, end
    const char* deeds;
  };
  const Sample samples[] = {
      {"filezilla-0.9.log", "filezilla", "alice@10.0.0.5 26 closed\n",
       "failed logon alice\nok logon alice\nok upload alice | two words.zip\nfailed download alice | large.iso\n"},
      {"filezilla-1.log", "filezilla", "alice@10.0.0.5 14 closed\neve@10.0.0.6 8 closed\n",
       "ok logon alice\nok upload alice | report.xls\nok delete alice | old.xls\nfailed logon eve\n"},
      {"iis-10.log", "iis", "alice@10.0.0.5 10 closed\n",
       "failed logon alice\nok logon alice\nok upload HOST\\alice | /in/two+words.zip | 81116\nfailed download "
       "HOST\\alice | /in/none.zip\n"},
      {"iis-6.log", "iis", "alice@10.0.0.5 6 closed\n",
       "ok logon alice\nok upload alice | /in/a.zip | 81116\nfailed download alice | /in/b.zip\nok delete alice | "
       "b.zip\n"},
  };
  for (const Sample& sample : samples) {
    const Activity activity = readActivity(fileText(sample.log, QUORVEL_SAMPLES "/made-up"), {});
    const LogInfo& info = activity.logs.at(0);
    EXPECT_EQ(info.grammar->name(), sample.server) << sample.log;
    EXPECT_EQ(info.ledger.setAside.lines, 0u) << sample.log;
    std::string sessions;
    for (std::size_t i = 0; i < activity.sessions.size(); ++i) {
      const SessionRow& row = activity.sessions[i];
      sessions.append(activity.text(row.user)).append("@").append(activity.text(row.address)).append(" ");
      sessions.append(std::to_string(row.lines)).append(" ").append(sessionEndName(row.end)).append("\n");
    }
    EXPECT_EQ(sessions, sample.sessions) << sample.log;
    EXPECT_EQ(textOf(deedsIn(activity)), sample.deeds) << sample.log;
  }
}

}  // namespace
}  // namespace quorvel::test
