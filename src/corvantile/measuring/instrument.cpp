#include "corvantile/measuring/instrument.hpp"

#include <algorithm>
#include <fmt/core.h>

#include "corvantile/formats/text_lines.hpp"
#include "corvantile/measuring/process.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::measuring {
namespace {

std::optional<vec3> three_numbers(std::string_view line, std::string_view separators) {
  vec3 v;
  std::size_t count = 0;
  while (true) {
    const std::size_t begin = line.find_first_not_of(separators);
    if (begin == std::string_view::npos) break;
    line.remove_prefix(begin);
    const std::string_view cell = line.substr(0, line.find_first_of(separators));
    const auto number = cell_number(cell);
    if (!number || count == 3) return std::nullopt;
    v[count++] = *number;
    line.remove_prefix(cell.size());
  }
  return count == 3 ? std::optional(v) : std::nullopt;
}

std::optional<vec3> numbers_in_line(std::string_view line) {
  if (const auto v = three_numbers(line, " \t;")) return v;
  return three_numbers(line, " \t,");
}

bool is_light(const vec3& v) {
  constexpr double darkest = -1, brightest = 1e12;  // the sun's disc has some 1.6e9 cd/m2
  return std::ranges::all_of(v.v, [](double x) { return x >= darkest && x <= brightest; });
}

}  // namespace

std::optional<vec3> xyz_in(std::string_view printed) {
  constexpr std::string_view label = "Result is XYZ:";
  std::optional<vec3> plain, labelled;
  line_reader lines(printed);
  while (const auto line = lines.next()) {
    const std::size_t at = line->find(label);
    if (at == std::string_view::npos) {
      if (const auto v = numbers_in_line(*line)) plain = v;
      continue;
    }
    const std::string_view behind = line->substr(at + label.size());
    labelled = three_numbers(behind.substr(0, behind.find(',')), " \t");
  }
  const std::optional<vec3> found = labelled ? labelled : plain;
  return found && is_light(*found) ? found : std::nullopt;
}

instrument_reading read_once(const instrument& from, stop_signals& stop) {
  const child c{.argv = {"/bin/sh", "-c", from.command}, .limit = from.limit};
  const child_result r = run_captured(c, stop);
  if (r.how == ending::interrupted)
    return {.xyz = {}, .status = {outcome::interrupted, "the reading was interrupted"}};
  const auto failed = [&](bool again, const std::string& why) {
    return instrument_reading{
        .xyz = {}, .status = {outcome::failed, "'" + from.command + "' " + why}, .again_may_help = again};
  };
  const auto complaint = [](std::string_view said) { return said.empty() ? "" : ": " + ascii(said.substr(0, 200)); };
  if (r.how == ending::timed_out) {
    return failed(false, fmt::format("gave no reading in {:.3g} s{}",
                                     std::chrono::duration<double>(from.limit).count(), complaint(last_line(r.err))));
  }
  if (!r.ok()) {
    constexpr int cannot_run = 126, no_such_command = 127;  // so the shell says
    const bool by_itself = r.how == ending::exited;
    const bool can_run = !by_itself || (r.code != cannot_run && r.code != no_such_command);
    const std::string_view said = last_line(r.err).empty() ? last_line(r.out) : last_line(r.err);
    return failed(can_run, fmt::format("{} {}{}", by_itself ? "ended with status" : "was ended by signal", r.code,
                                       complaint(said)));
  }
  if (const auto xyz = xyz_in(r.out)) return {.xyz = xyz, .status = {}};
  const std::string_view said = last_line(r.out);
  return failed(true, said.empty() ? "printed nothing; expected X Y Z in cd/m2"
                                   : "printed no X Y Z; its last line is " + in_quotes(ascii(said)));
}

}  // namespace corvantile::measuring
