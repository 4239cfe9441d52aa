#include <cmath>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/formats/writers/baked.hpp"
#include "corvantile/formats/writers/cal.hpp"
#include "corvantile/formats/writers/clf.hpp"
#include "corvantile/formats/writers/cube.hpp"
#include "corvantile/formats/writers/icc_profile.hpp"
#include "corvantile/formats/writers/kms.hpp"
#include "corvantile/formats/writers/memory_files.hpp"
#include "corvantile/formats/writers/mhc2.hpp"
#include "corvantile/formats/writers/text_form.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

matrix sampled(std::size_t n, const std::function<double(double)>& f) {
  std::vector<double> y;
  for (const double x : linspace(0.0, 1.0, n)) y.push_back(f(x));
  return in_all_channels(y);
}
double square(double x) { return x * x; }

device_tables one_table(std::size_t n = 5) {
  device_tables t;
  t.post = sampled(n, square);
  return t;
}
device_tables two_tables(const mat3& mix, std::size_t n = 5) {
  device_tables t = one_table(n);
  t.pre = sampled(n, srgb_decode);
  t.two_tables = true;
  t.mix = mix;
  return t;
}
constexpr mat3 identity{{{{{1, 0, 0}}, {{0, 1, 0}}, {{0, 0, 1}}}}};
constexpr mat3 red_and_green_swapped{{{{{0, 1, 0}}, {{1, 0, 0}}, {{0, 0, 1}}}}};
constexpr mat3 srgb{{{{{0.4124, 0.2126, 0.0193}}, {{0.3576, 0.7152, 0.1192}}, {{0.1805, 0.0722, 0.9505}}}}};
const profiled_display srgb_display{sampled(2, srgb_decode), srgb, {{0.9505, 1, 1.089}}, 120, 0.1};

std::uint64_t number(std::string_view bytes, std::size_t at, std::size_t size, bool big = true) {
  std::uint64_t v = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[at + (big ? i : size - 1 - i)]);
    v = (v << 8) | byte;
  }
  return v;
}
double fixed(std::string_view bytes, std::size_t at) {
  return static_cast<std::int32_t>(number(bytes, at, 4)) / 65536.0;
}
// The content of a profile's tag; empty if it has none.
std::string_view tag(std::string_view profile, std::string_view signature) {
  for (std::size_t at = 132; at < 132 + 12 * number(profile, 128, 4); at += 12)
    if (profile.substr(at, 4) == signature)
      return profile.substr(number(profile, at + 4, 4), number(profile, at + 8, 4));
  return {};
}

TEST(Writers, RefuseWhatAFormatCannotHoldAndSayWhatToDo) {
  const device_tables one = one_table(), two = two_tables(identity), short_one = one_table(1);
  device_tables undefined = one;
  undefined.post(4, 1) = std::nan("");
  const auto grow = [](const vec3& v) { return 0.4 * v; };
  const struct {
    std::function<void()> write;
    fault kind;
    std::string says;
  } rows[] = {
      {[&] { cube_file(two, {}); }, fault::inexpressible, "cube3d"},
      {[&] { cal_file(two, {}); }, fault::inexpressible, "clf"},
      {[&] { icc_file(two, srgb_display, {}); }, fault::inexpressible, "Format icc"},
      {[&] { icc_file(one, srgb_display, {}, 1); }, fault::inexpressible, "entries = 1: choose from 2"},
      {[&] { clf_file(short_one, {}); }, fault::inexpressible, "at least two"},
      {[&] { clf_file(undefined, {}); }, fault::not_finite, "post-table"},
      {[&] { cube3d_file(one, 33, {}); }, fault::inexpressible, "tlen=4096"},
      {[&] { cube3d_file(grow, 257, {}); }, fault::inexpressible, "2 to 256"},
      {[&] { threedl_file(grow, 17, {}); }, fault::inexpressible, "take cube3d"},
      {[&] { mhc2_file(one, srgb_display, {}); }, fault::inexpressible, "cvmode='CV2'"},
      {[&] {
         kms_files(one, {}, {1, false});
       },
       fault::inexpressible, "entries"},
      {[&] { hex_files(one, {}, {17}); }, fault::inexpressible, "bits = 17"},
      {[&] {
         monitor_icc_file({srgb_display.curves, srgb, {{1, 1, 0.01}}}, {});
       },
       fault::inexpressible, "primaries"},
  };
  for (const auto& r : rows) {
    try {
      r.write();
      ADD_FAILURE() << "nothing said about " << r.says;
    } catch (const failure& f) {
      EXPECT_EQ(f.kind, r.kind) << r.says;
      EXPECT_NE(f.message.find(r.says), std::string::npos) << f.message;
    }
  }
}

