#include "corvantile/readings/patches.hpp"

#include <algorithm>
#include <fmt/core.h>
#include <utility>

namespace corvantile {
namespace {

constexpr std::size_t none = 4, dark = 5;  // beside the numbers of the ramps: white, red, green, blue

bool off(double drive) { return drive <= same_drive; }

// The ramp that a drive is on, or `dark`, or `none`.
std::size_t ramp_of(const vec3& d) {
  if (off(d[0]) && off(d[1]) && off(d[2])) return dark;
  if (std::max({d[0], d[1], d[2]}) - std::min({d[0], d[1], d[2]}) <= same_drive) return 0;
  if (off(d[1]) && off(d[2])) return 1;
  if (off(d[0]) && off(d[2])) return 2;
  if (off(d[0]) && off(d[1])) return 3;
  return none;
}

bool without_light(const vec3& xyz) { return xyz[0] == 0 && xyz[1] == 0 && xyz[2] == 0; }

template <class Why>
void drop(const readings& all, std::size_t row, sorted_readings& sorted, const Why& why) {
  sorted.dropped.push_back(row);
  sorted.notes.drop(all.rows[row].line, why);
}

// Takes the failed readings out of `rows`, all of one patch. If no reading of it has any light, all stay: the patch
// is dark, or the whole file is wrong.
void drop_failed(const readings& all, std::vector<std::size_t>& rows, sorted_readings& sorted) {
  const auto failed = [&](std::size_t row) { return without_light(all.rows[row].xyz); };
  if (std::ranges::all_of(rows, failed)) return;
  for (const std::size_t row : rows) {
    if (!failed(row)) continue;
    drop(all, row, sorted, [] { return "the reading 0 0 0 failed: others of the same patch are brighter."; });
  }
  std::erase_if(rows, failed);
}

void drop_failed_mixtures(const readings& all, sorted_readings& sorted) {
  const auto failed = [&](std::size_t row) {
    return without_light(all.rows[row].xyz) && largest_drive(all.rows[row].drive) > 0.2;
  };
  for (const std::size_t row : sorted.others) {
    if (failed(row)) drop(all, row, sorted, [] { return "the reading 0 0 0 of a bright patch failed."; });
  }
  std::erase_if(sorted.others, failed);
}

patch averaged(const readings& all, std::vector<std::size_t> rows) {
  patch p;
  for (const std::size_t row : rows) {
    p.drive = p.drive + all.rows[row].drive;
    p.xyz = p.xyz + all.rows[row].xyz;
  }
  const auto n = static_cast<double>(rows.size());
  p.drive = p.drive / n;
  p.xyz = p.xyz / n;
  p.rows = std::move(rows);
  return p;
}

// Whether level i stands out of a ramp that would rise without it.
bool is_stray(const std::vector<patch>& ramp, std::size_t i) {
  const auto y = [&](std::size_t k) { return ramp[k].xyz[1]; };
  const double least = 0.01 * ramp.back().xyz[1];
  const double below = i > 0 ? y(i - 1) : 0.0, above = y(i + 1);
  if (!(below < above)) return false;
  const bool too_bright = y(i) > 1.2 * above && y(i) - above > least;
  const bool too_dark = below > 1.2 * y(i) && below - y(i) > least;
  return too_bright || too_dark;
}

void drop_strays(const readings& all, std::vector<patch>& ramp, sorted_readings& sorted) {
  for (std::size_t i = 0; i + 1 < ramp.size();) {
    if (!is_stray(ramp, i)) {
      ++i;
      continue;
    }
    const auto why = [&] {
      return fmt::format("the luminance {:.3f} does not fit its ramp: the next level has {:.3f}.", ramp[i].xyz[1],
                         ramp[i + 1].xyz[1]);
    };
    for (const std::size_t row : ramp[i].rows) drop(all, row, sorted, why);
    ramp.erase(ramp.begin() + static_cast<std::ptrdiff_t>(i));
  }
}

repeat_spread spread_of(const readings& all, const patch& p, double reference) {
  const auto y = [&](std::size_t row) { return all.rows[row].xyz[1]; };
  const auto [low, high] = std::ranges::minmax_element(p.rows, {}, y);
  return {p.rows.size(), (y(*high) - y(*low)) / reference};
}

std::optional<white_drift> drift_of(const readings& all, const patch& white) {
  if (white.rows.size() < 2) return std::nullopt;
  double mean_at = 0;
  for (const std::size_t row : white.rows) mean_at += static_cast<double>(row);
  mean_at /= static_cast<double>(white.rows.size());
  double covariance = 0, variance = 0;
  for (const std::size_t row : white.rows) {
    const double at = static_cast<double>(row) - mean_at;
    covariance += at * (all.rows[row].xyz[1] - white.xyz[1]);
    variance += at * at;
  }
  const std::size_t first = white.rows.front(), last = white.rows.back();
  const double change = covariance / variance * static_cast<double>(last - first) / white.xyz[1];
  return white_drift{change, first + 1, last + 1, all.rows.size()};
}

}  // namespace

double largest_drive(const vec3& drive) { return std::max({drive[0], drive[1], drive[2]}); }

bool is_full(const patch& p) { return largest_drive(p.drive) >= 1 - same_drive; }

sorted_readings sort_readings(const readings& all) {
  sorted_readings sorted;
  std::array<std::vector<std::size_t>, 6> rows;  // by ramp, then none and dark
  for (std::size_t i = 0; i < all.rows.size(); ++i) rows[ramp_of(all.rows[i].drive)].push_back(i);
  sorted.others = std::move(rows[none]);
  drop_failed_mixtures(all, sorted);

  const auto take = [&](std::vector<std::size_t> same) {
    std::ranges::sort(same);
    drop_failed(all, same, sorted);
    return averaged(all, std::move(same));
  };
  if (!rows[dark].empty()) sorted.dark = take(std::move(rows[dark]));
  for (std::size_t r = 0; r < 4; ++r) {
    const auto level_of = [&](std::size_t row) { return largest_drive(all.rows[row].drive); };
    std::ranges::stable_sort(rows[r], {}, level_of);
    for (std::size_t i = 0, end = 0; i < rows[r].size(); i = end) {
      // Compared with the lowest of the level, so that a chain of close drives does not become one level.
      while (end < rows[r].size() && level_of(rows[r][end]) - level_of(rows[r][i]) <= same_drive) ++end;
      const auto from = rows[r].begin() + static_cast<std::ptrdiff_t>(i);
      sorted.ramp[r].push_back(take({from, rows[r].begin() + static_cast<std::ptrdiff_t>(end)}));
    }
    drop_strays(all, sorted.ramp[r], sorted);
  }
  return sorted;
}

repeatability repeats(const readings& all, const sorted_readings& sorted) {
  repeatability r;
  const auto& white_ramp = sorted.ramp[0];
  if (white_ramp.empty() || !is_full(white_ramp.back())) return r;
  const patch& white = white_ramp.back();
  r.drift = drift_of(all, white);
  if (white.rows.size() > 1) r.white = spread_of(all, white, white.xyz[1]);
  if (sorted.dark && sorted.dark->rows.size() > 1) r.dark = spread_of(all, *sorted.dark, white.xyz[1]);
  for (const auto& ramp : sorted.ramp) {
    for (const patch& p : ramp) {
      if (p.rows.size() < 2 || p.xyz[1] < 0.01 * white.xyz[1]) continue;
      const repeat_spread s = spread_of(all, p, p.xyz[1]);
      if (!r.ramps || s.spread > r.ramps->spread) r.ramps = s;
    }
  }
  return r;
}

}  // namespace corvantile
