#include "corvantile/documents/measurement_file.hpp"

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

constexpr std::size_t columns = 6;
constexpr std::size_t longest_header = 1024;  // characters; the rest of that line is ignored

// ---- Comment lines ----

// How the comment line for each field begins.
constexpr std::array<std::pair<std::string_view, std::string provenance::*>, 7> texts{{
    {"Source: ", &provenance::source},
    {"Kind: ", &provenance::kind},
    {"Instrument: ", &provenance::instrument},
    {"Measured by: ", &provenance::originator},
    {"Date: ", &provenance::date},
    {"Display: ", &provenance::display},
    {"Ramps: ", &provenance::ramps},
}};
constexpr std::array<std::pair<std::string_view, std::optional<repeat_spread> repeatability::*>, 3> spreads{{
    {"Repeated white: ", &repeatability::white},
    {"Repeated black: ", &repeatability::dark},
    {"Repeats, worst patch: ", &repeatability::ramps},
}};
constexpr std::string_view readings_key = "Readings: ", units_key = "Units: ", drift_key = "White drift: ",
                           curves_key = "Calibration in effect: ", note_key = "Note: ";
constexpr std::string_view absolute_units = "cd/m2", relative_units = "relative";

// Adds one comment line. Readers of such files accept up to 1024 characters in a line.
void add_line(std::string& out, std::string_view key, std::string_view text) {
  std::string line = "; ";
  line.append(key).append(text.substr(0, 900));
  std::ranges::replace_if(
      line, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }, ' ');
  out.append(trim(line)).push_back('\n');
}

// The inputs at which any of the curves has a point.
std::vector<double> all_inputs(const calibration_curves& curves) {
  std::vector<double> inputs;
  for (const lut& curve : curves) inputs.insert(inputs.end(), curve.x.begin(), curve.x.end());
  std::ranges::sort(inputs);
  inputs.erase(std::unique(inputs.begin(), inputs.end()), inputs.end());
  return inputs;
}

void add_curves(std::string& out, const calibration_curves& curves) {
  const std::vector<double> inputs = all_inputs(curves);
  add_line(out, curves_key, "yes, " + std::to_string(inputs.size()) + " entries follow: input, red, green, blue");
  for (const double in : inputs) {
    out += "; " + shortest(in);
    for (const lut& curve : curves) {
      // If the curve has a point here, take its value as it is.
      const auto at = std::ranges::lower_bound(curve.x, in);
      const bool own = at != curve.x.end() && *at == in;
      out += ' ' + shortest(own ? curve.y[static_cast<std::size_t>(at - curve.x.begin())] : interp(curve, in));
    }
    out += '\n';
  }
}

// The numbers among the words of a line.
std::vector<double> numbers_in(std::string_view line) {
  std::vector<double> numbers;
  while (!line.empty()) {
    const std::size_t end = std::min(line.find_first_of(" ,"), line.size());
    if (const auto v = parse_real(line.substr(0, end))) numbers.push_back(*v);
    line.remove_prefix(std::min(end + 1, line.size()));
  }
  return numbers;
}

// `v` as a count, if it is one.
std::optional<std::size_t> count_of(double v) {
  if (!(v >= 0 && v < 1e15)) return std::nullopt;
  return static_cast<std::size_t>(v);
}

std::optional<repeat_spread> spread_in(std::string_view line) {
  const auto v = numbers_in(line);
  if (v.size() != 2 || !count_of(v[0])) return std::nullopt;
  return repeat_spread{*count_of(v[0]), v[1] / 100};
}

std::optional<white_drift> drift_in(std::string_view line) {
  const auto v = numbers_in(line);
  if (v.size() != 4 || !count_of(v[1]) || !count_of(v[2]) || !count_of(v[3])) return std::nullopt;
  return white_drift{v[0] / 100, *count_of(v[1]), *count_of(v[2]), *count_of(v[3])};
}

using comment_lines = std::span<const std::string_view>;

// Takes the next comment line, without `;` and the blank after it.
std::optional<std::string_view> take_line(comment_lines& lines) {
  if (lines.empty()) return std::nullopt;
  std::string_view line = lines.front().substr(1);
  lines = lines.subspan(1);
  if (line.starts_with(' ')) line.remove_prefix(1);
  return line;
}

std::optional<calibration_curves> take_curves(comment_lines& lines, std::string_view heading) {
  const auto announced = numbers_in(heading);
  if (announced.empty()) return std::nullopt;
  calibration_curves curves;
  for (double i = 0; i < announced[0]; ++i) {
    const auto line = take_line(lines);
    const auto row = line ? numbers_in(*line) : std::vector<double>{};
    if (row.size() != 4) return std::nullopt;
    for (std::size_t c = 0; c < 3; ++c) {
      curves[c].x.push_back(row[0]);
      curves[c].y.push_back(row[1 + c]);
    }
  }
  return curves[0].x.size() >= 2 && isvalid_lut(curves[0]) ? std::optional(curves) : std::nullopt;
}

