#include "corvantile/readings/provenance.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <utility>

#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// The texts of the record by the word that their comment line begins with.
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

// One comment line. Readers of such files take lines of up to 1024 characters.
void add_line(std::string& out, std::string_view key, std::string_view text) {
  std::string line = "; ";
  line.append(key).append(text.substr(0, 900));
  std::ranges::replace_if(
      line, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }, ' ');
  out.append(trim(line)).push_back('\n');
}

std::string three_digits(double v) {
  std::array<char, 32> buf{};
  return {buf.data(), std::to_chars(buf.data(), buf.data() + buf.size(), v, std::chars_format::general, 3).ptr};
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
      // A point's own value, not one computed from it.
      const auto at = std::ranges::lower_bound(curve.x, in);
      const bool own = at != curve.x.end() && *at == in;
      out += ' ' + shortest(own ? curve.y[static_cast<std::size_t>(at - curve.x.begin())] : interp(curve, in));
    }
    out += '\n';
  }
}

// The numbers in a line of words, in their order.
std::vector<double> numbers_in(std::string_view line) {
  std::vector<double> numbers;
  while (!line.empty()) {
    const std::size_t end = std::min(line.find_first_of(" ,"), line.size());
    if (const auto v = parse_real(line.substr(0, end))) numbers.push_back(*v);
    line.remove_prefix(std::min(end + 1, line.size()));
  }
  return numbers;
}

// A count that a double holds; nothing for anything else.
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

// The comment lines before the header, one by one, without `;` and the blank behind it.
class comment_lines {
 public:
  explicit comment_lines(std::string_view text) : rest_(without_byte_order_mark(text)) {}

  std::optional<std::string_view> next() {
    if (!rest_.starts_with(';')) return std::nullopt;
    const std::size_t end = std::min(rest_.find('\n'), rest_.size());
    std::string_view line = rest_.substr(1, end - 1);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.starts_with(' ')) line.remove_prefix(1);
    return line;
  }

 private:
  std::string_view rest_;
};

std::optional<calibration_curves> curves_in(comment_lines& lines, std::string_view heading) {
  const auto announced = numbers_in(heading);
  if (announced.empty()) return std::nullopt;
  calibration_curves curves;
  for (double i = 0; i < announced[0]; ++i) {
    const auto line = lines.next();
    const auto row = line ? numbers_in(*line) : std::vector<double>{};
    if (row.size() != 4) return std::nullopt;
    for (std::size_t c = 0; c < 3; ++c) {
      curves[c].x.push_back(row[0]);
      curves[c].y.push_back(row[1 + c]);
    }
  }
  return curves[0].x.size() >= 2 && isvalid_lut(curves[0]) ? std::optional(curves) : std::nullopt;
}

// The rest of `line` behind `key`, where it begins so.
std::optional<std::string_view> behind(std::string_view key, std::string_view line) {
  if (!line.starts_with(key)) return std::nullopt;
  return line.substr(key.size());
}

}  // namespace

provenance provenance_of(const readings& all, const ramp_choice& choice) {
  provenance p;
  p.source = all.source;
  p.kind = all.kind;
  p.instrument = all.instrument;
  p.originator = all.originator;
  p.date = all.date;
  p.display = all.display;
  p.readings = all.rows.size();
  p.absolute = all.absolute;
  p.ramps = (choice.taken == ramp_source::derived ? "derived (" : "measured (") + choice.why + ")";
  p.repeated = choice.repeated;
  p.calibration = all.calibration;
  p.notes = all.notes;
  p.notes.insert(p.notes.end(), choice.notes.begin(), choice.notes.end());
  return p;
}

std::string provenance_comment(const provenance& p) {
  std::string out;
  for (const auto& [key, member] : texts) {
    if (!(p.*member).empty()) add_line(out, key, p.*member);
  }
  if (p.readings > 0) add_line(out, readings_key, std::to_string(p.readings));
  if (p.absolute) add_line(out, units_key, *p.absolute ? absolute_units : relative_units);
  for (const auto& [key, member] : spreads) {
    if (const auto& s = p.repeated.*member) {
      add_line(out, key, std::to_string(s->n) + " readings, spread " + three_digits(100 * s->spread) + " %");
    }
  }
  if (const auto& d = p.repeated.drift) {
    add_line(out, drift_key,
             three_digits(100 * d->change) + " % from reading " + std::to_string(d->first) + " to " +
                 std::to_string(d->last) + " of " + std::to_string(d->of));
  }
  for (const std::string& note : p.notes) add_line(out, note_key, note);
  if (p.calibration) add_curves(out, *p.calibration);
  return out;
}

provenance parse_provenance(std::string_view text) {
  provenance p;
  comment_lines lines(text);
  while (const auto line = lines.next()) {
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
    if (const auto value = behind(curves_key, *line)) p.calibration = curves_in(lines, *value);
  }
  return p;
}

std::string measurement_text(const measurements& m, std::string_view comment) {
  const std::size_t n_ramps = m.version == 1 ? 7 : 4;
  const std::size_t extra = m.data.rows() - n_ramps * static_cast<std::size_t>(m.nramp);
  std::string out(comment);
  out += std::to_string(m.nramp) + ' ' + std::to_string(extra) + ' ' + std::to_string(m.version) + '\n';
  for (std::size_t i = 0; i < m.data.rows(); ++i) {
    for (std::size_t c = 0; c < 6; ++c) out += shortest(m.data(i, c)) + (c < 5 ? ' ' : '\n');
  }
  return out;
}

}  // namespace corvantile
