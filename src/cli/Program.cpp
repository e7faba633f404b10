#include "cli/Program.h"

#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <exception>
#include <new>
#include <tuple>

#include "cli/CommandLine.h"
#include "cli/Commands.h"
#include "cli/Launch.h"
#include "cli/Output.h"

namespace notlet {
namespace {

/// A file opened in the place of a closed standard stream would receive what is meant for the stream. Such a
/// stream is made one that fails when it is used.
void occupyStandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(descriptor, F_GETFD) == -1)
      static_cast<void>(::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
  }
}

/// Nobody is left to hear that an error could not be reported.
int report(const CommandError& error) {
  Output output(STDERR_FILENO);
  output.write("notlet: ");
  output.writeLine(error.message);
  std::ignore = output.flush();
  return error.status;
}

bool storesSomething(Verb verb) {
  return verb == Verb::Add || verb == Verb::Edit || verb == Verb::Import;
}

CommandResult<void> run(std::span<const std::string_view> arguments) {
  const CommandResult<CommandLine> line = CommandLine::parse(arguments);
  if (!line)
    return std::unexpected(line.error());
  if (line->verb == Verb::Start || line->verb == Verb::Capture || line->verb == Verb::Open)
    return launch(*line);
  Output output(STDOUT_FILENO);
  const CommandResult<void> done = runCommand(*line, output);
  // What was found before a failure is of use too, but the failure is what matters.
  CommandResult<void> flushed = output.flush();
  if (done && !flushed && storesSomething(line->verb))
    return commandFailure("The change was stored, but could not be reported. " + flushed.error().message);
  return done ? flushed : done;
}

} // namespace

int runProgram(std::span<const std::string_view> arguments) noexcept {
  occupyStandardStreams();
  // What writing meets, it tells.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  // Tells how wide characters are; the language of the messages does not depend on it.
  std::setlocale(LC_CTYPE, "C.UTF-8");
  try {
    const CommandResult<void> done = run(arguments);
    return done ? 0 : report(done.error());
  } catch (const std::bad_alloc&) {
    return report({CommandError::failed, "There is not enough memory."});
  } catch (const std::exception& exception) {
    return report({CommandError::failed, std::string("Something unexpected happened: ") + exception.what()});
  }
}

} // namespace notlet