// What follows `key` if `line` begins with it.
std::optional<std::string_view> behind(std::string_view key, std::string_view line) {
  if (!line.starts_with(key)) return std::nullopt;
  return line.substr(key.size());
}

std::string comments_of(const provenance& p) {
  std::string out;
  for (const auto& [key, member] : texts) {
    if (!(p.*member).empty()) add_line(out, key, p.*member);
  }
  if (p.readings > 0) add_line(out, readings_key, std::to_string(p.readings));
  if (p.absolute) add_line(out, units_key, *p.absolute ? absolute_units : relative_units);
  for (const auto& [key, member] : spreads) {
    if (const auto& s = p.repeated.*member) {
      add_line(out, key, std::to_string(s->n) + " readings, spread " + short_percent(s->spread));
    }
  }
  if (const auto& d = p.repeated.drift) {
    add_line(out, drift_key,
             short_percent(d->change) + " from reading " + std::to_string(d->first) + " to " +
                 std::to_string(d->last) + " of " + std::to_string(d->of));
  }
  for (const std::string& note : p.notes) add_line(out, note_key, note);
  if (p.calibration) add_curves(out, *p.calibration);
  return out;
}

provenance provenance_in(comment_lines lines) {
  provenance p;
  while (const auto line = take_line(lines)) {
    for (const auto& [key, member] : texts) {
      if (const auto value = behind(key, *line)) p.*member = *value;
    }
    for (const auto& [key, member] : spreads) {
      if (const auto value = behind(key, *line)) p.repeated.*member = spread_in(*value);
    }
    if (const auto value = behind(readings_key, *line)) {
      const auto v = numbers_in(*value);
      if (v.size() == 1) p.readings = count_of(v[0]).value_or(0);
    }
    if (const auto value = behind(units_key, *line)) {
      if (*value == absolute_units || *value == relative_units) p.absolute = *value == absolute_units;
    }
    if (const auto value = behind(drift_key, *line)) p.repeated.drift = drift_in(*value);
    if (const auto value = behind(note_key, *line)) p.notes.emplace_back(*value);
    if (const auto value = behind(curves_key, *line)) p.calibration = take_curves(lines, *value);
  }
  return p;
}

// ---- Samples ----

// Also collects the comment lines before the samples if `comments` is given.
measurements read_samples(const std::string& filename, std::string_view text,
                          std::vector<std::string_view>* comments) {
  measurements samples;
  samples.name = trim(filename);
  number_scanner numbers(text);
  std::optional<std::string_view> header_line = numbers.next_line();
  std::size_t line = 1;
  for (; header_line && header_line->starts_with(';'); ++line) {
    if (comments != nullptr) comments->push_back(*header_line);
    header_line = numbers.next_line();
  }

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
  // More than any instrument writes, but it fits in memory.
  constexpr std::int64_t most_rows = 1 << 24;
  if (nramp > most_rows || nextra > most_rows || ramps * nramp + nextra > most_rows) {
    refuse_content(samples.name, at + std::to_string(nramp) + " levels and " + std::to_string(nextra) +
                                     " extra samples are more than " + std::to_string(most_rows) + " samples");
  }
  samples.nramp = static_cast<int>(nramp);

  // Reserve no more than the file can hold, whatever its header says.
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

}  // namespace

measurement_file parse_measurement_file(const std::string& name, std::string_view text) {
  std::vector<std::string_view> comments;
  measurements samples = read_samples(name, text, &comments);
  return {std::move(samples), provenance_in(comments)};
}

measurements parse_measurements(const std::string& name, std::string_view text) {
  return read_samples(name, text, nullptr);
}

measurements load_measurements(const std::string& filename) {
  const auto text = read_file(filename);
  if (!text) throw failure(fault::no_measurements, "Cannot open " + printable(trim(filename)));
  return parse_measurements(filename, *text);
}

bool is_measurement_file(std::string_view text) {
  number_scanner lines(text);
  auto header = lines.next_line();
  while (header && header->starts_with(';')) header = lines.next_line();
  if (!header) return false;
  number_scanner numbers(*header);
  std::array<std::int64_t, 3> counts{};
  for (std::int64_t& count : counts)
    if (numbers.next(count) != number_scanner::result::number) return false;
  double more = 0;
  return (counts[2] == 1 || counts[2] == 2) && numbers.next(more) == number_scanner::result::end;
}

std::string measurement_text(const measurements& m, const provenance& known) {
  const std::size_t extra = m.data.rows() - ramp_count(m.version) * static_cast<std::size_t>(m.nramp);
  std::string out = comments_of(known);
  out += std::to_string(m.nramp) + ' ' + std::to_string(extra) + ' ' + std::to_string(m.version) + '\n';
  for (std::size_t i = 0; i < m.data.rows(); ++i) {
    for (std::size_t c = 0; c < columns; ++c) out += shortest(m.data(i, c)) + (c + 1 < columns ? ' ' : '\n');
  }
  return out;
}

monitor loadmonitor(const std::string& filename, std::optional<int> numsegs, double minslope) {
  return makemonitor(load_measurements(filename), numsegs.value_or(8), minslope);
}

}  // namespace corvantile
