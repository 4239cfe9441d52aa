#include "corvantile/driver/run.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <ostream>
#include <string>

#include "corvantile/driver/gamma_file.hpp"
#include "corvantile/driver/gray_factors_file.hpp"
#include "corvantile/driver/profile.hpp"
#include "corvantile/driver/report.hpp"
#include "corvantile/driver/tables.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_output.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// Everything that can be told from the settings alone, before any file is read.
profile complete(profile p, std::ostream& out) {
  if (p.wgfile.empty()) throw failure(fault::no_measurement_file, "profile file not specified");
  fill_xytable(p.set, out);
  end_outdir_with_slash(p);
  return p;
}

// The samples of the gamma file, if there are any. Without the file the two-table solution goes by the power law. The
// gray match cannot, and stops, although the report has just promised a power law: its lines are the same in every
// mode.
std::optional<tone_samples> load_tone(const profile& p, std::ostream& report) {
  if (p.gamfile.empty()) return std::nullopt;
  std::optional<tone_samples> tone = load_tone_samples(p.gamfile);
  if (tone) {
    if (tone->drive.front() != 0) report << " Setting gamma curve start pixel to 0\n";
    return tone;
  }
  report << " Cannot open gamma file: " << p.gamfile << '\n'
         << " Using power-law curve with gamma =" << free_format(p.set.gamma) << '\n';
  if (!matches_gray(p.set.mode)) return std::nullopt;
  throw failure(fault::no_gamma,
                "Cannot open gamma file " + printable(p.gamfile) + ", which mode " + p.cvmode + " cannot do without");
}

// Reports that could not be printed are told of last, once the tables are safe.
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

  profile p = read_profile(text);
  name_mode(p);
  report << banner << '\n';
  p = complete(p, out);
  report << echo(p);
  check_outdir(p);

  const measurements samples = load_measurements(p.wgfile);
  const std::optional<tone_samples> tone = load_tone(p, report);
  const bool refined = matches_gray(p.set.mode) && !p.grayfile.empty();
  const correction result = solve(p.set, samples, tone, refined ? load_gray_factors(p.grayfile) : gray_factors());
  for (const warning& w : result.warnings) err << "Warning: " << w.message << '\n';
  if (verbose) report_solution(out, result);
  write_files(table_files(result, p));
  if (verbose) report_gray_ramp(out, result.display, result.gray, p.set.white);
  require_printed(out);
  err << " normal exit\n";
}

}  // namespace corvantile
