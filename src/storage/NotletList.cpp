#include "storage/NotletList.h"

#include <algorithm>
#include <utility>

namespace notlet {

const NotletEntry* NotletList::find(const Uuid& id) const {
  const auto found = m_notlets.find(id);
  return found == m_notlets.end() ? nullptr : &found->second;
}

std::optional<std::size_t> NotletList::indexOf(const Uuid& id) const {
  const NotletEntry* entry = find(id);
  if (!entry)
    return std::nullopt;
  return size() - 1 - static_cast<std::size_t>(placeInOrder(*entry) - m_order.begin());
}

std::size_t NotletList::placeOf(const NotletEntry& entry) const {
  return size() - static_cast<std::size_t>(placeInOrder(entry) - m_order.begin());
}

NotletList::Order::const_iterator NotletList::placeInOrder(const NotletEntry& entry) const {
  if (m_order.empty() || listedBefore(entry, *m_order.back()))
    return m_order.end();
  if (listedBefore(*m_order.front(), entry))
    return m_order.begin();
  return std::ranges::lower_bound(m_order, &entry, [](const NotletEntry* left, const NotletEntry* right) {
    return listedBefore(*right, *left);
  });
}

std::size_t NotletList::insert(NotletEntry entry) {
  const auto place = placeInOrder(entry);
  const std::size_t index = size() - static_cast<std::size_t>(place - m_order.begin());
  const Uuid id = entry.id;
  const NotletEntry& owned = m_notlets.emplace(id, std::move(entry)).first->second;
  m_order.insert(place, &owned);
  return index;
}

NotletEntry NotletList::replace(NotletEntry entry) {
  return std::exchange(m_notlets.find(entry.id)->second, std::move(entry));
}

NotletEntry NotletList::take(const Uuid& id) {
  const auto found = m_notlets.find(id);
  m_order.erase(placeInOrder(found->second));
  NotletEntry entry = std::move(found->second);
  m_notlets.erase(found);
  return entry;
}

} // namespace notlet
