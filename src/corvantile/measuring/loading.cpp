#include "corvantile/measuring/loading.hpp"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

#include "corvantile/formats/text_lines.hpp"
#include "corvantile/measuring/process.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::measuring {
namespace {

constexpr std::string_view kept_place = "{kept}";

std::string first_of(const std::string& a, const std::string& b) { return a.empty() ? b : a; }

// ---- By hand ----

std::vector<std::string> nothing_for(const char* place_name, const char* kinds) {
  return {fmt::format("This correction has no file that {} loads; export {} from it.", place_name, kinds)};
}

std::vector<std::string> by_hand_on_x11(const loadable& what, const load_options& o) {
  const std::string curves = first_of(what.calibration, what.icc);
  if (!curves.empty()) {
    return {"Neither dispwin nor xcalib can load this here. Install ArgyllCMS (on Debian: apt install argyll), then:",
            fmt::format("dispwin -d {} {}", first_of(o.display, "1"), shell_words({.argv = {curves}}))};
  }
  if (what.profile.empty()) return nothing_for("X11", "cal or icc");
  return {"X11 has no room for the matrix. In programs that manage colour, choose as the display's profile:",
          what.profile};
}

std::vector<std::string> by_hand(const loadable& what, const session& s, const load_options& o) {
  const std::string profile = first_of(what.profile, what.icc);
  const place here = place_of(s);
  if (here == place::x11) return by_hand_on_x11(what, o);
  if (here == place::none) {
    return {"There is no graphical session here. Run this again in a terminal on the display's own desktop."};
  }
  if (here == place::gamescope) {
    if (what.cube.empty()) return nothing_for("gamescope", "cube3d");
    return {shell_words({.argv = {"gamescopectl", "set_look", what.cube}})};
  }
  if (profile.empty()) return nothing_for("this desktop", "monitor-icc");
  switch (here) {
    case place::sway:
      return {"swaymsg is not on PATH. Install it, or put this line into sway's configuration:",
              fmt::format("output {} color_profile icc \"{}\"", first_of(o.display, "NAME"), profile)};
    case place::colord:
      return {"colormgr is not on PATH. In Settings > Color, add to the display the profile:",
              first_of(what.icc, profile)};
    case place::kde:
      return {"In System Settings > Display & Monitor, at this display's Color Profile, choose ICC profile:",
              profile};
    case place::hyprland:
      return {
          "In hyprland.conf, end the display's monitor line with the profile (NAME is what `hyprctl monitors` "
          "prints):",
          fmt::format("monitor = {}, preferred, auto, 1, icc, {}", first_of(o.display, "NAME"), profile)};
    default:
      return {"This desktop has no program that loads profiles. In its colour settings, choose:", profile};
  }
}

// ---- By a program ----

std::vector<std::string> for_display(std::vector<std::string> argv, const char* option, const std::string& display,
                                     std::initializer_list<std::string> rest) {
  if (!display.empty()) argv.insert(argv.end(), {option, display});
  argv.insert(argv.end(), rest);
  return argv;
}

load_plan by_dispwin(const loader_choice& c, const load_options& o) {
  const auto call = [&](std::initializer_list<std::string> rest) {
    return load_command{.argv = for_display({c.program}, "-d", o.display, rest)};
  };
  load_plan plan{.by = c.by, .file = c.file, .where = "the video table of display " + first_of(o.display, "1")};
  plan.replaces = "The curves that the video card holds now go; at the next login, the desktop may load others.";
  std::error_code none;
  if (!o.backup.empty() && !std::filesystem::exists(o.backup, none)) plan.load.push_back(call({"-s", o.backup}));
  plan.load.push_back(call({c.file}));
  plan.undo.push_back(o.backup.empty() ? call({"-c"}) : call({o.backup}));
  plan.undo_words = o.backup.empty() ? "This clears the video table; what was there before is not kept."
                                     : "This loads the curves that were there before.";
  return plan;
}

load_plan by_xcalib(const loader_choice& c, const load_options& o) {
  const std::string screen = o.display.empty() ? "" : std::to_string(parse_integer(o.display).value_or(1) - 1);
  load_plan plan{.by = c.by, .file = c.file, .where = "the video table of display " + first_of(o.display, "1")};
  plan.replaces = "The curves that the video card holds now go, and nobody can tell what they were.";
  plan.load.push_back({.argv = for_display({c.program}, "-s", screen, {c.file})});
  plan.undo.push_back({.argv = for_display({c.program}, "-s", screen, {"-c"})});
  plan.undo_words = "This clears the video table.";
  return plan;
}

// sway joins its words and takes them apart by its own rules.
std::string in_sway_quotes(const std::string& text) {
  std::string quoted = "\"";
  for (const char ch : text) {
    if (ch == '"' || ch == '\\') quoted += '\\';
    quoted += ch;
  }
  return quoted + '"';
}

load_plan by_swaymsg(const loader_choice& c, const display_name& output) {
  const auto call = [&](std::initializer_list<std::string> rest) {
    std::vector<std::string> argv{c.program, "output", in_sway_quotes(output.id), "color_profile"};
    argv.insert(argv.end(), rest);
    return load_command{.argv = std::move(argv)};
  };
  load_plan plan{.by = c.by, .file = c.file, .where = "sway's profile of " + output.label};
  plan.replaces = "A profile that was given to this output goes, until sway reads its configuration again.";
  plan.load.push_back(call({"icc", in_sway_quotes(c.file)}));
  plan.undo.push_back(call({"srgb"}));
  plan.undo_words = "This gives the output no profile, as sway starts; what was there before is not known.";
  return plan;
}

load_plan by_colormgr(const loader_choice& c, const display_name& device, const load_options& o, stop_signals& stop) {
  load_plan plan{.by = c.by, .file = c.file, .where = "colord's profile of " + device.label};
  std::string profile(kept_place);
  for (const known_profile& p : colord_profiles(c, "", o, stop))
    if (same_content(p.file, c.file)) profile = p.object;
  if (profile == kept_place)
    plan.load.push_back({.argv = {c.program, "import-profile", c.file}, .keep = "Object Path"});
  plan.load.push_back({.argv = {c.program, "device-add-profile", device.id, profile}, .may_fail = true});
  plan.load.push_back({.argv = {c.program, "device-make-profile-default", device.id, profile}});

  const auto before = colord_profiles(c, device.id, o, stop);
  if (before.empty() || before.front().object == profile) {
    plan.replaces = before.empty() ? "The display has no profile now." : "The display has this profile already.";
    plan.undo_words = "Take the profile off the display in the desktop's colour settings.";
  } else {
    plan.replaces = fmt::format("The profile {} steps back; it stays in the list.", before.front().file);
    plan.undo.push_back({.argv = {c.program, "device-make-profile-default", device.id, before.front().object}});
    plan.undo_words = "This makes the earlier profile the display's own again.";
  }
  return plan;
}

load_plan which_display(const loader_choice& c, const std::vector<display_name>& all, const load_options& o) {
  std::string known = all.empty() ? "none" : all.front().label;
  for (std::size_t i = 1; i < all.size(); ++i) known += ", " + all[i].label;
  return {.by_hand = {o.display.empty()
                          ? fmt::format("Say which display is meant; {} knows {}.", name_of(c.by), known)
                          : fmt::format("No single display is '{}'; {} knows {}.", o.display, name_of(c.by), known)}};
}

std::string unquoted_kept(std::string text, const std::string& kept) {
  const std::size_t at = text.find(kept_place);
  return at == std::string::npos ? text : text.replace(at, kept_place.size(), kept);
}

std::string value_behind(std::string_view label, std::string_view printed) {
  line_reader lines(printed);
  while (const auto line = lines.next()) {
    const std::size_t colon = line->find(':');
    if (without_margins(line->substr(0, colon)) == label && colon != std::string_view::npos)
      return std::string(without_margins(line->substr(colon + 1)));
  }
  return {};
}

}  // namespace

