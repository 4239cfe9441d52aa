#pragma once
// Lines, cells and numbers in the text files of other programs, and messages about them.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvantile {

/// The lines of a text. They end with LF, CR LF or, if the text has no LF, with CR. A byte order mark is skipped. The
/// text must outlive the reader and the lines it gave. Nothing is allocated.
class line_reader {
 public:
  /// `first_line` is the number of the text's first line, if the text is part of a file.
  explicit line_reader(std::string_view text, std::size_t first_line = 1);

  /// The next line without its end; nothing at the end of the text.
  std::optional<std::string_view> next();

  /// Of the line that `next` gave last; at the end of the text, of the last line.
  std::size_t number() const { return number_; }

  /// Goes past the next line whose first word is `word`, and gives the lines before it. Nothing if there is no such
  /// line; the reader is then at its end.
  std::optional<std::string_view> skip_to(std::string_view word);

 private:
  std::string_view rest_;
  char end_;
  std::size_t number_;
};

/// The cells of one line, separated by any number of blanks and tabs. A cell in double quotes keeps its blanks and
/// loses the quotes; a `#` at the start of a cell makes a comment of the rest.
class blank_cells {
 public:
  explicit blank_cells(std::string_view line) : rest_(line) {}

  /// Nothing after the last cell.
  std::optional<std::string_view> next();

 private:
  std::string_view rest_;
};

/// The number that all of `s` spells, with a decimal point or comma; nothing if it spells none. `nan`, `inf` and
/// variants that some programs print (`-1.#IND00`) give numbers that are not finite.
std::optional<double> cell_number(std::string_view s);

/// Without blanks, tabs and the like at both ends.
std::string_view without_margins(std::string_view s);

/// Whether two words are equal, ignoring the case of ASCII letters.
bool same_word(std::string_view a, std::string_view b);

/// `s` in printable ASCII, read as UTF-8 or, byte by byte, as Latin-1: letters lose their accents, everything else
/// becomes a question mark.
std::string ascii(std::string_view s);

/// Throws `fault::content`: "NAME: line 7: WHAT".
[[noreturn]] void refuse_line(std::string_view name, std::size_t line, std::string_view what);

/// "expected EXPECTED, found 'FOUND'" for a wrong cell, which is shortened and in ASCII; "found nothing" if it is
/// blank.
std::string expected_found(std::string_view expected, std::string_view found);

}  // namespace corvantile
