#include "driver/run.hpp"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "colour/chromaticity.hpp"
#include "colour/nonpar_monitor.hpp"
#include "driver/gamma_file.hpp"
#include "driver/report.hpp"
#include "matching/matching.hpp"
#include "utils/file_output.hpp"
#include "utils/text.hpp"

namespace corvantile {
namespace {

// CPU time of this process, in seconds.
float cpu_seconds() { return static_cast<float>(static_cast<double>(std::clock()) / CLOCKS_PER_SEC); }

std::string execution_time(std::string_view mode, float seconds) {
  return std::string(mode) + " execution time = " + fixed_field(static_cast<double>(seconds), 0, 2) + " seconds\n\n";
}

// Reports that could not be printed are told of last, once the tables are safe.
void require_printed(std::ostream& out) {
  errno = 0;
  const bool synced = out.rdbuf()->pubsync() == 0;
  if (synced && out) return;
  throw stop_run(exit_status::cannot_write,
                 std::string("Cannot write standard output: ") + std::strerror(errno != 0 ? errno : EIO));
}

// Temperatures have no colour where Planck's law leaves the range of numbers.
void require_black_body(const char* key, double value, double T) {
  const vec3 b = blkbod(T);
  if (std::isfinite(b[0]) && std::isfinite(b[2])) return;
  refuse_setting(key, free_format(value).substr(1), "a black body has no finite colour at" + free_format(T) + " K");
}

vec3 whitepoint_of(const measurements& samples) {
  return {{samples.data(0, 3), samples.data(0, 4), samples.data(0, 5)}};
}

void check_temperatures(const settings& set, const vec3& whitepoint) {
  if (set.temp < 0 || set.alpha >= set.beta || set.beta > 1) return;  // then no temperature is looked at
  require_black_body("temp", set.temp, set.temp);
  const double wptemp = set.wptemp == 0 ? xyz2cct(whitepoint) : set.wptemp;
  if (wptemp >= 0) require_black_body("wptemp", set.wptemp, wptemp);
}

void check_gamut(const settings& set, const monitor& mon) {
  const auto c = rgb2c_type(mon.RGB2XYZ);
  const double radius = inradius({xy2uv_vec(c[0]), xy2uv_vec(c[1]), xy2uv_vec(c[2])});
  if (set.boundary_tol < radius) return;
  refuse_setting("boundary_tol", free_format(set.boundary_tol).substr(1),
                 "must be below" + free_format(radius) + ", or nothing is left of the monitor's gamut");
}

// The composition of two sampled tables: first `inner`, then `outer`.
matrix fold(const matrix& outer, const matrix& inner) {
  const std::vector<double> x = linspace(0.0, 1.0, outer.rows());
  matrix folded(inner.rows(), 3);
  for (std::size_t c = 0; c < 3; ++c) {
    const lut table = makelut_nostat(x, outer.col(c));
    std::ranges::transform(inner.col(c), folded.col(c).begin(), interpolator(table));
  }
  return folded;
}

// What one job owns, and its two solutions.
class job {
 public:
  job(const settings& set, bool verbose, std::ostream& out)
      : set_(set), mode_(mode_of(set)), verbose_(verbose), out_(out), maxcode_(maxcode(set)) {}

  // Everything that can be wrong with the input is found here, before anything is written.
  void load() {
    const measurements samples = load_measurements(set_.wgfile);
    const std::optional<gamma_file> gamma = set_.gamfile.empty() ? std::nullopt : open_gamma_file(set_.gamfile);
    const bool power_law = set_.gamfile.empty() || (!gamma && !matches_gray(mode_));
    check_settings(set_, mode_, power_law);
    if (matches_gray(mode_)) check_temperatures(set_, whitepoint_of(samples));
    monitor_ = makemonitor(samples, set_.numsegs, set_.minslope);
    if (solves_two_tables(mode_)) check_gamut(set_, monitor_);
    build_tone_curve(gamma);
  }

  void solve() {
    if (solves_two_tables(mode_)) solve_two_tables();
    if (matches_gray(mode_)) match_gray();
    for (const file& f : files_) write_file(f.path, f.text);
    if (verbose_)
      report_gray_ramp(out_, monitor_, matches_gray(mode_) ? rlut_ : in_all_channels(linspace(0.0, 1.0, tlen())));
  }

