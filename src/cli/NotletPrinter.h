#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/NotletEntry.h"

/// The forms in which a notlet leaves the program.
namespace notlet::NotletPrinter {

/// One JSON object without a newline; its keys are sorted.
[[nodiscard]] std::string jsonLine(const NotletEntry& notlet);
/// The same for a hashtag and the number of notlets that carry it.
[[nodiscard]] std::string jsonLine(std::string_view tag, std::size_t count);
/// A notlet's object over several lines, indented as an element of an array.
[[nodiscard]] std::string jsonElement(const NotletEntry& notlet);
/// A section of its own, headed by the time.
[[nodiscard]] std::string markdown(const NotletEntry& notlet);

/// For people: the beginning of the id, the time, and as much of the first line as the width in cells has
/// room for.
[[nodiscard]] std::string terminalLine(const NotletEntry& notlet, std::size_t width);
/// For programs: the same fields, parted by tabs, with the whole first line.
[[nodiscard]] std::string pipeLine(const NotletEntry& notlet);

} // namespace notlet::NotletPrinter
