// corvantile-kit chart: the patches to measure.

#include "corvantile/formats/chart.hpp"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "corvantile/formats/writers/text_form.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/verbs.hpp"

namespace corvantile::kit {
namespace {

std::string chart_text(chart_format format, const std::vector<chart_patch>& chart) {
  switch (format) {
    case chart_format::csv:
      return write_chart_csv(chart);
    case chart_format::hcfr:
      return write_chart_hcfr(chart);
    case chart_format::ti1:
      break;
  }
  return write_chart_ti1(chart, date_text(now()));
}

}  // namespace

int run_chart(const chart_options& o) {
  const std::vector<chart_patch> chart = make_chart(o.levels, o.ramps, o.verify);
  write_output(o.output, chart_text(o.format, chart), o.force);
  say(o,
      fmt::format("{} patches; clear the video calibration before measuring (dispwin -c), and let the display warm "
                  "up",
                  chart.size()));
  if (o.json) print_record({{"patches", chart.size()}});
  return status::done;
}

}  // namespace corvantile::kit
