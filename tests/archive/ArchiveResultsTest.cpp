#include "archive/ArchiveResults.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

#include "core/RandomText.h"
#include "core/SearchService.h"
#include "core/Text.h"
#include "storage/StoreFixture.h"

namespace notlet {

namespace {

/// What the archive should show, from its definition.
bool isShown(const NotletEntry& notlet, std::string_view query, const std::set<std::string>& tags) {
  const auto carries = [&](const std::string& wanted) {
    return std::any_of(notlet.hashtags.begin(), WordList::end(),
                       [&](std::string_view tag) { return folded(tag) == wanted; });
  };
  return SearchService::matches(notlet, query) && std::ranges::all_of(tags, carries);
}

/// A list as a view would keep it: changed by nothing but what is announced.
class Mirror {
 public:
  explicit Mirror(const ArchiveResults& results) : m_results(results) { reload(); }

  void apply(const ListChange& change) {
    const auto first = m_ids.begin() + static_cast<std::ptrdiff_t>(change.first);
    const auto count = static_cast<std::ptrdiff_t>(change.count);
    switch (change.kind) {
    case ListChange::Kind::Appended:
      EXPECT_EQ(change.first, m_ids.size());
      [[fallthrough]];
    case ListChange::Kind::Inserted: {
      std::vector<Uuid> added;
      for (std::size_t position = change.first; position < change.first + change.count; ++position)
        added.push_back(m_results.at(position).id);
      m_ids.insert(first, added.begin(), added.end());
      break;
    }
    case ListChange::Kind::Removed:
      m_ids.erase(first, first + count);
      break;
    case ListChange::Kind::Updated:
      break;
    case ListChange::Kind::Reset:
      reload();
    }
    EXPECT_EQ(m_ids.size(), m_results.size());
  }

  [[nodiscard]] const std::vector<Uuid>& ids() const { return m_ids; }

 private:
  void reload() {
    m_ids.clear();
    for (std::size_t position = 0; position < m_results.size(); ++position)
      m_ids.push_back(m_results.at(position).id);
  }

  const ArchiveResults& m_results;
  std::vector<Uuid> m_ids;
};

/// An archive that changes by chance while it is searched.
class ArchiveResultsWalk : public StoreFixture, public testing::WithParamInterface<unsigned> {
 protected:
  void SetUp() override {
    std::vector<NotletEntry> notlets;
    for (int count = 0; count < 900; ++count)
      notlets.push_back(notlet());
    storeElsewhere(notlets);
    context = std::make_unique<ModelContext>(openStore());
    index = std::make_unique<ArchiveIndex>(*context);
    results = std::make_unique<ArchiveResults>(*index);
    mirror = std::make_unique<Mirror>(*results);
    QObject::connect(results.get(), &ArchiveResults::changed, results.get(),
                     [this](const ListChange& change) { mirror->apply(change); });
  }

