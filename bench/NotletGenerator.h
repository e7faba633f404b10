#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "core/NotletEntry.h"

namespace notlet {

/// Makes notlets as people write them: a few words to a few lines, common words more often than rare ones, a
/// hashtag or two in most, several scripts. The same seed gives the same notlets.
class NotletGenerator {
 public:
  explicit NotletGenerator(std::uint32_t seed = 1);

  [[nodiscard]] std::string text();
  /// The next notlet, a minute after the one before.
  [[nodiscard]] NotletEntry notlet();
  /// In the order of their making: oldest first.
  [[nodiscard]] std::vector<NotletEntry> notlets(std::size_t count);

 private:
  [[nodiscard]] std::size_t below(std::size_t limit);
  /// Small numbers come up far more often than large ones.
  [[nodiscard]] std::size_t skewedBelow(std::size_t limit);
  void appendWord(std::string& text);
  void appendTag(std::string& text);

  std::mt19937 m_random;
  Timestamp m_time;
};

} // namespace notlet
