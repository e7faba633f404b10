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

/// Looks at whole blocks of 64 places while they fit before `lastPlace`; leaves in `position` where it
/// stopped.
bool scanBlocks(const char* text, std::string_view needle, std::size_t lastPlace, std::size_t& position) {
  const EndsFilter filter(needle);
  for (; position + 63 <= lastPlace; position += 64) {
    const char* place = text + position;
    const __m128i blocks[] = {filter.candidates(place), filter.candidates(place + 16),
                              filter.candidates(place + 32), filter.candidates(place + 48)};
    const __m128i any = _mm_or_si128(_mm_or_si128(blocks[0], blocks[1]), _mm_or_si128(blocks[2], blocks[3]));
    if (bitsOf(any) == 0)
      continue;
    for (std::size_t block = 0; block < 4; ++block) {
      for (unsigned bits = bitsOf(blocks[block]); bits != 0; bits &= bits - 1) {
        const std::size_t candidate = 16 * block + static_cast<std::size_t>(std::countr_zero(bits));
        if (standsAt(place + candidate, needle)) {
          position += candidate;
          return true;
        }
      }
    }
  }
  return false;
}

#endif

} // namespace

std::size_t findBytes(std::string_view text, std::string_view needle, std::size_t from) {
  if (needle.size() > text.size() || from > text.size() - needle.size())
    return std::string_view::npos;
  if (needle.empty())
    return from;
  const char* start = text.data() + from;
  if (needle.size() == 1)
    return offsetIn(text, std::memchr(start, needle.front(), text.size() - from));
  if (needle.size() > longestScanned)
    return offsetIn(text, memmem(start, text.size() - from, needle.data(), needle.size()));

  const std::size_t lastPlace = text.size() - needle.size();
  std::size_t position = from;
#ifdef __SSE2__
  if (scanBlocks(text.data(), needle, lastPlace, position))
    return position;
#endif
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
