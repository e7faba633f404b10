#include "core/FoldedArchive.h"

#include <algorithm>
#include <span>

#include "core/ByteSearch.h"
#include "core/KeywordExtractor.h"
#include "core/Text.h"

namespace notlet {

namespace {

constexpr std::size_t slotsPerPage = 1024;

// Bytes that never occur in UTF-8 part what belongs to a notlet: its text, its tags, each between tag bytes,
// its further keywords, each between keyword bytes, and the end.
constexpr char tagByte = '\xFE';
constexpr char keywordByte = '\xFD';
constexpr char endByte = '\xFF';

bool isWordByte(char byte) {
  return byte == tagByte || byte == keywordByte;
}

void appendWords(std::string& bytes, const std::vector<std::string>& words, char parting) {
  if (words.empty())
    return;
  bytes.push_back(parting);
  for (const std::string& word : words)
    bytes.append(word).push_back(parting);
}

struct FoldedNotlet {
  std::string bytes;
  std::size_t contentLength = 0;

  explicit FoldedNotlet(const NotletEntry& notlet)
      : bytes(folded(notlet.content)), contentLength(bytes.size()) {
    std::vector<std::string> tags;
    for (const std::string_view tag : notlet.hashtags)
      tags.push_back(folded(tag));
    std::vector<std::string> keywords;
    takeKeywords(notlet.keywords, keywords);
    takeKeywords(KeywordExtractor::extractDottedKeywords(notlet.content), keywords);
    appendWords(bytes, tags, tagByte);
    appendWords(bytes, keywords, keywordByte);
    bytes.push_back(endByte);
  }

 private:
  /// A keyword that the text contains adds nothing to what is found: nearly all of them.
  void takeKeywords(const WordList& words, std::vector<std::string>& keywords) const {
    for (const std::string_view word : words) {
      std::string key = folded(word);
      if (!containsCanonically(bytes, key))
        keywords.push_back(std::move(key));
    }
  }
};

} // namespace

/// One thing that a notlet's bytes must hold.
struct FoldedArchive::Needle {
  enum class Kind { Tag, Term, Phrase };

  std::string bytes;
  Kind kind;

  /// Whether the needle's bytes, found at `position`, count: a tag is parted by its bytes already, in the
  /// text whole characters count, among the words behind the text whole words.
  [[nodiscard]] bool countsAt(const Page& page, std::size_t index, std::size_t position) const {
    if (kind == Kind::Tag)
      return true;
    const std::size_t contentEnd = page.extents[index].contentEnd;
    if (position >= contentEnd)
      return kind == Kind::Term && isWordByte(page.bytes[position - 1]) &&
             isWordByte(page.bytes[position + bytes.size()]);
    const std::size_t begin = page.beginOf(index);
    const std::string_view content = std::string_view(page.bytes).substr(begin, contentEnd - begin);
    return standsOnWholeCharacters(content, position - begin, bytes.size());
  }

  /// Whether it counts somewhere in the notlet's bytes, looked for from `position` within them.
  [[nodiscard]] bool standsIn(const Page& page, std::size_t index, std::size_t position) const {
    const std::string_view searched = std::string_view(page.bytes).substr(0, page.extents[index].end);
    position = findBytes(searched, bytes, position);
    while (position != std::string_view::npos && !countsAt(page, index, position))
      position = findBytes(searched, bytes, position + 1);
    return position != std::string_view::npos;
  }
};

/// Needles that must all stand in a notlet. The longest comes first: it is the one that pages are scanned
/// for, and only what holds it is looked at for the others.
class FoldedArchive::Needles {
 public:
  explicit Needles(const SearchQuery& query) {
    for (const std::string& tag : query.tags)
      m_needles.push_back({tagByte + tag + tagByte, Needle::Kind::Tag});
  }

  void add(const std::string& bytes, Needle::Kind kind) { m_needles.push_back({bytes, kind}); }

  void sort() {
    std::ranges::stable_sort(m_needles, std::ranges::greater{},
                             [](const Needle& needle) { return needle.bytes.size(); });
  }

  [[nodiscard]] bool stand(const Page& page, std::size_t index) const {
    return !page.isFree(index) && allStandIn(m_needles, page, index);
  }

  /// Calls `found` with each matching index of [first, last).
  template<typename Found>
  void scan(const Page& page, std::size_t first, std::size_t last, Found found) const {
    if (m_needles.empty()) {
      for (std::size_t index = first; index < last; ++index) {
        if (!page.isFree(index))
          found(index);
      }
      return;
    }
    const std::string_view searched = std::string_view(page.bytes).substr(0, page.extents[last - 1].end);
    const auto isMissing = [&](const Needle& needle) {
      return findBytes(searched, needle.bytes, page.beginOf(first)) == std::string_view::npos;
    };
    const Needle& driver = m_needles.front();
    const std::span<const Needle> others = std::span(m_needles).subspan(1);
    // One rare word among frequent ones spares most pages.
    if (std::ranges::any_of(others, isMissing))
      return;
    std::size_t index = first;
    std::size_t position = findBytes(searched, driver.bytes, page.beginOf(first));
    while (position != std::string_view::npos) {
      index = page.indexAt(position, index);
      if (stands(driver, page, index, position) && allStandIn(others, page, index))
        found(index);
      position = findBytes(searched, driver.bytes, page.extents[index].end);
    }
  }

 private:
  /// Whether the needle, whose bytes were found at `position`, counts there or further on.
  static bool stands(const Needle& needle, const Page& page, std::size_t index, std::size_t position) {
    return needle.countsAt(page, index, position) || needle.standsIn(page, index, position + 1);
  }

  static bool allStandIn(std::span<const Needle> needles, const Page& page, std::size_t index) {
    return std::ranges::all_of(
        needles, [&](const Needle& needle) { return needle.standsIn(page, index, page.beginOf(index)); });
  }

