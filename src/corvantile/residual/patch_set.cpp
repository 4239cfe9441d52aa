#include "corvantile/residual/patch_set.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <set>
#include <string>

#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/residual/uniform_colour.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

using drive_key = std::array<std::int32_t, 3>;  // in steps of 1e-4

drive_key key_of(const vec3& drive) {
  drive_key key;
  for (std::size_t c = 0; c < 3; ++c) key[c] = static_cast<std::int32_t>(std::lround(drive[c] * 1e4));
  return key;
}

vec3 clipped(const vec3& drive) {
  return {{std::clamp(drive[0], 0.0, 1.0), std::clamp(drive[1], 0.0, 1.0), std::clamp(drive[2], 0.0, 1.0)}};
}

bool finite(const vec3& v) { return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]); }

[[noreturn]] void refuse(const monitor& base, std::size_t line, const std::string& what) {
  refuse_content(base.name, (line > 0 ? "line " + std::to_string(line) + ": " : "") + what);
}

void require_light(const monitor& base, const reading& r) {
  if (!finite(r.drive) || !finite(r.xyz)) refuse(base, r.line, "drive and X, Y, Z must be finite numbers");
  const vec3& white = base.whitepoint;
  for (std::size_t k = 0; k < 3; ++k) {
    if (!(r.xyz[k] >= -0.001 * white[k])) refuse(base, r.line, "X, Y or Z is below 0: measure this patch again");
  }
  if (r.xyz[1] > 0 || std::ranges::max(r.drive.v) <= 0.05) return;
  if (inp2out_vec(base, clipped(r.drive))[1] > 0.001 * white[1]) {
    refuse(base, r.line, "reading without light of a patch that shows some: measure this patch again");
  }
}

std::set<drive_key> keys_of_ramps(const monitor& base) {
  std::set<drive_key> keys;
  const std::size_t rows = std::min(base.rgb.rows(), 4 * static_cast<std::size_t>(base.nramp));
  for (std::size_t i = 0; i < rows; ++i) keys.insert(key_of(row3(base.rgb, i)));
  return keys;
}

void require_agreement(const monitor& base, std::span<const reading* const> same, const vec3& mean) {
  const vec3 lab = xyz2lab_exact(mean, base.whitepoint);
  for (const reading* r : same) {
    const double d = deltae2000_vec(xyz2lab_exact(r->xyz, base.whitepoint), lab);
    if (d > 5) {
      refuse(base, r->line,
             fmt::format("lies CIEDE2000 {:.1f} from the mean of ", d) + std::to_string(same.size()) +
                 " readings of its patch: remove what is wrong, or measure again");
    }
  }
}

// The second largest variance along a principal axis is 0 if all stand on one line: then the sum of the 2 x 2
// principal minors of their covariance is 0.
bool on_one_line(std::span<const vec3> drives) {
  vec3 mean;
  for (const vec3& d : drives) mean = mean + d;
  mean = mean / static_cast<double>(drives.size());
  mat3 s;
  for (const vec3& d : drives) {
    for (std::size_t c = 0; c < 3; ++c) s.col[c] = s.col[c] + (d[c] - mean[c]) * (d - mean);
  }
  s = s / static_cast<double>(drives.size());
  const double minors = s(0, 0) * s(1, 1) - s(0, 1) * s(0, 1) + s(0, 0) * s(2, 2) - s(0, 2) * s(0, 2) +
                        s(1, 1) * s(2, 2) - s(1, 2) * s(1, 2);
  const double trace = s(0, 0) + s(1, 1) + s(2, 2);
  return !(minors > 1e-4 * trace * trace);
}

void require_patches(const monitor& base, std::span<const vec3> beside) {
  if (beside.size() < least_patches) {
    refuse(base, 0,
           std::to_string(beside.size()) + " patches beside the ramps, expected at least " +
               std::to_string(least_patches) + ": measure a chart with more colours");
  }
  if (on_one_line(beside)) {
    refuse(base, 0,
           "all patches beside the ramps stand on one line of the colour cube: measure a chart with more colours");
  }
}

void append(patch_set& set, const monitor& base, std::span<const reading* const> same) {
  vec3 drive, xyz;
  for (const reading* r : same) {
    drive = drive + clipped(r->drive);
    xyz = xyz + r->xyz;
  }
  const auto n = static_cast<double>(same.size());
  set.drive.push_back(drive / n);
  set.xyz.push_back(xyz / n);
  if (same.size() > 1) require_agreement(base, same, set.xyz.back());
}

}  // namespace

patch_set merge_patches(const monitor& base, std::span<const reading> all) {
  for (const reading& r : all) require_light(base, r);
  struct keyed {
    bool beside;
    drive_key key;
    const reading* from;
  };
  const std::set<drive_key> ramp_keys = keys_of_ramps(base);
  std::vector<keyed> sorted;
  sorted.reserve(all.size());
  for (const reading& r : all) {
    const drive_key key = key_of(clipped(r.drive));
    sorted.push_back({!ramp_keys.contains(key), key, &r});
  }
  // Readings of one patch are summed in the order of their values, so that the order of the file does not matter.
  std::ranges::sort(sorted, [](const keyed& a, const keyed& b) {
    if (a.beside != b.beside) return b.beside;
    if (a.key != b.key) return a.key < b.key;
    return std::pair(a.from->xyz.v, a.from->drive.v) < std::pair(b.from->xyz.v, b.from->drive.v);
  });

  patch_set set;
  std::vector<const reading*> same;
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    same.push_back(sorted[i].from);
    if (i + 1 < sorted.size() && sorted[i + 1].key == sorted[i].key) continue;
    append(set, base, same);
    if (!sorted[i].beside) ++set.ramps;
    same.clear();
  }
  require_patches(base, std::span(set.drive).subspan(set.ramps));
  return set;
}

}  // namespace corvantile
