// corvantile-kit chart: the patches to measure.

#include "formats/chart.hpp"

#include <memory>
#include <string>
#include <vector>

#include "kit/dates.hpp"
#include "kit/files.hpp"
#include "kit/verb.hpp"

namespace corvantile::kit {
namespace {

struct options : common_options {
  std::size_t levels = 17;
  std::size_t verify = 0;
  std::string ramps = "measured";
  std::string format = "ti1";
};

std::string chart_text(const options& o, const std::vector<chart_patch>& chart) {
  if (o.format == "csv") return write_chart_csv(chart);
  if (o.format == "hcfr") return write_chart_hcfr(chart);
  return write_chart_ti1(chart, date_text(now()));
}

int run(const options& o) {
  const auto kind = o.ramps == "derived" ? chart_ramps::derived : chart_ramps::measured;
  const std::vector<chart_patch> chart = make_chart(o.levels, kind, o.verify);
  write_output(o.output, chart_text(o, chart), o.force);
  say(o, std::to_string(chart.size()) +
             " patches; clear the video calibration before measuring (dispwin -c), and let "
             "the display warm up");
  if (o.json && !o.output.empty() && o.output != "-")
    write_output("-", "{\"patches\": " + std::to_string(chart.size()) + "}\n", true);
  return status::done;
}

}  // namespace

verb chart_verb(CLI::App& kit) {
  auto o = std::make_shared<options>();
  CLI::App& command = *kit.add_subcommand("chart", "Write the patches to measure");
  command.add_option("--levels", o->levels, "Even levels of each ramp, 5 to 256")->capture_default_str();
  command.add_option("--ramps", o->ramps, "Four ramps, or gray and the three primaries for derived ramps")
      ->check(CLI::IsMember({"measured", "derived"}))
      ->capture_default_str();
  command.add_option("--verify", o->verify, "Further patches over the cube and near gray, for check and verify");
  command.add_option("--format", o->format, "ti1 (ArgyllCMS), csv, or hcfr (HCFR's user patches)")
      ->check(CLI::IsMember({"ti1", "csv", "hcfr"}))
      ->capture_default_str();
  add_common(command, *o, "The chart (default: standard output)");
  command.footer(
      "White and black come again and again, so that drift shows.\n\n"
      "Example:\n  corvantile-kit chart --levels 17 --verify 50 -o ramps.ti1\n"
      "  dispread -v ramps        (ArgyllCMS measures and writes ramps.ti3)");
  return {&command, [o] { return run(*o); }};
}

}  // namespace corvantile::kit
