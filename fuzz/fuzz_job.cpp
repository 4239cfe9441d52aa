// Whole small jobs: settings in, tables out.
//
// An input has up to four parts, separated by lines "----": the arguments, the settings, the measurement file and the
// gamma file. The files are written to a scratch directory and the settings are made to name them there; sizes are
// cut down, so that an input takes milliseconds.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

#include "corvantile/documents/settings_text.hpp"
#include "corvantile/driver/run.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/file_output.hpp"
#include "corvantile/utils/text.hpp"
#include "fuzz/expect.hpp"
#include "fuzz/number_mutator.hpp"

namespace corvantile::fuzz {
namespace {

namespace fs = std::filesystem;

// A directory of this process, gone with it.
class scratch_directory {
 public:
  scratch_directory() {
    std::string name = (fs::temp_directory_path() / "corvantile-fuzz-XXXXXX").string();  // minds TMPDIR
    expect(::mkdtemp(name.data()) != nullptr, "there is a scratch directory");
    path_ = name;
    fs::create_directory(path_ / "tables");
  }
  scratch_directory(const scratch_directory&) = delete;
  scratch_directory& operator=(const scratch_directory&) = delete;
  ~scratch_directory() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  std::string file(const char* name) const { return (path_ / name).string(); }

 private:
  fs::path path_;
};

constexpr std::array table_names{"preLUT.txt", "matrix.txt", "postLUT.txt"};

// Takes what stands before the next line "----" off the input.
std::string_view next_part(std::string_view& input) {
  constexpr std::string_view line = "\n----\n";
  const std::size_t end = input.find(line);
  const std::string_view part = input.substr(0, end);
  input.remove_prefix(end == std::string_view::npos ? input.size() : end + line.size());
  return part;
}

// Values that are refused stay as they are.
int cut_down(int value, int least, int most) { return value <= most ? value : least + value % (most - least + 1); }

std::size_t rows_of(std::string_view table) {
  return static_cast<std::size_t>(std::count(table.begin(), table.end(), '\n'));
}

std::string_view without_last_row(std::string_view table) {
  table.remove_suffix(1);
  return table.substr(0, table.rfind('\n') + 1);
}

// What may be in the output directory, and what the tables must be like.
void look_at_tables(const std::string& outdir, const settings& set, bool may_be_there) {
  for (const auto& entry : fs::directory_iterator(outdir)) {
    const std::string name = entry.path().filename().string();
    expect(std::ranges::find(table_names, name) != table_names.end(), "nothing but tables is left behind: " + name);
    expect(may_be_there, "a run that refuses its input writes no " + name);
    const std::string text = read_file(entry.path().string()).value();
    expect(rows_of(text) == (name == "matrix.txt" ? 3 : static_cast<std::size_t>(set.tlen)), name + " is whole");
    const bool shaded_from_last_row = std::round(set.tlen * set.beta) == set.tlen && set.temp >= 0 && set.wptemp >= 0;
    const bool last_row_excused = name != "matrix.txt" && set.nbits == 0 && shaded_from_last_row;
    const std::string_view judged = last_row_excused ? without_last_row(text) : std::string_view(text);
    expect(judged.find_first_of("NnIi") == std::string_view::npos, name + " is finite");
  }
}

void require_all_tables(const std::string& outdir, match_mode mode) {
  for (const char* name : table_names) {
    const bool due = name == std::string_view("postLUT.txt") || solves_two_tables(mode);
    expect(fs::exists(outdir + '/' + name) == due, std::string("a finished run writes its tables: ") + name);
  }
}

void run_job(std::string_view input) {
  static const scratch_directory scratch;
  const std::string_view argument = next_part(input);
  const std::string_view settings_text = next_part(input);
  const std::string_view display = next_part(input);
  const std::string_view gamma = next_part(input);

  opts p;
  if (const auto stop = stop_of([&] { p = read_opts(settings_text); })) {
    expect(stop->kind == fault::setting, "unreadable settings are refused as such");
    return;
  }
  settings& set = p.set;
  set.tlen = cut_down(set.tlen, 2, 24);
  set.numsegs = cut_down(set.numsegs, 3, 9);
  if (!p.wgfile.empty()) p.wgfile = scratch.file("display.txt");
  if (!p.gamfile.empty()) p.gamfile = scratch.file(gamma.empty() ? "missing.txt" : "gamma.txt");
  p.outdir = scratch.file("tables");
  write_file(scratch.file("display.txt"), display);
  write_file(scratch.file("gamma.txt"), gamma);
  for (const char* name : table_names) fs::remove(p.outdir + '/' + name);

  std::ostringstream out;
  std::ostringstream err;
  try {
    const auto stop = stop_of([&] { run_program(std::array{argument}, opts_text(p), out, err); });
    look_at_tables(p.outdir, set, !stop);
    if (!stop) {
      name_mode(p);
      require_all_tables(p.outdir, set.mode);
      expect(err.str().ends_with(" normal exit\n"), "a finished run says so");
    }
  } catch (const std::bad_alloc&) {  // status 7
  } catch (const std::length_error&) {
  }
}

}  // namespace
}  // namespace corvantile::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvantile::fuzz::run_job(corvantile::fuzz::as_text(data, size));
  return 0;
}
