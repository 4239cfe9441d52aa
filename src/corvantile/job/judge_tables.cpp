#include <algorithm>
#include <string>

#include "corvantile/job/judgements.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// Without clipping and margin, rounding alone gives errors of some 1e-16.
constexpr double rounding = 1e-6;
// With 12 bits, the first step above black of a table in linear light is as bright as drive 6 of 255 at gamma 2.2.
constexpr int fine_bits = 12;

// One warning of a kind is enough: each loop stops at its first.
void judge_matrix(const settings& set, const mat3& m, std::vector<finding>& to) {
  const auto entry = [](std::size_t i, std::size_t j) {  // counted from 1, as usual for matrices
    return "matrix, row " + std::to_string(i + 1) + ", column " + std::to_string(j + 1);
  };
  for (std::size_t k = 0; k < 9; ++k) {
    const std::size_t i = k / 3, j = k % 3;
    if (!(m(i, j) < -rounding) || set.gamut_mapping == gamut_mapping::clip) continue;
    to.push_back(
        {"matrix-negative", severity::warning,
         entry(i, j) + " is " + short_number(m(i, j)) +
             ": the target asks for colours that the display cannot show, and integers cannot hold this",
         "raise boundary_tol (" + short_number(set.boundary_tol) + ") or choose a white nearer the display's"});
    break;
  }
  for (std::size_t j = 0; j < 3; ++j) {
    const auto largest = static_cast<std::size_t>(std::ranges::max_element(m.col[j].v) - m.col[j].v.begin());
    if (largest == j) continue;
    to.push_back({"matrix-exchanged", severity::warning,
                  entry(largest, j) + ": " + channel_names[j] + " goes mostly to " + channel_names[largest],
                  "give xytable as white, red, green, blue, and the ramps as white, red, green, blue"});
    break;
  }
  for (std::size_t i = 0; i < 3; ++i) {
    const double sum = m(i, 0) + m(i, 1) + m(i, 2);
    if (!(sum > 1 + rounding)) continue;
    to.push_back({"matrix-above-one", severity::warning,
                  "rowsum_margin = " + short_number(set.rowsum_margin) + ": row " + std::to_string(i + 1) +
                      " of the matrix adds up to " + short_number(sum) +
                      ", so bright colours need more than full drive and are clipped",
                  "use 0 or more"});
    break;
  }
}

}  // namespace

std::vector<finding> judge_two_tables(const settings& set, const two_table_solution& two) {
  std::vector<finding> found;
  if (!two.top.reached) {
    found.push_back({"white-out-of-reach", severity::warning,
                     "xytable: the display cannot show the target's white " +
                         short_pair(set.xytable.white[0], set.xytable.white[1]) +
                         " at any level that was tried, so matrix and tables are useless",
                     "choose a white inside the display's gamut"});
  }
  judge_matrix(set, two.matrix, found);
  if (set.nbits > 0 && set.nbits < fine_bits) {
    found.push_back({"coarse-codes", severity::warning,
                     "nbits = " + std::to_string(set.nbits) +
                         ": preLUT is linear in light, so with so few codes the lowest drive values turn black",
                     "use 12 or more, or 0 for real numbers"});
  }
  return found;
}

}  // namespace corvantile
