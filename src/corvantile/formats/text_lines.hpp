#pragma once
// Lines, cells and numbers of the text files that other programs write, and words about them for messages.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvantile {

/// The lines of a text, which end with LF, CR LF or, in texts without any LF, CR. A byte order mark is skipped. The
/// text must outlive the reader and what it gave. Nothing is allocated.
class line_reader {
 public:
  /// `first_line` is the number of the text's first line, for a reader over a part of a file.
  explicit line_reader(std::string_view text, std::size_t first_line = 1);

  /// The next line without its end; nothing at the end of the text.
  std::optional<std::string_view> next();

  /// Of the line that `next` gave last; at the end of the text still that of the last line.
  std::size_t number() const { return number_; }

  /// Goes on behind the next line whose first word is `word`, and gives the lines before it; nothing where there is
  /// no such line, and the reader is then at its end.
  std::optional<std::string_view> skip_to(std::string_view word);

 private:
  std::string_view rest_;
  char end_;
  std::size_t number_;
};

/// The cells of one line, separated by any number of blanks and tabs. A cell in double quotes keeps its blanks and
/// loses the quotes; `#` where a cell would begin makes a comment of the rest.
class blank_cells {
 public:
  explicit blank_cells(std::string_view line) : rest_(line) {}

  /// Nothing behind the last cell.
  std::optional<std::string_view> next();

 private:
  std::string_view rest_;
};

/// The number that all of `s` spells, with a point or a comma as its decimal mark. `nan`, `inf` and what some
/// programs print in their place (`-1.#IND00`) are numbers that are not finite. Else nothing.
std::optional<double> cell_number(std::string_view s);

/// Without blanks, tabs and the like at both ends.
std::string_view without_margins(std::string_view s);

/// Whether two words agree but for the case of their ASCII letters.
bool same_word(std::string_view a, std::string_view b);

/// `s` in printable ASCII, read as UTF-8 or, byte by byte, as Latin-1: letters lose their accents, what remains
/// becomes a question mark.
std::string ascii(std::string_view s);

/// `v` with the fewest digits that read back.
std::string number_text(double v);

/// "line 7: " and `what`, thrown as `fault::content` with the file's name before it.
[[noreturn]] void refuse_line(std::string_view name, std::size_t line, std::string_view what);

/// "expected ..., found '...'" for a cell that is not what it should be: shortened, in quotes and in ASCII.
std::string expected_found(std::string_view expected, std::string_view found);

}  // namespace corvantile
