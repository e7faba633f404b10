#include "shell/WindowLife.h"

#include <vector>

namespace notlet {

namespace {

constexpr std::string_view explainedKey = "macKeepsRunningExplained";

/// The worst that can come of it is that the user reads it twice.
void ignoreFailure(const Result<void>& written) {
  static_cast<void>(written);
}

std::vector<std::string> waysToCapture(const WaysBack& waysBack) {
  std::vector<std::string> ways;
  if (waysBack.hotKey)
    ways.emplace_back("press Control+Super+J");
  if (waysBack.statusItem)
    ways.emplace_back("click its icon in the panel");
  if (waysBack.bubble)
    ways.emplace_back("click the bubble");
  return ways;
}

std::string joined(const std::vector<std::string>& ways) {
  std::string text;
  for (std::size_t index = 0; index < ways.size(); ++index) {
    if (index > 0)
      text += index + 1 == ways.size() ? " or " : ", ";
    text += ways[index];
  }
  return text;
}

} // namespace

bool WindowLife::keepsRunning(const WaysBack& waysBack) {
  return waysBack != WaysBack();
}

bool WindowLife::mustExplain() const {
  return m_defaults.integer(explainedKey).value_or(0) == 0;
}

void WindowLife::noteExplained() {
  ignoreFailure(m_defaults.setInteger(explainedKey, 1));
}

std::string WindowLife::explanation(const WaysBack& waysBack) {
  const std::string ending = waysBack.statusItem
                                 ? "To end it, choose “Quit Notlet” in the icon’s menu."
                                 : "To end it, start Notlet again and press Control+Q in its window.";
  return "Notlet keeps running when its window is closed. To write a notlet, " +
         joined(waysToCapture(waysBack)) + ". " + ending;
}

} // namespace notlet
