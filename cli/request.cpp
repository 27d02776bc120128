#include "cli/request.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <map>

#include "cli/named_commands.h"
#include "log/text.h"
#include "report/cell_text.h"

namespace quorvel {
namespace {

struct CommandText {
  std::string_view name;
  const char* purpose;
  const char* example;
};

/// In the order of CommandName.
constexpr auto kCommands = std::to_array<CommandText>({
    {"overview", "A log at a glance, and what to look at first", "quorvel overview ftp-server.log"},
    {"sessions", "One row a session: who, from where, when, how it ended, what went over",
     "quorvel sessions ftp-server.log --user alice --sort download_bytes --reverse --limit 10"},
    {"logins", "Who tried to log on: refusals, names tried, who got in after refusals",
     "quorvel logins ftp-server.log --by address --limit 20"},
    {"files", "What happened to files: who, when, from where, through their renames",
     "quorvel files ftp-server.log --path report --from 2005-06-06 --to 2005-06-07"},
    {"transfers", "Transfers that broke off, and whether they went over later",
     "quorvel transfers ftp-server.log --from yesterday --format csv --output broken.csv"},
    {"traffic", "Files and bytes that went over, summed by user, address, day, hour, weekday, month or folder",
     "quorvel traffic ftp-server.log --by user,day"},
    {"check", "What became of every line of a log, and what its format cannot tell",
     "quorvel check ftp-server.log --alert-set-aside 1"},
    {"export", "The tables of sessions, log-ons, actions, lines set aside and the ledger, for other programs",
     "quorvel export ftp-server.log --format sqlite --output ftp.db"},
    {"digest", "What is new since the last time, ready for mail",
     "quorvel digest ftp-server.log --state ftp.state --alert 'failures>=5 in 10m by address'"},
});

const std::map<std::string, Format>& formatsOf(CommandName command) {
  static const std::map<std::string, Format> kAnswers = {
      {"text", Format::Text}, {"csv", Format::Csv}, {"jsonl", Format::JsonLines}, {"html", Format::Html}};
  static const std::map<std::string, Format> kExports = {
      {"jsonl", Format::JsonLines}, {"csv", Format::Csv}, {"sqlite", Format::Sqlite}, {"ecs", Format::Ecs}};
  static const std::map<std::string, Format> kDigests = {{"text", Format::Text}, {"html", Format::Html}};
  if (command == CommandName::Export) return kExports;
  return command == CommandName::Digest ? kDigests : kAnswers;
}

/// What --by takes.
std::vector<std::string> keysOf(CommandName command) {
  if (command == CommandName::Logins) return {"address", "user", "attempt"};
  if (command == CommandName::Files) return {"action", "folder"};
  if (command == CommandName::Check) return {"log", "shape"};
  if (command == CommandName::Traffic) return {kTrafficKeyNames.begin(), kTrafficKeyNames.end()};
  return {};
}

/// Options as they are given, before they are looked at together.
struct Given {
  std::vector<std::string> words;
  std::vector<std::string> users;
  std::vector<std::string> addresses;
  std::vector<std::string> paths;
  std::vector<std::string> outcomes;
  std::vector<std::string> alerts;
  std::string setAside;
  std::string format;
};

/// Of any number that is given.
constexpr std::size_t kMost = 1'000'000'000;

class RequestParser {
 public:
  RequestParser() : m_app("Reads FTP servers' logs and answers questions about them", "quorvel") {
    m_app.require_subcommand(1);
    m_app.failure_message(CLI::FailureMessage::simple);
    for (std::size_t i = 0; i < kCommands.size(); ++i)
      addCommand(static_cast<CommandName>(i), kCommands[i]);
  }

  std::variant<Request, HelpText, WrongArguments> parse(std::span<const std::string> arguments) {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    try {
      m_app.parse(reversed);
    } catch (const CLI::CallForHelp&) {
      return HelpText{m_app.get_subcommands().front()->help("quorvel") + "\n"};
    } catch (const CLI::ParseError& error) {
      return WrongArguments{sentence(error.what())};
    }
    if (auto mistake = takeScope()) return WrongArguments{sentence(*mistake)};
    if (auto mistake = takeAlerts()) return WrongArguments{sentence(*mistake)};
    if (auto mistake = takeBy()) return WrongArguments{sentence(*mistake)};
    if (auto mistake = takeFollowing()) return WrongArguments{sentence(*mistake)};
    if (auto mistake = takeOutput()) return WrongArguments{sentence(*mistake)};
    return m_request;
  }

