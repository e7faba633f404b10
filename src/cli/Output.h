#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "cli/CommandError.h"

namespace notlet {

/// Writes to an open descriptor in large portions and remembers the first failure. To a terminal it writes
/// nothing that would control that.
class Output {
 public:
  /// The name begins the message when writing fails.
  explicit Output(int descriptor, std::string name = "The output");

  /// The text must not end within a character.
  void write(std::string_view text);
  /// Writes the text and ends the line.
  void writeLine(std::string_view text);
  /// False once a reader has gone or writing has failed: whatever follows is lost.
  [[nodiscard]] bool isOpen() const { return m_errorNumber == 0; }
  /// Writes what is left. A reader that has gone is no failure.
  [[nodiscard]] CommandResult<void> flush();

  [[nodiscard]] bool isTerminal() const { return m_isTerminal; }
  /// The terminal's width in cells; 80 when it does not tell.
  [[nodiscard]] std::size_t terminalWidth() const;

 private:
  void writeOut();

  int m_descriptor;
  bool m_isTerminal;
  std::string m_name;
  std::string m_pending;
  int m_errorNumber = 0;
};

} // namespace notlet
