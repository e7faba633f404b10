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

/// Bytes that stand as they are.
struct Exactly {
  std::string_view bytes;

  [[nodiscard]] std::size_t size() const { return bytes.size(); }
  [[nodiscard]] bool standsAt(const char* place) const {
    return std::memcmp(place, bytes.data(), bytes.size()) == 0;
  }
};

/// Bytes that stand each in one of two forms.
struct InEitherForm {
  std::string_view first;
  std::string_view second;

  [[nodiscard]] std::size_t size() const { return first.size(); }
  [[nodiscard]] bool standsAt(const char* place) const {
    std::size_t index = 0;
    while (index < first.size() && (place[index] == first[index] || place[index] == second[index]))
      ++index;
    return index == first.size();
  }
};

/// What may stand within a word without being a letter of it. The bytes above ASCII are negative.
bool isJoint(signed char byte) {
  return byte < 0 || (byte > ' ' && byte < '0') || byte == ':' || byte == ';' || byte == '_';
}

struct PairOrJoint {
  LetterPair pair;

  static std::size_t size() { return 2; }
  [[nodiscard]] bool standsAt(const char* place) const {
    return (place[0] == pair.firstSmall || place[0] == pair.firstCapital) &&
           (place[1] == pair.secondSmall || place[1] == pair.secondCapital ||
            isJoint(static_cast<signed char>(place[1])));
  }
};

#ifdef __SSE2__

/// Which of sixteen neighbouring places hold a byte.
class OneByte {
 public:
  explicit OneByte(char byte) : m_byte(_mm_set1_epi8(byte)) {}
  [[nodiscard]] __m128i placesIn(__m128i bytes) const { return _mm_cmpeq_epi8(m_byte, bytes); }

 private:
  __m128i m_byte;
};

class OneOfTwoBytes {
 public:
  OneOfTwoBytes(char first, char second) : m_first(_mm_set1_epi8(first)), m_second(_mm_set1_epi8(second)) {}
  [[nodiscard]] __m128i placesIn(__m128i bytes) const {
    return _mm_or_si128(_mm_cmpeq_epi8(m_first, bytes), _mm_cmpeq_epi8(m_second, bytes));
  }

 private:
  __m128i m_first;
  __m128i m_second;
};

class OneOfTwoBytesOrJoint {
 public:
  OneOfTwoBytesOrJoint(char first, char second) : m_bytes(first, second) {}
  [[nodiscard]] __m128i placesIn(__m128i bytes) const {
    const __m128i behindSpace = _mm_cmpgt_epi8(bytes, _mm_set1_epi8(' '));
    const __m128i aboveAscii = _mm_cmplt_epi8(bytes, _mm_setzero_si128());
    const __m128i beforeDigits = _mm_cmplt_epi8(bytes, _mm_set1_epi8('0'));
    const __m128i colons = OneOfTwoBytes(':', ';').placesIn(bytes);
    const __m128i rest = _mm_or_si128(colons, OneByte('_').placesIn(bytes));
    const __m128i joints = _mm_and_si128(beforeDigits, _mm_or_si128(behindSpace, aboveAscii));
    return _mm_or_si128(m_bytes.placesIn(bytes), _mm_or_si128(joints, rest));
  }

 private:
  OneOfTwoBytes m_bytes;
};

/// Which of sixteen neighbouring places hold the first and the last byte of the needle where they belong.
template<typename First, typename Last>
class EndsFilter {
 public:
  EndsFilter(First first, Last last, std::size_t size) : m_first(first), m_last(last), m_reach(size - 1) {}

  __m128i candidates(const char* place) const {
    const auto* head = reinterpret_cast<const __m128i*>(place);
    const auto* tail = reinterpret_cast<const __m128i*>(place + m_reach);
    return _mm_and_si128(m_first.placesIn(_mm_loadu_si128(head)), m_last.placesIn(_mm_loadu_si128(tail)));
  }

 private:
  First m_first;
  Last m_last;
  std::size_t m_reach;
};

auto endsOf(const Exactly& needle) {
  return EndsFilter(OneByte(needle.bytes.front()), OneByte(needle.bytes.back()), needle.size());
}
auto endsOf(const InEitherForm& needle) {
  return EndsFilter(OneOfTwoBytes(needle.first.front(), needle.second.front()),
                    OneOfTwoBytes(needle.first.back(), needle.second.back()), needle.size());
}
auto endsOf(const PairOrJoint& needle) {
  return EndsFilter(OneOfTwoBytes(needle.pair.firstSmall, needle.pair.firstCapital),
                    OneOfTwoBytesOrJoint(needle.pair.secondSmall, needle.pair.secondCapital), needle.size());
}

unsigned bitsOf(__m128i candidates) {
  return static_cast<unsigned>(_mm_movemask_epi8(candidates));
}

constexpr std::size_t blockSize = 16;

/// The first of the candidate places that holds the needle; npos when none does.
template<typename Needle>
std::size_t firstMatch(std::string_view text, const Needle& needle, std::size_t block, unsigned candidates) {
  for (; candidates != 0; candidates &= candidates - 1) {
    const std::size_t place = block + static_cast<std::size_t>(std::countr_zero(candidates));
    if (needle.standsAt(text.data() + place))
      return place;
  }
  return std::string_view::npos;
}

/// Skips groups of four blocks without any candidate; returns where the first other group begins.
template<typename Filter>
std::size_t skipEmptyGroups(std::string_view text, const Filter& filter, std::size_t position,
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
template<typename Needle>
std::size_t scanBlocks(std::string_view text, const Needle& needle, std::size_t position,
                       std::size_t lastPlace) {
  const auto filter = endsOf(needle);
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

/// The needle, of one byte at least, must fit in behind `from`.
template<typename Needle>
std::size_t scan(std::string_view text, const Needle& needle, std::size_t from) {
  const std::size_t lastPlace = text.size() - needle.size();
#ifdef __SSE2__
  if (lastPlace + 1 >= blockSize)
    return scanBlocks(text, needle, from, lastPlace);
#endif
  for (; from <= lastPlace; ++from) {
    if (needle.standsAt(text.data() + from))
      return from;
  }
  return std::string_view::npos;
}

bool fits(std::string_view text, std::size_t size, std::size_t from) {
  return size <= text.size() && from <= text.size() - size;
}

} // namespace

std::size_t findBytes(std::string_view text, std::string_view needle, std::size_t from) {
  if (!fits(text, needle.size(), from))
    return std::string_view::npos;
  if (needle.empty())
    return from;
  const std::string_view rest = text.substr(from);
  if (needle.size() == 1)
    return offsetIn(text, std::memchr(rest.data(), needle.front(), rest.size()));
  if (needle.size() > longestScanned)
    return offsetIn(text, memmem(rest.data(), rest.size(), needle.data(), needle.size()));
  return scan(text, Exactly{needle}, from);
}

std::size_t findEither(std::string_view text, std::string_view first, std::string_view second,
                       std::size_t from) {
  if (!fits(text, first.size(), from))
    return std::string_view::npos;
  return first.empty() ? from : scan(text, InEitherForm{first, second}, from);
}

bool holdsPairOrJoint(std::string_view text, const LetterPair& pair) {
  return text.size() >= 2 && scan(text, PairOrJoint{pair}, 0) != std::string_view::npos;
}

} // namespace notlet
