// write_all: writes every format that can hold a correction, for scripts/interop.sh, and says which refused it.
// Usage: write_all TABLES MEASUREMENTS OUT [MISTAKE]
//   TABLES        a folder with the tables of a job
//   MEASUREMENTS  its measurement file, for the profiles
//   OUT           a folder; each format gets one of its own in it
//   MISTAKE       swapped: writes what a program that confuses red and blue would; transposed: and one that confuses
//                 rows and columns of the matrix; display_swapped, display_transposed: the same for the display that
//                 profiles tell of, with the tables as they should be

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/formats/writers/baked.hpp"
#include "corvantile/formats/writers/c_header.hpp"
#include "corvantile/formats/writers/cal.hpp"
#include "corvantile/formats/writers/clf.hpp"
#include "corvantile/formats/writers/cube.hpp"
#include "corvantile/formats/writers/icc_profile.hpp"
#include "corvantile/formats/writers/json.hpp"
#include "corvantile/formats/writers/kms.hpp"
#include "corvantile/formats/writers/memory_files.hpp"
#include "corvantile/formats/writers/mhc2.hpp"
#include "corvantile/formats/writers/spi.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/file_output.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// A title and comments that every format has to escape somewhere.
const description about = {"Desk \"left\" <2> & M\xC3\xBCller's",
                           {"ends a comment */ or -- not: a \\ b", calibration_note(calibration_use::none)}};

matrix read_table(const std::string& path) {
  const std::string text = read_file(path).value_or("");
  number_scanner numbers(text);
  std::vector<double> all;
  for (double v = 0; numbers.next(v) == number_scanner::result::number;) all.push_back(v);
  matrix table(all.size() / 3, 3);
  for (std::size_t i = 0; i < table.rows(); ++i) set_row3(table, i, {{all[3 * i], all[3 * i + 1], all[3 * i + 2]}});
  return table;
}

void swap_red_and_blue(matrix& table) {
  for (std::size_t i = 0; i < table.rows(); ++i) std::swap(table(i, 0), table(i, 2));
}

mat3 transposed(const mat3& m) {
  mat3 t;
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) t(i, j) = m(j, i);
  return t;
}

device_tables read_tables(const std::string& folder) {
  device_tables tables;
  tables.post = read_table(folder + "/postLUT.txt");
  tables.two_tables = std::filesystem::exists(folder + "/matrix.txt");
  if (!tables.two_tables) return tables;
  tables.pre = read_table(folder + "/preLUT.txt");
  const matrix mix = read_table(folder + "/matrix.txt");
  for (std::size_t c = 0; c < 3; ++c)
    for (std::size_t i = 0; i < 3; ++i) tables.mix(i, c) = mix(i, c);
  return tables;
}

class writer {
 public:
  writer(const device_tables& tables, profiled_display measured, const std::string& out)
      : tables_(tables), measured_(std::move(measured)), out_(out) {
    measured_.luminance = measured_.white[1];
    // Enough for a judge that compares tags: the measured display with a tone curve as corrected.
    behind_ = measured_;
    behind_.curves = matrix(1024, 3);
    for (std::size_t i = 0; i < 1024; ++i) {
      const double l = srgb_decode(static_cast<double>(i) / 1023);
      set_row3(behind_.curves, i, {{l, l, l}});
    }
  }

  void write_everything() {
    one("clf", "correction.clf", [&] { return clf_file(tables_, about); });
    many("spi", [&] { return spi_files(tables_, about); });
    one("cube", "correction.cube", [&] { return cube_file(tables_, about); });
    one("cube3d", "correction33.cube", [&] { return cube3d_file(tables_, 33, about); });
    one("3dl", "correction17.3dl", [&] { return threedl_file(tables_, 17, about); });
    one("cal", "correction.cal", [&] { return cal_file(tables_, about); });
    one("icc", "correction.icc", [&] { return icc_file(tables_, behind_, about); });
    one("icc1024", "correction.icc", [&] { return icc_file(tables_, behind_, about, 1024); });
    one("monitor-icc", "monitor.icc", [&] { return monitor_icc_file(measured_, about); });
    one("mhc2", "correction.icc", [&] { return mhc2_file(tables_, behind_, about, 4096); });
    many("kms", [&] { return kms_files(tables_, about, {4096, false}); });
    many("kms-wide", [&] { return kms_files(tables_, about, {1024, true}); });
    one("json", "correction.json", [&] { return json_file(tables_, about); });
    write_memories("", {10, word_layout::planar, matrix_format::q2_14});
    write_memories("-interleaved", {16, word_layout::interleaved, matrix_format::q15_16});
    write_memories("-packed", {12, word_layout::packed, matrix_format::q2_14});
  }

 private:
  void write_memories(const std::string& kind, const memory_options& options) {
    many("hex" + kind, [&] { return hex_files(tables_, about, options).files; });
    many("mif" + kind, [&] { return mif_files(tables_, about, options).files; });
    many("coe" + kind, [&] { return coe_files(tables_, about, options).files; });
    many("c" + kind, [&] { return c_header_files(tables_, about, options).files; });
  }

  void one(const std::string& format, const std::string& name, const std::function<std::string()>& made) {
    many(format, [&] { return std::vector<file_content>{{name, made()}}; });
  }

  void many(const std::string& format, const std::function<std::vector<file_content>()>& made) {
    try {
      for (const file_content& file : made()) {
        std::filesystem::create_directories(out_ + "/" + format);
        write_file(out_ + "/" + format + "/" + file.name, file.bytes);
      }
    } catch (const failure& f) {
      if (f.kind != fault::inexpressible) throw;
      std::printf("%s refused: %s\n", format.c_str(), f.what());
    }
  }

  device_tables tables_;
  profiled_display measured_;
  profiled_display behind_;
  std::string out_;
};

void make_mistake(std::string_view mistake, device_tables& tables, profiled_display& display) {
  if (mistake == "swapped") {
    swap_red_and_blue(tables.post);
    if (tables.two_tables) swap_red_and_blue(tables.pre);
  } else if (mistake == "transposed") {
    tables.mix = transposed(tables.mix);
  } else if (mistake == "display_swapped") {
    swap_red_and_blue(display.curves);
    std::swap(display.colorants.col[0], display.colorants.col[2]);
  } else if (mistake == "display_transposed") {
    display.colorants = transposed(display.colorants);
  }
}

}  // namespace
}  // namespace corvantile

int main(int argc, char** argv) {
  using namespace corvantile;
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (words.size() != 3 && words.size() != 4) {
    std::fprintf(stderr, "Usage: write_all TABLES MEASUREMENTS OUT [MISTAKE]\n");
    return 2;
  }
  try {
    device_tables tables = read_tables(words[0]);
    profiled_display display = as_measured(makemonitor(load_measurements(words[1])));
    if (words.size() == 4) make_mistake(words[3], tables, display);
    writer(tables, display, words[2]).write_everything();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "write_all: %s\n", e.what());
    return 1;
  }
}
