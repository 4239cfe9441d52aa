#include "corvantile/monitor/measurements.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

constexpr std::size_t columns = 6;
constexpr std::size_t longest_header = 1024;  // characters; what follows them on that line does not count

}  // namespace

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

measurements load_measurements(const std::string& filename) {
  const auto text = read_file(filename);
  if (!text) throw failure(fault::no_measurements, "Cannot open " + printable(trim(filename)));
  return parse_measurements(filename, *text);
}

measurements parse_measurements(const std::string& filename, std::string_view text) {
  measurements samples;
  samples.name = trim(filename);
  number_scanner numbers(text);
  std::optional<std::string_view> header_line = numbers.next_line();
  std::size_t line = 1;
  for (; header_line && header_line->starts_with(';'); ++line) header_line = numbers.next_line();

  number_scanner header(cut(header_line.value_or(""), longest_header), line);
  std::array<std::int64_t, 3> counts{};
  for (std::int64_t& count : counts) {
    if (header.next(count) != number_scanner::result::number) {
      refuse_content(samples.name,
                     header.problem("the header's three integers (levels, extra samples, version 1 or 2)"));
    }
  }
  const auto [nramp, nextra, version] = counts;
  samples.version = version == 1 || version == 2 ? static_cast<int>(version) : 0;
  const auto ramps = static_cast<std::int64_t>(ramp_count(samples.version));
  const std::string at = "line " + std::to_string(line) + ": ";
  if (nramp < 2)
    refuse_content(samples.name, at + "a ramp has " + std::to_string(nramp) + " levels, expected at least 2");
  if (nextra < 0) refuse_content(samples.name, at + "the number of extra samples is " + std::to_string(nextra));
  // More than any instrument writes, and within what a machine holds.
  constexpr std::int64_t most_rows = 1 << 24;
  if (nramp > most_rows || nextra > most_rows || ramps * nramp + nextra > most_rows) {
    refuse_content(samples.name, at + std::to_string(nramp) + " levels and " + std::to_string(nextra) +
                                     " extra samples are more than " + std::to_string(most_rows) + " samples");
  }
  samples.nramp = static_cast<int>(nramp);

  // The room grows with what is read, so that a header alone cannot ask for more than the file has numbers.
  const auto rows = static_cast<std::size_t>(ramps * nramp + nextra);
  std::vector<double> read;
  read.reserve(std::min(rows * columns, text.size() / 2 + 1));
  for (std::size_t i = 0; i < rows * columns; ++i) {
    double v = 0;
    if (numbers.next(v) != number_scanner::result::number) {
      refuse_content(samples.name, numbers.problem("number " + std::to_string(i % columns + 1) + " of 6 of " +
                                                   sample_text(samples, i / columns)));
    }
    if (i % columns == 0) samples.lines.push_back(numbers.line());
    read.push_back(v);
  }
  samples.data = matrix(rows, columns);
  for (std::size_t i = 0; i < read.size(); ++i) samples.data(i / columns, i % columns) = read[i];
  return samples;
}

}  // namespace corvantile
