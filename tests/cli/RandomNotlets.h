#pragma once

#include <random>
#include <string>
#include <vector>

#include "core/NotletEntry.h"

namespace notlet {

/// Notlets whose texts are made of what JSON, shells and terminals stumble over.
inline std::vector<NotletEntry> randomNotlets(std::size_t count, unsigned seed) {
  static const std::vector<std::string> pieces{"word",
                                               " ",
                                               "\n",
                                               "\t",
                                               "\"",
                                               "\\",
                                               "/",
                                               std::string(1, '\0'),
                                               "\x01",
                                               "\x1b[31m",
                                               "\x7f",
                                               "é",
                                               "e\u0301",
                                               "日本語",
                                               "👩‍👩‍👧",
                                               "\u2028",
                                               "\uFEFF",
                                               "\uFFFF",
                                               "\r\n",
                                               "#tag",
                                               " #Tag",
                                               " #日本",
                                               "</script>",
                                               "\\u0000",
                                               "\U0010FFFF",
                                               "{\"id\":1",
                                               "[[[[",
                                               "\u00A0"};
  std::mt19937 random(seed);
  std::uniform_int_distribution<std::size_t> piece(0, pieces.size() - 1);
  std::uniform_int_distribution<int> length(1, 60);
  std::uniform_int_distribution<std::int64_t> time(-1'000'000'000'000'000, 4'000'000'000'000'000);
  const auto anyTime = [&] { return Timestamp(std::chrono::microseconds(time(random))); };

  std::vector<NotletEntry> notlets;
  while (notlets.size() < count) {
    std::string text;
    for (int left = length(random); left > 0; --left)
      text += pieces[piece(random)];
    std::optional<NotletEntry> notlet = makeNotlet(text, anyTime());
    if (!notlet)
      continue;
    if (random() % 2 == 0)
      notlet->updatedAt = anyTime();
    notlets.push_back(std::move(*notlet));
  }
  return notlets;
}

} // namespace notlet