TEST(Writers, ResampleComposeAndApplyTables) {
  const matrix t = sampled(4, square), finer = resample(t, 7);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(finer(2 * i, 1), t(i, 1)) << "old rows stay, bit for bit";
  EXPECT_DOUBLE_EQ(finer(1, 2), (t(0, 2) + t(1, 2)) / 2);
  EXPECT_EQ(resample(resample(t, 7), 4), t);
  const std::array<lut, 3> cal = {lut{{0, 1}, {0, 0.5}}, {{0, 1}, {0, 1}}, {{0, 0.5, 1}, {0, 1, 1}}};
  EXPECT_EQ(row3(compose_calibration(cal, sampled(3, square)), 1), (vec3{{0.125, 0.25, 0.5}})) << "cal(table(1/2))";
  const mat3 over{{{{{2, 0, 0}}, {{0, -1, 0}}, {{0, 0, 1}}}}};
  const vec3 held = corrected(two_tables(over), {{1, 1, 1}});
  EXPECT_EQ(held, (vec3{{1, 0, 1}})) << "tables hold their ends, whatever the matrix gives";
}

TEST(Writers, EscapeTexts) {
  EXPECT_EQ(ascii("M\xC3\xBC\xE2\x82\xAC \xFC\n."), "Mu? u?.");
  EXPECT_EQ(xml_text("<a & \"b\">"), "&lt;a &amp; &quot;b&quot;&gt;");
  EXPECT_EQ(plain_quoted("27\" desk"), "\"27' desk\"");
  EXPECT_EQ(yaml_quoted("a\\\"b"), R"("a\\\"b")");
  EXPECT_EQ(c_comment("x*/ /*?"
                      "?/"),
            "x* / / *?"
            "? /");
  EXPECT_EQ(date_text(std::chrono::sys_seconds(std::chrono::seconds(1659383721))), "Mon Aug  1 19:55:21 2022");
}

TEST(Writers, LetTheRightChannelRunFastest) {
  const auto same = [](const vec3& v) { return v; };
  EXPECT_TRUE(cube3d_file(same, 2, {}).ends_with("\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n"));
  EXPECT_TRUE(
      threedl_file(same, 4, {}).starts_with("0 341 682 1023\n0 0 0\n0 0 1365\n0 0 2730\n0 0 4095\n0 1365 0\n"));
}

TEST(Writers, PutNumbersOfKernelBlobsInTheirPlaces) {
  const mat3 m{{{{{1, -0.5, 0}}, {{-0.0, 1.25, 0}}, {{0x1p-32, 0, -2}}}}};
  device_tables t = two_tables(m, 2);
  t.post(0, 0) = -0.25;
  t.post(1, 2) = 0.5;
  const auto files = kms_files(t, {}, {2, false}), wide = kms_files(t, {}, {2, true});
  const std::uint64_t ctm[] = {0x0000000100000000, 0, 1, 0x8000000080000000, 0x0000000140000000, 0, 0, 0,
                               0x8000000200000000};
  ASSERT_EQ(files[1].bytes.size(), 72U);
  ASSERT_EQ(wide[1].bytes.size(), 96U);
  for (std::size_t i = 0; i < 9; ++i) {
    EXPECT_EQ(number(files[1].bytes, 8 * i, 8, false), ctm[i]) << i;
    EXPECT_EQ(number(wide[1].bytes, 8 * (i / 3 * 4 + i % 3), 8, false), ctm[i]) << i;
  }
  EXPECT_EQ(files[2].bytes, std::string_view("\0\0\0\0\0\0\0\0\xFF\xFF\xFF\xFF\0\x80\0\0", 16)) << "half rounds up";
  EXPECT_EQ(wide[2].bytes.substr(24, 8), std::string_view("\0\0\0\x80\0\0\0\0", 8));
  EXPECT_NE(files[3].bytes.find("1 entries had to be clamped"), std::string::npos);
}

TEST(Writers, ArrangeWordsOfMemory) {
  device_tables t = two_tables({{{{{-0.5, 0, 0}}, {{1, 1.99993896484375, 0}}, {{0, 0, -2}}}}}, 2);
  t.post(1, 0) = 1.1;
  t.post(0, 2) = 0.5;
  const auto words = [&](word_layout layout) {
    return memory_words("hex", t, {8, layout, matrix_format::q2_14}).memories.back().words;
  };
  using list = std::vector<std::uint64_t>;
  EXPECT_EQ(words(word_layout::planar), (list{0, 255, 0, 255, 128, 255}));
  EXPECT_EQ(words(word_layout::interleaved), (list{0, 0, 128, 255, 255, 255}));
  EXPECT_EQ(words(word_layout::packed), (list{0x000080, 0xFFFFFF}));
  const memory_files hex = hex_files(t, {}, {8});
  EXPECT_EQ(hex.clamped, 1U);
  EXPECT_TRUE(hex.files[1].bytes.ends_with("\ne000\n4000\n0000\n0000\n7fff\n0000\n0000\n0000\n8000\n"));
  const memory wide = memory_words("hex", t, {8, word_layout::planar, matrix_format::q15_16}).memories[1];
  EXPECT_EQ(wide.words, (list{0xFFFF8000, 0x10000, 0, 0, 0x1FFFC, 0, 0, 0, 0xFFFE0000}));
  t.mix.col[1][1] = 2;
  EXPECT_THROW(hex_files(t, {}, {8}), failure) << "q2.14 holds less than 2";
}

