#pragma once

#include <span>
#include <string_view>

namespace notlet {

/// The whole run of the command line; gives the status to exit with. Nothing is thrown.
[[nodiscard]] int runProgram(std::span<const std::string_view> arguments) noexcept;

} // namespace notlet
