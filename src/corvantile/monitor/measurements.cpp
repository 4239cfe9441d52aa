#include "corvantile/monitor/measurements.hpp"

#include <algorithm>
#include <array>
#include <string>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {

std::size_t ramp_count(int version) {
  if (version == 1) return 7;
  if (version == 2) return 4;
  throw failure(fault::version, "improper version number");
}

std::string sample_text(const measurements& samples, std::size_t row) {
  const auto n = static_cast<std::size_t>(samples.nramp);
  static constexpr std::array names{"white", "red", "green", "blue", "fifth", "sixth", "seventh"};
  if (row / n < ramp_count(samples.version)) {
    return "sample " + std::to_string(row + 1) + " (level " + std::to_string(row % n + 1) + " of the " +
           names[row / n] + " ramp)";
  }
  return "sample " + std::to_string(row + 1) + " (after the ramps)";
}

std::string place_text(const measurements& samples, std::size_t row) {
  const std::string text = sample_text(samples, row);
  return row < samples.lines.size() ? "line " + std::to_string(samples.lines[row]) + ": " + text : text;
}

double ramp_drive(const measurements& samples, std::size_t row) {
  const std::size_t ramp = row / static_cast<std::size_t>(samples.nramp);
  if (ramp >= 1 && ramp <= 3) return samples.data(row, ramp - 1);  // the white ramp comes first
  return std::max({samples.data(row, 0), samples.data(row, 1), samples.data(row, 2)});
}

void require_falling_ramps(const measurements& samples) {
  const auto n = static_cast<std::size_t>(samples.nramp);
  const auto refuse = [&](std::size_t end, const char* is_not, std::size_t beyond) {
    refuse_content(samples.name, place_text(samples, end) + ": drive" + free_format(ramp_drive(samples, end)) +
                                     " is not the " + is_not + " of its ramp, " + sample_text(samples, beyond) +
                                     " has" + free_format(ramp_drive(samples, beyond)) +
                                     "; ramps run from full drive down to zero");
  };
  for (std::size_t first = 0; first < ramp_count(samples.version) * n; first += n) {
    const std::size_t last = first + n - 1;
    for (std::size_t row = first; row <= last; ++row) {
      const double drive = ramp_drive(samples, row);
      if (drive > ramp_drive(samples, first)) refuse(first, "highest", row);
      if (drive < ramp_drive(samples, last)) refuse(last, "lowest", row);
    }
  }
}

}  // namespace corvantile
