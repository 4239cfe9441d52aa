#include "corvantile/driver/run.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <ostream>
#include <string>

#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/documents/point_files.hpp"
#include "corvantile/documents/settings_text.hpp"
#include "corvantile/documents/table_files.hpp"
#include "corvantile/driver/report.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_output.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// What can be checked and filled in before any file is read.
opts complete(opts o, std::ostream& out) {
  if (o.wgfile.empty()) throw failure(fault::no_measurement_file, "profile file not specified");
  fill_xytable(o.set, out);
  end_outdir_with_slash(o);
  return o;
}

// The samples of the gamma file, if one is named. If it cannot be opened, the two-table solution takes the power law,
// but the gray match stops. The report promises a power law in either case: its lines are the same in every mode.
std::optional<tone_samples> load_tone(const opts& o, std::ostream& report) {
  if (o.gamfile.empty()) return std::nullopt;
  std::optional<tone_samples> tone = load_tone_samples(o.gamfile);
  if (tone) {
    if (tone->drive.front() != 0) report << " Setting gamma curve start pixel to 0\n";
    return tone;
  }
  report << " Cannot open gamma file: " << o.gamfile << '\n'
         << " Using power-law curve with gamma =" << free_format(o.set.gamma) << '\n';
  if (!matches_gray(o.set.mode)) return std::nullopt;
  throw failure(fault::no_gamma,
                "Cannot open gamma file " + printable(o.gamfile) + ", which mode " + o.cvmode + " needs");
}

// Checked last, when the tables are safe.
void require_printed(std::ostream& out) {
  errno = 0;
  const bool synced = out.rdbuf()->pubsync() == 0;
  if (synced && out) return;
  throw failure(fault::unwritable,
                std::string("Cannot write standard output: ") + std::strerror(errno != 0 ? errno : EIO));
}

}  // namespace

bool verbose_requested(std::span<const std::string_view> arguments) {
  return std::ranges::any_of(arguments, [](std::string_view a) {
    const std::string_view text = trim(cut(a, longest_name));
    return text == "-verbose" || text == "-v";
  });
}

void run_program(std::span<const std::string_view> arguments, std::string_view text, std::ostream& out,
                 std::ostream& err) {
  const bool verbose = verbose_requested(arguments);
  std::ostream nowhere(nullptr);
  std::ostream& report = verbose ? out : nowhere;

  opts o = read_opts(text);
  name_mode(o);
  report << banner << '\n';
  o = complete(o, out);
  report << echo(o);
  check_outdir(o);

  const measurements samples = load_measurements(o.wgfile);
  const std::optional<tone_samples> tone = load_tone(o, report);
  const bool refined = matches_gray(o.set.mode) && !o.grayfile.empty();
  const correction result = solve(o.set, samples, tone, refined ? load_gray_factors(o.grayfile) : gray_factors());
  for (const finding& f : result.warnings) err << "Warning: " << text_of(f) << '\n';
  if (verbose) report_solution(out, result);
  write_files(table_files(result, o));
  if (verbose) report_gray_ramp(out, result.display, result.gray, o.set.white);
  require_printed(out);
  err << " normal exit\n";
}

}  // namespace corvantile