 private:
  void addCommand(CommandName name, const CommandText& text) {
    CLI::App* const command = m_app.add_subcommand(std::string(text.name), text.purpose);
    command->callback([this, name] { m_request.command = name; });
    command->footer(std::string("Example:\n  ") + text.example);
    command->add_option("LOG", m_request.logs, "Logs to read, one after the other; - is standard input")->required();
    command->add_flag("--set", m_request.isSet, "The logs, files or folders, are files of one log");
    command->add_flag("--siblings", m_request.withSiblings, "Read each log with its rotated files as one");
    addFollowing(*command, name);
    addScope(*command);
    addForm(*command, name);
    if (const auto keys = keysOf(name); !keys.empty()) {
      command
          ->add_option(
              "--by", m_request.by,
              name == CommandName::Traffic ? "One or two keys, with a comma between them" : "What a row stands for")
          ->delimiter(',')
          ->allow_extra_args(false)
          ->check(CLI::IsMember(keys));
    }
    if (name == CommandName::Transfers) command->add_flag("--all", m_request.isAll, "Those that went over, too");
    if (name == CommandName::Logins || name == CommandName::Overview || name == CommandName::Digest)
      addThresholds(*command);
    if (name == CommandName::Check)
      command
          ->add_option("--alert-set-aside", m_given.setAside,
                       "End with status 3 where more of a log's lines are set aside")
          ->type_name("PERCENT");
    if (name != CommandName::Export)
      command
          ->add_option("--alert", m_given.alerts,
                       "Print only what a rule holds on, and end with status 3 then; may be repeated")
          ->type_name("RULE")
          ->take_all()
          ->expected(1)
          ->allow_extra_args(false)
          ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  }

  void addFollowing(CLI::App& command, CommandName name) {
    if (name == CommandName::Overview || name == CommandName::Traffic) return;
    if (name != CommandName::Digest)
      command.add_flag("--follow", m_request.isFollowing, "Go on with what is written to the log, until interrupted");
    if (name != CommandName::Check)
      command.add_option("--state", m_request.state, "File that remembers what was told: only what is new is written")
          ->type_name("FILE");
  }

  void addScope(CLI::App& command) {
    const auto add = [&command](const char* name, std::vector<std::string>& values, const char* help) {
      command.add_option(name, values, help)
          ->type_name("TEXT")
          ->expected(1)
          ->allow_extra_args(false)
          ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    };
    command.add_option("--from", m_request.from, "From this time on: 2005-06-06, 2005-06-06T08:00, yesterday, -7d")
        ->type_name("TIME");
    command.add_option("--to", m_request.to, "Up to this time; a date means its whole day")->type_name("TIME");
    add("--user", m_given.users, "Users whose name contains the text");
    add("--address", m_given.addresses, "Addresses that contain the text");
    add("--path", m_given.paths, "Paths that contain the text");
    add("--outcome", m_given.outcomes,
        "Outcomes that contain the text: ok, failed; of sessions logged_on, refused, ...");
    add("--words", m_given.words, "As in the window: 'user:alice -ip:10.0. report'");
  }

  void addForm(CLI::App& command, CommandName name) {
    std::string names;
    for (const auto& [format, value] : formatsOf(name))
      names += (names.empty() ? "" : ", ") + format;
    CLI::Option* const format = command.add_option("--format", m_given.format, "One of " + names)->type_name("FORMAT");
    if (name == CommandName::Export) format->required();
    command
        .add_option("--output", m_request.output,
                    name == CommandName::Export ? "Folder for csv and jsonl, file for sqlite and ecs"
                                                : "File to write; standard output otherwise")
        ->type_name(name == CommandName::Export ? "PATH" : "FILE");
    command.add_flag("--raw-text", m_request.isRaw, "CSV: leave texts alone that a spreadsheet takes for formulas");
    command.add_option("--timezone", m_request.timeZone, "Zone of the logs' clock, where a format needs one")
        ->type_name("NAME");
    if (name == CommandName::Export || name == CommandName::Digest) return;
    command.add_option("--sort", m_request.sort, "Order by this column")->type_name("COLUMN");
    command.add_flag("--reverse", m_request.isReversed, "Largest first");
    command.add_option("--limit", m_request.limit, "Print so many rows at most")
        ->check(CLI::Range(std::size_t{0}, kMost))
        ->type_name("N");
    command.add_option("--columns", m_request.columns, "Print these columns, with commas between them")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("NAMES");
  }

  void addThresholds(CLI::App& command) {
    Thresholds& thresholds = m_request.thresholds;
    command.add_option("--in-ten-minutes", thresholds.inTenMinutes, "Refusals within ten minutes that stand out (5)")
        ->check(CLI::Range(std::size_t{0}, kMost))
        ->type_name("N");
    command.add_option("--in-two-minutes", thresholds.inTwoMinutes, "Refusals within two minutes that stand out (8)")
        ->check(CLI::Range(std::size_t{0}, kMost))
        ->type_name("N");
    command.add_option("--before-success", thresholds.beforeSuccess, "Refusals before a log-on that stand out (3)")
        ->check(CLI::Range(std::size_t{0}, kMost))
        ->type_name("N");
  }