TEST(Writers, AdaptByBradford) {
  // D65 to D50: the tag `chad` of the ICC's own sRGB profiles.
  const double want[] = {1.04788208,  0.02291870,  -0.05021667, 0.02958679, 0.99047852,
                         -0.01707458, -0.00924683, 0.01507568,  0.75167847};
  const mat3 m = bradford_to_d50({{0.95045471, 1, 1.08905029}});
  for (std::size_t i = 0; i < 9; ++i) EXPECT_NEAR(m(i / 3, i % 3), want[i], 2e-5) << i;
}

TEST(Writers, MakeProfilesOfVersion24) {
  description about{"A display", {"One note."}, std::chrono::sys_seconds(std::chrono::seconds(1659383721))};
  profiled_display dim = srgb_display;
  dim.colorants.col[2] = 0.9 * srgb.col[2];  // channels that do not add up to the white
  dim.curves = sampled(3, square);
  device_tables t = one_table(2);
  t.post(1, 1) = 0.5;
  const std::string icc = icc_file(t, dim, about, 2);
  EXPECT_EQ(icc, icc_file(t, dim, about, 2)) << "the same bytes at any time";
  EXPECT_EQ(number(icc, 0, 4), icc.size());
  EXPECT_EQ(number(icc, 8, 4), 0x02400000U);
  EXPECT_EQ(icc.substr(12, 12), "mntrRGB XYZ ");
  EXPECT_EQ(icc.substr(24, 12), std::string_view("\x07\xE6\0\x08\0\x01\0\x13\0\x37\0\x15", 12))
      << "2022-08-01 19:55:21";
  EXPECT_EQ(tag(icc, "vcgt"),
            std::string_view("vcgt\0\0\0\0\0\0\0\0\0\3\0\2\0\2\0\0\xFF\xFF\0\0\x80\0\0\0\xFF\xFF", 30));
  EXPECT_EQ(tag(icc, "gTRC"), std::string_view("curv\0\0\0\0\0\0\0\3\0\0\x40\0\xFF\xFF", 18));
  EXPECT_NE(tag(icc, "cprt").find("One note."), std::string_view::npos);
  EXPECT_EQ(fixed(tag(icc, "lumi"), 12), 120);
  const double d50[] = {0.9642, 1, 0.8249};
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t at = 8 + 4 * i;
    EXPECT_NEAR(fixed(tag(icc, "rXYZ"), at) + fixed(tag(icc, "gXYZ"), at) + fixed(tag(icc, "bXYZ"), at), d50[i],
                2.5 / 65536);
    EXPECT_NEAR(fixed(tag(icc, "wtpt"), at), dim.white[i], 1.0 / 65536) << "that of the display";
  }
  EXPECT_TRUE(tag(monitor_icc_file(dim, about), "vcgt").empty());
}

TEST(Writers, LayOutTheWindowsTag) {
  EXPECT_NEAR(distance_from_srgb(sampled(1024, [](double x) { return std::pow(x, 2.2); })), 8.5, 0.05);
  EXPECT_THROW(mhc2_file({true, sampled(9, square), identity, sampled(9, square)}, srgb_display, {}), failure);
  const std::string profile = mhc2_file(two_tables(red_and_green_swapped, 33), srgb_display, {}, 5);
  const std::string_view mhc2 = tag(profile, "MHC2");
  ASSERT_EQ(mhc2.size(), 84U + 3 * (8 + 4 * 5));
  const std::uint64_t header[] = {0, 5, 0x199A, 120 << 16, 36, 84, 112, 140};
  EXPECT_EQ(mhc2.substr(0, 4), "MHC2");
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(number(mhc2, 4 + 4 * i, 4), header[i]) << i;
  for (std::size_t i = 0; i < 3; ++i) {
    const auto m = [&](std::size_t j) { return fixed(mhc2, 36 + 16 * i + 4 * j); };
    const vec3 red = srgb.col[0];
    EXPECT_NEAR(m(0) * red[0] + m(1) * red[1] + m(2) * red[2], srgb.col[1][i], 3e-4)
        << "the red of sRGB becomes its green";
    EXPECT_EQ(m(3), 0);
  }
  for (const std::size_t at : {84U, 112U, 140U}) {
    EXPECT_EQ(mhc2.substr(at, 4), "sf32");
    EXPECT_NEAR(fixed(mhc2, at + 8 + 4 * 2), square(srgb_decode(0.5)), 1e-3) << "post-table of the decoded half";
    EXPECT_EQ(fixed(mhc2, at + 8 + 4 * 4), 1);
  }
}

}  // namespace
}  // namespace corvantile
