#include "corvantile/readings/notes.hpp"

#include <gtest/gtest.h>

#include "corvantile/readings/patches.hpp"

namespace corvantile {
namespace {

TEST(Notes, TellWhereAndWhatBecameOfIt) {
  const std::pair<note, const char*> rows[] = {
      {{"It is so."}, "It is so."},
      {{"it is so.", 7}, "Line 7: it is so."},
      {{"it failed.", 7, true}, "Dropped line 7: it failed."},
      {{"it failed.", 7, true, "a.csv"}, "a.csv: Dropped line 7: it failed."},
      {{"It is so.", {}, false, "a.csv"}, "a.csv: It is so."}};
  for (const auto& [n, want] : rows) EXPECT_EQ(sentence(n), want);
}

TEST(Notes, AreCountedBeyondTwelveOfAKind) {
  readings all;
  all.rows = {{{}, {{1, 1, 1}}, 1}};
  for (std::size_t line = 2; line <= 1001; ++line) all.rows.push_back({{}, {}, line});
  const sorted_readings sorted = sort_readings(all);
  EXPECT_EQ(sorted.dropped.size(), 1000u) << "0 0 0 beside a black that has light";
  note_list notes = sorted.notes;
  notes.add({"It is so."});
  const std::vector<std::string> told = notes.sentences();
  ASSERT_EQ(told.size(), 14u);
  EXPECT_TRUE(told[11].starts_with("Dropped line 13: ")) << told[11];
  EXPECT_EQ(told[12], "It is so.") << "another kind";
  EXPECT_EQ(told[13], "Dropped 988 more lines, the last is line 1001.");
  for (int i = 0; i < 13; ++i) notes.add({"More."});
  EXPECT_EQ(notes.sentences().back(), "There are 2 more notes.");
  EXPECT_EQ(notes.kept().size(), 24u);
}

}  // namespace
}  // namespace corvantile
