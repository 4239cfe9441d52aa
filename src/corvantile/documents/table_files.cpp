#include "corvantile/documents/table_files.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>
#include <vector>

#include "corvantile/utils/array_io.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

constexpr const char* pre_name = "preLUT.txt";
constexpr const char* post_name = "postLUT.txt";
constexpr const char* matrix_name = "matrix.txt";

constexpr double largest_code = 9e18;  // within 64 bits

[[noreturn]] void refuse(const std::string& path, const matrix& table, std::size_t i, std::size_t j,
                         const char* why) {
  throw failure(fault::not_finite, printable(path) + " is not written: row " + std::to_string(i + 1) + ", column " +
                                       std::to_string(j + 1) + " is" + free_format(table(i, j)) + why);
}

std::string as_reals(const std::string& path, const matrix& table, std::optional<std::size_t> undefined_row) {
  for (std::size_t j = 0; j < table.cols(); ++j) {
    for (std::size_t i = 0; i < table.rows(); ++i) {
      const bool excused = undefined_row == i && std::isnan(table(i, j));
      if (!std::isfinite(table(i, j)) && !excused) refuse(path, table, i, j, "");
    }
  }
  return prtmat_real(table);
}

std::string as_codes(const std::string& path, const matrix& table, std::int64_t maxcode) {
  int_matrix codes(table.rows(), table.cols());
  for (std::size_t j = 0; j < table.cols(); ++j) {
    for (std::size_t i = 0; i < table.rows(); ++i) {
      const double code = std::round(table(i, j) * static_cast<double>(maxcode));  // halves away from zero
      if (!(std::abs(code) < largest_code)) refuse(path, table, i, j, ", for which there is no code");
      codes(i, j) = static_cast<std::int64_t>(code);
    }
  }
  return prtmat_int(codes);
}

std::string text_of_outdir(const opts& o) { return in_quotes(o.outdir.substr(0, o.outdir.size() - 1)); }

void refuse_to_overwrite(const opts& o, const char* table, const std::string& input, const char* what) {
  std::error_code none;
  if (input.empty() || !std::filesystem::equivalent(o.outdir + table, input, none) || none) return;
  refuse_setting("outdir", text_of_outdir(o),
                 std::string("the table ") + table + " would overwrite the " + what + " file " + in_quotes(input));
}

matrix table_in(const std::string& path) {
  const std::optional<std::string> text = read_file(path);
  if (!text) throw failure(fault::content, "Cannot open " + printable(path));
  number_scanner numbers(*text);
  std::vector<double> v;
  for (double x = 0;;) {
    const auto found = numbers.next(x);
    if (found == number_scanner::result::end) break;
    if (found == number_scanner::result::bad || !std::isfinite(x)) refuse_content(printable(path), numbers.problem());
    v.push_back(x);
  }
  if (v.size() < 6 || v.size() % 3 != 0)
    refuse_content(printable(path), "a table has three columns and at least two rows");
  if (std::ranges::all_of(v, [](double x) { return x == std::floor(x); }) && std::ranges::max(v) > 1) {
    refuse_content(printable(path), "integers without a known number of bits; solve with nbits=0");
  }
  matrix table(v.size() / 3, 3);
  for (std::size_t i = 0; i < v.size(); ++i) table(i / 3, i % 3) = v[i];
  return table;
}

}  // namespace

std::string table_text(const std::string& path, const matrix& table, std::int64_t maxcode,
                       std::optional<std::size_t> undefined_row) {
  return maxcode == 0 ? as_reals(path, table, undefined_row) : as_codes(path, table, maxcode);
}

std::int64_t maxcode(const settings& s) { return (std::int64_t{1} << s.nbits) - 1; }

std::vector<text_file> table_files(const correction& result, const opts& o) {
  std::vector<text_file> files;
  const auto add = [&](const char* name, const matrix& table, std::optional<std::size_t> undefined_row = {}) {
    const std::string path = o.outdir + name;
    files.push_back({path, table_text(path, table, maxcode(o.set), undefined_row)});
  };
  if (result.mode == match_mode::cv1) add(post_name, result.gray, result.undefined_row);
  if (result.mode == match_mode::cv2) add(pre_name, result.two->prelut);
  if (result.two) {
    add(post_name, result.two->postlut);
    add(matrix_name, to_matrix(result.two->matrix));
  }
  if (result.mode == match_mode::cv2_1) add(pre_name, result.two->prelut, result.undefined_row);
  return files;
}

void check_outdir(const opts& o) {
  if (o.outdir == "/") refuse_setting("outdir", "''", "names no folder; '.' is the working directory");
  for (const char* table : {post_name, matrix_name, pre_name}) {
    if (o.outdir.size() + std::string_view(table).size() > longest_name || !o.outdir.ends_with('/')) {
      refuse_setting("outdir", text_of_outdir(o),
                     "too long: the path of a table, " + std::string(table) + ", has more than " +
                         std::to_string(longest_name) + " characters");
    }
    refuse_to_overwrite(o, table, o.wgfile, "measurement");
    refuse_to_overwrite(o, table, o.gamfile, "gamma");
    refuse_to_overwrite(o, table, o.grayfile, "gray factors");
  }
}

device_tables read_tables(const std::string& folder) {
  const auto path = [&](const char* name) { return folder + '/' + name; };
  const auto exists = [&](const char* name) {
    std::error_code none;
    return std::filesystem::exists(path(name), none);
  };
  device_tables tables;
  tables.post = table_in(path(post_name));
  tables.two_tables = exists(pre_name) && exists(matrix_name);
  tables.clips = tables.two_tables;  // as every device does
  if (!tables.two_tables) return tables;
  tables.pre = table_in(path(pre_name));
  const matrix m = table_in(path(matrix_name));
  if (m.rows() != 3) refuse_content(printable(path(matrix_name)), "a matrix has three rows");
  for (std::size_t i = 0; i < 9; ++i) tables.mix(i / 3, i % 3) = m(i / 3, i % 3);
  return tables;
}

}  // namespace corvantile
