#include "core/StopWords.h"

#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

namespace notlet {

namespace {

bool isNewline(char32_t character) {
  return (character >= 0x0A && character <= 0x0D) || character == 0x85 || character == 0x2028 ||
         character == 0x2029;
}

std::optional<std::string> readText(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(stream), {}};
  if (!stream.is_open() || stream.bad() || !isValidUtf8(text))
    return std::nullopt;
  return text;
}

bool isReadableFile(const std::filesystem::path& file) {
  std::error_code ignored; // A place that cannot be looked at holds no file for us.
  return std::filesystem::is_regular_file(file, ignored);
}

/// Where stopwords.txt may lie: beside a program that was moved with its data, where it was installed, or in
/// the sources it was built from.
std::filesystem::path resourceFile() {
  std::error_code ignored;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", ignored);
  const std::filesystem::path places[] = {program.parent_path().parent_path() / "share" / "notlet",
                                          NOTLET_RESOURCE_DIR, NOTLET_SOURCE_RESOURCE_DIR};
  for (const std::filesystem::path& place : places) {
    std::filesystem::path file = place / "stopwords.txt";
    if (isReadableFile(file))
      return file;
  }
  return {};
}

} // namespace

StopWords::StopWords(std::initializer_list<std::string_view> words) {
  for (const std::string_view word : words)
    m_words.insert(folded(word));
}

const StopWords& StopWords::set() {
  static const StopWords words = load(resourceFile());
  return words;
}

const StopWords& StopWords::defaultList() {
  static const StopWords words = {"a",  "an",  "and",  "are",  "as",   "at",   "be",  "but",
                                  "by", "for", "from", "has",  "have", "i",    "in",  "is",
                                  "it", "my",  "of",   "on",   "or",   "that", "the", "this",
                                  "to", "was", "we",   "were", "with", "you",  "your"};
  return words;
}

StopWords StopWords::load(const std::filesystem::path& file) {
  const auto text = isReadableFile(file) ? readText(file) : std::nullopt;
  if (!text)
    return defaultList();
  StopWords result;
  std::string_view rest = *text;
  std::size_t lineEnd = 0;
  while (lineEnd < rest.size()) {
    const CodePoint next = firstCodePoint(rest.substr(lineEnd));
    if (!isNewline(next.value)) {
      lineEnd += next.length;
      continue;
    }
    result.m_words.insert(folded(rest.substr(0, lineEnd)));
    rest.remove_prefix(lineEnd + next.length);
    lineEnd = 0;
  }
  result.m_words.insert(folded(rest));
  return result;
}

} // namespace notlet
