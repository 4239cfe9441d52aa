// corvantile-kit import: from the file of an instrument's program to a measurement file.

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "corvantile/formats/writers/cal.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/source.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

nlohmann::ordered_json record_of(const import_result& in) {
  const auto figures = [](const std::optional<prediction_figures>& f) -> nlohmann::ordered_json {
    if (!f) return nullptr;
    return {{"near_gray", {{"n", f->near_gray.n}, {"mean", f->near_gray.mean}}},
            {"all", {{"n", f->all.n}, {"mean", f->all.mean}}}};
  };
  const ramp_choice& c = in.choice;
  const measurements& m = in.file.samples;
  const provenance& known = in.file.known;
  return {{"source", known.source},
          {"kind", known.kind},
          {"instrument", known.instrument},
          {"date", known.date},
          {"readings", known.readings},
          {"absolute", known.absolute.value_or(false)},
          {"calibration_in_effect", known.calibration.has_value()},
          {"levels", m.nramp},
          {"extra", m.data.rows() - 4 * static_cast<std::size_t>(m.nramp)},
          {"ramps", c.taken == ramp_source::derived ? "derived" : "measured"},
          {"why", c.why},
          {"additivity", c.additivity},
          {"measured_predicts", figures(c.measured_predicts)},
          {"derived_predicts", figures(c.derived_predicts)},
          {"notes", known.notes}};
}

}  // namespace

int run_import(const import_options& o) {
  refuse_to_replace(o.output, o.force);
  refuse_to_replace(o.calibration, o.force);
  const import_result in = import_source(o.source);
  if (!o.calibration.empty() && !in.file.known.calibration)
    refuse_content(in.file.known.source,
                   "no calibration was in effect while measuring: there is nothing for --calibration to write");
  write_output(o.output, in.text, o.force);
  if (!o.calibration.empty()) {
    const description about{
        .title = "In effect while " + in.file.known.source + " was measured", .comments = {}, .created = now()};
    write_output(o.calibration, calibration_file(*in.file.known.calibration, about), o.force);
  }
  for (const std::string& line : summary_of(in)) say(o, line);
  if (o.json) print_record(record_of(in));
  return status::done;
}

}  // namespace corvantile::kit