  std::vector<Needle> m_needles;
};

/// The ways in which a notlet can match a query, at least one.
class FoldedArchive::Search {
 public:
  explicit Search(const SearchQuery& query) {
    if (!query.isPlainPhrase() || query.matchesEverything()) {
      Needles& words = m_ways.emplace_back(query);
      for (const std::string& term : query.terms)
        words.add(term, Needle::Kind::Term);
      words.sort();
    }
    // Mostly whatever holds the phrase holds all its words.
    const auto isInPhrase = [&](const std::string& term) { return containsCanonically(query.phrase, term); };
    if (!m_ways.empty() && std::ranges::all_of(query.terms, isInPhrase))
      return;
    Needles& whole = m_ways.emplace_back(query);
    whole.add(query.phrase, Needle::Kind::Phrase);
    whole.sort();
  }

  [[nodiscard]] bool finds(const Page& page, std::size_t index) const {
    return std::ranges::any_of(m_ways, [&](const Needles& way) { return way.stand(page, index); });
  }

  /// Adds the matching indexes of [first, last), ascending, to `found`.
  void scan(const Page& page, std::size_t first, std::size_t last, std::vector<std::size_t>& found) const {
    const auto before = static_cast<std::ptrdiff_t>(found.size());
    for (const Needles& way : m_ways) {
      const auto middle = static_cast<std::ptrdiff_t>(found.size());
      way.scan(page, first, last, [&](std::size_t index) { found.push_back(index); });
      std::ranges::inplace_merge(found.begin() + before, found.begin() + middle, found.end());
    }
    found.erase(std::unique(found.begin() + before, found.end()), found.end());
  }

 private:
  std::vector<Needles> m_ways;
};

std::size_t FoldedArchive::Page::beginOf(std::size_t index) const {
  return index == 0 ? 0 : extents[index - 1].end;
}

/// The slot, not before `from`, whose bytes hold the position. It is mostly near, so steps of growing length
/// find it with fewer looks than halving all that follows.
std::size_t FoldedArchive::Page::indexAt(std::size_t position, std::size_t from) const {
  std::size_t step = 1;
  std::size_t last = from;
  while (last < extents.size() && extents[last].end <= position) {
    from = last + 1;
    last += step;
    step *= 2;
  }
  const auto begin = extents.begin() + static_cast<std::ptrdiff_t>(from);
  const auto end = extents.begin() + static_cast<std::ptrdiff_t>(std::min(last, extents.size()));
  return static_cast<std::size_t>(std::ranges::upper_bound(begin, end, position, {}, &Extent::end) -
                                  extents.begin());
}

void FoldedArchive::Page::put(std::size_t index, std::string_view newBytes, std::size_t contentLength) {
  const std::size_t begin = beginOf(index);
  const std::size_t oldEnd = extents[index].end;
  bytes.replace(begin, oldEnd - begin, newBytes);
  extents[index].contentEnd = begin + contentLength;
  const std::size_t newEnd = begin + newBytes.size();
  extents[index].end = newEnd;
  for (std::size_t later = index + 1; later < extents.size(); ++later) {
    extents[later].contentEnd = extents[later].contentEnd - oldEnd + newEnd;
    extents[later].end = extents[later].end - oldEnd + newEnd;
  }
}

FoldedArchive::Slot FoldedArchive::add(const NotletEntry& notlet) {
  if (m_endSlot % slotsPerPage == 0) {
    if (!m_pages.empty())
      m_pages.back().bytes.shrink_to_fit();
    m_pages.emplace_back().extents.reserve(slotsPerPage);
  }
  Page& page = m_pages.back();
  const FoldedNotlet notletFolded(notlet);
  page.extents.push_back({page.bytes.size(), page.bytes.size()});
  page.put(page.extents.size() - 1, notletFolded.bytes, notletFolded.contentLength);
  return m_endSlot++;
}

void FoldedArchive::replace(Slot slot, const NotletEntry& notlet) {
  const FoldedNotlet notletFolded(notlet);
  m_pages[slot / slotsPerPage].put(slot % slotsPerPage, notletFolded.bytes, notletFolded.contentLength);
}

void FoldedArchive::remove(Slot slot) {
  m_pages[slot / slotsPerPage].put(slot % slotsPerPage, {}, 0);
}

void FoldedArchive::clear() {
  m_pages.clear();
  m_endSlot = 0;
}

std::size_t FoldedArchive::bytesHeld() const {
  std::size_t sum = m_pages.capacity() * sizeof(Page);
  for (const Page& page : m_pages)
    sum += page.bytes.capacity() + page.extents.capacity() * sizeof(Extent);
  return sum;
}

bool FoldedArchive::matches(Slot slot, const SearchQuery& query) const {
  return slot < m_endSlot && Search(query).finds(m_pages[slot / slotsPerPage], slot % slotsPerPage);
}

std::vector<FoldedArchive::Slot> FoldedArchive::collect(const SearchQuery& query, Slot first,
                                                        Slot last) const {
  std::vector<Slot> found;
  std::vector<std::size_t> inPage;
  const Search search(query);
  last = std::min(last, m_endSlot);
  while (first < last) {
    const Page& page = m_pages[first / slotsPerPage];
    const auto pageBegin = static_cast<Slot>(first - first % slotsPerPage);
    const Slot pageEnd = std::min<Slot>(last, pageBegin + slotsPerPage);
    inPage.clear();
    search.scan(page, first - pageBegin, pageEnd - pageBegin, inPage);
    for (const std::size_t index : inPage)
      found.push_back(pageBegin + static_cast<Slot>(index));
    first = pageEnd;
  }
  return found;
}

} // namespace notlet
