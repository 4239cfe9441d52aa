#include "corvantile/formats/hcfr.hpp"

#include <gtest/gtest.h>

#include "tests/formats/told.hpp"

namespace corvantile {

static const std::string gray_header = "\"Measure\";\"0\";\"1\";\"2\"\r\n";
static const std::string gray_series =
    "\"% "
    "Blanc\";\"0.000000\";\"1.826484\";\"100,000000\"\r\n\"X\";\"0.5\";\"1\";\"95\"\r\n\"Y\";\"0.5\";\"1,5\";"
    "\"100\"\r\n"
    "\"Z\";\"0.5\";\"2\";\"109\"\r\n\"R\";\"1\";\"1\";\"1\"\r\n\"ColorTemp\";\"1\";\"1\";\"1\"\r\n\r\n";
static const source gray{"Gray.csv", gray_header + gray_series};
static const source primaries{
    "Primaries.csv",
    "Measure;Red;Green;Blue;Yellow;Cyan;Magenta\n"
    "X;41;36;18;77;-99999.992188;59\nY;21;72;7;93;-99999.992188;28\nZ;2;12;95;14;-99999.992188;97\n"};
static const std::string checker_header = "\"Color\";\"X\";\"Y\";\"Z\";\"R\";\"G\";\"B\";\"deltaE\"\n";

TEST(Hcfr, JoinsGrayScaleAndPrimariesInEitherOrder) {
  const std::string ramp = " 0 0 0 = 0.5 0.5 0.5; 0.01826484 0.01826484 0.01826484 = 1 1.5 2; 1 1 1 = 95 100 109;";
  const std::string rest = " 1 0 0 = 41 21 2; 0 1 0 = 36 72 12; 0 0 1 = 18 7 95; 1 1 0 = 77 93 14; 1 0 1 = 59 28 97;";
  const readings r = read_hcfr(gray, primaries);
  EXPECT_EQ(rows_of(r), ramp + rest);
  EXPECT_EQ(rows_of(read_hcfr(primaries, gray)), rest + ramp);
  EXPECT_EQ(r.source, "Gray.csv + Primaries.csv");
  EXPECT_TRUE(r.absolute);
  EXPECT_EQ(notes_of(r).substr(0, 42), "Primaries.csv: Dropped line 2: the reading");

  std::string older = gray_series;
  older.replace(older.find("\"95\""), 4, "\"70\"");
  const readings appended = read_hcfr({"Gray.csv", gray_header + older + gray_series}, primaries);
  EXPECT_EQ(rows_of(appended), ramp + rest) << "the last series";
  EXPECT_EQ(notes_of(appended).substr(0, 54), "Gray.csv: Line 10: the last of 2 series is taken.\nPrim");
}

TEST(Hcfr, ReadsTheDriveFromNamesOfPatches) {
  const readings r = read_hcfr(
      {"Checker.csv", checker_header + "\"W 100.000\";\"95\";\"100\";\"109\";\"1\";\"1\";\"1\";\"0\"\n"
                                       "\"R 062.557\";\"8\";\"4\";\"1\";\"1\";\"1\";\"1\";\"0\"\n"
                                       "\"RGB 10.000 0.000 50.228\";\"1\";\"2\";\"3\";\"1\";\"1\";\"1\";\"0\"\n"
                                       "\"G 50.228\";\"-1\";\"-1\";\"-1\";\"-1\";\"-1\";\"-1\";\"-1\"\n"
                                       "\"Skin\";\"1\";\"2\";\"3\";\"1\";\"1\";\"1\";\"0\"\n"});
  ASSERT_EQ(r.rows.size(), 3U);
  EXPECT_EQ(r.rows[1].drive, (vec3{{137.0 / 219, 0, 0}})) << "rounded to a percentage, back to the video code";
  EXPECT_EQ(r.rows[2].drive, (vec3{{0.1, 0, 110.0 / 219}})) << "10 % is no code, and stays";
  EXPECT_EQ(notes_of(r).substr(0, 74), "Checker.csv: 1 of 5 patches are skipped: their names do not state a drive.");
  for (const char* name : {"W", "W x", "W 101", "W -1", "W 1 2", "RGB 1 2", "RGB 1 2 3 4", "Y 50", ""})
    EXPECT_FALSE(drive_of_hcfr_name(name)) << name;
}

TEST(Hcfr, RefusesWithLineAndAdvice) {
  const auto hcfr = [](const std::string& text) { return source{"Gray.csv", text}; };
  const struct {
    source first;
    std::optional<source> second;
    std::string message;
  } refused[] = {
      {gray, {}, "Gray.csv: a gray ramp alone; give HCFR's PrimariesSheet of the same display as well"},
      {primaries, {}, "Primaries.csv: the primaries alone; give HCFR's GrayScaleSheet"},
      {gray, gray, "Gray.csv: the same kind of sheet is given twice"},
      {gray, hcfr("General;1\n"), "Gray.csv: line 1: expected the first line of HCFR's GrayScaleSheet, Prim"},
      {hcfr(gray.text.substr(0, gray.text.find("\"Z\""))), primaries,
       "line 3: expected the rows X, Y and Z of a series"},
      {hcfr(gray.text.substr(0, gray.text.find("\"100\""))), primaries,
       "line 3: expected the rows X, Y and Z of a series"},
      {hcfr(gray_header + "IRE;0;100\nX;1\nY;1;2\nZ;1;2\n"), primaries,
       "line 3: expected a number in cell 3, found nothing"},
      {hcfr(gray_header), primaries, "line 1: the sheet ends without the rows X, Y and Z"},
      {hcfr(checker_header + "Skin;1;2;3;1;1;1;0\n"), {}, "no patch has a name that states its drive"},
      {hcfr(checker_header + "W 50;1;2;x;1;1;1;0\n"), {}, "line 2: expected a number in cell 4, found 'x'"}};
  for (const auto& r : refused) {
    const std::string message = refusal([&] { read_hcfr(r.first, r.second); });
    EXPECT_NE(message.find(r.message), std::string::npos) << message << "\ninstead of " << r.message;
  }
}

}  // namespace corvantile
