#include "corvantile/measuring/loading.hpp"

#include "surroundings.hpp"

namespace corvantile::measuring {
namespace {

class Loading : public Surroundings {
 protected:
  void SetUp() override {
    Surroundings::SetUp();
    for (const char* name : {"correction.cal", "correction.icc", "display.icc", "a b.cube"}) write(name, name);
    curves_ = {.calibration = path("correction.cal"), .icc = path("correction.icc")};
    two_tables_ = {.profile = path("display.icc"), .cube = path("a b.cube")};
  }
  session here(const std::string& type, const std::string& desktop, const std::string& search) const {
    session s{.type = type, .desktop = desktop, .path = search};
    (type == "x11" ? s.x_display : s.wayland) = ":0";
    if (desktop == "sway") s.sway_socket = "/run/sway";
    if (desktop == "gamescope") s.gamescope = "gamescope-0";
    return s;
  }
  std::string load(const load_plan& p) { return run_commands(p.load, o_, stop_).words; }
  std::string undo(const load_plan& p) { return run_commands(p.undo, o_, stop_).words; }

  loadable curves_, two_tables_;
  load_options o_;
};

TEST_F(Loading, FindsWhoOwnsThePlace) {
  const std::string all = only({"dispwin", "xcalib", "colormgr", "swaymsg"});
  const struct {
    const char *type, *desktop;
    bool curves;
    loader by;
    const char* file;
  } rows[] = {{"x11", "XFCE", true, loader::dispwin, "correction.cal"},
              {"x11", "KDE", false, loader::colormgr, "display.icc"},
              {"wayland", "sway", false, loader::swaymsg, "display.icc"},
              {"wayland", "sway", true, loader::swaymsg, "correction.icc"},
              {"wayland", "ubuntu:GNOME", true, loader::colormgr, "correction.icc"},
              {"wayland", "KDE", true, loader::nobody, ""},
              {"wayland", "gamescope", false, loader::nobody, ""}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.desktop);
    const loader_choice c = choose_loader(r.curves ? curves_ : two_tables_, here(r.type, r.desktop, all));
    EXPECT_EQ(c.by, r.by);
    EXPECT_EQ(c.file, *r.file == '\0' ? "" : path(r.file));
  }
  std::filesystem::remove(path("bin/dispwin"));
  EXPECT_EQ(choose_loader(curves_, here("x11", "", all)).by, loader::xcalib) << "the next best";
  EXPECT_EQ(place_of({.type = "tty", .x_display = ":0"}), place::x11) << "started by hand";
  EXPECT_EQ(place_of({.type = "tty"}), place::none);
}

TEST_F(Loading, SaysWhatToDoByHand) {
  const struct {
    const char *type, *desktop;
    bool curves;
    std::string words;
  } rows[] = {
      {"x11", "", true, "dispwin -d 1 " + path("correction.cal")},
      {"x11", "", false, path("display.icc")},
      {"wayland", "sway", false, "output NAME color_profile icc \"" + path("display.icc") + '"'},
      {"wayland", "GNOME", true, path("correction.icc")},
      {"wayland", "KDE", false, path("display.icc")},
      {"wayland", "Hyprland", false, "monitor = NAME, preferred, auto, 1, icc, " + path("display.icc")},
      {"wayland", "gamescope", false, "gamescopectl set_look '" + path("a b.cube") + "'"},
      {"wayland", "gamescope", true, "This correction has no file that gamescope loads; export cube3d from it."},
      {"tty", "", true,
       "There is no graphical session here. Run this again in a terminal on the display's own desktop."}};
  for (const auto& r : rows) {
    SCOPED_TRACE(std::string(r.type) + ' ' + r.desktop);
    session s = here(r.type, r.desktop, path("bin"));
    if (s.type == "tty") s.wayland.clear();
    const load_plan p = plan_loading(r.curves ? curves_ : two_tables_, s, o_, stop_);
    EXPECT_TRUE(p.load.empty());
    ASSERT_FALSE(p.by_hand.empty());
    EXPECT_EQ(p.by_hand.back(), r.words);
    EXPECT_EQ(ask_status(curves_, s, o_, stop_).is, presence::unknown);
  }
}

TEST_F(Loading, LoadsTheVideoTableAndPutsItBack) {
  const session s = here("x11", "", only({"dispwin"}));
  write("loaded.cal", "what was there");
  o_ = {.display = "2", .backup = path("before.cal")};
  EXPECT_EQ(ask_status(curves_, s, o_, stop_).is, presence::not_loaded);
  const load_plan p = plan_loading(curves_, s, o_, stop_);
  EXPECT_EQ(load(p), "");
  EXPECT_EQ(ask_status(curves_, s, o_, stop_).is, presence::loaded);
  EXPECT_EQ(load(plan_loading(curves_, s, o_, stop_)), "") << "again: the backup stays what was there first";
  EXPECT_EQ(undo(p), "");
  EXPECT_EQ(content("loaded.cal"), "what was there");
  EXPECT_NE(content("log").find("dispwin -d 2 " + path("correction.cal") + "\n"), std::string::npos)
      << content("log");
  set("FAKE_DISPWIN", "blind");
  const load_status blind = ask_status(curves_, s, o_, stop_);
  EXPECT_EQ(blind.is, presence::unknown);
  EXPECT_EQ(blind.words, "dispwin ended with status 1: dispwin: no access to the video table");
}

TEST_F(Loading, LoadsByXcalib) {
  const session s = here("x11", "", only({"xcalib"}));
  o_.display = "2";
  const load_plan p = plan_loading(curves_, s, o_, stop_);
  EXPECT_EQ(load(p), "");
  EXPECT_EQ(undo(p), "");
  EXPECT_EQ(content("log"), "xcalib -s 1 " + path("correction.icc") + "\nxcalib -s 1 -c\n") << "it counts from 0";
  EXPECT_EQ(ask_status(curves_, s, o_, stop_).is, presence::unknown);
}

TEST_F(Loading, TellsSwayInItsOwnQuotes) {
  const session s = here("wayland", "sway", only({"swaymsg"}));
  two_tables_.profile = path("my \"display\".icc");
  const load_plan p = plan_loading(two_tables_, s, o_, stop_);
  EXPECT_EQ(p.where, "sway's profile of DP-1 (Maker One 7)") << "the only output that is on";
  EXPECT_EQ(load(p), "");
  EXPECT_EQ(undo(p), "");
  EXPECT_EQ(content("log"), "<-t><get_outputs><-r>\n<output><\"DP-1\"><color_profile><icc><\"" +
                                path("my \\\"display\\\".icc") + "\">\n<output><\"DP-1\"><color_profile><srgb>\n");
  EXPECT_EQ(ask_status(two_tables_, s, o_, stop_).words, "swaymsg does not tell what is loaded");
}

TEST_F(Loading, MakesAProfileTheDefaultOfColord) {
  const session s = here("wayland", "GNOME", only({"colormgr"}));
  EXPECT_EQ(ask_status(curves_, s, o_, stop_).is, presence::not_loaded) << "no profile at all";
  write("colord/profiles/old.icc", "old");
  std::filesystem::create_symlink(path("colord/profiles/old.icc"), path("colord/default"));
  EXPECT_EQ(ask_status(curves_, s, o_, stop_).is, presence::not_loaded);
  const load_plan p = plan_loading(curves_, s, o_, stop_);
  EXPECT_EQ(p.where, "colord's profile of xrandr-1 (Model 1)");
  EXPECT_EQ(load(p), "");
  EXPECT_EQ(ask_status(curves_, s, o_, stop_).is, presence::loaded);
  const load_plan again = plan_loading(curves_, s, o_, stop_);
  EXPECT_EQ(again.load.size(), 2U) << "it is known already, so it is not imported";
  EXPECT_EQ(load(again), "") << "nor does it matter that it was added before";
  EXPECT_EQ(undo(p), "");
  EXPECT_EQ(ask_status(curves_, s, o_, stop_).is, presence::not_loaded);
  set("FAKE_DISPLAYS", "2");
  EXPECT_EQ(plan_loading(curves_, s, o_, stop_).by_hand.front(),
            "Say which display is meant; colormgr knows xrandr-1 (Model 1), xrandr-2 (Model 2).");
  for (const auto& [asked, found] :
       {std::pair{"2", "xrandr-2"}, {"Model 2", "xrandr-2"}, {"xrandr", ""}, {"3", ""}}) {
    o_.display = asked;
    EXPECT_EQ(plan_loading(curves_, s, o_, stop_).where.find(found) != std::string::npos, true) << asked;
    EXPECT_EQ(plan_loading(curves_, s, o_, stop_).by_hand.empty(), *found != '\0') << asked;
  }
}

}  // namespace
}  // namespace corvantile::measuring
