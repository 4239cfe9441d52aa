#pragma once
// What was dropped, converted or guessed while reading a source.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvantile {

struct note {
  std::string text;                      ///< one sentence; in lower case if `line` goes before it
  std::optional<std::size_t> line = {};  ///< of the source, counted from 1
  bool dropped = false;                  ///< the line is not used
  std::string file = {};                 ///< if the source has several
};

/// The note for people: "Dropped line 7: the reading 0 0 0 failed."
std::string sentence(const note& n);

/// Notes in the order in which they were made. It keeps the first twelve about dropped lines and the first twelve
/// others, and counts the rest: a million bad rows do not make a million notes.
class note_list {
 public:
  void add(note n);

  /// Notes that `line` is not used. `why()` gives the text; it is called only if the note is kept.
  template <class Why>
  void drop(std::size_t line, const Why& why) {
    if (has_room(true, line)) kept_.push_back({why(), line, true, file_});
  }

  /// Names the file of all notes that follow.
  void begin_file(std::string name) { file_ = std::move(name); }

  const std::vector<note>& kept() const { return kept_; }

  /// Every note that was kept as a sentence, then how many more there were.
  std::vector<std::string> sentences() const;

 private:
  struct tally {
    std::size_t count = 0;
    std::size_t last_line = 0;
  };
  bool has_room(bool dropped, std::size_t line);

  std::vector<note> kept_;
  std::array<tally, 2> tallies_;  // of other notes, and of those about dropped lines
  std::string file_;
};

}  // namespace corvantile
