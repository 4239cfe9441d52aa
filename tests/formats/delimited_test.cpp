#include "corvantile/formats/delimited.hpp"

#include <gtest/gtest.h>

#include "tests/formats/told.hpp"

namespace corvantile {

TEST(Delimited, ReadsTheSameRowsInEveryGuise) {
  const std::string want = " 1 1 1 = 50 100 25; 0 0 0 = 0.5 1 0.25; 0 0.2 0 = 2 4 1;";
  const struct {
    const char *text, *why;
  } guises[] = {
      {"R,G,B,X,Y,Z\n255,255,255,50,100,25\n0,0,0,.5,1,.25\n0,51,0,2,4,1\n", "plain"},
      {"R G B X Y Z\r\n1 1 1 50 100 25\r\n0 0 0 .5 1 .25\r\n0 .2 0 2 4 1", "blanks, 0 to 1, CR LF, no last line end"},
      {"\xEF\xBB\xBF\"Z\";\"r [%]\";\"G\";\"B\";\"X\";\"Y\"\n25;100;100;100;50;100\n0,25;0;0;0;0,5;1\n1;0;20;0;2;4\n",
       "semicolons, quotes, decimal commas, another order, percent, byte order mark"},
      {"sep=;\n; 4095 codes\nRed;Green;Blue;x;y;Y\n4095;4095;4095;0.2857142857142857;0.5714285714285714;100\n"
       "0;0;0;0.2857142857142857;0.5714285714285714;1\n0;819;0;0.2857142857142857;0.5714285714285714;4\n",
       "chromaticities"},
      {"time\tR\tG\tB\tY\tX\tZ\tnote\n1\t100\t100\t100\t100\t50\t25\twhite\n\n2\t0\t0\t0\t1\t0.5\t0."
       "25\n3\t0\t20\t0\t4\t2\t1\tg\n",
       "tabs, columns beside them, a blank line, a last cell missing"},
      {"\"R\",\"G\",\"B\",\"X\",\"Y\",\"Z\"\n1,1,1,50,100,25\n0,0,0,\"0,5\",1,\"0,25\"\n0,\"0,2\",0,2,4,1,,\n",
       "decimal commas in quotes, empty cells at the end"},
      {"# X Y Z R G B\n50 100 25 1 1 1\n0.5 1 .25 0 0 0\n2 4 1 0 0.2 0\n", "names in a comment"},
      {"// no names\n1,0 1,0 1,0 50,0 100,0 25,0\n0 0 0 0,5 1 0,25\n# between\n0 0,2 0 2 4 1\n", "no header, blanks"},
      {"r g b x y z\n1 1 1 50 100 25\n0 0 0 .5 1 .25\n0 .2 0 2 4 1\n", "X, Y, Z in lower case"},
      {"x,y,z,Y,R,G,B\n.2857142857142857,.5714285714285714,0,100,1,1,1\n.2857142857142857,.5714285714285714,0,1,0,0,"
       "0\n"
       ".2857142857142857,.5714285714285714,0,4,0,.2,0\n",
       "x, y, z beside the luminance"}};
  for (const auto& guise : guises) {
    SCOPED_TRACE(guise.why);
    const readings r = read_delimited("a.csv", guise.text);
    std::string got;
    for (const reading& row : r.rows) {  // chromaticities round
      got += told(row.drive) + " =";
      for (const double v : row.xyz.v) got += free_format(*parse_real(fixed_field(v, 0, 9)));
      got += ";";
    }
    EXPECT_EQ(got, want);
    EXPECT_FALSE(r.absolute);
  }
}

TEST(Delimited, UnitsAndWhatWasNotMeasured) {
  const readings r = read_delimited("a.csv", "R,G,B,X (cd/m2),Y [cd/m\xB2],Z\n255,255,255,95,100,109\n0,0,255,,,\n");
  EXPECT_TRUE(r.absolute);
  EXPECT_EQ(rows_of(r), " 1 1 1 = 95 100 109;");
  EXPECT_EQ(notes_of(r),
            "Line 2: drive values are taken as 0 to 255: the largest is 255.\n"
            "Dropped line 3: the reading nan nan nan of drive 0 0 255 is not measurable light.\n");
}

TEST(Delimited, TakesTwelveColumnsAsFourRamps) {
  const std::string dark = "1,1,1,1,1,1,1,1,1,1,1,1\n";
  const std::string half = "4,2,1,3,6,2,2,1,8,9,9,11\n";
  const std::string full = "40,20,2,30,60,10,15,7,90,85,87,102\n";
  const std::string want =
      " 0 0 0 = 1 1 1; 0 0 0 = 1 1 1; 0 0 0 = 1 1 1; 0 0 0 = 1 1 1;"
      " 0.5 0 0 = 4 2 1; 0 0.5 0 = 3 6 2; 0 0 0.5 = 2 1 8; 0.5 0.5 0.5 = 9 9 11;"
      " 1 0 0 = 40 20 2; 0 1 0 = 30 60 10; 0 0 1 = 15 7 90; 1 1 1 = 85 87 102;";
  EXPECT_EQ(rows_of(read_delimited("a.csv", dark + half + full, "rgbw")), want);
  const readings guessed = read_delimited("a.csv", dark + half + full);
  EXPECT_EQ(rows_of(guessed), want) << "the colours tell the order";
  EXPECT_NE(notes_of(guessed).find("in the order rgbw (told by their colours), at 3 even levels, dark first."),
            std::string::npos);
  EXPECT_EQ(rows_of(read_delimited("a.csv", full + dark, "wbgr")).substr(0, 23), " 1 1 1 = 40 20 2; 0 0 1")
      << "falling";
}

TEST(Delimited, RefusesWithLineAndValue) {
  const struct {
    std::string text, message;
  } refused[] = {{"R,G,B\n1,1,1\n", "line 1: no columns named X, Y, Z, or x, y, Y"},
                 {"R,G,B,x,y\n1,1,1,.3,.3\n", "line 1: no columns named X, Y, Z, or x, y, Y"},
                 {"X,Y,Z\n1,1,1\n", "line 1: no columns named R, G, B"},
                 {"R,G,B,X,Y,Z,R\n1,1,1,1,1,1,1\n", "line 1: the column R appears twice"},
                 {"\nhello world\n", "line 2: no columns named R, G, B: expected a header that names"},
                 {"R,G,B,X,Y,Z\n", "line 1: no rows after the header"},
                 {"R,G,B,X,Y,Z\n1,1,1,1,1,1\n1,1,1,1,1,x\x01\n", "line 3: expected a number as Z, found 'x?'"},
                 {"R,G,B,X,Y,Z\n1,1,1,1,1\n", "line 2: expected a number as Z, found nothing"},
                 {"R,G,B,X,Y,Z\n0,5,0,5,0,5,9,0,9,0,9,0\n",
                  "line 2: expected 6 cells, found 12; if commas separate the cells, write"},
                 {"1 2 3 4 5\n", "line 1: a row of 5 numbers"},
                 {"1 2 3 4 5 6 7 8 9 10 11 12\n1 2\n", "line 2: expected 12 numbers, as in the first row, found 2"},
                 {"1 2 3 4 5 6 7 8 9 10 11 12\n", "only one row"},
                 {"1 1 1 1 1 1 1 1 1 1 1 1\n1 1 1 1 1 1 1 1 1 1 1 1\n", "give their order as a layout such as rgbw"},
                 {std::string(2000000, 'a'), "line 1: a line of more than a million characters"},
                 {std::string(20000, ';'), "line 1: more than 4096 cells in one line"},
                 {"# only a comment\n", "no rows; expected a header"}};
  for (const auto& r : refused) {
    const std::string message = refusal([&] { read_delimited("a.csv", r.text); });
    EXPECT_NE(message.find(r.message), std::string::npos) << message << "\ninstead of " << r.message;
  }
}

}  // namespace corvantile