load_plan plan_loading(const loadable& what, const session& s, const load_options& o, stop_signals& stop) {
  const loader_choice c = choose_loader(what, s);
  if (c.by == loader::nobody) return {.by_hand = by_hand(what, s, o)};
  if (c.by == loader::dispwin) return by_dispwin(c, o);
  if (c.by == loader::xcalib) return by_xcalib(c, o);
  const std::vector<display_name> all = displays_of(c, o, stop);
  const auto display = pick_display(all, o.display);
  if (!display) return which_display(c, all, o);
  return c.by == loader::swaymsg ? by_swaymsg(c, *display) : by_colormgr(c, *display, o, stop);
}

std::string shell_words(const load_command& c) {
  constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:=,+@%";
  std::string line;
  for (const std::string& word : c.argv) {
    if (!line.empty()) line += ' ';
    if (!word.empty() && word.find_first_not_of(plain) == std::string::npos) {
      line += word;
      continue;
    }
    line += '\'';
    for (const char ch : word) line += ch == '\'' ? std::string("'\\''") : std::string(1, ch);
    line += '\'';
  }
  return line;
}

report run_commands(std::span<const load_command> commands, const load_options& o, stop_signals& stop) {
  std::string kept;
  for (const load_command& command : commands) {
    child c{.argv = command.argv, .environment = {"LC_ALL=C"}, .limit = o.limit};
    for (std::string& word : c.argv) word = unquoted_kept(word, kept);
    const child_result r = run_captured(c, stop);
    if (r.how == ending::interrupted) return {outcome::interrupted, words_for(c, r)};
    if (!r.ok() && !command.may_fail) return {outcome::failed, words_for(c, r)};
    if (command.keep.empty()) continue;
    kept = value_behind(command.keep, r.out);
    if (kept.empty()) {
      return {outcome::failed, fmt::format("{} did not print '{}:'", shell_words(command), command.keep)};
    }
  }
  return {};
}

load_status ask_status(const loadable& what, const session& s, const load_options& o, stop_signals& stop) {
  const loader_choice c = choose_loader(what, s);
  if (c.by == loader::dispwin) {
    const child ask{.argv = for_display({c.program}, "-d", o.display, {"-V", c.file}), .limit = o.limit};
    const child_result r = run_captured(ask, stop);
    const std::string said = r.out + r.err;
    if (said.find("IS loaded") != std::string::npos)
      return {presence::loaded, "dispwin reads it back from the video card"};
    if (said.find("is NOT") != std::string::npos)
      return {presence::not_loaded, "dispwin reads other curves back from the video card"};
    return {presence::unknown, r.ok() ? "dispwin cannot read the video card back" : words_for(ask, r)};
  }
  if (c.by == loader::colormgr) {
    const auto device = pick_display(displays_of(c, o, stop), o.display);
    if (!device) return {presence::unknown, "colord knows no single display of that name"};
    const auto used = colord_profiles(c, device->id, o, stop);
    if (used.empty()) return {presence::not_loaded, fmt::format("colord knows no profile of {}", device->label)};
    const bool ours = same_content(used.front().file, c.file);
    return {ours ? presence::loaded : presence::not_loaded,
            fmt::format("colord uses {} for {}", used.front().file, device->label)};
  }
  if (c.by == loader::nobody) return {presence::unknown, "no program here can be asked"};
  return {presence::unknown, fmt::format("{} does not tell what is loaded", name_of(c.by))};
}

}  // namespace corvantile::measuring
