#include "widgets/VirtualListAccessible.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <map>

#include "widgets/VirtualListView.h"

namespace notlet {

namespace {

/// A row that is painted.
class RowInterface final : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  RowInterface(VirtualListView* list, std::size_t row) : m_list(list), m_row(row) {}

  [[nodiscard]] bool isValid() const override { return m_list && m_row < m_list->rows().count(); }
  [[nodiscard]] QObject* object() const override { return nullptr; }
  [[nodiscard]] QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(m_list);
  }
  [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }
  [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  [[nodiscard]] int childCount() const override { return 0; }
  [[nodiscard]] int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  [[nodiscard]] QAccessible::Role role() const override { return QAccessible::ListItem; }
  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    return isValid() && kind == QAccessible::Name ? m_list->rows().accessibleText(m_row) : QString();
  }
  void setText(QAccessible::Text, const QString&) override {}
  [[nodiscard]] QRect rect() const override {
    const auto rect = isValid() ? m_list->rowRect(m_row) : std::nullopt;
    return rect ? QRect(m_list->viewport()->mapToGlobal(rect->topLeft()), rect->size()) : QRect();
  }
  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state;
    state.invalid = !isValid();
    if (state.invalid)
      return state;
    state.selectable = true;
    state.focusable = true;
    state.selected = m_list->currentRow() == m_row;
    state.focused = state.selected && m_list->hasFocus();
    state.invisible = !m_list->isVisible();
    state.offscreen = !m_list->rowRect(m_row);
    return state;
  }
  [[nodiscard]] void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }
  [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }
  void doAction(const QString& name) override {
    if (isValid() && name == pressAction())
      Q_EMIT m_list->rowClicked(m_row, QPoint());
  }
  [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }

 private:
  QPointer<VirtualListView> m_list;
  std::size_t m_row;
};

VirtualListView* listOfRowWidget(const QObject* object) {
  const auto* widget = qobject_cast<const QWidget*>(object);
  QWidget* viewport = widget ? widget->parentWidget() : nullptr;
  auto* list = viewport ? qobject_cast<VirtualListView*>(viewport->parentWidget()) : nullptr;
  return list && list->rowWidget() == widget ? list : nullptr;
}

/// A row that is a widget.
class RowWidgetInterface final : public QAccessibleWidget {
 public:
  explicit RowWidgetInterface(QWidget* widget) : QAccessibleWidget(widget, QAccessible::ListItem) {}

  [[nodiscard]] QAccessibleInterface* parent() const override {
    auto* list = listOfRowWidget(widget());
    return list ? QAccessible::queryAccessibleInterface(list) : QAccessibleWidget::parent();
  }
  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    const auto* list = listOfRowWidget(widget());
    const auto row = list ? list->widgetRow() : std::nullopt;
    return row && kind == QAccessible::Name ? list->rows().accessibleText(*row)
                                            : QAccessibleWidget::text(kind);
  }
  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    const auto* list = listOfRowWidget(widget());
    state.selectable = true;
    state.selected = list && list->currentRow() == list->widgetRow();
    return state;
  }
};

class ListInterface final : public QAccessibleWidget {
 public:
  explicit ListInterface(VirtualListView* list) : QAccessibleWidget(list, QAccessible::List) {}
  ListInterface(const ListInterface&) = delete;
  ListInterface& operator=(const ListInterface&) = delete;
  ~ListInterface() override { forgetRows(); }

  void forgetRows() {
    for (const auto& [row, id] : m_rows)
      QAccessible::deleteAccessibleInterface(id);
    m_rows.clear();
  }

  [[nodiscard]] int childCount() const override { return static_cast<int>(list()->visibleRows().size()); }
  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    return index >= 0 && index < childCount()
               ? row(list()->visibleRows()[static_cast<std::size_t>(index)].row)
               : nullptr;
  }
  [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
    for (int index = 0; index < childCount(); ++index) {
      if (this->child(index) == child)
        return index;
    }
    return -1;
  }
  [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
    const auto found = list()->rowAt(list()->viewport()->mapFromGlobal(QPoint(x, y)));
    return found ? row(*found) : nullptr;
  }
  [[nodiscard]] QAccessibleInterface* focusChild() const override {
    const auto current = list()->currentRow();
    return list()->hasFocus() && current && list()->rowRect(*current) ? row(*current)
                                                                      : QAccessibleWidget::focusChild();
  }
  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.focusable = true;
    return state;
  }

  [[nodiscard]] QAccessibleInterface* row(std::size_t number) const {
    if (list()->widgetRow() == number)
      return QAccessible::queryAccessibleInterface(list()->rowWidget());
    auto place = m_rows.find(number);
    if (place == m_rows.end()) {
      dropRowsOutOfSight();
      auto* made = new RowInterface(list(), number); // The registry takes it over.
      place = m_rows.emplace(number, QAccessible::registerAccessibleInterface(made)).first;
    }
    return QAccessible::accessibleInterface(place->second);
  }

 private:
  [[nodiscard]] VirtualListView* list() const { return static_cast<VirtualListView*>(object()); }

  void dropRowsOutOfSight() const {
    std::erase_if(m_rows, [this](const auto& entry) {
      const bool isGone = !list()->rowRect(entry.first);
      if (isGone)
        QAccessible::deleteAccessibleInterface(entry.second);
      return isGone;
    });
  }

  mutable std::map<std::size_t, QAccessible::Id> m_rows;
};

ListInterface* interfaceOf(VirtualListView* list) {
  return QAccessible::isActive() ? static_cast<ListInterface*>(QAccessible::queryAccessibleInterface(list))
                                 : nullptr;
}

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  if (auto* list = qobject_cast<VirtualListView*>(object))
    return new ListInterface(list);
  if (listOfRowWidget(object) != nullptr)
    return new RowWidgetInterface(static_cast<QWidget*>(object));
  return nullptr;
}

} // namespace

void VirtualListAccessible::install() {
  QAccessible::installFactory(makeInterface); // Takes the same factory once only.
}

void VirtualListAccessible::forgetRows(VirtualListView* list) {
  if (!QAccessible::isActive())
    return;
  if (auto* known = interfaceOf(list))
    known->forgetRows();
  QAccessibleEvent event(list, QAccessible::ObjectReorder);
  QAccessible::updateAccessibility(&event);
}

void VirtualListAccessible::announceCurrentRow(VirtualListView* list) {
  const auto current = list->currentRow();
  auto* known = interfaceOf(list);
  if (known == nullptr || !current || !list->rowRect(*current))
    return;
  QAccessibleInterface* row = known->row(*current);
  QAccessibleEvent selection(row, QAccessible::Selection);
  QAccessible::updateAccessibility(&selection);
  if (!list->hasFocus())
    return;
  QAccessibleEvent focus(row, QAccessible::Focus);
  QAccessible::updateAccessibility(&focus);
}

} // namespace notlet
