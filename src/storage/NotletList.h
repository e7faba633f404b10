#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <unordered_set>

#include "core/NotletEntry.h"

namespace notlet {

/// Notlets sorted newest first, found by identifier or by place. A notlet stays at its address until it is
/// removed. All operations take microseconds with a million notlets, except that one inserted or removed in
/// the middle of the list moves pointers.
class NotletList {
 public:
  [[nodiscard]] std::size_t size() const { return m_order.size(); }
  /// Index 0 is the newest.
  [[nodiscard]] const NotletEntry& at(std::size_t index) const { return *m_order[size() - 1 - index]; }
  [[nodiscard]] const NotletEntry* find(const Uuid& id) const;
  [[nodiscard]] std::optional<std::size_t> indexOf(const Uuid& id) const;
  /// The index that a notlet created at that time with that identifier has or would get.
  [[nodiscard]] std::size_t placeOf(Timestamp createdAt, const Uuid& id) const;

  /// Adds a notlet whose identifier is not in the list and gives its index.
  std::size_t insert(NotletEntry entry);
  /// Exchanges a notlet for one with the same identifier and creation time, and gives the former one.
  NotletEntry replace(NotletEntry entry);
  /// Removes a notlet that is in the list.
  NotletEntry take(const Uuid& id);
  void reserve(std::size_t count) { m_notlets.reserve(count); }

 private:
  // Oldest first, so that a new notlet comes at the end; a queue open at both ends because older ones are
  // loaded later.
  using Order = std::deque<const NotletEntry*>;

  [[nodiscard]] Order::const_iterator placeInOrder(Timestamp createdAt, const Uuid& id) const;

  static Uuid idOf(const Uuid& id) noexcept { return id; }
  static Uuid idOf(const NotletEntry& entry) noexcept { return entry.id; }
  // Quick and without exceptions, so that the table does not keep a hash beside each notlet.
  struct IdHash {
    using is_transparent = void;
    std::size_t operator()(const auto& object) const noexcept { return std::hash<Uuid>()(idOf(object)); }
  };
  struct IdEqual {
    using is_transparent = void;
    bool operator()(const auto& left, const auto& right) const { return idOf(left) == idOf(right); }
  };

  std::unordered_set<NotletEntry, IdHash, IdEqual> m_notlets;
  Order m_order;
};

} // namespace notlet
