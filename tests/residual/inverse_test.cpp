#include "corvantile/residual/inverse.hpp"

#include <cmath>
#include <gtest/gtest.h>

#include "corvantile/residual/least_squares.hpp"
#include "corvantile/residual/profile_grids.hpp"
#include "corvantile/utils/failure.hpp"
#include "tests/residual/displays.hpp"

namespace corvantile {
namespace {

const prepared_residual_model display(learnt(crosstalk_display(0.15)));

double hue(const vec3& oklab) { return std::atan2(oklab[2], oklab[1]) * 180 / 3.14159265358979; }

TEST(LeastSquares, EndsAtBoundsAndWhereResidualsStay) {
  const auto to = [](const vec3& p) {
    return [p](const vec3& u) {
      return values_and_slopes{u - p, {{vec3{{1, 0, 0}}, vec3{{0, 1, 0}}, vec3{{0, 0, 1}}}}};
    };
  };
  const std::pair<vec3, vec3> nearest[] = {
      {{{0.2, 0.9, 0.4}}, {{0.2, 0.9, 0.4}}}, {{{-3, 0.5, 7}}, {{0, 0.5, 1}}}, {{{2, 2, 2}}, {{1, 1, 1}}}};
  for (const auto& [p, want] : nearest) {
    EXPECT_LT(dist2(minimize(to(p), {{0, 1, 0}}).drive, want), 1e-20) << p[0];
    EXPECT_LT(dist2(minimize(to(p), {{std::nan(""), -2, 5}}).drive, want), 1e-20) << p[0];
  }
  // Least is (x^2 + 2)^2 + (x - 0.5)^2 with 4 x^3 + 10 x = 1. Without the secant term, J'J knows 2 of 10 there.
  const auto bent = [](const vec3& u) {
    return values_and_slopes{{{u[0] * u[0] + 2, u[0] - 0.5, 0}}, {{vec3{{2 * u[0], 1, 0}}, {}, {}}}};
  };
  const least_squares r = minimize(bent, {{0.9, 0.5, 0.5}});
  EXPECT_NEAR(4 * r.drive[0] * r.drive[0] * r.drive[0] + 10 * r.drive[0], 1, 1e-5);
  EXPECT_LT(r.steps, 12);
}

TEST(Inverse, FindsTheDrivesOfColoursThatAreShown) {
  const oklab_space space = adapted_oklab(display.white());
  for (const vec3& u : scattered(200)) {
    const found_drive found = drive_for(display, space, display.xyz(u), {{u[1], u[1], u[1]}});
    EXPECT_TRUE(found.reached());
    EXPECT_LT(std::sqrt(dist2(found.drive, u)), 1e-4);
  }
}

// Against every drive on a grid: nothing shown is nearer in the measure that the header states, and the hue turns
// less than without the weight.
TEST(Inverse, OutOfReachFindsTheNearestAndKeepsTheHue) {
  const oklab_space space = adapted_oklab(display.white());
  const std::vector<vec3> grid = even_places(21);
  const struct {
    vec3 xyz;
    bool turns;
    const char* why;
  } rows[] = {{{{64.6, 95.9, 143.4}}, true, "a cyan"},           {{{82.3, 106.7, 0.1}}, true, "a yellow"},
              {{{73.3, 39.5, 0.1}}, true, "an orange"},          {{{40, 15, 250}}, false, "a blue beyond blue"},
              {{{300, 320, 340}}, false, "brighter than white"}, {{{0.01, 0.01, 0.01}}, false, "darker than black"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const vec3 wanted = xyz2oklab(space, r.xyz);
    const double C = std::hypot(wanted[1], wanted[2]);
    const auto distance2 = [&](const vec3& u, double weight) {
      const vec3 d = xyz2oklab(space, display.xyz(u)) - wanted;
      const double along = (d[1] * wanted[1] + d[2] * wanted[2]) / C,
                   across = (d[2] * wanted[1] - d[1] * wanted[2]) / C;
      return d[0] * d[0] + along * along + weight * across * across;
    };
    const auto nearest = [&](double weight) {
      return std::ranges::min(grid, {}, [&](const vec3& u) { return distance2(u, weight); });
    };
    const auto turn = [&](const vec3& u) { return std::abs(hue(xyz2oklab(space, display.xyz(u))) - hue(wanted)); };
    const double weight = 1 + C / (C + 0.03);
    const found_drive found = drive_for(display, space, r.xyz, {{0.5, 0.5, 0.5}});
    EXPECT_FALSE(found.reached());
    EXPECT_LE(distance2(found.drive, weight), distance2(nearest(weight), weight) + 1e-9);
    if (r.turns) {
      EXPECT_LT(turn(found.drive), 0.9 * turn(nearest(1)));
    }
  }
}

TEST(Inverse, RefusesWhatIsNotFinite) {
  std::vector<vec3> drive(1);
  const vec3 bad[] = {{{1, std::nan(""), 1}}};
  EXPECT_THROW(drives_for(display, display.white(), bad, drive), failure);
}

TEST(ProfileGrids, AreInversesOfEachOther) {
  const std::vector<vec3> colours = forward_grid(display, 5, 1);
  EXPECT_EQ(colours, forward_grid(display, 5, 3));
  EXPECT_EQ(colours[1], display.xyz({{0, 0, 0.25}})) << "blue runs fastest";
  const monitor base = fitted(crosstalk_display(0.15));
  const auto meant = [&](const vec3& place) { return display.xyz(place); };
  const std::vector<vec3> drives = backward_grid(display, base, meant, 5, 2);
  const std::vector<vec3> want = even_places(5);
  for (std::size_t i = 0; i < drives.size(); ++i) EXPECT_LT(std::sqrt(dist2(drives[i], want[i])), 1e-3) << i;
}

}  // namespace
}  // namespace corvantile
