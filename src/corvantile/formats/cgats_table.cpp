#include "corvantile/formats/cgats_table.hpp"

#include <algorithm>
#include <fmt/core.h>
#include <string>
#include <utility>

#include "corvantile/formats/text_lines.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

class cgats_parser {
 public:
  cgats_parser(std::string_view name, std::string_view text) : name_(name), lines_(text) {}

  std::vector<cgats_table> tables() {
    std::vector<cgats_table> found;
    while (auto table = next_table()) {
      found.push_back(std::move(*table));
      if (found.size() > most_names) refuse_line(name_, lines_.number(), "too many tables for a CGATS text");
    }
    if (found.empty()) refuse_content(name_, "the file is empty; expected tables of a CGATS text");
    return found;
  }

 private:
  // No program writes more tables, keywords or fields.
  static constexpr std::size_t most_names = 100000;

  // The first cell of the next line that has any; `line_` then holds the whole line.
  std::optional<std::string_view> next_word() {
    while (const auto line = lines_.next()) {
      line_ = *line;
      const auto word = blank_cells(line_).next();
      if (word && *word != "\x1A") return word;  // some old editors end a file with this character
    }
    return std::nullopt;
  }

  [[noreturn]] void cut_short(const std::string& missing) const {
    refuse_line(name_, lines_.number(),
                fmt::format("the file ends here, before {}: it was cut short; copy or export it again", missing));
  }

  std::optional<cgats_table> next_table() {
    const auto word = next_word();
    if (!word) return std::nullopt;
    cgats_table table;
    table.line = lines_.number();
    blank_cells cells(line_);
    cells.next();
    if (!word->starts_with("BEGIN_") && !cells.next()) {
      table.identifier = *word;
      if (!next_word()) cut_short("the table's BEGIN_DATA_FORMAT");
    }
    read_header(table);
    read_data(table);
    return table;
  }

  // From the line that is in `line_` up to BEGIN_DATA.
  void read_header(cgats_table& table) {
    do {
      blank_cells cells(line_);
      const std::string_view word = *cells.next();
      if (word == "BEGIN_DATA") return;
      if (word == "BEGIN_DATA_FORMAT") {
        read_fields(table, cells);
      } else if (word.starts_with("BEGIN_")) {
        skip_block(table, word.substr(6));
      } else {
        table.keywords.push_back({word, value_behind(word), lines_.number()});
        if (table.keywords.size() > most_names)
          refuse_line(name_, lines_.number(), "too many keywords for a CGATS text");
      }
    } while (next_word());
    cut_short(table.fields.empty() ? "BEGIN_DATA_FORMAT" : "BEGIN_DATA");
  }

  // A value in quotes, or the rest of the line.
  std::string_view value_behind(std::string_view key) const {
    const auto behind = static_cast<std::size_t>(key.data() + key.size() - line_.data());
    const std::string_view rest = without_margins(line_.substr(std::min(behind, line_.size())));
    if (!rest.starts_with('"')) return without_margins(rest.substr(0, rest.find('#')));
    return rest.substr(1, rest.find('"', 1) - 1);
  }

  void read_fields(cgats_table& table, blank_cells cells) {
    const std::size_t begin = lines_.number();
    while (true) {
      while (const auto field = cells.next()) {
        if (*field == "END_DATA_FORMAT") return;
        table.fields.push_back(*field);
        if (table.fields.size() > most_names) refuse_line(name_, lines_.number(), "too many fields for a CGATS text");
      }
      if (!next_word()) cut_short(fmt::format("END_DATA_FORMAT (the format begins in line {})", begin));
      cells = blank_cells(line_);
    }
  }

  // Not parsed: such a block may hold quotes, `#`, or words that look like keywords.
  void skip_block(cgats_table& table, std::string_view block) {
    const std::size_t begin = lines_.number();
    const std::string end = "END_" + std::string(block);
    const auto inside = lines_.skip_to(end);
    if (!inside) cut_short(fmt::format("{} (the block begins in line {})", ascii(end.substr(0, 60)), begin));
    table.remarks.push_back(*inside);
  }

  void read_data(cgats_table& table) {
    table.data_line = lines_.number() + 1;
    const auto data = lines_.skip_to("END_DATA");
    if (!data) {
      const std::string_view promised = keyword_value(table, "NUMBER_OF_SETS");
      cut_short(fmt::format("END_DATA, with {} rows{}", lines_.number() + 1 - table.data_line,
                            promised.empty() ? "" : " of " + ascii(promised.substr(0, 20))));
    }
    table.data = *data;
  }

  std::string_view name_;
  line_reader lines_;
  std::string_view line_;
};

}  // namespace

std::vector<cgats_table> parse_cgats(std::string_view name, std::string_view text) {
  return cgats_parser(name, text).tables();
}

const cgats_keyword* find_keyword(const cgats_table& table, std::string_view key) {
  const auto at = std::ranges::find_if(table.keywords, [&](const cgats_keyword& k) { return same_word(k.key, key); });
  return at == table.keywords.end() ? nullptr : &*at;
}

std::string_view keyword_value(const cgats_table& table, std::string_view key) {
  const cgats_keyword* found = find_keyword(table, key);
  return found ? found->value : std::string_view{};
}

std::optional<std::size_t> find_field(const cgats_table& table, std::string_view name) {
  const auto at = std::ranges::find_if(table.fields, [&](std::string_view f) { return same_word(f, name); });
  if (at == table.fields.end()) return std::nullopt;
  return static_cast<std::size_t>(at - table.fields.begin());
}

cgats_rows::cgats_rows(std::string_view name, const cgats_table& table, std::span<const std::size_t> columns)
    : name_(name),
      table_(table),
      lines_(table.data, table.data_line),
      slot_(table.fields.size(), columns.size()),
      values_(columns.size()) {
  for (std::size_t i = 0; i < columns.size(); ++i) slot_[columns[i]] = i;
}

bool cgats_rows::next() {
  std::size_t column = 0;
  while (column == 0) {  // blank lines and comments have no cell
    const auto text = lines_.next();
    if (!text) return false;
    blank_cells cells(*text);
    for (auto cell = cells.next(); cell; cell = cells.next(), ++column) {
      if (column >= slot_.size() || slot_[column] == values_.size()) continue;
      const auto v = cell_number(*cell);
      if (!v) {
        refuse_line(name_, lines_.number(),
                    expected_found(fmt::format("a number as {}", ascii(table_.fields[column].substr(0, 40))), *cell));
      }
      values_[slot_[column]] = *v;
    }
  }
  if (column != slot_.size()) {
    refuse_line(name_, lines_.number(),
                fmt::format("expected {} values, one per field, found {}", slot_.size(), column));
  }
  return true;
}

}  // namespace corvantile
