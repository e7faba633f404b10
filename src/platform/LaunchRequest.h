#pragma once

#include <string>
#include <vector>

namespace notlet {

/// What a start of the program asks for.
struct LaunchRequest {
  enum class Kind {
    /// The main window is to come forward.
    activate,
    /// The quick capture is to open.
    capture,
    /// Links are to be opened.
    open,
  };

  Kind kind = Kind::activate;
  /// As given, in the order given; for `open` only.
  std::vector<std::string> urls;
  /// What the desktop gave the starting program to prove that the user wants it in front; may be empty.
  std::string activationToken;

  bool operator==(const LaunchRequest&) const = default;
};

} // namespace notlet
