#include "corvantile/formats/detect.hpp"

#include <gtest/gtest.h>

#include "tests/formats/told.hpp"

namespace corvantile {

static const std::string own =
    "; Instrument: probe\n; Units: cd/m2\n2 1 2\n100 100 100 95 100 109\n2*0 0 1 1 1\n"
    "100 0 0 40 20 2 0 0 0 1 1 1\n0 100 0 30 60 9\n0 0 0 1 1 1\n0 0 100 15 7 90\n0 0 0 1 1 1\n"
    "50 25 0 9 9 9\n";

TEST(Detect, TellsTheKindByTheContent) {
  using enum source_kind;
  const struct {
    std::string text;
    source_kind kind;
  } texts[] = {{"CTI3\nX", ti3},
               {"\xEF\xBB\xBF"
                "CTI3   \r\n",
                ti3},
               {"CGATS.17\n", cgats},
               {"ORIGINATOR \"x\"\nBEGIN_DATA_FORMAT\n", cgats},
               {"\"Measure\";\"0\"\n", hcfr},
               {"Measure;Red\n", hcfr},
               {"Color;X;Y;Z;R;G;B;deltaE\n", hcfr},
               {"Color;X;Y;Z;R;G;B\n", csv},
               {own, corvantile},
               {"17 0 1\n", corvantile},
               {"17 0 3\n", csv},
               {"1 2 1 4 5 6\n", csv},
               {"", csv}};
  for (const auto& t : texts) EXPECT_EQ(kind_of(t.text), t.kind) << t.text;
  EXPECT_EQ(kind_named("hcfr"), hcfr);
  EXPECT_FALSE(kind_named("CSV"));
}

TEST(Detect, ReadsItsOwnMeasurementFile) {
  const readings r = read_readings({"m.txt", own});
  EXPECT_EQ(rows_of(r),
            " 1 1 1 = 95 100 109; 0 0 0 = 1 1 1; 1 0 0 = 40 20 2; 0 0 0 = 1 1 1; 0 1 0 = 30 60 9; 0 0 0 = 1 1 1;"
            " 0 0 1 = 15 7 90; 0 0 0 = 1 1 1; 0.5 0.25 0 = 9 9 9;");
  EXPECT_EQ(r.rows[3].line, 6U) << "two samples in one line";
  EXPECT_EQ(r.rows[8].line, 11U);
  EXPECT_EQ(r.instrument, "probe");
  EXPECT_TRUE(r.absolute);
}

TEST(Detect, SaysWhatToDoWithFilesThatHoldNoReadings) {
  const source table{"a.csv", "1 1 1 1 1 1\n"};
  EXPECT_EQ(refusal([&] { read_readings({"a.csv", "\n \n"}); }), "a.csv: the file is empty");
  EXPECT_EQ(refusal([&] {
              read_readings({"a.csv", "\xFF\xFEx"});
            }),
            "a.csv: the text is in UTF-16; save it as UTF-8");
  EXPECT_NE(refusal([&] {
              read_readings({"a.icc", std::string(36, '\0') + "acsp"});
            }).find("an ICC"),
            std::string::npos);
  EXPECT_NE(refusal([&] { read_readings({"a.chc", std::string(9, '\0')}); }).find("not a text"), std::string::npos);
  EXPECT_NE(refusal([&] { read_readings(table, table); }).find("HCFR's sheets only"), std::string::npos);
  EXPECT_NE(refusal([&] { read_readings(table, {}, {source_kind::ti3, ""}); }).find("cut short"), std::string::npos);
}

}  // namespace corvantile
