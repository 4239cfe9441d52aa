#include "corvantile/measuring/journal.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fmt/core.h>
#include <optional>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

#include "corvantile/formats/text_lines.hpp"
#include "corvantile/measuring/checksum.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::measuring {
namespace {

constexpr std::string_view first_line = "corvantile-journal 1";
constexpr std::string_view all_facts = "begin";  // the line behind the facts
constexpr std::string_view kept = "kept";
constexpr std::string_view guard = " *";

[[noreturn]] void cannot_write(const std::string& path, const std::string& why) {
  throw failure(fault::unwritable, "Cannot write " + printable(path) + ": " + why);
}

[[noreturn]] void cannot_write(const std::string& path, int error) {
  cannot_write(path, std::generic_category().message(error));
}

std::string guarded(std::string_view content) {
  const std::string line = printable(content);
  return fmt::format("{}{}{}\n", line, guard, line_checksum(line));
}

std::string line_of(const fact& f) { return guarded(fmt::format("fact {} {}", f.key, f.value)); }

std::string line_of(const journal_entry& e) {
  return guarded(fmt::format("read {} {} {} {} {} {} {} {}", e.position, e.drive[0], e.drive[1], e.drive[2], e.xyz[0],
                             e.xyz[1], e.xyz[2], e.again.empty() ? std::string(kept) : "again: " + e.again));
}

// The content of a line whose checksum is right.
std::optional<std::string_view> content_of(std::string_view line) {
  const std::size_t at = line.rfind(guard);
  if (at == std::string_view::npos) return std::nullopt;
  const std::string_view content = line.substr(0, at);
  if (line.substr(at + guard.size()) != line_checksum(content)) return std::nullopt;
  return content;
}

std::string_view take_word(std::string_view& rest) {
  const std::string_view word = rest.substr(0, rest.find(' '));
  rest.remove_prefix(std::min(rest.size(), word.size() + 1));
  return word;
}

std::optional<journal_entry> entry_in(std::string_view rest) {
  journal_entry e;
  const auto position = parse_integer(take_word(rest));
  if (!position || *position < 0) return std::nullopt;
  e.position = static_cast<std::size_t>(*position);
  for (vec3* triple : {&e.drive, &e.xyz}) {
    for (double& v : triple->v) {
      const auto number = parse_real(take_word(rest));
      if (!number) return std::nullopt;
      v = *number;
    }
  }
  if (rest != kept) {
    if (take_word(rest) != "again:" || rest.empty()) return std::nullopt;
    e.again = rest;
  }
  return e;
}

struct parsed {
  journal_content content;
  bool begun = false;  // all facts that it begins with are there
};

// Adds what a sound line says; false if it says nothing known.
bool take_line(parsed& into, std::string_view content) {
  std::string_view rest = content;
  const std::string_view word = take_word(rest);
  if (word == all_facts) {
    into.begun = true;
  } else if (word == "fact") {
    const std::string_view key = take_word(rest);
    into.content.facts.push_back({std::string(key), std::string(rest)});
  } else {
    auto e = word == "read" ? entry_in(rest) : std::nullopt;
    if (!e) return false;
    into.content.entries.push_back(std::move(*e));
  }
  return true;
}

parsed parse(std::string_view name, std::string_view text) {
  parsed found;
  std::size_t number = 0;
  std::optional<std::size_t> damaged;
  for (std::size_t at = 0; at < text.size();) {
    ++number;
    const std::size_t end = text.find('\n', at);
    if (end == std::string_view::npos) break;  // torn
    const auto content = content_of(text.substr(at, end - at));
    at = end + 1;
    if (!content) {
      damaged = damaged.value_or(number);
      continue;
    }
    if (damaged) refuse_line(name, *damaged, "the journal is damaged here, before its end; measure again");
    if (number == 1 ? *content != first_line : !take_line(found, *content))
      refuse_line(name, number, expected_found("a line of a measuring journal", *content));
    found.content.whole = at;
  }
  if (found.content.whole == 0 && !std::string_view(text).empty() &&
      text.substr(0, first_line.size()) != first_line.substr(0, text.size()))
    refuse_line(name, 1, "this is not the journal of a measuring run");
  return found;
}

}  // namespace

std::string_view journal_content::value(std::string_view key) const {
  const auto at = std::ranges::find(facts, key, &fact::key);
  return at == facts.end() ? std::string_view{} : std::string_view(at->value);
}

journal_content parse_journal(std::string_view name, std::string_view text) { return parse(name, text).content; }

journal::journal(std::string path, int flags)
    : path_(std::move(path)), file_(::open(path_.c_str(), flags | O_RDWR | O_APPEND | O_CLOEXEC, 0666)) {
  if (file_.get() < 0) cannot_write(path_, errno);
  if (::flock(file_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
    cannot_write(path_, "another program is measuring into it");
}

void journal::write(std::string_view text) const {
  if (const int error = file_.write(text); error != 0) cannot_write(path_, error);
  if (::fdatasync(file_.get()) != 0 && errno != EINVAL) cannot_write(path_, errno);  // EINVAL: not that kind of file
}

void journal::start(std::span<const fact> facts) {
  std::string text = guarded(first_line);
  for (const fact& f : facts) text += line_of(f);
  write(text + guarded(all_facts));
  // The name has to last, too.
  const std::string folder = (std::filesystem::path(path_).parent_path() / ".").string();
  const descriptor names(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (names.get() >= 0) ::fsync(names.get());
}

journal journal::begin(const std::string& path, std::span<const fact> facts, journal_content& found) {
  journal made(path, O_CREAT);
  if (::lseek(made.file_.get(), 0, SEEK_END) > 0) cannot_write(path, "it exists already and holds readings");
  made.start(facts);
  found = {.facts = {facts.begin(), facts.end()}, .entries = {}, .whole = 0};
  return made;
}

journal journal::resume(const std::string& path, std::span<const fact> facts,
                        std::span<const std::string_view> must_match, journal_content& found) {
  journal opened(path, 0);
  const std::string name = std::filesystem::path(path).filename().string();
  parsed before = parse(name, read_file(path).value_or(""));
  const std::size_t keep = before.begun ? before.content.whole : 0;
  if (::ftruncate(opened.file_.get(), static_cast<off_t>(keep)) != 0) cannot_write(path, errno);
  if (!before.begun) {
    opened.start(facts);
    before.content = {.facts = {facts.begin(), facts.end()}, .entries = {}, .whole = 0};
  }
  for (const fact& f : facts) {
    if (std::ranges::find(must_match, f.key) == must_match.end() || before.content.value(f.key) == f.value) continue;
    refuse_content(name, fmt::format("it belongs to another run: its {} is {}, not {}", f.key,
                                     before.content.value(f.key), f.value));
  }
  found = std::move(before.content);
  return opened;
}

void journal::append(const journal_entry& e) { write(line_of(e)); }
void journal::append(const fact& f) { write(line_of(f)); }

}  // namespace corvantile::measuring
