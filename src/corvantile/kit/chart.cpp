// corvantile-kit chart: the patches to measure.

#include "corvantile/formats/chart.hpp"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "corvantile/formats/writers/text_form.hpp"
#include "corvantile/kit/dates.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/verbs.hpp"

namespace corvantile::kit {
namespace {

std::string chart_text(const chart_options& o, const std::vector<chart_patch>& chart) {
  if (o.format == "csv") return write_chart_csv(chart);
  if (o.format == "hcfr") return write_chart_hcfr(chart);
  return write_chart_ti1(chart, date_text(now()));
}

}  // namespace

int run_chart(const chart_options& o) {
  const auto kind = o.ramps == "derived" ? chart_ramps::derived : chart_ramps::measured;
  const std::vector<chart_patch> chart = make_chart(o.levels, kind, o.verify);
  write_output(o.output, chart_text(o, chart), o.force);
  say(o, std::to_string(chart.size()) +
             " patches; clear the video calibration before measuring (dispwin -c), and let "
             "the display warm up");
  if (o.json) print_record({{"patches", chart.size()}});
  return status::done;
}

}  // namespace corvantile::kit
