#include "widgets/HeightIndex.h"

#include <algorithm>

namespace notlet {

void HeightIndex::reset(std::size_t count, int estimate) {
  m_count = count;
  m_estimate = estimate;
  m_known.clear();
}

std::vector<HeightIndex::Known>::const_iterator HeightIndex::find(std::size_t row) const {
  return std::ranges::lower_bound(m_known, row, {}, &Known::row);
}

void HeightIndex::insert(std::size_t first, std::size_t count) {
  m_count += count;
  for (auto known = m_known.begin() + (find(first) - m_known.cbegin()); known != m_known.end(); ++known)
    known->row += count;
}

void HeightIndex::remove(std::size_t first, std::size_t count) {
  forget(first, count);
  m_count -= count;
  for (auto known = m_known.begin() + (find(first) - m_known.cbegin()); known != m_known.end(); ++known)
    known->row -= count;
}

void HeightIndex::forget(std::size_t first, std::size_t count) {
  m_known.erase(find(first), find(first + count));
}

void HeightIndex::set(std::size_t row, int height) {
  const auto place = m_known.begin() + (find(row) - m_known.cbegin());
  if (place != m_known.end() && place->row == row) {
    place->height = height;
    return;
  }
  m_known.insert(place, {row, height});
  if (m_known.size() <= mostKnown)
    return;
  const bool isNearerToFirst = row - m_known.front().row < m_known.back().row - row;
  m_known.erase(isNearerToFirst ? m_known.end() - 1 : m_known.begin());
}

std::optional<int> HeightIndex::known(std::size_t row) const {
  const auto place = find(row);
  return place != m_known.end() && place->row == row ? std::optional(place->height) : std::nullopt;
}

std::int64_t HeightIndex::top(std::size_t row) const {
  auto sum = static_cast<std::int64_t>(row) * m_estimate;
  for (auto known = m_known.begin(); known != m_known.end() && known->row < row; ++known)
    sum += known->height - m_estimate;
  return sum;
}

std::size_t HeightIndex::rowAt(std::int64_t distance) const {
  std::size_t row = 0;
  std::int64_t rest = std::max<std::int64_t>(distance, 0);
  for (const Known& known : m_known) {
    const std::int64_t between = static_cast<std::int64_t>(known.row - row) * m_estimate;
    if (rest < between)
      break;
    rest -= between;
    row = known.row;
    if (rest < known.height)
      return row;
    rest -= known.height;
    ++row;
  }
  return std::min(row + static_cast<std::size_t>(rest / m_estimate), m_count - 1);
}

} // namespace notlet
