// What a key typed into the archive's search field costs. Sizes are numbers of notlets.
//
// usage: archive_bench DIRECTORY [options of Google Benchmark]
// Stores are made in the directory.

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <filesystem>
#include <map>
#include <memory>

#include "NotletGenerator.h"
#include "archive/ArchiveResults.h"

namespace notlet {
namespace {

using Clock = std::chrono::steady_clock;

std::filesystem::path directory;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// An archive of so many notlets, loaded and indexed.
struct Archive {
  explicit Archive(std::int64_t count) {
    const auto file = directory / std::to_string(count) / "Notlet.store";
    auto database = NotletDatabase::open(file, Access::ReadWrite);
    if (!database)
      throw std::runtime_error(database.error().message);
    const auto stored = (*database)->count();
    if (!stored || *stored == 0)
      fill(**database, static_cast<std::size_t>(count));
    context = std::make_unique<ModelContext>(std::move(*database));
    index = std::make_unique<ArchiveIndex>(*context);
    while (!context->isComplete())
      QCoreApplication::processEvents();
  }

  static void fill(NotletDatabase& database, std::size_t count) {
    const auto notlets = NotletGenerator().notlets(count);
    ChangeSet changes;
    for (const NotletEntry& notlet : notlets)
      changes.upserts.push_back(&notlet);
    if (const auto written = database.apply(changes); !written)
      throw std::runtime_error(written.error().message);
  }

  static Archive& of(std::int64_t count) {
    static std::map<std::int64_t, std::unique_ptr<Archive>> archives;
    auto& archive = archives[count];
    if (!archive)
      archive = std::make_unique<Archive>(count);
    return *archive;
  }

  std::unique_ptr<ModelContext> context;
  std::unique_ptr<ArchiveIndex> index;
};

/// All the folding, in one go.
void makeIndex(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    ArchiveIndex index(*Archive::of(state.range(0)).context);
    index.extend(Clock::time_point::max());
  }
}

/// From the key to the first results, and until all are there, with the event loop running between.
void search(benchmark::State& state, const char* query, const std::set<std::string>& tags) {
  Archive& archive = Archive::of(state.range(0));
  archive.index->extend(Clock::time_point::max());
  ArchiveResults results(*archive.index);
  double first = 0;
  double longestSlice = 0;
  std::size_t found = 0;
  for ([[maybe_unused]] auto _ : state) {
    auto start = Clock::now();
    results.setFilter(ArchiveFilter::make(query, tags));
    first = std::max(first, millisecondsSince(start));
    while (results.isSearching()) {
      start = Clock::now();
      QCoreApplication::processEvents();
      longestSlice = std::max(longestSlice, millisecondsSince(start));
    }
    found = results.size();
    state.PauseTiming();
    results.setFilter({});
    state.ResumeTiming();
  }
  state.counters["firstMsMax"] = first;
  state.counters["sliceMsMax"] = longestSlice;
  state.counters["found"] = static_cast<double>(found);
}

void withSizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();
}

} // namespace
} // namespace notlet

int main(int argc, char** argv) {
  using namespace notlet;
  benchmark::Initialize(&argc, argv);
  if (argc != 2) {
    std::fputs("usage: archive_bench DIRECTORY [options]\n", stderr);
    return 2;
  }
  directory = argv[1];
  const QCoreApplication application(argc, argv);
  withSizes(benchmark::RegisterBenchmark("makeIndex", makeIndex)->Iterations(1));
  const struct {
    const char* name;
    const char* query;
    std::set<std::string> tags;
  } searches[] = {
      {"oneLetter", "e", {}}, {"frequentWord", "report", {}},    {"twoWords", "report printer", {}},
      {"rare", "zzzyx", {}},  {"hashtag", "#work", {}},          {"selectedTag", "", {"work"}},
      {"phrase", "the", {}},  {"phraseAndTag", "the", {"work"}},
  };
  for (const auto& [name, query, tags] : searches)
    withSizes(benchmark::RegisterBenchmark(
        name, [query = query, tags = tags](benchmark::State& state) { search(state, query, tags); }));
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
