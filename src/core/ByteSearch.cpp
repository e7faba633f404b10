#include "core/ByteSearch.h"

#include <bit>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace notlet {

namespace {

/// Above this length the scan below could compare too much on repetitive texts; memmem stays linear.
constexpr std::size_t longestScanned = 256;

std::size_t offsetIn(std::string_view text, const void* found) {
  if (found == nullptr)
    return std::string_view::npos;
  return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

bool standsAt(const char* place, std::string_view needle) {
  return std::memcmp(place, needle.data(), needle.size()) == 0;
}

#ifdef __SSE2__

/// Which of sixteen neighbouring places hold the first and the last byte of the needle where they belong.
class EndsFilter {
 public:
  explicit EndsFilter(std::string_view needle)
      : m_first(_mm_set1_epi8(needle.front())),
        m_last(_mm_set1_epi8(needle.back())),
        m_reach(needle.size() - 1) {}

  __m128i candidates(const char* place) const {
    const auto* head = reinterpret_cast<const __m128i*>(place);
    const auto* tail = reinterpret_cast<const __m128i*>(place + m_reach);
    return _mm_and_si128(_mm_cmpeq_epi8(m_first, _mm_loadu_si128(head)),
                         _mm_cmpeq_epi8(m_last, _mm_loadu_si128(tail)));
  }

 private:
  __m128i m_first;
  __m128i m_last;
  std::size_t m_reach;
};

unsigned bitsOf(__m128i candidates) {
  return static_cast<unsigned>(_mm_movemask_epi8(candidates));
}

constexpr std::size_t blockSize = 16;

/// The first of the candidate places that holds the needle; npos when none does.
std::size_t firstMatch(std::string_view text, std::string_view needle, std::size_t block,
                       unsigned candidates) {
  for (; candidates != 0; candidates &= candidates - 1) {
    const std::size_t place = block + static_cast<std::size_t>(std::countr_zero(candidates));
    if (standsAt(text.data() + place, needle))
      return place;
  }
  return std::string_view::npos;
}

/// Skips groups of four blocks without any candidate; returns where the first other group begins.
std::size_t skipEmptyGroups(std::string_view text, const EndsFilter& filter, std::size_t position,
                            std::size_t lastPlace) {
  for (; position + 4 * blockSize - 1 <= lastPlace; position += 4 * blockSize) {
    const char* place = text.data() + position;
    const __m128i front = _mm_or_si128(filter.candidates(place), filter.candidates(place + blockSize));
    const __m128i back =
        _mm_or_si128(filter.candidates(place + 2 * blockSize), filter.candidates(place + 3 * blockSize));
    if (bitsOf(_mm_or_si128(front, back)) != 0)
      break;
  }
  return position;
}

/// The needle's first place from `position` to `lastPlace`, which must lie at least a block from the text's
/// start.
std::size_t scan(std::string_view text, std::string_view needle, std::size_t position,
                 std::size_t lastPlace) {
  const EndsFilter filter(needle);
  while (position + blockSize - 1 <= lastPlace) {
    position = skipEmptyGroups(text, filter, position, lastPlace);
    for (int block = 0; block < 4 && position + blockSize - 1 <= lastPlace; ++block, position += blockSize) {
      const std::size_t match =
          firstMatch(text, needle, position, bitsOf(filter.candidates(text.data() + position)));
      if (match != std::string_view::npos)
        return match;
    }
  }
  if (position > lastPlace)
    return std::string_view::npos;
  // The last block overlaps what was looked at already; those places are left out.
  const std::size_t lastBlock = lastPlace - (blockSize - 1);
  const unsigned fresh = ~0U << (position - lastBlock);
  return firstMatch(text, needle, lastBlock, bitsOf(filter.candidates(text.data() + lastBlock)) & fresh);
}

#endif

} // namespace

std::size_t findBytes(std::string_view text, std::string_view needle, std::size_t from) {
  if (needle.size() > text.size() || from > text.size() - needle.size())
    return std::string_view::npos;
  if (needle.empty())
    return from;
  const std::string_view rest = text.substr(from);
  if (needle.size() == 1)
    return offsetIn(text, std::memchr(rest.data(), needle.front(), rest.size()));
  if (needle.size() > longestScanned)
    return offsetIn(text, memmem(rest.data(), rest.size(), needle.data(), needle.size()));

  const std::size_t lastPlace = text.size() - needle.size();
#ifdef __SSE2__
  if (lastPlace + 1 >= blockSize)
    return scan(text, needle, from, lastPlace);
#endif
  std::size_t position = from;
  while (position <= lastPlace) {
    const void* found = std::memchr(text.data() + position, needle.front(), lastPlace - position + 1);
    if (found == nullptr)
      break;
    position = offsetIn(text, found);
    if (standsAt(text.data() + position, needle))
      return position;
    ++position;
  }
  return std::string_view::npos;
}

} // namespace notlet
