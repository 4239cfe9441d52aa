#include "corvantile/formats/cgats.hpp"

#include <gtest/gtest.h>

#include "corvantile/formats/calibration.hpp"
#include "corvantile/formats/writers/cal.hpp"
#include "tests/formats/told.hpp"

namespace corvantile {

static const std::string fields = "RGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z";
static const std::string rows = "100 100 100 95 100 109\n0 0 0 0.5 0.25 1\n50 0 0 8 4 0.5\n";
static const std::string absolute = "NORMALIZED_TO_Y_100 \"NO\"\n";
static const std::string three = " 1 1 1 = 95 100 109; 0 0 0 = 0.5 0.25 1; 0.5 0 0 = 8 4 0.5;";

static std::string data(const std::string& names, const std::string& cells) {
  return "BEGIN_DATA_FORMAT\n" + names + "\nEND_DATA_FORMAT\nBEGIN_DATA\n" + cells + "END_DATA\n";
}
static std::string ti3(const std::string& header, const std::string& names = fields,
                       const std::string& cells = rows) {
  return "CTI3   \n\nDEVICE_CLASS \"DISPLAY\"\nCOLOR_REP \"RGB_XYZ\"\n" + header + data(names, cells);
}
static std::string with_cr_lf(std::string text, const std::string& end = "\r\n") {
  for (std::size_t i = 0; (i = text.find('\n', i)) != std::string::npos; i += end.size()) text.replace(i, 1, end);
  return text;
}

TEST(Cgats, ReadsTheSameRowsInEveryGuise) {
  const struct {
    std::string text, why;
  } guises[] = {
      {ti3(absolute), "plain"},
      {"\xEF\xBB\xBF" + with_cr_lf(ti3(absolute)), "CR LF, byte order mark"},
      {with_cr_lf(ti3(absolute), "\r"), "CR alone"},
      {"CTI3\n" + absolute + data(fields, rows), "identifier not padded, hardly any keyword"},
      {"LGOROWLENGTH 5\n" + absolute + data(fields, rows), "no identifier"},
      {ti3(absolute + "# a \"comment\n2ND_KEY \"x\"\nDESCRIPTOR \"B\xFCro # 1\"  # more\n"), "keywords and comments"},
      {ti3("BEGIN_ANY_ARGS\n-A \"x # END_DATA\nBEGIN_DATA\n\nEND_ANY_ARG\nEND_ANY_ARGS\n" + absolute),
       "a block to skip"},
      {ti3(absolute, "SAMPLE_ID xyz_z rgb_r SAMPLE_LOC RGB_G\nRGB_B XYZ_X XYZ_Y SPEC_380",
           "1 109 100 \"A 1\" 100 100 95 100 7 # first\n\n2 1 0 \"\" 0 0 .5 +.25 7\n3 0.5 50 \"\" 0 0 8 4 7\n"),
       "columns by name, spectra, a blank line"},
      {ti3(absolute, fields, "1 1 1 95 100 109\n0 0 0 0.5 0.25 1\n.5 0 0 8 4 0.5\n"), "drive 0 to 1"},
      {ti3(absolute, fields, "1,0 1 1 95,0 100 109\n0 -0,001 0 0,5 0,25 1\n0,5 0 0 8 4 0,5\n"), "decimal commas"},
      {ti3(absolute, fields, "65535 65535 65535 95 100 109\n0 0 -0.001 .5 .25 1\n32767.5 0 0 8 4 .5\n"), "codes"},
      {ti3(absolute, fields, "235 235 235 95 100 109\n16 16 16 .5 .25 1\n125.5 16 16 8 4 .5\n"), "video codes"},
      {ti3("LUMINANCE_XYZ_CDM2 \"190 200 218\"\n", fields,
           "100 100 100 47.5 50 54.5\n0 0 0 .25 .125 .5\n50 0 0 4 2 .25"
           "\n"),
       "relative, with the luminance of white"},
      {ti3(absolute, fields + " " + std::string(16000, 'S'),
           "100 100 100 95 100 109 1\n0 0 0 .5 .25 1 1\n"
           "50 0 0 8 4 .5 1\n"),
       "a line of 16 kB"},
      {ti3(absolute, "RGB_R RGB_G RGB_B XYY_X XYY_Y XYY_CAPY", "100 100 100 .25 .5 100\n0 0 0 0.3 0.3 0\n"), ""}};
  for (const auto& guise : guises) {
    SCOPED_TRACE(guise.why);
    const readings r = read_cgats("a.ti3", guise.text);
    EXPECT_EQ(rows_of(r), guise.why.empty() ? " 1 1 1 = 50 100 50; 0 0 0 = 0 0 0;" : three);
    EXPECT_TRUE(r.absolute);
  }
}

TEST(Cgats, KeepsWhatTheFileTells) {
  const std::string curve = "0 0 0 0\n0.5 0.4 0.5 0.6\n1 1 0.9 0.8\n";
  const std::string table = "CAL    \nDEVICE_CLASS \"DISPLAY\"\n" + data("RGB_I RGB_R RGB_G RGB_B", curve);
  const readings r = read_cgats("a.ti3", ti3("CREATED \"Tue May 26\"\nORIGINATOR \"Argyll dispread\"\n"
                                             "TARGET_INSTRUMENT \"Ger\xC3\xA4t \xE9\"\nBEGIN_ARGYLL_COLPROF_ARGS\n"
                                             "-v -M \"U 27\" -A \"B\"\nEND_ARGYLL_COLPROF_ARGS\nNUMBER_OF_SETS 4\n") +
                                             table);
  EXPECT_EQ(r.kind + "|" + r.date + "|" + r.originator + "|" + r.instrument + "|" + r.display,
            "Argyll .ti3|Tue May 26|Argyll dispread|Gerat e|U 27");
  EXPECT_FALSE(r.absolute);
  EXPECT_EQ(notes_of(r),
            "X, Y, Z stay relative: the file does not tell the white's luminance.\n"
            "Line 11: NUMBER_OF_SETS promises 4 rows; there are 3.\n"
            "Line 20: the display was measured through a calibration of 3 entries.\n");
  ASSERT_TRUE(r.calibration);
  EXPECT_EQ((*r.calibration)[2], (lut{{0, 0.5, 1}, {0, 0.6, 0.8}}));
  EXPECT_EQ(read_calibration("b.cal", calibration_file(*r.calibration, {.title = "B\xFCro \"1\"", .comments = {}})),
            *r.calibration);

  const std::string identity = "CAL\n" + data("RGB_I RGB_R RGB_G RGB_B", "0 0 0 0\n.5 .50004 .5 .5\n1 1 1 1\n");
  EXPECT_FALSE(read_cgats("a.ti3", ti3("") + identity).calibration) << "the identity is none";
}

TEST(Cgats, DropsFailedReadingsByName) {
  const readings r = read_cgats("a.ti3", ti3(absolute, fields,
                                             "100 100 100 95 100 109\n100 100 100 0 0 0\n0 0 0 0 0 0\n"
                                             "0 0 50 -99999.992188 -99999.992188 -99999.992188\n50 50 50 nan 1 1\n"));
  EXPECT_EQ(rows_of(r), " 1 1 1 = 95 100 109; 0 0 0 = 0 0 0;") << "black may be dark";
  EXPECT_EQ(
      notes_of(r),
      "Dropped line 11: the reading 0 0 0 of drive 100 100 100 failed.\n"
      "Dropped line 13: the reading -99999.992188 -99999.992188 -99999.992188 of drive 0 0 50 was not measured.\n"
      "Dropped line 14: the reading nan 1 1 of drive 50 50 50 is not measurable light.\n");
}

TEST(Cgats, RefusesWithLineAndValue) {
  const std::string whole = ti3(absolute);
  const std::string cal = "CAL\n" + data("RGB_I RGB_R RGB_G RGB_B", "0 0 0 0\n0.5 0 0 0\n");
  const struct {
    std::string text, message;
  } refused[] = {
      {whole.substr(0, whole.find("50 0 0")),
       "line 11: the file ends here, before END_DATA, with 2 rows: it was cut"},
      {whole.substr(0, whole.find("XYZ_Z")),
       "line 7: the file ends here, before END_DATA_FORMAT (the format begins in"},
      {whole.substr(0, whole.find("BEGIN")), "line 5: the file ends here, before BEGIN_DATA_FORMAT"},
      {"CTI3\nBEGIN_X\nEND_XY\n", "line 3: the file ends here, before END_X (the block begins in line 2)"},
      {whole + cal.substr(0, 60), "before END_DATA"},
      {whole + "CAL\n" + data("RGB_I RGB_R RGB_G", "0 0 0\n"), "line 14: the calibration has no column RGB_B"},
      {whole + cal.substr(0, cal.find("0.5")) + "0 1 1 1\nEND_DATA", "line 20: the calibration's inputs must rise"},
      {ti3(absolute, fields, "1 1 1 1 1\n"), "line 10: expected 6 values, one per field, found 5"},
      {ti3(absolute, fields, "1 1 1 1 1 1 1\n"), "line 10: expected 6 values, one per field, found 7"},
      {ti3(absolute, fields, "1 1 1 1 1 1e\n"), "line 10: expected a number as XYZ_Z, found '1e'"},
      {ti3(absolute, fields, "100 0 0 1 1 1\n0 -5 0 1 1 1\n"), "line 11: expected a drive from 0 to 100, found '-5'"},
      {ti3(absolute, fields, "70000 0 0 1 1 1\n"),
       "line 10: expected a largest drive above 0 and up to 65535, found"},
      {ti3(absolute, fields, "1 1 1 0 0 0\n"), "none of its rows holds a reading"},
      {ti3("", "RGB_R RGB_G RGB_B LAB_L LAB_A LAB_B"), "line 1: the readings are CIELAB (COLOR_REP \"RGB_LAB\")"},
      {ti3("", "RGB_R RGB_G RGB_B SPEC_380 SPEC_390 X"), "spectra only: let ArgyllCMS's spec2cie"},
      {ti3("", "CMYK_C RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z"), "line 1: there are no columns RGB_R, RGB_G, RGB_B"},
      {"CTI1\n" + data(fields, rows), "found 'CTI1', a chart that is still to be measured"},
      {"CTI3\nDEVICE_CLASS \"OUTPUT\"\n" + data(fields, rows),
       "line 2: expected DEVICE_CLASS \"DISPLAY\", found 'OUTP"},
      {cal, "a calibration (CAL) holds no readings"},
      {"\n# nothing\n", "the file is empty"}};
  for (const auto& r : refused) {
    const std::string message = refusal([&] { read_cgats("a.ti3", r.text); });
    EXPECT_TRUE(message.starts_with("a.ti3: ")) << message;
    EXPECT_NE(message.find(r.message), std::string::npos) << message << "\ninstead of " << r.message;
  }
}

}  // namespace corvantile
