#include "cli/CommandLine.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace notlet {
namespace {

constexpr std::size_t anyNumber = std::numeric_limits<std::size_t>::max();

enum Option : unsigned { Tag = 1, Limit = 2, Json = 4, Format = 8 };

/// How a verb may be used.
struct VerbRule {
  std::string_view name;
  Verb verb;
  std::size_t fewestWords;
  std::size_t mostWords;
  unsigned options;
  std::string_view synopsis;
};

constexpr std::array<VerbRule, 14> rules{{
    {"capture", Verb::Capture, 0, 0, 0, "capture"},
    {"open", Verb::Open, 1, anyNumber, 0, "open URL..."},
    {"add", Verb::Add, 0, anyNumber, Tag | Json, "add [--tag TAG]... [--json] [TEXT... | -]"},
    {"list", Verb::List, 0, 0, Tag | Limit | Json, "list [--tag TAG]... [--limit N] [--json]"},
    {"search", Verb::Search, 1, anyNumber, Tag | Limit | Json,
     "search [--tag TAG]... [--limit N] [--json] QUERY..."},
    {"show", Verb::Show, 1, 1, Json, "show [--json] ID"},
    {"edit", Verb::Edit, 1, anyNumber, Json, "edit [--json] ID [TEXT... | -]"},
    {"delete", Verb::Delete, 1, anyNumber, 0, "delete ID..."},
    {"tags", Verb::Tags, 0, 1, Limit | Json, "tags [--limit N] [--json] [PREFIX]"},
    {"export", Verb::Export, 0, 1, Tag | Limit | Format,
     "export [--format json|markdown] [--tag TAG]... [--limit N] [FILE]"},
    {"import", Verb::Import, 1, 1, 0, "import FILE"},
    {"path", Verb::Path, 0, 0, 0, "path"},
    {"help", Verb::Help, 0, anyNumber, 0, "help"},
    {"version", Verb::Version, 0, 0, 0, "version"},
}};

constexpr std::string_view helpText =
    R"(Notlet keeps short notes. Without arguments the window opens or comes forward.

usage: notlet VERB [OPTION...] [ARGUMENT...]

  capture               open the quick capture, whatever else is on screen
  open URL...           open links that begin with "notlet:"
  add [TEXT... | -]     store a note and print its id; without TEXT, or with "-", read standard input
  list                  list the notes, newest first
  search QUERY...       list the notes that hold every word, or the whole query, and carry every #hashtag
  show ID               print a note's text
  edit ID [TEXT... | -] give a note another text
  delete ID...          delete notes: all that are named, or none
  tags [PREFIX]         list the hashtags in use, the most used first
  export [FILE]         write all notes to FILE or standard output
  import FILE           take in what "export" wrote; notes that are there already stay as they are
  path                  print where the notes are kept
  help, version         print this text, or the version

  --tag TAG             add: append the hashtag; list, search, export: only notes that carry it; repeatable
  --limit N             stop after N lines
  --json                print one JSON object a line
  --format json|markdown
                        what "export" writes; json unless told otherwise
  --                    what follows is not an option

Any beginning of an id will do that no other id shares.
The exit status is 0, or 1 when something was not found or failed, or 2 when the usage was wrong.
)";

/// Takes the arguments apart, one after the other.
class Reader {
 public:
  explicit Reader(std::span<const std::string_view> arguments) : m_rest(arguments) {}

  CommandResult<CommandLine> read() {
    while (!m_rest.empty()) {
      const std::string_view argument = next();
      const bool isOption = !m_optionsEnded && argument.size() > 1 && argument.front() == '-';
      if (CommandResult<void> taken = isOption ? takeOption(argument) : takeWord(argument); !taken)
        return std::unexpected(taken.error());
    }
    return checked();
  }

 private:
  std::string_view next() {
    const std::string_view argument = m_rest.front();
    m_rest = m_rest.subspan(1);
    return argument;
  }

  CommandResult<void> takeWord(std::string_view word) {
    if (m_rule != nullptr) {
      m_line.words.emplace_back(word);
      return {};
    }
    const auto* rule = std::ranges::find(rules, word, &VerbRule::name);
    if (rule == rules.end())
      return usageFailure("There is no verb " + inQuotes(word) + "; “notlet help” lists them.");
    useRule(*rule);
    return {};
  }

  void useRule(const VerbRule& rule) {
    m_rule = &rule;
    m_line.verb = rule.verb;
  }

  CommandResult<void> takeOption(std::string_view argument) {
    const std::size_t equals = argument.find('=');
    const std::string_view name = argument.substr(0, equals);
    std::optional<std::string_view> value;
    if (equals != std::string_view::npos)
      value = argument.substr(equals + 1);

    if (name == "--tag" || name == "--limit" || name == "--format") {
      if (!value && m_rest.empty())
        return usageFailure("The option " + inQuotes(name) + " needs a value.");
      return takeValue(name, value ? *value : next());
    }
    if (value)
      return usageFailure("There is no option " + inQuotes(argument) + " with a value.");
    return takeFlag(name);
  }

  CommandResult<void> takeValue(std::string_view name, std::string_view value) {
    if (name == "--tag") {
      m_used |= Tag;
      m_line.tags.emplace_back(value);
    } else if (name == "--limit") {
      m_used |= Limit;
      std::size_t limit = 0;
      const auto [end, problem] = std::from_chars(value.data(), value.data() + value.size(), limit);
      if (problem != std::errc() || end != value.data() + value.size())
        return usageFailure("The limit must be a whole number, not " + inQuotes(value) + ".");
      m_line.limit = limit;
    } else {
      m_used |= Format;
      if (value != "json" && value != "markdown")
        return usageFailure("The format must be “json” or “markdown”, not " + inQuotes(value) + ".");
      m_line.format = value == "json" ? ExportFormat::Json : ExportFormat::Markdown;
    }
    return {};
  }

  CommandResult<void> takeFlag(std::string_view name) {
    if (name == "--")
      m_optionsEnded = true;
    else if (name == "--help" || name == "-h")
      m_asksHelp = true;
    else if (name == "--version")
      m_asksVersion = true;
    else if (name == "--json") {
      m_used |= Json;
      m_line.json = true;
    } else
      return usageFailure("There is no option " + inQuotes(name) +
                          "; words that begin with “-” go after “--”.");
    return {};
  }

  CommandResult<CommandLine> checked() {
    if (m_asksHelp || m_asksVersion) {
      m_line.verb = m_asksHelp ? Verb::Help : Verb::Version;
      return m_line;
    }
    if (m_rule == nullptr) {
      if (m_used != 0 || m_optionsEnded)
        return usageFailure("A verb is missing; “notlet help” lists them.");
      return m_line;
    }
    const bool numberFits =
        m_line.words.size() >= m_rule->fewestWords && m_line.words.size() <= m_rule->mostWords;
    if ((m_used & ~m_rule->options) != 0 || !numberFits)
      return usageFailure(std::string("It is used so: notlet ").append(m_rule->synopsis));
    return m_line;
  }

  std::span<const std::string_view> m_rest;
  const VerbRule* m_rule = nullptr;
  CommandLine m_line;
  unsigned m_used = 0;
  bool m_optionsEnded = false;
  bool m_asksHelp = false;
  bool m_asksVersion = false;
};

} // namespace

CommandResult<CommandLine> CommandLine::parse(std::span<const std::string_view> arguments) {
  return Reader(arguments).read();
}

std::string_view CommandLine::help() {
  return helpText;
}

} // namespace notlet