  std::optional<std::string> takeScope() {
    for (const std::string& words : m_given.words) {
      if (auto mistake = parseWords(words, m_request.words)) return "--words: " + mistake->sentence;
    }
    using Field = ScopeWord::Field;
    const auto take = [this](const std::vector<std::string>& texts, Field field) {
      for (const std::string& text : texts)
        m_request.words.push_back({field, validUtf8(text), false});
    };
    take(m_given.users, Field::User);
    take(m_given.addresses, Field::Address);
    take(m_given.paths, Field::Path);
    take(m_given.outcomes, Field::Outcome);
    constexpr LogTime kSomeTime = 2'000'000'000;
    for (const auto& [option, text] : {std::pair("--from", m_request.from), {"--to", m_request.to}}) {
      if (!text.empty() && !parseWhen(text, kSomeTime, false))
        return std::string(option) + ": \"" + text +
               "\" is no time such as 2005-06-06, 2005-06-06T08:00, yesterday or -7d";
    }
    return std::nullopt;
  }

  std::optional<std::string> takeAlerts() {
    std::string mistake;
    if (!m_given.setAside.empty()) {
      const bool hasSign = m_given.setAside.ends_with('%');
      m_request.setAside = parseAlertRule("set_aside>" + m_given.setAside + (hasSign ? "" : "%"), mistake);
      if (!m_request.setAside) return "--alert-set-aside: \"" + m_given.setAside + "\" is no share of 100";
    }
    for (const std::string& text : m_given.alerts) {
      const auto rule = parseAlertRule(text, mistake);
      if (!rule) return "\"" + text + "\" is no rule: " + mistake;
      m_request.alerts.push_back(*rule);
    }
    return std::nullopt;
  }

  std::optional<std::string> takeBy() {
    const bool isTraffic = m_request.command == CommandName::Traffic;
    if (m_request.by.size() > (isTraffic ? 2 : 1))
      return std::string(isTraffic ? "--by takes one key or two" : "--by takes one key");
    if (m_request.by.size() == 2 && m_request.by[0] == m_request.by[1])
      return std::string("--by takes two different keys");
    return std::nullopt;
  }

  /// What is asked again and again writes rows as they come.
  std::optional<std::string> takeFollowing() {
    if (!m_request.isContinued()) return std::nullopt;
    const std::string option = m_request.isFollowing ? "--follow" : "--state";
    if (m_request.logs.size() != 1 || m_request.logs.front() == "-" || m_request.isSet)
      return option + " takes one log, with --siblings its rotated files before it";
    if (m_request.command == CommandName::Check && m_request.alerts.empty())
      return option + " of check needs a rule: --alert RULE";
    if (!m_request.alerts.empty() && !m_request.state.empty())
      return std::string("--state does not remember alerts; digest does");
    if (!m_request.by.empty() && m_request.by.front() != "attempt" && m_request.by.front() != "action")
      return option + " writes rows as they come and cannot sum them up";
    if (!m_request.sort.empty() || m_request.isReversed || m_request.limit)
      return option + " writes rows as they come and cannot sort them";
    if (m_given.format.empty() && m_request.command != CommandName::Export) m_given.format = "csv";
    const bool isStream = m_request.command == CommandName::Export
                              ? m_given.format == "ecs"
                              : m_given.format == "csv" || m_given.format == "jsonl";
    if (!isStream) return option + (m_request.command == CommandName::Export ? " writes ecs" : " writes csv or jsonl");
    return std::nullopt;
  }

  std::optional<std::string> takeOutput() {
    const auto& formats = formatsOf(m_request.command);
    if (!m_given.format.empty()) {
      const auto known = formats.find(m_given.format);
      if (known == formats.end()) {
        std::string names;
        for (const auto& [name, value] : formats)
          names += (names.empty() ? "" : ", ") + name;
        return "--format: \"" + m_given.format + "\" is none of " + names;
      }
      m_request.format = known->second;
    }
    const bool needsOutput = m_request.command == CommandName::Export && m_request.format != Format::Ecs;
    if (needsOutput && m_request.output.empty())
      return std::string("--output is missing: tables go into a folder, a database into a file");
    const bool readsInput = std::count(m_request.logs.begin(), m_request.logs.end(), "-") > 1;
    if (readsInput) return std::string("- can be given once");
    return std::nullopt;
  }

  /// One line that ends with a full stop.
  static std::string sentence(std::string text) {
    text = withoutControls(validUtf8(text.substr(0, text.find('\n'))));
    return text.ends_with('.') ? text : text + ".";
  }

  CLI::App m_app;
  Request m_request;
  Given m_given;
};

}  // namespace

bool isNamedCommand(std::string_view text) {
  return std::any_of(kCommands.begin(), kCommands.end(),
                     [text](const CommandText& command) { return command.name == text; });
}

std::variant<Request, HelpText, WrongArguments> parseRequest(std::span<const std::string> arguments) {
  return RequestParser().parse(arguments);
}

}  // namespace quorvel
