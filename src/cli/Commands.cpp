#include "cli/Commands.h"

#include <unistd.h>

#include <algorithm>
#include <set>
#include <string>
#include <tuple>

#include "cli/CommandStore.h"
#include "cli/Input.h"
#include "cli/NotletImport.h"
#include "cli/NotletPrinter.h"
#include "cli/ReplacingFile.h"
#include "cli/SelectedNotlets.h"
#include "cli/Selection.h"
#include "core/NotletEntry.h"
#include "core/Text.h"

namespace notlet {
namespace {

std::string joined(std::span<const std::string> words) {
  std::string text;
  for (const std::string& word : words)
    text.append(text.empty() && &word == words.data() ? "" : " ").append(word);
  return text;
}

/// A terminal that nobody hears of this can still be typed into.
void askForText() {
  Output terminal(STDERR_FILENO);
  terminal.writeLine("Type the text; Control+D on a line of its own ends it.");
  std::ignore = terminal.flush();
}

CommandResult<std::string> typedText(std::span<const std::string> words) {
  const bool comesFromInput = words.empty() || (words.size() == 1 && words.front() == "-");
  if (comesFromInput && ::isatty(STDIN_FILENO) == 1)
    askForText();
  CommandResult<std::string> text = comesFromInput ? readStandardInput() : joined(words);
  if (text && !isValidUtf8(*text))
    return commandFailure("The text is not UTF-8; nothing was stored.");
  return text;
}

std::unexpected<CommandError> emptyText() {
  return commandFailure("The text is empty; nothing was stored.");
}

std::string lineOf(const NotletEntry& notlet, bool asJson, const Output& output) {
  if (asJson)
    return NotletPrinter::jsonLine(notlet);
  return output.isTerminal() ? NotletPrinter::terminalLine(notlet, output.terminalWidth())
                             : NotletPrinter::pipeLine(notlet);
}

CommandResult<void> add(const CommandLine& line, Output& output) {
  const CommandResult<std::vector<std::string>> tags = checkedTags(line.tags);
  if (!tags)
    return std::unexpected(tags.error());
  const CommandResult<std::string> text = typedText(line.words);
  if (!text)
    return std::unexpected(text.error());
  if (trimmed(*text).empty())
    return emptyText();
  const std::optional<NotletEntry> notlet = makeNotlet(withTags(trimmed(*text), *tags), currentTime());
  if (!notlet)
    return emptyText();
  CommandResult<CommandStore> store = CommandStore::open(Access::ReadWrite);
  if (!store)
    return std::unexpected(store.error());
  if (CommandResult<void> stored = store->apply({.upserts = {&*notlet}, .deletions = {}}); !stored)
    return stored;
  output.writeLine(line.json ? NotletPrinter::jsonLine(*notlet) : notlet->id.text());
  return {};
}

/// Writes what the tags, the query and the limit leave: each as `print` prints it, handed to `write`.
CommandResult<void> writeSelected(const CommandLine& line, std::string_view query, const Output& output,
                                  const std::function<std::string(const NotletEntry&)>& print,
                                  const std::function<void(std::string_view)>& write) {
  const CommandResult<Selection> selection = Selection::make(query, line.tags);
  if (!selection)
    return std::unexpected(selection.error());
  CommandResult<CommandStore> store = CommandStore::open(Access::ReadOnly);
  if (!store)
    return std::unexpected(store.error());
  return writeSelected(*store, *selection, line.limit, print, [&](std::string_view text) {
    write(text);
    return output.isOpen();
  });
}

CommandResult<void> list(const CommandLine& line, std::string_view query, Output& output) {
  return writeSelected(
      line, query, output, [&](const NotletEntry& notlet) { return lineOf(notlet, line.json, output); },
      [&](std::string_view text) { output.writeLine(text); });
}

CommandResult<void> show(const CommandLine& line, Output& output) {
  CommandResult<CommandStore> store = CommandStore::open(Access::ReadOnly);
  if (!store)
    return std::unexpected(store.error());
  const CommandResult<NotletEntry> notlet = store->find(line.words.front());
  if (!notlet)
    return std::unexpected(notlet.error());
  if (line.json)
    output.writeLine(NotletPrinter::jsonLine(*notlet));
  else
    output.writeLine(notlet->content);
  return {};
}

/// For changing what is there. Looks without creating a store first.
CommandResult<CommandStore> openForChange(const std::string& id) {
  CommandResult<CommandStore> present = CommandStore::open(Access::ReadOnly);
  if (!present)
    return present;
  if (const CommandResult<Uuid> found = present->findId(id); !found)
    return std::unexpected(found.error());
  return CommandStore::open(Access::ReadWrite);
}

CommandResult<void> edit(const CommandLine& line, Output& output) {
  CommandResult<CommandStore> store = openForChange(line.words.front());
  if (!store)
    return std::unexpected(store.error());
  const CommandResult<std::string> text = typedText(std::span(line.words).subspan(1));
  if (!text)
    return std::unexpected(text.error());
  // Read after the text came in, which may have taken the user minutes.
  CommandResult<NotletEntry> notlet = store->find(line.words.front());
  if (!notlet)
    return std::unexpected(notlet.error());
  if (!applyEdit(*notlet, *text, currentTime()))
    return emptyText();
  if (CommandResult<void> stored = store->apply({.upserts = {&*notlet}, .deletions = {}}); !stored)
    return stored;
  if (line.json)
    output.writeLine(NotletPrinter::jsonLine(*notlet));
  return {};
}

CommandResult<void> deleteNotlets(const CommandLine& line) {
  CommandResult<CommandStore> store = openForChange(line.words.front());
  if (!store)
    return std::unexpected(store.error());
  std::set<Uuid> ids;
  for (const std::string& word : line.words) {
    const CommandResult<Uuid> id = store->findId(word);
    if (!id)
      return std::unexpected(id.error());
    ids.insert(*id);
  }
  return store->apply({.upserts = {}, .deletions = {ids.begin(), ids.end()}});
}

CommandResult<void> printTags(const CommandLine& line, Output& output) {
  const std::string prefix = line.words.empty() ? "" : line.words.front();
  CommandResult<CommandStore> store = CommandStore::open(Access::ReadOnly);
  if (!store)
    return std::unexpected(store.error());
  TagCounts counts;
  CommandResult<void> visited = store->visit([&](const NotletEntry& notlet) {
    counts.add(notlet);
    return true;
  });
  if (!visited)
    return visited;
  std::size_t left = line.limit.value_or(std::numeric_limits<std::size_t>::max());
  for (const TagCount& tag : counts.beginningWith(prefix)) {
    if (left-- == 0)
      break;
    if (line.json)
      output.writeLine(NotletPrinter::jsonLine(tag.tag, tag.count));
    else
      output.writeLine("#" + tag.tag + "\t" + std::to_string(tag.count));
  }
  return {};
}

CommandResult<void> writeArchive(const CommandLine& line, Output& output) {
  if (line.format == ExportFormat::Markdown)
    return writeSelected(line, "", output, NotletPrinter::markdown,
                         [&](std::string_view text) { output.write(text); });
  std::string_view separator = "[\n";
  CommandResult<void> written =
      writeSelected(line, "", output, NotletPrinter::jsonElement, [&](std::string_view text) {
        output.write(separator);
        output.write(text);
        separator = ",\n";
      });
  if (written)
    output.write(separator == "[\n" ? "[]\n" : "\n]\n");
  return written;
}

CommandResult<void> exportArchive(const CommandLine& line, Output& output) {
  if (line.words.empty() || line.words.front() == "-")
    return writeArchive(line, output);
  CommandResult<ReplacingFile> file = ReplacingFile::open(line.words.front());
  if (!file)
    return std::unexpected(file.error());
  Output fileOutput(file->descriptor(), inQuotes(line.words.front()));
  if (CommandResult<void> written = writeArchive(line, fileOutput); !written)
    return written;
  if (CommandResult<void> flushed = fileOutput.flush(); !flushed)
    return flushed;
  return file->commit();
}

CommandResult<void> importArchive(const CommandLine& line, Output& output) {
  const std::string& file = line.words.front();
  const CommandResult<std::string> text = readInput(file);
  if (!text)
    return std::unexpected(text.error());
  CommandResult<std::vector<NotletEntry>> notlets = parseNotlets(*text);
  if (!notlets)
    return commandFailure((file == "-" ? std::string("Standard input") : inQuotes(file)) +
                          " cannot be imported; nothing was stored. " + notlets.error().message);
  CommandResult<CommandStore> store = CommandStore::open(Access::ReadWrite);
  if (!store)
    return std::unexpected(store.error());
  const CommandResult<std::vector<Uuid>> present = store->allIds();
  if (!present)
    return std::unexpected(present.error());

  ChangeSet changes;
  std::set<Uuid> known(present->begin(), present->end());
  for (const NotletEntry& notlet : *notlets) {
    if (known.insert(notlet.id).second)
      changes.upserts.push_back(&notlet);
  }
  if (!changes.upserts.empty()) {
    if (CommandResult<void> stored = store->apply(changes); !stored)
      return stored;
  }
  output.writeLine("Imported " + std::to_string(changes.upserts.size()) + ", skipped " +
                   std::to_string(notlets->size() - changes.upserts.size()) + ".");
  return {};
}

CommandResult<void> search(const CommandLine& line, Output& output) {
  const std::string query = joined(line.words);
  if (!isValidUtf8(query))
    return commandFailure("The query is not UTF-8.");
  return list(line, query, output);
}

CommandResult<void> printPath(Output& output) {
  const CommandResult<std::filesystem::path> path = storePath();
  if (!path)
    return std::unexpected(path.error());
  output.writeLine(path->string());
  return {};
}

} // namespace

CommandResult<void> runCommand(const CommandLine& line, Output& output) {
  switch (line.verb) {
  case Verb::Add:
    return add(line, output);
  case Verb::List:
    return list(line, "", output);
  case Verb::Search:
    return search(line, output);
  case Verb::Show:
    return show(line, output);
  case Verb::Edit:
    return edit(line, output);
  case Verb::Delete:
    return deleteNotlets(line);
  case Verb::Tags:
    return printTags(line, output);
  case Verb::Export:
    return exportArchive(line, output);
  case Verb::Import:
    return importArchive(line, output);
  case Verb::Path:
    return printPath(output);
  case Verb::Version:
    output.writeLine("notlet " NOTLET_VERSION);
    return {};
  case Verb::Start:
  case Verb::Capture:
  case Verb::Open:
  case Verb::Help:
    break;
  }
  output.write(CommandLine::help());
  return {};
}

} // namespace notlet
