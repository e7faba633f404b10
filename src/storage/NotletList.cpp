#include "storage/NotletList.h"

#include <algorithm>
#include <utility>

namespace notlet {

const NotletEntry* NotletList::find(const Uuid& id) const {
  const auto found = m_notlets.find(id);
  return found == m_notlets.end() ? nullptr : &*found;
}

std::optional<std::size_t> NotletList::indexOf(const Uuid& id) const {
  const NotletEntry* entry = find(id);
  if (!entry)
    return std::nullopt;
  return size() - 1 - static_cast<std::size_t>(placeInOrder(entry->createdAt, id) - m_order.begin());
}

std::size_t NotletList::placeOf(Timestamp createdAt, const Uuid& id) const {
  const auto place = placeInOrder(createdAt, id);
  const std::size_t olderCount = static_cast<std::size_t>(place - m_order.begin());
  const bool isThere = place != m_order.end() && (*place)->id == id && (*place)->createdAt == createdAt;
  return size() - olderCount - (isThere ? 1 : 0);
}

/// Where the notlet is, or the first that is newer.
NotletList::Order::const_iterator NotletList::placeInOrder(Timestamp createdAt, const Uuid& id) const {
  const auto isOlder = [](const NotletEntry* entry, Timestamp time, const Uuid& other) {
    return entry->createdAt != time ? entry->createdAt < time : entry->id < other;
  };
  if (m_order.empty() || isOlder(m_order.back(), createdAt, id))
    return m_order.end();
  if (!isOlder(m_order.front(), createdAt, id))
    return m_order.begin();
  return std::partition_point(m_order.begin(), m_order.end(),
                              [&](const NotletEntry* entry) { return isOlder(entry, createdAt, id); });
}

std::size_t NotletList::insert(NotletEntry entry) {
  const auto place = placeInOrder(entry.createdAt, entry.id);
  const std::size_t index = size() - static_cast<std::size_t>(place - m_order.begin());
  const NotletEntry& owned = *m_notlets.insert(std::move(entry)).first;
  m_order.insert(place, &owned);
  return index;
}

NotletEntry NotletList::replace(NotletEntry entry) {
  // A node that goes out of the table and back into it stays where it is in memory.
  auto node = m_notlets.extract(m_notlets.find(entry.id));
  NotletEntry former = std::exchange(node.value(), std::move(entry));
  m_notlets.insert(std::move(node));
  return former;
}

NotletEntry NotletList::take(const Uuid& id) {
  auto node = m_notlets.extract(m_notlets.find(id));
  m_order.erase(placeInOrder(node.value().createdAt, id));
  return std::move(node.value());
}

} // namespace notlet
