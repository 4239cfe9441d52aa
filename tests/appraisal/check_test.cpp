#include "corvantile/appraisal/check.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include "corvantile/appraisal/job_figures.hpp"
#include "tests/readings/charts.hpp"

namespace corvantile {
namespace {

const finding* find(const std::vector<finding>& findings, std::string_view id) {
  const auto at = std::ranges::find(findings, id, &finding::id);
  return at == findings.end() ? nullptr : &*at;
}

severity level_of(const std::vector<finding>& findings, std::string_view id) {
  const finding* f = find(findings, id);
  return f ? f->level : severity::note;
}

measurements of(const simulated_display& d) { return {"simulated", sample_rows(d), d.levels, d.version}; }

const simulated_display sound{.extra = 40, .noise = 0.001};

TEST(Check, FindsNothingAboveANoteOnSoundDisplays) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    simulated_display d = random_display(seed);
    d.levels = std::max(d.levels, 17);
    d.extra = 50;
    for (const finding& f : check_measurements(of(d)).findings) {
      EXPECT_EQ(f.level, severity::note) << seed << ": " << f.message;
    }
  }
}

TEST(Check, TellsTheFiguresOfADisplayThatIsKnown) {
  const quality q = check_measurements(of({.version = 1, .extra = 40, .digits = 12}));
  EXPECT_FALSE(q.derived_ramps);
  EXPECT_NEAR(q.additivity, 0, 1e-10);
  EXPECT_NEAR(q.contrast, 1000, 1e-6);
  EXPECT_NEAR(q.white_from_d65, 0, 1e-9);
  EXPECT_NEAR(q.white_cct, 6502, 5);
  EXPECT_NEAR(q.gamut[0].coverage, 1, 1e-6);
  EXPECT_EQ(q.accuracy.unseen.n, 40 + 3 * 16u) << "and the mixed ramps, without their dark";
  EXPECT_LT(q.accuracy.unseen.mean, 0.2);
  EXPECT_EQ(q.accuracy.patches[0].difference, q.accuracy.unseen.max);
  EXPECT_GE(q.accuracy.patches[0].difference, q.accuracy.patches[1].difference);
  for (const double w : q.wandering) EXPECT_LT(w, 1e-6);
  EXPECT_LT(q.noise.bright, 0.01);
}

TEST(Check, MeasuresNoiseInUnitsOfLightness) {
  // Near white, 1 % of luminance is 116 / 3 of a hundredth in L*.
  const quality q = check_measurements(of({.levels = 256, .noise = 0.01}));
  EXPECT_NEAR(q.noise.bright, 0.387 * 0.96, 0.05) << "the top octave is at 96 % of white's L* + 16 on average";
  EXPECT_GT(q.noise.dark, 0.02);
}

TEST(Check, NamesEachFault) {
  const auto spoilt = [](auto spoil) {
    measurements m = of(sound);
    spoil(m.data);
    return m;
  };
  const auto unchanged = spoilt([](matrix&) {});
  const auto brighter_white = [](double gain) {
    return [gain](matrix& d) {
      for (std::size_t i = 0; i < 17; ++i) {
        for (std::size_t k = 3; k < 6; ++k) d(i, k) *= gain;
      }
    };
  };
  const auto black_lifted = [](matrix& d) {
    for (std::size_t i = 0; i < d.rows(); ++i) {
      for (std::size_t k = 3; k < 6; ++k) d(i, k) += 4;
    }
  };
  const auto no_dark = [](matrix& d) {
    for (std::size_t r = 0; r < 4; ++r) {
      for (std::size_t k = 3; k < 6; ++k) d(17 * r + 16, k) = 0;
    }
  };
  const auto restless = [](matrix& d) {
    for (std::size_t i = 3; i < 68; i += 2) d(i, 4) *= i % 17 < 15 ? 1.03 : 1;
  };
  provenance drifting;
  drifting.repeated.ramps = repeat_spread{4, 0.06};
  drifting.repeated.drift = white_drift{-0.03, 1, 90, 90};
  const struct {
    const char* id;
    measurements m;
    provenance known;
    severity want;
  } rows[] = {{"additivity", spoilt(brighter_white(1.1)), {}, severity::warning},
              {"additivity", spoilt(brighter_white(0.8)), {}, severity::error},
              {"dark-spread", spoilt([](matrix& d) { d(33, 4) += 0.5; }), {}, severity::warning},
              {"contrast", spoilt(black_lifted), {}, severity::warning},
              {"zero-dark", spoilt(no_dark), {}, severity::warning},
              {"red-without-z", of({.dark_red_z = true}), {}, severity::warning},
              {"noise", spoilt(restless), {}, severity::warning},
              {"chromaticity-wander", of({.nX = {{0.3, 0, 0}}}), {}, severity::warning},
              {"numsegs", of({.levels = 4}), {}, severity::warning},
              {"numsegs",
               of({.levels = 7, .nX = {{0.1, 0.1, 0.1}}, .nZ = {{0.1, 0.1, 0.1}}, .noise = 0.002}),
               {},
               severity::warning},
              {"ramp-not-to-zero", spoilt([](matrix& d) { d(16, 0) = 5; }), {}, severity::warning},
              {"repeat-spread", unchanged, drifting, severity::error},
              {"white-drift", unchanged, drifting, severity::warning}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.id);
    const auto findings = check_measurements(r.m, r.known).findings;
    EXPECT_EQ(level_of(findings, r.id), r.want);
    EXPECT_TRUE(std::ranges::is_sorted(findings, std::ranges::greater{}, &finding::level));
    ASSERT_TRUE(find(findings, r.id));
    EXPECT_NE(find(findings, r.id)->action, "");
  }
}

TEST(Check, SeesThroughDerivedRamps) {
  const quality q = check_measurements(ramps(chart(not_additive(sound, 0.1), 17, 20), ramp_source::derived).data);
  EXPECT_TRUE(q.derived_ramps);
  EXPECT_NEAR(q.additivity, 1 / 1.1 - 1, 1e-9) << "from the measured primaries among the extra samples";
  EXPECT_EQ(level_of(q.findings, "additivity"), severity::warning);
  EXPECT_EQ(q.accuracy.unseen.n, 20 + 3 * 16u) << "the measured channels were not seen either";
}

TEST(JobFindings, NameWhatIsLostAndMissed) {
  settings set;
  set.mode = match_mode::cv2_1;
  job_figures f;
  f.white_asked = {{0.34, 0.34}};
  f.white_before = white_figures_of(xy2xyz(f.white_asked, 300), {}, f.white_asked);
  f.white_after = white_figures_of(xy2xyz(f.white_asked, 120), {}, f.white_asked);
  f.gamut.asked = f.gamut.after = srgb;
  f.gamut.after.green = {{0.32, 0.53}};
  f.gray.difference_after = {.mean = 0.4, .max = 1, .where = {}};
  const auto findings = job_findings({}, set, f);
  for (const char* id : {"luminance-loss", "primary-out-of-reach", "own-white"}) {
    EXPECT_EQ(level_of(findings, id), severity::warning) << id;
  }
  ASSERT_TRUE(find(findings, "primary-out-of-reach"));
  EXPECT_TRUE(find(findings, "primary-out-of-reach")->message.starts_with("green"));
  EXPECT_TRUE(find(findings, "short-tables"));
  EXPECT_EQ(find(findings, "white-out-of-reach"), nullptr);
}

}  // namespace
}  // namespace corvantile
