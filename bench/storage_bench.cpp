// What opening, loading and saving cost. Sizes are numbers of notlets in the store.
//
// usage: storage_bench DIRECTORY [options of Google Benchmark]
// Stores are made in the directory, which should lie on the disk that is to be measured.

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <filesystem>
#include <map>

#include "NotletGenerator.h"
#include "storage/ModelContext.h"

namespace notlet {
namespace {

std::filesystem::path directory;

std::unique_ptr<NotletDatabase> openStore(std::int64_t count) {
  static std::map<std::int64_t, std::filesystem::path> made;
  auto& file = made[count];
  const bool isNew = file.empty();
  if (isNew)
    file = directory / std::to_string(count) / "Notlet.store";
  auto database = NotletDatabase::open(file, Access::ReadWrite);
  if (!database)
    throw std::runtime_error(database.error().message);
  if (isNew) {
    const auto notlets = NotletGenerator().notlets(static_cast<std::size_t>(count));
    ChangeSet changes;
    for (const NotletEntry& notlet : notlets)
      changes.upserts.push_back(&notlet);
    if (const auto stored = (*database)->apply(changes); !stored)
      throw std::runtime_error(stored.error().message);
  }
  return std::move(*database);
}

void awaitLoading(ModelContext& context) {
  if (context.isComplete())
    return;
  QEventLoop loop;
  QObject::connect(&context, &ModelContext::loadingFinished, &loop, &QEventLoop::quit);
  loop.exec();
}

/// Until the first notlets can be shown.
void openToFirstRows(benchmark::State& state) {
  openStore(state.range(0));
  for ([[maybe_unused]] auto _ : state) {
    const ModelContext context(openStore(state.range(0)));
    benchmark::DoNotOptimize(context.size());
  }
}

/// Until the whole archive is in memory, in slices on the event loop; the longest slice is what a key may
/// wait.
void loadEverything(benchmark::State& state) {
  openStore(state.range(0));
  double longest = 0;
  for ([[maybe_unused]] auto _ : state) {
    ModelContext context(openStore(state.range(0)));
    auto before = std::chrono::steady_clock::now();
    QObject::connect(&context, &ModelContext::listChanged, &context, [&] {
      const auto now = std::chrono::steady_clock::now();
      longest = std::max(longest, std::chrono::duration<double, std::milli>(now - before).count());
      before = now;
    });
    awaitLoading(context);
  }
  state.counters["longestSliceMs"] = longest;
}

void saveOne(benchmark::State& state) {
  ModelContext context(openStore(state.range(0)));
  awaitLoading(context);
  NotletGenerator generator(2);
  for ([[maybe_unused]] auto _ : state) {
    auto notlet = makeNotlet(generator.text(), currentTime());
    context.insert(std::move(*notlet));
    if (!context.save())
      state.SkipWithError("not saved");
  }
}

/// A new notlet in the live list and out of it again, without the disk.
void liveList(benchmark::State& state) {
  ModelContext context(openStore(state.range(0)));
  awaitLoading(context);
  NotletGenerator generator(2);
  const NotletEntry notlet = *makeNotlet(generator.text(), currentTime());
  for ([[maybe_unused]] auto _ : state) {
    context.insert(notlet);
    benchmark::DoNotOptimize(context.indexOf(notlet.id));
    context.rollback();
  }
}

/// The floor of a save: one row into a bare table, with the same promises about power cuts.
void plainInsert(benchmark::State& state) {
  const auto file = directory / "plain.db";
  std::filesystem::remove(file);
  sqlite3* connection = nullptr;
  sqlite3_open(file.c_str(), &connection);
  sqlite3_exec(connection,
               "PRAGMA journal_mode=TRUNCATE; PRAGMA synchronous=FULL; CREATE TABLE plain (text TEXT)",
               nullptr, nullptr, nullptr);
  for ([[maybe_unused]] auto _ : state)
    sqlite3_exec(connection, "INSERT INTO plain VALUES ('Call Anna about the printer #work')", nullptr,
                 nullptr, nullptr);
  sqlite3_close(connection);
}

void withSizes(const char* name, void (*body)(benchmark::State&), benchmark::TimeUnit unit) {
  benchmark::RegisterBenchmark(name, body)
      ->Arg(10'000)
      ->Arg(100'000)
      ->Arg(1'000'000)
      ->Unit(unit)
      ->UseRealTime();
}

} // namespace
} // namespace notlet

int main(int argc, char** argv) {
  using namespace notlet;
  benchmark::Initialize(&argc, argv);
  if (argc != 2) {
    std::fputs("usage: storage_bench DIRECTORY [options]\n", stderr);
    return 2;
  }
  directory = argv[1];
  const QCoreApplication application(argc, argv);
  benchmark::RegisterBenchmark("plainInsert", plainInsert)->Unit(benchmark::kMillisecond)->UseRealTime();
  withSizes("saveOne", saveOne, benchmark::kMillisecond);
  withSizes("liveList", liveList, benchmark::kMicrosecond);
  withSizes("openToFirstRows", openToFirstRows, benchmark::kMillisecond);
  withSizes("loadEverything", loadEverything, benchmark::kMillisecond);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
