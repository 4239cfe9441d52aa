#include "corvantile/readings/notes.hpp"

#include <fmt/core.h>
#include <utility>

namespace corvantile {

static constexpr std::size_t most_kept = 12;

std::string sentence(const note& n) {
  const std::string file = n.file.empty() ? "" : n.file + ": ";
  if (!n.line) return file + n.text;
  return fmt::format("{}{} {}: {}", file, n.dropped ? "Dropped line" : "Line", *n.line, n.text);
}

void note_list::add(note n) {
  if (!has_room(n.dropped, n.line.value_or(0))) return;
  n.file = file_;
  kept_.push_back(std::move(n));
}

std::vector<std::string> note_list::sentences() const {
  std::vector<std::string> all;
  for (const note& n : kept_) all.push_back(sentence(n));
  const auto& [others, dropped] = tallies_;
  if (dropped.count > most_kept) {
    all.push_back(
        fmt::format("Dropped {} more lines, the last is line {}.", dropped.count - most_kept, dropped.last_line));
  }
  if (others.count > most_kept) all.push_back(fmt::format("There are {} more notes.", others.count - most_kept));
  return all;
}

bool note_list::has_room(bool dropped, std::size_t line) {
  tally& t = tallies_[dropped ? 1 : 0];
  t.last_line = line;
  return ++t.count <= most_kept;
}

}  // namespace corvantile
