#pragma once

#include <chrono>
#include <memory>
#include <span>
#include <string>
#include <sys/types.h>
#include <vector>

#include "core/Error.h"
#include "platform/Descriptor.h"

namespace notlet {

/// A program that reads from us and writes to us. It never makes its owner wait, and ends with it.
class FilterProgram {
 public:
  /// The command begins with the program's path. Its error output goes nowhere.
  [[nodiscard]] static Result<std::unique_ptr<FilterProgram>> start(std::vector<std::string> command);
  FilterProgram(const FilterProgram&) = delete;
  FilterProgram& operator=(const FilterProgram&) = delete;
  /// Asks it to end, and makes it end when it does not within a fifth of a second.
  ~FilterProgram();

  /// Writes as much as the program is ready to take; the number of bytes. It may have stopped reading, which
  /// shows when its output ends.
  [[nodiscard]] std::size_t write(std::span<const char> bytes);
  /// Tells it that nothing more comes.
  void closeInput();

  enum class Reading { some, nothingYet, ended };
  /// Adds a piece of what it has written.
  [[nodiscard]] Reading read(std::string& output);
  /// Waits until there is something to read or, while there is something to write, to write.
  void wait(bool toWrite, std::chrono::milliseconds longest) const;
  /// How a program whose output has ended is doing: "it ended with status 3".
  [[nodiscard]] std::string fate();

 private:
  FilterProgram(pid_t process, Descriptor input, Descriptor output);
  [[nodiscard]] bool waitForEnd(std::chrono::milliseconds longest);

  pid_t m_process;
  Descriptor m_input;
  Descriptor m_output;
  bool m_hasEnded = false;
  int m_status = 0;
};

} // namespace notlet
