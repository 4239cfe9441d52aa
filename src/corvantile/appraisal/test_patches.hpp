#pragma once
// The 24 patches of the classic colour chart, which is used to compare displays and cameras.

#include <array>

namespace corvantile {

struct test_patch {
  const char* name;
  std::array<int, 3> code;  ///< R, G, B of sRGB, 8 bits
};

/// The manufacturer's own sRGB coordinates, as listed by D. Pascale, "RGB coordinates of the Macbeth ColorChecker"
/// (BabelColor, 2006), in the order of the chart.
inline constexpr std::array<test_patch, 24> test_patches{
    {{"dark skin", {115, 82, 68}},   {"light skin", {194, 150, 130}},  {"blue sky", {98, 122, 157}},
     {"foliage", {87, 108, 67}},     {"blue flower", {133, 128, 177}}, {"bluish green", {103, 189, 170}},
     {"orange", {214, 126, 44}},     {"purplish blue", {80, 91, 166}}, {"moderate red", {193, 90, 99}},
     {"purple", {94, 60, 108}},      {"yellow green", {157, 188, 64}}, {"orange yellow", {224, 163, 46}},
     {"blue", {56, 61, 150}},        {"green", {70, 148, 73}},         {"red", {175, 54, 60}},
     {"yellow", {231, 199, 31}},     {"magenta", {187, 86, 149}},      {"cyan", {8, 133, 161}},
     {"white", {243, 243, 242}},     {"neutral 8", {200, 200, 200}},   {"neutral 6.5", {160, 160, 160}},
     {"neutral 5", {122, 122, 121}}, {"neutral 3.5", {85, 85, 85}},    {"black", {52, 52, 52}}}};

}  // namespace corvantile
