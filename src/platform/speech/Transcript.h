#pragma once

#include <string>
#include <string_view>

namespace notlet {

/// What an engine has read so far: sentences that stand, and one that may still change.
class Transcript {
 public:
  void clear() { m_standing.clear(); }
  /// The whole text when the last sentence reads like this.
  [[nodiscard]] std::string with(std::string_view last) const {
    if (m_standing.empty() || last.empty())
      return m_standing.empty() ? std::string(last) : m_standing;
    return m_standing + ' ' + std::string(last);
  }
  /// The last sentence stands.
  void commit(std::string_view last) {
    if (!m_standing.empty() && !last.empty())
      m_standing += ' ';
    m_standing += last;
  }
  [[nodiscard]] const std::string& standing() const { return m_standing; }

 private:
  std::string m_standing;
};

} // namespace notlet
