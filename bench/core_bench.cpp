// What the text rules cost. Sizes are numbers of notlets.

#include <benchmark/benchmark.h>

#include <map>
#include <numeric>

#include "NotletGenerator.h"
#include "core/FoldedArchive.h"
#include "core/HashtagParser.h"
#include "core/HashtagTallies.h"
#include "core/KeywordExtractor.h"
#include "core/SearchService.h"
#include "core/Text.h"

namespace notlet {
namespace {

/// Everything that the benchmarks of one size share, made once.
struct Archive {
  explicit Archive(std::size_t count) {
    NotletGenerator generator;
    for (std::size_t index = 0; index < count; ++index) {
      const NotletEntry notlet = generator.notlet();
      folded.add(notlet);
      tallies.add(notlet);
      foldedBytes += notlet::folded(notlet.content);
    }
  }

  static const Archive& ofSize(std::int64_t count) {
    static std::map<std::int64_t, std::unique_ptr<Archive>> archives;
    auto& archive = archives[count];
    if (!archive)
      archive = std::make_unique<Archive>(static_cast<std::size_t>(count));
    return *archive;
  }

  FoldedArchive folded;
  HashtagTallies tallies;
  std::string foldedBytes;
};

const std::vector<NotletEntry>& thousandNotlets() {
  static const std::vector<NotletEntry> notlets = NotletGenerator().notlets(1000);
  return notlets;
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

template<typename Work>
void forEachNotlet(benchmark::State& state, Work work) {
  const auto& notlets = thousandNotlets();
  std::size_t index = 0;
  for ([[maybe_unused]] auto _ : state)
    benchmark::DoNotOptimize(work(notlets[index++ % notlets.size()]));
}

void parseHashtags(benchmark::State& state) {
  forEachNotlet(state, [](const NotletEntry& notlet) { return HashtagParser::parse(notlet.content); });
}
BENCHMARK(parseHashtags);

void extractKeywords(benchmark::State& state) {
  forEachNotlet(state,
                [](const NotletEntry& notlet) { return KeywordExtractor::extractKeywords(notlet.content); });
}
BENCHMARK(extractKeywords);

void makeWholeNotlet(benchmark::State& state) {
  forEachNotlet(state,
                [](const NotletEntry& notlet) { return makeNotlet(notlet.content, notlet.createdAt); });
}
BENCHMARK(makeWholeNotlet);

void matchPlainly(benchmark::State& state) {
  const SearchQuery query = SearchQuery::parse("printer");
  forEachNotlet(state, [&](const NotletEntry& notlet) { return SearchService::matches(notlet, query); });
}
BENCHMARK(matchPlainly);

/// The floor of any search: every byte of the folded text read once.
void readEveryByte(benchmark::State& state) {
  const std::string& bytes = Archive::ofSize(state.range(0)).foldedBytes;
  for ([[maybe_unused]] auto _ : state)
    benchmark::DoNotOptimize(std::accumulate(bytes.begin(), bytes.end(), 0U));
  state.counters["MB"] = static_cast<double>(bytes.size()) / 1e6;
}
BENCHMARK(readEveryByte)->Apply(sizes);

void search(benchmark::State& state, const char* text) {
  const Archive& archive = Archive::ofSize(state.range(0));
  std::size_t found = 0;
  for ([[maybe_unused]] auto _ : state)
    found = archive.folded.collect(SearchQuery::parse(text)).size();
  state.counters["found"] = static_cast<double>(found);
}
BENCHMARK_CAPTURE(search, rareWord, "insurance")->Apply(sizes);
BENCHMARK_CAPTURE(search, commonLetters, "re")->Apply(sizes);
BENCHMARK_CAPTURE(search, twoWordsAndTag, "quarterly report #work")->Apply(sizes);
BENCHMARK_CAPTURE(search, nothing, "xylophone")->Apply(sizes);
BENCHMARK_CAPTURE(search, anotherScript, "встреча")->Apply(sizes);

void tallyOneNotlet(benchmark::State& state) {
  HashtagTallies tallies;
  NotletGenerator generator;
  for (std::int64_t index = 0; index < state.range(0); ++index)
    tallies.add(generator.notlet());
  const NotletEntry notlet = generator.notlet();
  for ([[maybe_unused]] auto _ : state) {
    tallies.add(notlet);
    benchmark::DoNotOptimize(tallies.suggestions("wo", 8));
    tallies.remove(notlet);
  }
}
BENCHMARK(tallyOneNotlet)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

void suggest(benchmark::State& state) {
  const Archive& archive = Archive::ofSize(state.range(0));
  for ([[maybe_unused]] auto _ : state)
    benchmark::DoNotOptimize(archive.tallies.suggestions("wo", 8));
}
BENCHMARK(suggest)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace notlet

BENCHMARK_MAIN();
