#include "storage/ModelContext.h"

#include <QSignalSpy>
#include <random>

#include "storage/StoreFixture.h"

namespace notlet {
namespace {

using namespace std::chrono_literals;
using Kind = ListChange::Kind;

/// A list kept by nothing but the announced changes; it must always agree with the context's.
class Mirror {
 public:
  explicit Mirror(ModelContext& context) : m_context(context) {
    for (std::size_t index = 0; index < context.size(); ++index)
      m_ids.push_back(context.at(index).id);
    QObject::connect(&context, &ModelContext::listChanged, &context,
                     [this](const ListChange& change) { take(change); });
  }

  int updates = 0;

 private:
  void take(const ListChange& change) {
    const auto first = m_ids.begin() + static_cast<std::ptrdiff_t>(change.first);
    if (change.kind == Kind::Removed)
      m_ids.erase(first, first + static_cast<std::ptrdiff_t>(change.count));
    else if (change.kind == Kind::Updated)
      ++updates;
    else
      insert(change);
    ASSERT_EQ(m_ids.size(), m_context.size());
    if (m_ids.size() < 2000) {
      for (std::size_t index = 0; index < m_ids.size(); ++index)
        ASSERT_EQ(m_ids[index], m_context.at(index).id);
    }
  }

  void insert(const ListChange& change) {
    ASSERT_LE(change.first, m_ids.size());
    for (std::size_t index = change.first; index < change.first + change.count; ++index)
      m_ids.insert(m_ids.begin() + static_cast<std::ptrdiff_t>(index), m_context.at(index).id);
    if (change.kind == Kind::Appended) {
      ASSERT_EQ(change.first + change.count, m_ids.size());
    }
  }

  ModelContext& m_context;
  std::vector<Uuid> m_ids;
};

class ModelContextTest : public StoreFixture {
 protected:
  std::unique_ptr<ModelContext> open() { return std::make_unique<ModelContext>(openStore()); }

  static bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds patience = 5s) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!condition() && std::chrono::steady_clock::now() < end)
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
    return condition();
  }

  /// What the list should be: sorted newest first and the same as in the store.
  void expectAgreesWithStore(const ModelContext& context) {
    const auto stored = openStore()->newest(1'000'000);
    ASSERT_TRUE(stored);
    ASSERT_EQ(context.size(), stored->size());
    for (std::size_t index = 0; index < stored->size(); ++index) {
      ASSERT_EQ(context.at(index), (*stored)[index]) << index;
      ASSERT_EQ(context.indexOf((*stored)[index].id), index);
    }
  }

  std::vector<NotletEntry> fill(int count) {
    std::vector<NotletEntry> entries;
    for (int number = 0; number < count; ++number)
      entries.push_back(notletAt(number, "Notlet " + std::to_string(number)));
    storeElsewhere(entries);
    return entries;
  }
};

TEST_F(ModelContextTest, savedChangesAreInTheStoreAndRolledBackOnesAreNot) {
  const NotletEntry old = notletAt(1, "old");
  const NotletEntry edited = notletAt(2, "edited");
  storeElsewhere({old, edited});
  const auto context = open();
  const Mirror mirror(*context);
  const NotletEntry fresh = notletAt(3, "fresh");
  NotletEntry changed = edited;
  changed.content = "changed";
  changed.hashtags = {"other"};
  const auto change = [&] {
    context->insert(fresh);
    context->replace(changed);
    context->remove(old.id);
    EXPECT_EQ(context->size(), 2);
    EXPECT_EQ(context->at(0), fresh);
    EXPECT_EQ(context->at(1), changed);
    EXPECT_EQ(context->find(old.id), nullptr);
  };
  const NotletEntry* address = context->find(edited.id);
  change();
  context->rollback();
  EXPECT_FALSE(context->hasUnsavedChanges());
  expectAgreesWithStore(*context);
  EXPECT_EQ(context->tallies().usedHashtags(), std::vector<std::string>{"work"});

  change();
  ASSERT_TRUE(context->save());
  expectAgreesWithStore(*context);
  EXPECT_EQ(context->find(edited.id), address) << "an edit must not move the notlet";
  context->rollback();
  expectAgreesWithStore(*context);
}

} // namespace
} // namespace notlet
