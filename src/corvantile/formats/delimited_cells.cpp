#include "corvantile/formats/delimited_cells.hpp"

#include <algorithm>

#include "corvantile/formats/text_lines.hpp"

namespace corvantile {
namespace {

std::string_view without_quotes(std::string_view cell) {
  cell = without_margins(cell);
  if (cell.size() < 2 || !cell.starts_with('"') || !cell.ends_with('"')) return cell;
  return without_margins(cell.substr(1, cell.size() - 2));
}

// Where the cell that begins at `begin` ends; a separator in quotes does not end it.
std::size_t end_of_cell(std::string_view line, std::size_t begin, char separator) {
  std::size_t at = begin;
  while (at < line.size() && line[at] == ' ') ++at;
  if (at < line.size() && line[at] == '"') at = std::min(line.find('"', at + 1), line.size());
  while (at < line.size() && line[at] != separator) ++at;
  return at;
}

}  // namespace

char separator_of(std::string_view line) {
  constexpr std::size_t enough = 65536;  // longer than any line of names
  line = line.substr(0, enough);
  for (const char c : {';', '\t'})
    if (line.find(c) != std::string_view::npos) return c;
  if (line.find(',') == std::string_view::npos) return ' ';
  blank_cells cells(line);
  for (std::size_t numbers = 0; numbers < 6; ++numbers) {
    const auto cell = cells.next();
    if (!cell || !cell_number(*cell)) return ',';
  }
  return ' ';
}

void split_cells(std::string_view line, char separator, std::vector<std::string_view>& cells) {
  cells.clear();
  if (separator == ' ') {
    blank_cells rest(line);
    while (const auto cell = rest.next()) {
      cells.push_back(*cell);
      if (cells.size() > most_cells) return;
    }
    return;
  }
  for (std::size_t begin = 0; begin <= line.size();) {
    const std::size_t end = cells.size() < most_cells ? end_of_cell(line, begin, separator) : line.size();
    cells.push_back(without_quotes(line.substr(begin, end - begin)));
    begin = end + 1;
  }
  while (!cells.empty() && cells.back().empty()) cells.pop_back();
}

}  // namespace corvantile
