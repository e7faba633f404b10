#include "cli/NotletImport.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "cli/TimeText.h"
#include "core/Text.h"
#include "platform/JsonText.h"

namespace notlet {
namespace {

using nlohmann::json;

/// Reads a text and tells from outside how far that has come.
class TrackedIterator {
 public:
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;
  using iterator_category = std::input_iterator_tag;

  TrackedIterator(const char* position, const char*& reached) : m_position(position), m_reached(&reached) {}

  reference operator*() const { return *m_position; }
  TrackedIterator& operator++() {
    *m_reached = ++m_position;
    return *this;
  }
  TrackedIterator operator++(int) {
    TrackedIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const TrackedIterator& other) const { return m_position == other.m_position; }

 private:
  const char* m_position;
  const char** m_reached;
};

/// Receives the parts of the array one after the other; nothing is kept but the notlets.
class Receiver : public json::json_sax_t {
 public:
  Receiver(std::string_view text, const char*& reached) : m_text(text), m_reached(&reached) {}

  std::vector<NotletEntry> notlets;
  std::string complaint;

  bool null() override { return takeOther(m_field == Field::UpdatedAt); }
  bool boolean(bool) override { return takeOther(); }
  bool number_integer(std::int64_t) override { return takeOther(); }
  bool number_unsigned(std::uint64_t) override { return takeOther(); }
  bool number_float(double, const std::string&) override { return takeOther(); }
  bool binary(json::binary_t&) override { return takeOther(); }

  bool string(std::string& value) override {
    if (m_depth != 2)
      return takeOther();
    switch (std::exchange(m_field, Field::Other)) {
    case Field::Id:
      return take(m_id, Uuid::parse(value), "The id is not one");
    case Field::Content:
      m_content = std::move(value);
      return true;
    case Field::CreatedAt:
      return take(m_createdAt, parseTime(value), "The time of creation is not one");
    case Field::UpdatedAt:
      return take(m_updatedAt, parseTime(value), "The time of the last edit is not one");
    case Field::Other:
      return true;
    }
    return true;
  }

  bool start_object(std::size_t) override {
    if (m_depth == 1) {
      m_id.reset();
      m_content.reset();
      m_createdAt.reset();
      m_updatedAt.reset();
      m_seen.clear();
    }
    return m_depth == 1 ? descend() : takeOther() && descend();
  }

  bool key(std::string& name) override {
    if (m_depth != 2)
      return true;
    m_field = fieldNamed(name);
    if (m_field == Field::Other)
      return true;
    if (std::ranges::find(m_seen, m_field) != m_seen.end())
      return complain("The key " + inQuotes(name) + " appears twice");
    m_seen.push_back(m_field);
    return true;
  }

  bool end_object() override { return --m_depth != 1 || takeNotlet(); }

  bool start_array(std::size_t) override { return m_depth == 0 ? descend() : takeOther() && descend(); }

  bool end_array() override {
    --m_depth;
    return true;
  }

  bool parse_error(std::size_t position, const std::string&, const json::exception&) override {
    if (position > m_text.size())
      complaint = "The text ends too early, at " + placeInText(m_text, m_text.size()) + ".";
    else if (static_cast<unsigned char>(m_text[std::max<std::size_t>(position, 1) - 1]) >= 0x80 &&
             !isValidUtf8(m_text))
      complaint = "The text is not UTF-8 at " + placeInText(m_text, position - 1) + ".";
    else
      complaint =
          "The text is not JSON at " + placeInText(m_text, std::max<std::size_t>(position, 1) - 1) + ".";
    return false;
  }

 private:
  enum class Field { Id, Content, CreatedAt, UpdatedAt, Other };

  static Field fieldNamed(std::string_view name) {
    if (name == "id")
      return Field::Id;
    if (name == "content")
      return Field::Content;
    if (name == "createdAt")
      return Field::CreatedAt;
    return name == "updatedAt" ? Field::UpdatedAt : Field::Other;
  }

  bool complain(const std::string& what) {
    // The reader stands behind what it has read.
    const auto read = static_cast<std::size_t>(*m_reached - m_text.data());
    complaint = what + ", at " + placeInText(m_text, std::max<std::size_t>(read, 1) - 1) + ".";
    return false;
  }

  template<typename Value>
  bool take(std::optional<Value>& place, std::optional<Value> value, const char* whatIsWrong) {
    place = value;
    return value.has_value() || complain(whatIsWrong);
  }

  /// A value that is no string: welcome only where nobody looks at it.
  bool takeOther(bool isWelcome = false) {
    if (m_depth == 0)
      return complain("This is not an array of notlets");
    if (m_depth == 1)
      return complain("This is not a notlet");
    const Field field = m_depth == 2 ? std::exchange(m_field, Field::Other) : Field::Other;
    return field == Field::Other || isWelcome || complain("A text is expected here");
  }

  bool descend() {
    constexpr int deepest = 64;
    return ++m_depth <= deepest || complain("Arrays and objects are nested too deeply");
  }

  bool takeNotlet() {
    if (!m_id || !m_content || !m_createdAt)
      return complain("A notlet must have an id, a content and a time of creation");
    std::optional<NotletEntry> notlet = makeNotlet(*m_content, *m_createdAt);
    if (!notlet)
      return complain("The notlet has no text");
    notlet->id = *m_id;
    notlet->updatedAt = m_updatedAt;
    notlets.push_back(std::move(*notlet));
    return true;
  }

  std::string_view m_text;
  const char** m_reached;
  int m_depth = 0;
  Field m_field = Field::Other;
  std::vector<Field> m_seen;
  std::optional<Uuid> m_id;
  std::optional<std::string> m_content;
  std::optional<Timestamp> m_createdAt;
  std::optional<Timestamp> m_updatedAt;
};

} // namespace

CommandResult<std::vector<NotletEntry>> parseNotlets(std::string_view text) {
  const char* reached = text.data();
  Receiver receiver(text, reached);
  const char* const end = text.data() + text.size();
  if (!json::sax_parse(TrackedIterator(reached, reached), TrackedIterator(end, reached), &receiver))
    return commandFailure(std::move(receiver.complaint));
  return std::move(receiver.notlets);
}

} // namespace notlet
