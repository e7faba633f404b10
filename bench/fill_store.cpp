// usage: fill_store FILE COUNT
// Makes a store with so many generated notlets.

#include <charconv>
#include <cstdio>
#include <string_view>

#include "NotletGenerator.h"
#include "storage/NotletDatabase.h"

int main(int argc, char** argv) {
  using namespace notlet;
  std::size_t count = 0;
  const std::string_view number = argc == 3 ? argv[2] : "";
  if (std::from_chars(number.data(), number.data() + number.size(), count).ptr !=
          number.data() + number.size() ||
      number.empty()) {
    std::fputs("usage: fill_store FILE COUNT\n", stderr);
    return 2;
  }
  auto database = NotletDatabase::open(argv[1], Access::ReadWrite);
  if (!database) {
    std::fprintf(stderr, "fill_store: %s\n", database.error().message.c_str());
    return 1;
  }
  NotletGenerator generator;
  constexpr std::size_t atOnce = 50'000;
  for (std::size_t done = 0; done < count; done += atOnce) {
    const auto notlets = generator.notlets(std::min(atOnce, count - done));
    ChangeSet changes;
    for (const NotletEntry& notlet : notlets)
      changes.upserts.push_back(&notlet);
    if (const auto stored = (*database)->apply(changes); !stored) {
      std::fprintf(stderr, "fill_store: %s\n", stored.error().message.c_str());
      return 1;
    }
  }
  return 0;
}
