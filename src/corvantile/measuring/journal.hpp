#pragma once
// The journal of a measuring run: every reading is on disk before the next patch, whatever ends the program.
//
//     corvantile-journal 1 *9d2a81f0
//     fact chart xxh3:...  *...
//     read 0 1 1 1 95.1 100.2 108.8 kept *...
//     read 1 0 0 0 0.11 0.12 0.13 again: dark, read twice *...
//
// A line is a word, its content, and behind ` *` a checksum of all before it. It is appended and synchronised before
// anything else happens. A line that was torn by the end of the program or of the power is dropped.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/utils/temporary_file.hpp"

namespace corvantile::measuring {

/// Something about the run that is known beforehand. `key` is one word; `value` is one line.
struct fact {
  std::string key, value;
  friend bool operator==(const fact&, const fact&) = default;
};

/// One reading of one patch. A patch may be read several times; its last reading is `kept`.
struct journal_entry {
  std::size_t position = 0;  ///< of the patch in the chart, counted from 0
  vec3 drive;                ///< 0 to 1
  vec3 xyz;                  ///< cd/m2
  std::string again;         ///< why the patch is read once more; empty: no more, what there is is kept
  friend bool operator==(const journal_entry&, const journal_entry&) = default;
};

/// What a journal says.
struct journal_content {
  std::vector<fact> facts;  ///< in order; some may come between readings, as from a run that was resumed
  std::vector<journal_entry> entries;
  std::size_t whole = 0;  ///< bytes of the lines that are whole
  /// The value of the first fact of that name; empty if there is none.
  std::string_view value(std::string_view key) const;
};

/// Reads the text of a journal. A damaged last line is dropped, and so is what was torn with it. Throws
/// `fault::content` with the line if it is not a journal, or if whole lines follow a damaged one.
journal_content parse_journal(std::string_view name, std::string_view text);

/// A journal open for writing. Nobody else can open it meanwhile. All of it throws `fault::unwritable`, with the
/// file's name and the reason: a full disk must not cost a reading.
class journal {
 public:
  /// A new journal; `found` is then what it holds, the facts alone. Refuses a file that exists and is not empty.
  static journal begin(const std::string& path, std::span<const fact> facts, journal_content& found);

  /// Goes on with one that exists, and gives what it holds. What is torn at its end is cut off. If it was torn
  /// before the first reading and its facts may be incomplete, it begins anew with `facts`. Throws `fault::content`
  /// as well, as `parse_journal` does, or if one of `facts` whose key is in `must_match` has another value there.
  static journal resume(const std::string& path, std::span<const fact> facts,
                        std::span<const std::string_view> must_match, journal_content& found);

  void append(const journal_entry& e);
  void append(const fact& f);

 private:
  journal(std::string path, int flags);
  void start(std::span<const fact> facts);
  void write(std::string_view text) const;

  std::string path_;
  descriptor file_;
};

}  // namespace corvantile::measuring
