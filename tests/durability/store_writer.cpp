// Writes to a store until it is killed or has done its share, and tells what it does: a line for each change
// it is about to save ("+<id> <content>" or "-<id>"), and "." once the store has confirmed them.
//
// usage: store_writer <store> <seed> <number of saves>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <unistd.h>

#include "storage/NotletDatabase.h"

namespace notlet {
namespace {

void tell(const std::string& line) {
  const std::string text = line + "\n";
  if (::write(STDOUT_FILENO, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
    std::_Exit(3);
}

void save(NotletDatabase& database, const ChangeSet& changes) {
  for (;;) {
    const StoreResult<std::int64_t> written = database.apply(changes);
    if (written)
      return tell(".");
    if (written.error().kind != StoreError::Kind::Busy) {
      std::fprintf(stderr, "%s\n", written.error().message.c_str());
      std::_Exit(2);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

int run(const char* store, unsigned seed, int saves) {
  StoreResult<std::unique_ptr<NotletDatabase>> opened = NotletDatabase::open(store, Access::ReadWrite);
  while (!opened && opened.error().kind == StoreError::Kind::Busy)
    opened = NotletDatabase::open(store, Access::ReadWrite);
  if (!opened) {
    std::fprintf(stderr, "%s\n", opened.error().message.c_str());
    return 2;
  }
  NotletDatabase& database = **opened;
  std::mt19937 random(seed);
  std::vector<NotletEntry> mine;
  for (; saves > 0; --saves) {
    const std::size_t kind = random() % 10;
    if (mine.size() < 3 || kind < 5) {
      NotletEntry entry;
      entry.id = Uuid::random();
      entry.createdAt = currentTime();
      mine.push_back(entry);
      std::swap(mine.back(), mine[random() % mine.size()]);
    }
    NotletEntry& chosen = mine[random() % mine.size()];
    if (kind < 8) {
      chosen.content = std::string(1 + random() % 6'000, static_cast<char>('a' + random() % 26));
      tell("+" + chosen.id.text() + " " + chosen.content.str());
      save(database, {.upserts = {&chosen}, .deletions = {}});
    } else {
      tell("-" + chosen.id.text());
      save(database, {.upserts = {}, .deletions = {chosen.id}});
      std::swap(chosen, mine.back());
      mine.pop_back();
    }
  }
  return 0;
}

} // namespace
} // namespace notlet

int main(int argc, char** argv) {
  if (argc != 4)
    return 1;
  return notlet::run(argv[1], static_cast<unsigned>(std::atoi(argv[2])), std::atoi(argv[3]));
}
