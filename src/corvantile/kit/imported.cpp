#include "corvantile/kit/imported.hpp"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <utility>

#include "corvantile/kit/files.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

const std::map<std::string, ramp_source> ramp_sources{
    {"measured", ramp_source::measured}, {"derived", ramp_source::derived}, {"auto", ramp_source::automatic}};

source source_named(const std::string& name) {
  return {name == "-" ? "standard input" : std::filesystem::path(name).filename().string(), read_input(name)};
}

// What only the comments of our own file can tell goes on with it: repeats are means there.
provenance known_of(const source_options& o, const imported& in) {
  provenance known = provenance_of(in.all, in.choice);
  if (in.all.kind != "Corvantile measurements") return known;
  const provenance before = parse_provenance(read_input(o.source));
  if (!before.source.empty()) known.repeated = before.repeated;
  return known;
}

// Ramps, or why there are none: a line that was dropped or misunderstood may be the reason.
ramp_choice ramps_of(const readings& all, ramp_source how) {
  try {
    return ramps(all, how);
  } catch (const failure& wrong) {
    // From behind: what was dropped comes after what was guessed.
    const auto note = std::find_if(all.notes.rbegin(), all.notes.rend(),
                                   [](const std::string& n) { return n.find("line ") != std::string::npos; });
    if (note == all.notes.rend()) throw;
    throw failure(wrong.kind, wrong.message + " (" + *note + ")");
  }
}

std::string prediction_line(const char* name, const prediction_figures& f) {
  std::string line = std::string(name) + " ramps predict " + std::to_string(f.all.n) +
                     " other patches to CIEDE2000 " + decimal(f.all.mean, 2);
  if (f.near_gray.n > 0) {
    line += ", " + std::to_string(f.near_gray.n) + " of them near gray to " + decimal(f.near_gray.mean, 2);
  }
  return line;
}

}  // namespace

readings read_source(const source_options& o) {
  std::optional<source> second;
  if (!o.second.empty()) second = source_named(o.second);
  return read_readings(source_named(o.source), second, {.from = kind_named(o.from), .layout = o.layout});
}

imported import_measurements(const source_options& o) {
  imported in{.all = read_source(o), .choice = {}, .known = {}, .text = {}};
  in.choice = ramps_of(in.all, ramp_sources.at(o.ramps));
  in.known = known_of(o, in);
  in.choice.data.name = in.known.source;
  in.text = measurement_text(in.choice.data, provenance_comment(in.known));
  return in;
}

measurements measurements_in(const std::string& name, const std::string& text) {
  try {
    return parse_measurements(name, text);
  } catch (const failure& wrong) {
    if (kind_of(text) == source_kind::corvantile) throw;
    throw failure(wrong.kind, wrong.message + "; corvantile-kit import makes a measurement file of it");
  }
}

std::vector<std::string> summary_of(const imported& in) {
  const ramp_choice& c = in.choice;
  const std::size_t extra = c.data.data.rows() - 4 * static_cast<std::size_t>(c.data.nramp);
  std::vector<std::string> lines;
  lines.push_back(in.known.source + ": " + in.known.kind + ", " + std::to_string(in.all.rows.size()) + " readings" +
                  (in.all.absolute ? " in cd/m2" : ", luminances relative") +
                  (in.known.calibration ? ", through a calibration" : ""));
  lines.push_back(std::string(c.taken == ramp_source::derived ? "derived" : "measured") + " ramps of " +
                  std::to_string(c.data.nramp) + " levels (" + c.why + "), " + std::to_string(extra) +
                  " further samples");
  if (c.measured_predicts) lines.push_back(prediction_line("measured", *c.measured_predicts));
  if (c.derived_predicts) lines.push_back(prediction_line("derived", *c.derived_predicts));
  for (const std::string& note : in.known.notes) lines.push_back("note: " + note);
  return lines;
}

}  // namespace corvantile::kit
