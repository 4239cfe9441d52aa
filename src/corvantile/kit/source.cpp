#include "corvantile/kit/source.hpp"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <utility>

#include "corvantile/kit/files.hpp"
#include "corvantile/readings/provenance.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile::kit {
namespace {

source named_source(const std::string& name) {
  return {name == "-" ? "standard input" : std::filesystem::path(name).filename().string(), read_input(name)};
}

readings read(const source& first, const source_options& o) {
  std::optional<source> second;
  if (!o.second.empty()) second = named_source(o.second);
  return read_readings(first, second, {.from = o.from, .layout = o.layout});
}

bool is_our_own(const source_options& o, std::string_view text) {
  return o.from.value_or(kind_of(text)) == source_kind::corvantile;
}

// If there are no ramps, the message includes a note about a line: one that was dropped or misread may be the reason.
ramp_choice ramps_or_reason(const readings& all, ramp_source how) {
  try {
    return ramps(all, how);
  } catch (const failure& wrong) {
    // The last one: notes about dropped lines come after notes about guesses.
    const std::vector<note>& notes = all.notes.kept();
    const auto about_line =
        std::find_if(notes.rbegin(), notes.rend(), [](const note& n) { return n.line.has_value(); });
    if (about_line == notes.rend()) throw;
    throw failure(wrong.kind, fmt::format("{} ({})", wrong.message, sentence(*about_line)));
  }
}

std::string prediction_line(const char* name, const prediction_figures& f) {
  std::string line = fmt::format("{} ramps predict {} other patches to CIEDE2000 {:.2f}", name, f.all.n, f.all.mean);
  if (f.near_gray.n > 0) line += fmt::format(", {} of them near gray to {:.2f}", f.near_gray.n, f.near_gray.mean);
  return line;
}

import_result imported(const source& from, const source_options& o) {
  import_result in{.all = read(from, o), .choice = {}, .file = {}, .text = {}};
  in.choice = ramps_or_reason(in.all, o.ramps);
  in.file.known = provenance_of(in.all, in.choice);
  if (is_our_own(o, from.text)) {
    // Our own file contains means of repeated readings. Only its comments say how far these were apart.
    const provenance before = parse_measurement_file(from.name, from.text).known;
    if (!before.source.empty()) in.file.known.repeated = before.repeated;
  }
  in.file.samples = std::move(in.choice.data);
  in.file.samples.name = in.file.known.source;
  in.text = measurement_text(in.file.samples, in.file.known);
  return in;
}

}  // namespace

readings read_source(const source_options& o) { return read(named_source(o.source), o); }

import_result import_source(const source_options& o) { return imported(named_source(o.source), o); }

measurement_file measurements_of(const source_options& o) {
  const source from = named_source(o.source);
  if (o.ramps != ramp_source::automatic || !is_our_own(o, from.text)) return imported(from, o).file;
  return parse_measurement_file(o.source == "-" ? from.name : o.source, from.text);
}

measurement_file parse_measurements_or_advise(const std::string& name, std::string_view text) {
  try {
    return parse_measurement_file(name, text);
  } catch (const failure& wrong) {
    if (kind_of(text) == source_kind::corvantile) throw;
    throw failure(wrong.kind, fmt::format("{}; corvantile-kit import makes a measurement file of it", wrong.message));
  }
}

std::vector<std::string> summary_of(const import_result& in) {
  const ramp_choice& c = in.choice;
  const measurements& m = in.file.samples;
  std::vector<std::string> lines;
  lines.push_back(fmt::format("{}: {}, {} readings{}{}", in.file.known.source, in.file.known.kind, in.all.rows.size(),
                              in.all.absolute ? " in cd/m2" : ", luminances relative",
                              in.file.known.calibration ? ", through a calibration" : ""));
  lines.push_back(fmt::format("{} ramps of {} levels ({}), {} further samples",
                              c.taken == ramp_source::derived ? "derived" : "measured", m.nramp, c.why,
                              m.data.rows() - 4 * static_cast<std::size_t>(m.nramp)));
  if (c.measured_predicts) lines.push_back(prediction_line("measured", *c.measured_predicts));
  if (c.derived_predicts) lines.push_back(prediction_line("derived", *c.derived_predicts));
  for (const std::string& note : in.file.known.notes) lines.push_back("note: " + note);
  return lines;
}

}  // namespace corvantile::kit
