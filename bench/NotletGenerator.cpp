#include "NotletGenerator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "core/HashtagParser.h"
#include "core/KeywordExtractor.h"

namespace notlet {

namespace {

constexpr auto words = std::to_array<std::string_view>({"the",       "to",
                                                        "and",       "a",
                                                        "of",        "for",
                                                        "with",      "about",
                                                        "call",      "buy",
                                                        "ask",       "send",
                                                        "meeting",   "tomorrow",
                                                        "today",     "printer",
                                                        "report",    "budget",
                                                        "review",    "idea",
                                                        "project",   "milk",
                                                        "bread",     "doctor",
                                                        "train",     "ticket",
                                                        "invoice",   "password",
                                                        "garden",    "kitchen",
                                                        "birthday",  "holiday",
                                                        "school",    "teacher",
                                                        "battery",   "update",
                                                        "server",    "database",
                                                        "keyboard",  "window",
                                                        "release",   "version",
                                                        "customer",  "contract",
                                                        "signature", "quarterly",
                                                        "deadline",  "schedule",
                                                        "notebook",  "recipe",
                                                        "tomato",    "bicycle",
                                                        "repair",    "insurance",
                                                        "library",   "borrow",
                                                        "return",    "package",
                                                        "deliver",   "plumber",
                                                        "electric",  "heating",
                                                        "window",    "café",
                                                        "naïve",     "Zürich",
                                                        "façade",    "jalapeño",
                                                        "über",      "Straße",
                                                        "señor",     "crème",
                                                        "don't",     "we'll",
                                                        "o'clock",   "e-mail",
                                                        "follow-up", "3rd",
                                                        "2026",      "42",
                                                        "16:30",     "привет",
                                                        "завтра",    "встреча",
                                                        "отчёт",     "книга",
                                                        "κόσμος",    "σήμερα",
                                                        "λόγος",     "מחר",
                                                        "שלום",      "مرحبا",
                                                        "اجتماع",    "明日",
                                                        "会議",      "買い物",
                                                        "メモ",      "회의",
                                                        "내일",      "สวัสดี",
                                                        "ประชุม",     "नमस्ते",
                                                        "बैठक",       "🙂",
                                                        "🚀",        "👩‍👩‍👧‍👦",
                                                        "✅"});

constexpr std::array<std::string_view, 24> tags = {
    "work",   "home",   "ideas", "shopping", "urgent", "reading", "travel", "health",
    "garden", "family", "money", "music",    "code",   "books",   "q3",     "to-do",
    "café",   "日本",   "учёба", "recipes",  "later",  "someday", "people", "log"};
constexpr std::size_t distinctTags = 400;
constexpr std::chrono::sys_days firstDay = std::chrono::year{2000} / 1 / 1;

} // namespace

NotletGenerator::NotletGenerator(std::uint32_t seed) : m_random(seed), m_time(firstDay) {
}

std::size_t NotletGenerator::below(std::size_t limit) {
  return m_random() % limit;
}

std::size_t NotletGenerator::skewedBelow(std::size_t limit) {
  const double share = std::generate_canonical<double, 32>(m_random);
  return static_cast<std::size_t>(std::pow(share, 2.5) * static_cast<double>(limit));
}

void NotletGenerator::appendWord(std::string& text) {
  if (!text.empty() && text.back() != '\n')
    text += ' ';
  text += words[skewedBelow(words.size())];
}

void NotletGenerator::appendTag(std::string& text) {
  const std::size_t number = skewedBelow(distinctTags);
  text += " #";
  text += tags[number % tags.size()];
  if (number >= tags.size())
    text += '-' + std::to_string(number / tags.size());
}

std::string NotletGenerator::text() {
  std::string text;
  const std::size_t length = 4 + skewedBelow(50);
  for (std::size_t word = 0; word < length; ++word) {
    appendWord(text);
    if (below(14) == 0)
      text += below(2) == 0 ? "." : "\n";
  }
  for (std::size_t tag = below(4); tag > 1; --tag)
    appendTag(text);
  return text;
}

NotletEntry NotletGenerator::notlet() {
  m_time += std::chrono::minutes(1) + std::chrono::microseconds(below(1'000'000));
  auto notlet = makeNotlet(text(), m_time);
  while (!notlet)
    notlet = makeNotlet(text(), m_time);
  for (std::uint8_t& byte : notlet->id.bytes)
    byte = static_cast<std::uint8_t>(m_random());
  return std::move(*notlet);
}

std::vector<NotletEntry> NotletGenerator::notlets(std::size_t count) {
  std::vector<NotletEntry> made;
  made.reserve(count);
  std::generate_n(std::back_inserter(made), count, [this] { return notlet(); });
  return made;
}

} // namespace notlet
