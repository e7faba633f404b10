#include <gmock/gmock.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "NotletProcess.h"

namespace notlet {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Words = NotletProcess::Words;

constexpr const char* unknownId = "00000000-0000-4000-8000-000000000000";

class ProgramTest : public ::testing::Test {
 protected:
  NotletProcess notlet;

  [[nodiscard]] std::vector<std::string> contents(Words words) const {
    words.emplace_back("--json");
    std::vector<std::string> result;
    for (const std::string& line : notlet.succeed(words).lines())
      result.push_back(json::parse(line).at("content"));
    return result;
  }

  void expectFailure(const Words& words, int status, const std::string& complaint,
                     std::string_view input = {}) const {
    const Finished finished = notlet.run(words, input);
    EXPECT_EQ(finished.status, status) << ::testing::PrintToString(words);
    EXPECT_THAT(finished.errors, StartsWith("notlet: ")) << ::testing::PrintToString(words);
    EXPECT_THAT(finished.errors, HasSubstr(complaint));
    EXPECT_EQ(std::ranges::count(finished.errors, '\n'), 1);
    EXPECT_EQ(finished.output, "");
  }
};

TEST_F(ProgramTest, addsFromArgumentsAndStandardInput) {
  struct Case {
    Words words;
    std::string input;
    std::string content;
  };
  const std::vector<Case> cases{
      {{"add", "Call", "Anna  #wo"}, "ignored", "Call Anna  #wo"},
      {{"add", "", "x", ""}, "", "x"},
      {{"add"}, "  from\r\ninput \n\n", "from\r\ninput"},
      {{"add", "-"}, "dash", "dash"},
      {{"add", "--", "-"}, "dash after the options", "dash after the options"},
      {{"add", "-", "-"}, "", "- -"},
      {{"add", "--", "--tag", "x"}, "", "--tag x"},
      {{"add"}, std::string("nul \0 inside", 12), std::string("nul \0 inside", 12)},
      {{"add", "--tag", "work", "--tag=#Home", "--tag", "WORK", "plain"}, "", "plain #work #Home"},
      {{"add", "--tag", "work", "has #Work already"}, "", "has #Work already"},
      {{"add", "--tag", "q3"}, "ends in space \n", "ends in space #q3"},
  };
  for (const Case& each : cases) {
    const std::string id = notlet.succeed(each.words, each.input).output;
    ASSERT_EQ(id.size(), 37U) << id;
    EXPECT_EQ(notlet.succeed({"show", id.substr(0, 36)}).output, each.content + "\n");
  }
  EXPECT_EQ(notlet.succeed({"list"}).lines().size(), cases.size());
}

TEST_F(ProgramTest, refusesWhatCannotBeStoredAndStoresNothing) {
  const std::string kept = notlet.add("kept");
  const std::vector<std::pair<Words, std::string>> cases{
      {{"add"}, ""},
      {{"add"}, " \n\t\u2003\u0085"},
      {{"add", ""}, "x"},
      {{"add", " ", "\n"}, "x"},
      {{"add"}, "bad \xff"},
      {{"add", "bad \xc3"}, ""},
      {{"add"}, "\xed\xa0\x80"},
      {{"add", "--tag", "x"}, ""},
      {{"edit", kept}, ""},
      {{"edit", kept, " "}, "x"},
      {{"edit", kept}, "\xff"},
  };
  for (const auto& [words, input] : cases)
    expectFailure(words, 1, "nothing was stored", input);
  for (const char* tag : {"", "#", "two words", "a.b", "a#b", "##a", "😀"})
    expectFailure({"add", "--tag", tag, "text"}, 2, "is not a hashtag");
  expectFailure({"add", "--tag", "\xff", "text"}, 1, "UTF-8");
  expectFailure({"search", "\xff"}, 1, "UTF-8");
  EXPECT_EQ(contents({"list"}), std::vector<std::string>{"kept"});
  EXPECT_TRUE(json::parse(notlet.succeed({"show", "--json", kept}).output).at("updatedAt").is_null());
}

TEST_F(ProgramTest, listsNewestFirstWithTagsAndLimit) {
  for (const char* text : {"one #a", "two #a #B", "three #b", "four"})
    static_cast<void>(notlet.add(text));
  const std::vector<std::pair<Words, std::vector<std::string>>> cases{
      {{"list"}, {"four", "three #b", "two #a #B", "one #a"}},
      {{"list", "--limit", "2"}, {"four", "three #b"}},
      {{"list", "--limit", "0"}, {}},
      {{"list", "--tag", "A"}, {"two #a #B", "one #a"}},
      {{"list", "--tag", "#a", "--tag", "b"}, {"two #a #B"}},
      {{"list", "--tag", "a", "--limit", "1"}, {"two #a #B"}},
      {{"list", "--tag", "c"}, {}},
      {{"search", "t", "o"}, {"two #a #B"}},
      {{"search", "#b"}, {"three #b", "two #a #B"}},
      {{"search", "#b", "TWO"}, {"two #a #B"}},
      {{"search", "--tag", "a", "#b"}, {"two #a #B"}},
      {{"search", "--tag", "a", ""}, {"two #a #B", "one #a"}},
      {{"search", "--limit", "1", "#b"}, {"three #b"}},
      {{"search", "--tag", "a", "!!!"}, {}},
      {{"search", "nowhere"}, {}},
  };
  for (const auto& [words, expected] : cases)
    EXPECT_EQ(contents(words), expected) << ::testing::PrintToString(words);
  EXPECT_THAT(notlet.succeed({"list", "--limit", "1"}).output,
              ::testing::MatchesRegex("[0-9A-F]+\t[0-9]+-[0-9]+-[0-9]+ [0-9]+:[0-9]+\tfour\n"));
}

TEST_F(ProgramTest, listsMoreThanOnePortionOnceEach) {
  json many = json::array();
  for (int number = 0; number < 3000; ++number) {
    char id[37];
    std::snprintf(id, sizeof id, "%08x-0000-4000-8000-000000000000", static_cast<unsigned>(number));
    // A third of them at the same moment: pages must not lose or repeat any.
    const char* time = number % 3 == 0 ? "2026-01-01T00:00:00Z" : "2026-01-02T00:00:00Z";
    many.push_back({{"id", id}, {"content", "note " + std::to_string(number)}, {"createdAt", time}});
  }
  EXPECT_EQ(notlet.succeed({"import", "-"}, many.dump()).output, "Imported 3000, skipped 0.\n");
  std::vector<std::string> listed = contents({"list"});
  ASSERT_EQ(listed.size(), 3000U);
  std::ranges::sort(listed);
  EXPECT_EQ(std::ranges::adjacent_find(listed), listed.end());
  EXPECT_EQ(contents({"list", "--limit", "1500"}).size(), 1500U);
}

TEST_F(ProgramTest, printsOneObjectALine) {
  const std::string id = notlet.add("Plan the #Q3\nwith Anna");
  static_cast<void>(notlet.succeed({"edit", id, "Plan the #Q4\nwith Anna"}));
  const Finished listed = notlet.succeed({"list", "--json"});
  ASSERT_EQ(listed.lines().size(), 1U);
  const json object = json::parse(listed.output);
  EXPECT_EQ(object.size(), 6U);
  EXPECT_EQ(object.at("id"), id);
  EXPECT_EQ(object.at("content"), "Plan the #Q4\nwith Anna");
  EXPECT_EQ(object.at("hashtags"), json({"Q4"}));
  EXPECT_EQ(object.at("keywords"), json({"Plan", "Anna"}));
  EXPECT_THAT(object.at("createdAt").get<std::string>(),
              ::testing::MatchesRegex("2...-..-..T..:..:..[.]......Z"));
  EXPECT_GT(object.at("updatedAt").get<std::string>(), object.at("createdAt").get<std::string>());
  EXPECT_EQ(notlet.succeed({"show", id, "--json"}).output, listed.output);
  EXPECT_EQ(notlet.succeed({"search", "q4", "--json"}).output, listed.output);
  const json added = json::parse(notlet.succeed({"add", "--json", "another"}).output);
  EXPECT_EQ(notlet.succeed({"show", added.at("id")}).output, "another\n");
}

TEST_F(ProgramTest, editKeepsPlaceAndIdentity) {
  const std::string first = notlet.add("first");
  static_cast<void>(notlet.add("second"));
  EXPECT_EQ(notlet.succeed({"edit", first.substr(0, 20), "changed", "words"}).output, "");
  EXPECT_EQ(contents({"list"}), (std::vector<std::string>{"second", "changed words"}));
  static_cast<void>(notlet.succeed({"edit", first, "-"}, "from input\n"));
  EXPECT_EQ(notlet.succeed({"show", first}).output, "from input\n");
}

TEST_F(ProgramTest, takesAnyUnambiguousBeginningOfAnId) {
  const std::string near = "ABCD0000-0000-4000-8000-000000000001";
  const std::string far = "abcd0000-0000-4000-8000-000000000002";
  json two = json::array();
  for (const std::string& id : {near, far})
    two.push_back({{"id", id}, {"content", id}, {"createdAt", "2026-01-01T00:00:00Z"}});
  static_cast<void>(notlet.succeed({"import", "-"}, two.dump()));
  for (const std::string& form : {near, std::string("abcd0000-0000-4000-8000-000000000001"),
                                  std::string("ABCD0000000040008000000000000001")})
    EXPECT_EQ(notlet.succeed({"show", form}).output, near + "\n");
  for (const char* ambiguous : {"a", "AB", "abcd-0000", "abcd0000000040008000"}) {
    expectFailure({"show", ambiguous}, 1, "2 notlets");
    expectFailure({"delete", ambiguous}, 1, "2 notlets");
    expectFailure({"edit", ambiguous, "text"}, 1, "2 notlets");
  }
  for (const char* absent : {"b", "xyz", "abcd0000-0000-4000-8000-0000000000012", "%", "_"})
    expectFailure({"show", absent}, 1, "No notlet");
  for (const char* empty : {"", "-", "--"})
    expectFailure({"show", "--", empty}, 2, "empty id");
  EXPECT_EQ(contents({"list"}).size(), 2U);
}

TEST_F(ProgramTest, deletesAllOrNothing) {
  std::vector<std::string> ids;
  for (const char* text : {"a", "b", "c"})
    ids.push_back(notlet.add(text));
  expectFailure({"delete", ids[0], ids[1], unknownId}, 1, "No notlet");
  expectFailure({"delete", unknownId, ids[0]}, 1, "No notlet");
  expectFailure({"delete", ids[0], ""}, 2, "empty id");
  EXPECT_EQ(contents({"list"}).size(), 3U);
  EXPECT_EQ(notlet.succeed({"delete", ids[0], ids[2], ids[0]}).output, "");
  EXPECT_EQ(contents({"list"}), std::vector<std::string>{"b"});
  expectFailure({"delete", ids[0]}, 1, "No notlet");
}

TEST_F(ProgramTest, countsTags) {
  for (const char* text : {"#work #home", "#Work", "#café", "#CAFÉ #gym"})
    static_cast<void>(notlet.add(text));
  const std::vector<std::string> all = notlet.succeed({"tags"}).lines();
  ASSERT_EQ(all.size(), 4U);
  EXPECT_EQ(all[1], "#work\t2");
  EXPECT_EQ(notlet.succeed({"tags", "W"}).output, "#work\t2\n");
  EXPECT_EQ(notlet.succeed({"tags", "#work"}).output, "#work\t2\n");
  EXPECT_EQ(notlet.succeed({"tags", "ork"}).output, "");
  static_cast<void>(notlet.add("#İz"));
  EXPECT_EQ(contents({"list", "--tag", notlet.succeed({"tags", "i\u0307z"}).output.substr(0, 4)}),
            std::vector<std::string>{"#İz"});
  EXPECT_EQ(notlet.succeed({"tags", "--limit", "1"}).lines().size(), 1U);
  EXPECT_EQ(json::parse(notlet.succeed({"tags", "--json", "wo"}).output),
            json({{"tag", "work"}, {"count", 2}}));
}

TEST_F(ProgramTest, takesTenMegabytes) {
  std::string text;
  while (text.size() < 10'000'000)
    text += "line " + std::to_string(text.size()) + " of a long text #long\n";
  text.pop_back();
  const std::string id = notlet.add(text);
  EXPECT_EQ(notlet.succeed({"show", id}).output, text + "\n");
  EXPECT_LT(notlet.succeed({"list"}).output.size(), 100U);
}

TEST_F(ProgramTest, readsAnArchiveThatIsNotThereAsEmpty) {
  for (const Words& words : std::vector<Words>{{"list"}, {"search", "x"}, {"tags"}, {"list", "--json"}})
    EXPECT_EQ(notlet.succeed(words).output, "");
  EXPECT_EQ(notlet.succeed({"export"}).output, "[]\n");
  expectFailure({"show", "a"}, 1, "No notlet");
  expectFailure({"delete", "a"}, 1, "No notlet");
  expectFailure({"edit", "a", "text"}, 1, "No notlet");
  EXPECT_EQ(notlet.succeed({"path"}).output, notlet.store().string() + "\n");
  EXPECT_TRUE(std::filesystem::is_empty(notlet.home()));
}

TEST_F(ProgramTest, keepsTheStoreToItsOwner) {
  static_cast<void>(notlet.add("secret"));
  struct stat status{};
  ASSERT_EQ(::stat(notlet.store().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
  ASSERT_EQ(::stat(notlet.store().parent_path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(ProgramTest, helpsAndTellsItsVersion) {
  for (const char* word : {"help", "--help", "-h"})
    EXPECT_THAT(notlet.succeed({word}).output, HasSubstr("usage: notlet VERB"));
  EXPECT_THAT(notlet.succeed({"--version"}).output, ::testing::MatchesRegex("notlet [0-9.]+\n"));
  expectFailure({"nonsense"}, 2, "no verb “nonsense”");
}

TEST_F(ProgramTest, reportsPlacesThatCannotBeUsed) {
  writeFile(notlet.home() / "file", "");
  notlet.environment["XDG_DATA_HOME"] = (notlet.home() / "file").string();
  expectFailure({"add", "text"}, 1, "file");
  notlet.environment = {{"HOME", ""}};
  for (const Words& words : std::vector<Words>{{"path"}, {"add", "text"}, {"list"}})
    expectFailure(words, 1, "folder for the notlets");
  notlet.environment.clear();
  std::filesystem::create_directories(notlet.store().parent_path());
  writeFile(notlet.store(), "this is no database, but somebody's letter");
  for (const Words& words : std::vector<Words>{{"list"}, {"add", "text"}, {"export"}, {"delete", "a"}})
    expectFailure(words, 1, "Notlet.store");
  EXPECT_EQ(fileContents(notlet.store()), "this is no database, but somebody's letter");
}

TEST_F(ProgramTest, reportsOutputThatCannotBeWritten) {
  static_cast<void>(notlet.add("text"));
  notlet.outputDescriptor = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
  for (const Words& words : std::vector<Words>{
           {"list"}, {"list", "--json"}, {"export"}, {"path"}, {"help"}, {"tags"}, {"search", "t"}}) {
    if (words.front() != "tags")
      expectFailure(words, 1, "could not be written");
    else
      EXPECT_EQ(notlet.run(words).status, 0); // No tags, nothing to write.
  }
  // A script that tries again would store the note twice.
  expectFailure({"add", "another"}, 1, "The change was stored");
  ::close(std::exchange(notlet.outputDescriptor, -1));
  EXPECT_EQ(contents({"list"}), (std::vector<std::string>{"another", "text"}));
}

TEST_F(ProgramTest, letsNothingControlATerminal) {
  const std::string id = notlet.add("a \x1b]0;b\x07 \u009b2J \x7f \u202Ec #tag");
  NotletProcess shell;
  shell.program = "/bin/sh";
  shell.environment["HOME"] = notlet.home().string();
  const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_TRUE(::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
  shell.outputDescriptor = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
  for (const Words& words : std::vector<Words>{{"list"},
                                               {"list", "--json"},
                                               {"search", "tag", "--json"},
                                               {"show", id},
                                               {"export"},
                                               {"export", "--format", "markdown"},
                                               {"path"},
                                               {"show", "\x1b[2J\u009b"},
                                               {"add", "--tag", "\x1b\x9b", "x"}}) {
    Words command{"-c", "exec \"$@\" 2>&1", "sh", NOTLET_PROGRAM};
    command.insert(command.end(), words.begin(), words.end());
    if (words.front() == "path")
      shell.environment["XDG_DATA_HOME"] = "/tmp/\x1b[31m\x9b";
    static_cast<void>(shell.run(command));
    shell.environment.erase("XDG_DATA_HOME");
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(terminal, buffer.data(), buffer.size());
    ASSERT_GT(count, 0);
    const std::string printed(buffer.data(), static_cast<std::size_t>(count));
    for (const char* control : {"\x1b", "\x07", "\x7f", "\u009b", "\x9b"})
      EXPECT_EQ(printed.find(control), std::string::npos) << ::testing::PrintToString(words) << printed;
    const std::size_t turned = printed.rfind("\u202E");
    EXPECT_TRUE(turned == std::string::npos || printed.find("\u202C", turned) != std::string::npos)
        << printed;
  }
  ::close(shell.outputDescriptor);
  ::close(terminal);
}

TEST_F(ProgramTest, stopsQuietlyWhenNobodyReads) {
  for (int number = 0; number < 3; ++number)
    static_cast<void>(notlet.add(std::string(100'000, 'x')));
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
  ::close(pipe[0]);
  notlet.outputDescriptor = pipe[1];
  for (const Words& words :
       std::vector<Words>{{"list"}, {"list", "--json"}, {"export"}, {"path"}, {"help"}}) {
    const Finished finished = notlet.run(words);
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "");
  }
  ::close(pipe[1]);
}

/// The window program's place taken by scripts, beside a copy of the command line.
class StartTest : public ProgramTest {
 protected:
  StartTest() {
    std::filesystem::create_directories(m_bin);
    std::filesystem::create_directories(m_path);
    std::filesystem::copy_file(notlet.program, m_bin / "notlet");
    notlet.program = (m_bin / "notlet").string();
    notlet.environment["PATH"] = m_path.string() + ":" + std::getenv("PATH");
  }

  static void writeScript(const std::filesystem::path& folder, const std::string& body) {
    writeFile(folder / "notlet-desktop", "#!/bin/sh\n" + body + "\n");
    std::filesystem::permissions(folder / "notlet-desktop", std::filesystem::perms::owner_all);
  }

  std::filesystem::path m_bin = notlet.home() / "bin";
  std::filesystem::path m_path = notlet.home() / "path";
};

TEST_F(StartTest, startsTheWindowBesideItselfThenFromPath) {
  expectFailure({}, 1, "“notlet-desktop” could not be started");
  const std::string report = "cut -d' ' -f6 /proc/$$/stat > $HOME/session; echo $$ >> $HOME/session; echo ";
  writeScript(m_path, report + "path >> $HOME/session");
  EXPECT_EQ(notlet.succeed({}).output, "");
  EXPECT_THAT(fileContents(notlet.home() / "session"), ::testing::EndsWith("\npath\n"));
  writeScript(m_bin, report + "beside >> $HOME/session");
  EXPECT_EQ(notlet.succeed({}).output, "");
  std::istringstream told(fileContents(notlet.home() / "session"));
  std::string session;
  std::string process;
  std::string place;
  told >> session >> process >> place;
  EXPECT_EQ(place, "beside");
  EXPECT_EQ(session, process); // A closing terminal does not take the window with it.
}

TEST_F(StartTest, reportsAWindowThatEndsAtOnce) {
  writeScript(m_bin, "echo no display >&2; exit 3");
  expectFailure({}, 1, "window could not be opened");
}

TEST_F(StartTest, leavesAWindowThatStays) {
  writeScript(m_bin, "exec sleep 2");
  EXPECT_EQ(notlet.succeed({}).output, "");
}

} // namespace
} // namespace notlet
