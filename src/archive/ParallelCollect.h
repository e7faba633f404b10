#pragma once

#include <algorithm>
#include <cstddef>
#include <system_error>
#include <thread>
#include <vector>

namespace notlet {

/// Calls `collect(begin, end)`, which gives a vector and changes nothing, for neighbouring parts of
/// [first, last) on several processors at once, and returns what the parts gave in their order. A part is not
/// shorter than `shortestPart`, so that starting a thread pays.
template<typename Collect>
[[nodiscard]] auto collectInParallel(std::size_t first, std::size_t last, std::size_t shortestPart,
                                     const Collect& collect) {
  constexpr std::size_t mostParts = 4;
  const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
  const std::size_t parts =
      std::clamp<std::size_t>((last - first) / shortestPart, 1, std::min(processors, mostParts));
  const auto beginOf = [&](std::size_t part) { return first + (last - first) * part / parts; };

  std::vector<decltype(collect(first, last))> found(parts);
  {
    std::vector<std::jthread> threads; // Joined where the block ends.
    for (std::size_t part = 1; part < parts; ++part) {
      const auto take = [&, part] { found[part] = collect(beginOf(part), beginOf(part + 1)); };
      try {
        threads.emplace_back(take);
      } catch (const std::system_error&) {
        take(); // The system has no thread to spare.
      }
    }
    found[0] = collect(beginOf(0), beginOf(1));
  }
  for (std::size_t part = 1; part < parts; ++part)
    found[0].insert(found[0].end(), found[part].begin(), found[part].end());
  return std::move(found[0]);
}

} // namespace notlet
