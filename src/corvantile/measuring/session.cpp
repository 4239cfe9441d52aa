#include "corvantile/measuring/session.hpp"

#include <array>
#include <cstdlib>
#include <fmt/core.h>
#include <nlohmann/json.hpp>

#include "corvantile/formats/text_lines.hpp"
#include "corvantile/measuring/process.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::measuring {
namespace {

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

// What `c.program` prints, in English; nothing if it fails.
std::optional<std::string> answer(const loader_choice& c, std::vector<std::string> words, const load_options& o,
                                  stop_signals& stop) {
  words.insert(words.begin(), c.program);
  child_result r = run_captured({.argv = std::move(words), .environment = {"LC_ALL=C"}, .limit = o.limit}, stop);
  if (!r.ok()) return std::nullopt;
  return std::move(r.out);
}

// colormgr prints blocks of lines `Label: value`; each begins with the object's path.
struct colord_object {
  std::string path, id, model, file;
};

std::vector<colord_object> colord_objects(std::string_view text) {
  std::vector<colord_object> found;
  line_reader lines(text);
  while (const auto line = lines.next()) {
    const std::size_t colon = line->find(':');
    if (colon == std::string_view::npos) continue;
    const std::string_view label = without_margins(line->substr(0, colon));
    const std::string value(without_margins(line->substr(colon + 1)));
    if (label == "Object Path") found.push_back({value, {}, {}, {}});
    if (found.empty()) continue;
    if (label == "Device ID") found.back().id = value;
    if (label == "Model") found.back().model = value;
    if (label == "Filename") found.back().file = value;
  }
  return found;
}

bool is_off(const nlohmann::json& output) {
  const auto active = output.find("active");
  return active != output.end() && active->is_boolean() && !active->get<bool>();
}

std::vector<display_name> sway_outputs(std::string_view text) {
  std::vector<display_name> found;
  const auto all = nlohmann::json::parse(text, nullptr, false);
  if (!all.is_array()) return found;
  for (const auto& output : all) {
    const auto word = [&](const char* key) {
      const auto at = output.find(key);
      return at != output.end() && at->is_string() ? at->template get<std::string>() : std::string();
    };
    if (!output.is_object() || word("name").empty() || is_off(output)) continue;
    found.push_back(
        {word("name"), fmt::format("{} ({} {} {})", word("name"), word("make"), word("model"), word("serial"))});
  }
  return found;
}

std::string first_of(const std::string& a, const std::string& b) { return a.empty() ? b : a; }

}  // namespace

session this_session() {
  return {.type = environment("XDG_SESSION_TYPE"),
          .desktop = environment("XDG_CURRENT_DESKTOP"),
          .x_display = environment("DISPLAY"),
          .wayland = environment("WAYLAND_DISPLAY"),
          .sway_socket = environment("SWAYSOCK"),
          .gamescope = environment("GAMESCOPE_WAYLAND_DISPLAY"),
          .path = environment("PATH")};
}

place place_of(const session& s) {
  const auto desktop_is = [&](std::string_view name) { return s.desktop.find(name) != std::string::npos; };
  if (!s.sway_socket.empty()) return place::sway;
  if (!s.gamescope.empty()) return place::gamescope;
  if (s.type == "x11" || (s.type != "wayland" && s.wayland.empty() && !s.x_display.empty())) return place::x11;
  if (s.type != "wayland" && s.wayland.empty()) return place::none;
  for (const char* name : {"GNOME", "Unity", "Budgie", "Pantheon"})
    if (desktop_is(name)) return place::colord;
  if (desktop_is("KDE")) return place::kde;
  return desktop_is("Hyprland") ? place::hyprland : place::other_wayland;
}

const char* name_of(loader l) {
  constexpr std::array names{"nobody", "dispwin", "xcalib", "colormgr", "swaymsg"};
  return names[static_cast<std::size_t>(l)];
}

loader_choice choose_loader(const loadable& what, const session& s) {
  const auto taken_by = [&](loader by, const std::string& file) -> loader_choice {
    const auto program = file.empty() ? std::nullopt : find_program(name_of(by), s.path);
    return program ? loader_choice{by, *program, file} : loader_choice{};
  };
  const bool has_curves = !what.calibration.empty() || !what.icc.empty();
  switch (place_of(s)) {
    case place::x11: {
      if (!has_curves) return taken_by(loader::colormgr, what.profile);
      loader_choice c = taken_by(loader::dispwin, first_of(what.calibration, what.icc));
      return c.by != loader::nobody ? c : taken_by(loader::xcalib, what.icc);
    }
    case place::sway:
      return taken_by(loader::swaymsg, first_of(what.profile, what.icc));
    case place::colord:
      return taken_by(loader::colormgr, first_of(what.icc, what.profile));
    default:
      return {};
  }
}

std::vector<display_name> displays_of(const loader_choice& c, const load_options& o, stop_signals& stop) {
  if (c.by == loader::swaymsg) return sway_outputs(answer(c, {"-t", "get_outputs", "-r"}, o, stop).value_or(""));
  std::vector<display_name> found;
  if (c.by != loader::colormgr) return found;
  for (const colord_object& d : colord_objects(answer(c, {"get-devices-by-kind", "display"}, o, stop).value_or("")))
    found.push_back({d.path, fmt::format("{} ({})", first_of(d.id, d.path), d.model)});
  return found;
}

std::optional<display_name> pick_display(const std::vector<display_name>& all, std::string_view asked) {
  if (asked.empty()) return all.size() == 1 ? std::optional(all.front()) : std::nullopt;
  std::optional<display_name> found;
  for (const display_name& d : all) {
    if (d.id == asked) return d;
    if (d.label.find(asked) == std::string::npos) continue;
    if (found) return std::nullopt;
    found = d;
  }
  const auto number = parse_integer(asked);
  if (number && *number >= 1 && static_cast<std::size_t>(*number) <= all.size())
    return all[static_cast<std::size_t>(*number) - 1];
  return found;
}

std::vector<known_profile> colord_profiles(const loader_choice& c, const std::string& device, const load_options& o,
                                           stop_signals& stop) {
  const std::vector<std::string> question = device.empty()
                                                ? std::vector<std::string>{"get-profiles"}
                                                : std::vector<std::string>{"device-get-default-profile", device};
  std::vector<known_profile> found;
  for (const colord_object& p : colord_objects(answer(c, question, o, stop).value_or("")))
    found.push_back({p.path, p.file});
  return found;
}

bool same_content(const std::string& a, const std::string& b) {
  const auto first = read_file(a), second = read_file(b);
  return first && second && *first == *second;
}

}  // namespace corvantile::measuring