 private:
  void solve_two_tables() {
    const auto& [white, red, green, blue] = set_.xytable;
    spec_.boundary_tol = set_.boundary_tol;
    spec_.lumfrac = set_.lumfrac;
    spec_.rowsum_margin = set_.rowsum_margin;
    spec_.minslope = set_.minslope;
    const float start = cpu_seconds();
    two_table_solution solution = twolutsolution(monitor_, {red, green, blue, white}, spec_, tlen());
    const float end = cpu_seconds();
    if (verbose_) {
      report_ramps(out_, solution.cmon, solution.mod_smon);
      report_ramps(out_, solution.cmon, solution.ref_smon);
      out_ << execution_time("CV2", end - start);
    }
    if (mode_ == match_mode::cv2) keep("preLUT.txt", solution.prelut);
    keep("postLUT.txt", solution.postlut);
    keep("matrix.txt", to_matrix(solution.matrix));
    prelut_ = std::move(solution.prelut);
    monitor_ = std::move(solution.cmon);
  }

  void match_gray() {
    rlut_ = matrix(tlen(), 3);
    const float start = cpu_seconds();
    // A status that tells of alpha or beta out of order leaves the table at zero, which is then written as it is.
    cv1(monitor_, {set_.temp, set_.wptemp, set_.alpha, set_.beta, set_.hwid}, spec_.lut, rlut_);
    const float end = cpu_seconds();
    if (verbose_) out_ << '\n' << execution_time("CV1", end - start);
    // Shading that begins at the very last row divides zero by zero there, and is meant to show it.
    const auto rows = static_cast<double>(set_.tlen);
    const bool nan_row = set_.temp >= 0 && set_.wptemp >= 0 && std::round(rows * set_.beta) == rows;
    if (mode_ == match_mode::cv2_1) {
      keep("preLUT.txt", fold(prelut_, rlut_), nan_row);
    } else {
      keep("postLUT.txt", rlut_, nan_row);
    }
  }

  // The tables are written in this order, but only once all of them are known to hold nothing but numbers.
  void keep(const char* name, const matrix& table, bool last_row_may_be_nan = false) {
    const std::string path(cut(set_.outdir + name, 256));
    files_.push_back({path, table_text(path, table, maxcode_, last_row_may_be_nan)});
  }

  std::size_t tlen() const { return static_cast<std::size_t>(set_.tlen); }

  void build_tone_curve(const std::optional<gamma_file>& gamma) {
    spec_.gamma = set_.gamma;
    if (set_.gamfile.empty()) {
      spec_.lut = make_gamma_table(set_.gamma, set_.tlen);
    } else if (gamma) {
      const gamma_curve curve = read_gamma_curve(*gamma);
      if (curve.start_was_moved && verbose_) out_ << " Setting gamma curve start pixel to 0\n";
      spec_.lut = smooth_gamma_curve(*gamma, curve, set_.numsegs);
    } else {
      // The table is left unbuilt: the two-table solution then works from `spec_.gamma` alone. The gray match cannot
      // and stops, although the report has just promised a power law: its lines are the same in every mode.
      if (verbose_) {
        out_ << " Cannot open gamma file: " << set_.gamfile << '\n'
             << " Using power-law curve with gamma =" << free_format(set_.gamma) << '\n';
      }
      if (matches_gray(mode_)) {
        throw stop_run(exit_status::bad_content, "Cannot open gamma file " + set_.gamfile + ", which mode " +
                                                     set_.cvmode + " cannot do without");
      }
    }
  }

  struct file {
    std::string path, text;
  };

  const settings& set_;
  match_mode mode_;
  bool verbose_;
  std::ostream& out_;
  std::int64_t maxcode_;  // of the tables; 0: reals
  monitor monitor_;       // as measured; after the two-table solution, as corrected
  gspec spec_;
  matrix prelut_;
  matrix rlut_;
  std::vector<file> files_;
};

}  // namespace

void run(const settings& set, bool verbose, std::ostream& out, std::ostream& err) {
  job j(set, verbose, out);
  j.load();
  j.solve();
  require_printed(out);
  err << " normal exit\n";
}

void run_program(std::span<const std::string_view> arguments, std::string_view profile, std::ostream& out,
                 std::ostream& err) {
  const bool verbose = verbose_requested(arguments);
  settings set = read_settings(profile);
  mode_of(set);
  if (verbose) out << banner << '\n';
  require_wgfile(set);
  fill_xytable(set, out);
  end_outdir_with_slash(set);
  if (verbose) out << echo(set);
  run(set, verbose, out, err);
}

}  // namespace corvantile
