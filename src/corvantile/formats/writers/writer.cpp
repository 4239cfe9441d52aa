#include "corvantile/formats/writers/writer.hpp"

#include <algorithm>
#include <cmath>
#include <fmt/core.h>
#include <span>

#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

void require_table(std::string_view format, std::string_view name, const matrix& table) {
  if (table.rows() < 2 || table.cols() != 3)
    refuse_format(format, fmt::format("the {} has {} entries: a table needs at least two", name, table.rows()));
}

void require_finite(std::string_view format, std::string_view name, std::span<const double> entries) {
  if (!std::ranges::all_of(entries, [](double v) { return std::isfinite(v); }))
    refuse_not_finite(format, fmt::format("an entry of the {}", name));
}

}  // namespace

matrix compose_calibration(const std::array<lut, 3>& cal, matrix table) {
  for (std::size_t c = 0; c < 3; ++c)
    std::ranges::transform(table.col(c), table.col(c).begin(), interpolator(cal[c]));
  return table;
}

std::string calibration_note(calibration_use use) {
  switch (use) {
    case calibration_use::composed:
      return "Entries are calibration(table(x)): they replace the calibration that was in effect while measuring.";
    case calibration_use::in_force:
      return "Entries are the table alone: the calibration that was in effect while measuring has to stay loaded.";
    case calibration_use::none:
      break;
  }
  return "Entries are the table alone: no calibration was in effect while measuring, or none is to be looked at.";
}

format_refusal::format_refusal(std::string_view format, std::string_view why_)
    : failure(fault::inexpressible, fmt::format("Format {}: {}", format, why_)), why(why_) {}

void refuse_format(std::string_view format, std::string_view why) { throw format_refusal(format, why); }

void refuse_not_finite(std::string_view format, std::string_view what) {
  throw failure(fault::not_finite, fmt::format("Format {}: {} is not a finite number", format, what));
}

void require_tables(std::string_view format, const device_tables& tables) {
  require_table(format, "post-table", tables.post);
  require_finite(format, "post-table", tables.post.data());
  if (!tables.two_tables) return;
  require_table(format, "pre-table", tables.pre);
  require_finite(format, "pre-table", tables.pre.data());
  for (const vec3& column : tables.mix.col) require_finite(format, "matrix", column.v);
}

const matrix& require_one_table(std::string_view format, const device_tables& tables) {
  require_tables(format, tables);
  if (tables.two_tables)
    refuse_format(format,
                  "it holds one table per channel, but this correction has two with a matrix between them; clf, spi "
                  "and kms hold all of it, cube3d approximates it");
  return tables.post;
}

void require_count(std::string_view format, std::string_view what, std::size_t count, std::size_t least,
                   std::size_t most) {
  if (least <= count && count <= most) return;
  refuse_format(format, fmt::format("{} = {}: choose from {} to {}", what, count, least, most));
}

void require_bakeable(std::string_view format, const device_tables& tables) {
  require_tables(format, tables);
  constexpr std::size_t enough = 4096;
  const std::size_t rows = tables.two_tables ? std::min(tables.pre.rows(), tables.post.rows()) : tables.post.rows();
  if (rows < enough)
    refuse_format(format,
                  fmt::format("tables of {} rows are too coarse to be baked: solve again with tlen={}, or take clf",
                              rows, enough));
}

}  // namespace corvantile
