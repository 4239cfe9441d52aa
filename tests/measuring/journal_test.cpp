#include "corvantile/measuring/journal.hpp"

#include <array>

#include "corvantile/utils/failure.hpp"
#include "surroundings.hpp"

namespace corvantile::measuring {
namespace {

using Journal = Surroundings;

const std::vector<fact> facts{{"chart", "xxh3:1 (2 patches)"}, {"instrument", "spotread -e  -O \"x\""}};
const std::vector<journal_entry> entries{{0, {{1, 1, 1}}, {{95.1, 1.0 / 3, 1e-7}}, ""},
                                         {1, {{0, 0.2, 0}}, {{-0.001, 0, 0.5}}, "dark, read twice"},
                                         {1, {{0, 0.2, 0}}, {{0, 0, 0.4}}, ""}};
constexpr std::array<std::string_view, 1> must_match{"chart"};

void fill(const std::string& path) {
  journal_content found;
  journal j = journal::begin(path, facts, found);
  for (const journal_entry& e : entries) j.append(e);
}

TEST_F(Journal, KeepsEveryWholeLineWhateverTearsIt) {
  fill(path("j"));
  const std::string whole = content("j");
  const journal_content all = parse_journal("j", whole);
  EXPECT_EQ(all.facts, facts);
  EXPECT_EQ(all.entries, entries) << "to the last bit";
  for (std::size_t n = 0; n <= whole.size(); ++n) {
    const std::string torn = whole.substr(0, n);
    const auto lines = static_cast<std::size_t>(std::ranges::count(torn, '\n'));
    const std::size_t readings = lines > 4 ? lines - 4 : 0;  // behind the first line, two facts, and `begin`
    ASSERT_EQ(parse_journal("j", torn).entries.size(), readings) << n;
    if (lines == 0 || n % 7 != 0) continue;
    // Blocks that never reached the disk may be there as zeros.
    ASSERT_EQ(parse_journal("j", torn + std::string(9, '\0')).entries.size(), readings) << n;
    ASSERT_EQ(parse_journal("j", torn + std::string("\0\0\n\0\n", 5)).entries.size(), readings) << n;
  }
}

TEST_F(Journal, GoesOnBehindTheTornLine) {
  fill(path("j"));
  const std::string whole = content("j");
  for (const std::size_t n : {std::size_t{0}, std::size_t{5}, whole.find("begin"), whole.find("read 1"),
                              whole.find("read 1") + 20, whole.size() - 1}) {
    write("j", whole.substr(0, n));
    journal_content found;
    {
      journal j = journal::resume(path("j"), facts, must_match, found);
      for (std::size_t i = found.entries.size(); i < entries.size(); ++i) j.append(entries[i]);
    }
    EXPECT_EQ(content("j"), whole) << "torn at " << n;
  }
}

TEST_F(Journal, RefusesWhatIsNotItsOwn) {
  fill(path("j"));
  journal_content found;
  EXPECT_THROW(journal::begin(path("j"), facts, found), failure) << "it holds readings";
  const journal open = journal::resume(path("j"), facts, must_match, found);
  EXPECT_THROW(journal::resume(path("j"), facts, must_match, found), failure) << "another run has it";
  EXPECT_THROW(journal::resume(path("none"), facts, must_match, found), failure);
  const std::string whole = content("j");
  std::string damaged = whole;
  damaged[whole.find("0.2")] = '1';
  const struct {
    std::string text, why;
  } rows[] = {{damaged, "j: line 6: the journal is damaged here"},
              {"CTI3\n\n", "j: line 1: this is not the journal of a measuring run"},
              {std::string(whole).replace(0, whole.find('\n') + 1, ""), "j: line 1: expected"}};
  for (const auto& r : rows) {
    try {
      parse_journal("j", r.text);
      ADD_FAILURE() << r.why;
    } catch (const failure& f) {
      EXPECT_TRUE(f.message.starts_with(r.why)) << f.message;
    }
  }
  const std::vector<fact> other{{"chart", "another"}};
  write("copy", whole);
  EXPECT_THROW(journal::resume(path("copy"), other, must_match, found), failure);
  EXPECT_EQ(content("copy"), whole);
}

}  // namespace
}  // namespace corvantile::measuring