  NotletEntry notlet() {
    NotletEntry made = random.notlet();
    // Seconds shared by many, so that the order between equal times counts, too.
    made.createdAt = Timestamp(std::chrono::seconds(1'700'000'000 + random.below(700)));
    return made;
  }
  const NotletEntry& any() { return context->at(random.below(context->size())); }

  void step() {
    const std::size_t kind = random.below(12);
    if (kind < 2)
      context->insert(notlet());
    else if (kind < 4)
      context->remove(any().id);
    else if (kind < 7)
      edit(any());
    else if (kind == 7)
      random.oneIn(3) ? context->rollback() : (void)context->save();
    else if (kind == 8)
      changeElsewhere();
    else if (kind < 11)
      narrow();
    else
      QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
  }
  void edit(NotletEntry changed) {
    const NotletEntry other = notlet();
    changed.content = other.content;
    changed.hashtags = other.hashtags;
    changed.keywords = other.keywords;
    if (random.oneIn(4))
      changed.createdAt = other.createdAt;
    context->replace(std::move(changed));
  }
  void changeElsewhere() {
    std::vector<NotletEntry> written;
    for (std::size_t left = random.below(4); left > 0; --left)
      written.push_back(notlet());
    storeElsewhere(written, {any().id});
  }
  void narrow() {
    query = random.oneIn(3) ? "" : random.oneIn(3) ? std::string(random.text(2)) : std::string(random.word());
    tags.clear();
    while (random.oneIn(3)) {
      const auto& used = context->tallies().usedHashtags();
      tags.insert(used[random.below(std::min<std::size_t>(used.size(), 9))]);
    }
    results->setFilter(ArchiveFilter::make(query, tags));
  }

  [[nodiscard]] std::vector<Uuid> expected() const {
    std::vector<Uuid> ids;
    for (std::size_t position = 0; position < context->size(); ++position) {
      if (isShown(context->at(position), query, tags))
        ids.push_back(context->at(position).id);
    }
    return ids;
  }

  RandomText random{GetParam()};
  std::unique_ptr<ModelContext> context;
  std::unique_ptr<ArchiveIndex> index;
  std::unique_ptr<ArchiveResults> results;
  std::unique_ptr<Mirror> mirror;
  std::string query;
  std::set<std::string> tags;
};

} // namespace

TEST_P(ArchiveResultsWalk, AgreesWithThePlainRuleWhateverChanges) {
  std::size_t found = 0;
  for (int round = 0; round < 80; ++round) {
    for (std::size_t steps = random.below(8); steps > 0; --steps) {
      step();
      ASSERT_EQ(mirror->ids().size(), results->size());
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return context->isComplete() && !results->isSearching(); }));
    const std::vector<Uuid> ids = expected();
    ASSERT_EQ(mirror->ids(), ids) << '"' << query << "\" with " << tags.size() << " tags, round " << round;
    ASSERT_EQ(results->size(), ids.size());
    for (std::size_t position = 0; position < ids.size(); ++position) {
      ASSERT_EQ(results->at(position).id, ids[position]);
      ASSERT_EQ(results->positionOf(ids[position]), position);
    }
    const NotletEntry& one = any();
    EXPECT_EQ(results->positionOf(one.id).has_value(), isShown(one, query, tags));
    found += ids.size();
  }
  EXPECT_GT(found, 1000U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, ArchiveResultsWalk, testing::Values(1U, 2U, 3U, 4U));

namespace {

class ArchiveResultsTest : public StoreFixture {
 protected:
  /// Notlets whose text is their number, the last being the newest.
  void fill(int count) {
    std::vector<NotletEntry> notlets;
    for (int number = 0; number < count; ++number)
      notlets.push_back(notletAt(number, "note " + std::to_string(number)));
    storeElsewhere(notlets);
    context = std::make_unique<ModelContext>(openStore());
    index = std::make_unique<ArchiveIndex>(*context);
    results = std::make_unique<ArchiveResults>(*index);
  }
  void narrow(const std::string& query) { results->setFilter(ArchiveFilter::make(query, {})); }
  [[nodiscard]] bool settles() const {
    return QTest::qWaitFor([&] { return context->isComplete() && !results->isSearching(); }, 60'000);
  }

  std::unique_ptr<ModelContext> context;
  std::unique_ptr<ArchiveIndex> index;
  std::unique_ptr<ArchiveResults> results;
};

} // namespace

// The store is still being read and nothing is folded yet: the newest matches must not wait for that.
TEST_F(ArchiveResultsTest, TheNewestAreFoundFirstAndTheRestFollowsInOrder) {
  fill(30'000);
  std::vector<ListChange> changes;
  QObject::connect(results.get(), &ArchiveResults::changed,
                   [&](const ListChange& change) { changes.push_back(change); });
  const QSignalSpy ends(results.get(), &ArchiveResults::finished);
  narrow("note");
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_EQ(changes[0].kind, ListChange::Kind::Reset);
  EXPECT_GE(results->size(), 50U);
  EXPECT_EQ(results->at(0).content, "note 29999");
  EXPECT_TRUE(results->isSearching());
  ASSERT_TRUE(settles());
  EXPECT_EQ(results->size(), 30'000U);
  EXPECT_GT(changes.size(), 3U);
  std::size_t known = changes[0].count;
  for (const ListChange& change : std::span(changes).subspan(1)) {
    EXPECT_EQ(change, (ListChange{ListChange::Kind::Appended, known, change.count}));
    known += change.count;
  }
  EXPECT_EQ(known, 30'000U);
  EXPECT_EQ(ends.count(), 1);
}

TEST_F(ArchiveResultsTest, AChangeOutsideTheResultsIsNoNews) {
  fill(20);
  narrow("note 17");
  ASSERT_TRUE(settles());
  ASSERT_EQ(results->size(), 1U);
  const QSignalSpy spy(results.get(), &ArchiveResults::changed);
  context->insert(notletAt(50, "other"));
  context->remove(context->at(5).id);
  narrow("note 17");
  EXPECT_EQ(spy.count(), 0);
}

} // namespace notlet
