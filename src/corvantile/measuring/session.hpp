#pragma once
// The graphical session that we run in, and which program may load a correction there.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/measuring/stop_signals.hpp"

namespace corvantile::measuring {

/// What the environment tells; empty if it does not.
struct session {
  std::string type = {};         ///< XDG_SESSION_TYPE: x11, wayland, tty
  std::string desktop = {};      ///< XDG_CURRENT_DESKTOP
  std::string x_display = {};    ///< DISPLAY; a Wayland session may set it as well, for older programs
  std::string wayland = {};      ///< WAYLAND_DISPLAY
  std::string sway_socket = {};  ///< SWAYSOCK
  std::string gamescope = {};    ///< GAMESCOPE_WAYLAND_DISPLAY
  std::string path = {};         ///< PATH, where programs are looked for
};
session this_session();

/// Whose place a correction goes to.
enum class place {
  x11,     ///< the video card's table, behind all programs
  sway,    ///< the compositor's profile of an output
  colord,  ///< the desktop's profile of a display, as GNOME's compositor takes it
  kde,     ///< these three have no program that we could call
  hyprland,
  gamescope,
  other_wayland,
  none  ///< no graphical session, as over ssh
};
place place_of(const session& s);

/// Files of a correction that can be loaded, by absolute path. Empty: it has none of that kind.
struct loadable {
  std::string calibration = {};  ///< .cal: three curves
  std::string icc = {};          ///< profile of the corrected display that holds the curves (vcgt)
  std::string profile = {};      ///< profile of the display as measured, for compositors that correct by themselves
  std::string cube = {};         ///< three-dimensional .cube
};

enum class loader { nobody, dispwin, xcalib, colormgr, swaymsg };
const char* name_of(loader l);

/// The program that loads, and what. X11 takes curves by dispwin or, from a profile, xcalib; if the correction has
/// none, its profile goes to colord, for programs that manage colour. sway takes the profile of the display as
/// measured, GNOME the one that holds the curves; each the other one if need be.
struct loader_choice {
  loader by = loader::nobody;
  std::string program;  ///< its path
  std::string file;
};
loader_choice choose_loader(const loadable& what, const session& s);

/// A display as a program knows it.
struct display_name {
  std::string id;     ///< what the program wants to be given
  std::string label;  ///< for people
};

struct load_options {
  std::string display = {};                ///< number, counted from 1, or part of its name; empty: the only one
  std::string backup = {};                 ///< file that keeps what the video card holds before; empty: nothing does
  std::chrono::milliseconds limit{20000};  ///< for each program that is asked or told something
};

/// The displays that `c.by` knows: active outputs of sway, or colord's display devices. Empty if it cannot be asked.
std::vector<display_name> displays_of(const loader_choice& c, const load_options& o, stop_signals& stop);

/// The one of `all` that `asked` means. Nothing if there is none, or more than one.
std::optional<display_name> pick_display(const std::vector<display_name>& all, std::string_view asked);

/// A profile that colord knows.
struct known_profile {
  std::string object;  ///< its path on the bus, which colormgr takes
  std::string file;
};
/// All profiles that colord knows, or only the one that `device` uses.
std::vector<known_profile> colord_profiles(const loader_choice& c, const std::string& device, const load_options& o,
                                           stop_signals& stop);

/// Whether two files hold the same bytes; false if one cannot be read.
bool same_content(const std::string& a, const std::string& b);

}  // namespace corvantile::measuring
