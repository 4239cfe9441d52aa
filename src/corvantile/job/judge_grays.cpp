#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/job/judgements.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// A search that ends farther than this from its gray, relative to the luminance, has missed it. Searches that succeed
// end a thousand times nearer.
constexpr double missed = 2e-3;
// A drive value that falls by more from one row to the next is a jump, not rounding.
constexpr double fall = 1e-3;
// The share of luminance that a swath may cost without a warning. The search itself is much more accurate.
constexpr double lost_light = 1e-3;

// How far the found drive values are from their gray: XYZ distance over its luminance.
double miss(const gray_level& level) { return std::sqrt(level.left) / level.target[1]; }

// Whether the linear model needs no negative channel. The display can show nothing below the dark.
bool in_reach(const monitor& mon, const gray_level& level) {
  vec3 linear = mon.XYZ2RGB * (level.target - mon.darklight);
  if (mon.composite) linear = mon.ife.matrix * linear;
  return std::ranges::all_of(linear.v, [](double v) { return v >= 0; });
}

std::string white_text(const settings& set) {
  if (set.white) return "white = " + short_pair((*set.white)[0], (*set.white)[1]);
  return "the display's own white";
}

std::string advice_on_restart(const settings& set) {
  const std::string pieces = "use fewer pieces than numsegs = " + std::to_string(set.numsegs);
  return (set.restart ? "" : "set restart = 1, ") + pieces + ", or measure more levels";
}

// One search: for the whole ramp, or for the white that its top shades to. `what` names the white.
class judged_search {
 public:
  judged_search(const settings& set, const monitor& display, const gray_search& search, std::string what)
      : set_(set), display_(display), search_(search), what_(std::move(what)) {}

  std::vector<finding> warnings(std::optional<double> temperature) const {
    std::vector<finding> found;
    const bool swath = temperature && set_.hwid > 0;
    const std::optional<ramp_top> plain = swath ? std::optional(ramptop_temp(display_, *temperature)) : std::nullopt;
    if (!search_.top.reached) {
      found.push_back(out_of_reach(plain && plain->reached));
      return found;  // then the levels mean nothing
    }
    if (plain && plain->reached && search_.top.xyz[1] < (1 - lost_light) * plain->xyz[1]) {
      found.push_back(dark_swath(*plain));
    }
    if (!not_found(found)) falls(found);
    return found;
  }

 private:
  finding out_of_reach(bool without_swath) const {
    return {"white-out-of-reach", severity::warning,
            what_ + ": the display cannot show this white at any level that was tried, so the table is useless",
            without_swath
                ? "make hwid smaller, or 0: without hwid (" + short_number(set_.hwid) + ") the display can show it"
                : "choose a white nearer the display's own"};
  }

  finding dark_swath(const ramp_top& plain) const {
    return {"dark-swath", severity::warning,
            "hwid = " + short_number(set_.hwid) + " (" + what_ + "): the brightest gray has Y " +
                short_number(search_.top.xyz[1]) + ", without hwid " + short_number(plain.xyz[1]) +
                "; the search across the locus ended on a darker white",
            "make hwid smaller, or 0"};
  }

  bool is_missed(std::size_t i) const {
    const gray_level& level = search_.levels[i];
    return level.left > reachable && miss(level) > missed && in_reach(display_, level);
  }

  bool not_found(std::vector<finding>& found) const {
    const std::size_t n = search_.levels.size();
    std::string rows;
    std::size_t worst = 0, ranges = 0;
    double most = 0;
    for (std::size_t i = 0; i < n; ++i) {
      if (!is_missed(i)) continue;
      std::size_t last = i;
      for (; last < n && is_missed(last); ++last) {
        if (!(miss(search_.levels[last]) > most)) continue;
        most = miss(search_.levels[last]);
        worst = last;
      }
      constexpr std::size_t most_ranges = 3;
      if (ranges++ < most_ranges) rows += (rows.empty() ? "" : ", ") + row_range(i, last - 1);
      i = last;
      if (ranges > most_ranges && !rows.ends_with("...")) rows += ", ...";
    }
    if (ranges == 0) return false;
    found.push_back({"gray-not-found", severity::warning,
                     "gray table (" + what_ + "), " + rows + " of 0 to " + std::to_string(n - 1) +
                         ": the search missed the gray by up to " + short_percent(most) + " of its luminance (row " +
                         std::to_string(worst) + ")",
                     advice_on_restart(set_)});
    return true;
  }

  void falls(std::vector<finding>& found) const {
    const std::size_t n = search_.levels.size();
    double most = fall;
    std::size_t row = 0, channel = 0;
    for (std::size_t i = n - 1; i-- > 0;) {
      if (static_cast<double>(i) / static_cast<double>(n - 1) < set_.alpha) break;
      for (std::size_t c = 0; c < 3; ++c) {
        const double by = search_.levels[i].inp[c] - search_.levels[i + 1].inp[c];
        if (!(by > most)) continue;
        most = by;
        row = i + 1;
        channel = c;
      }
    }
    if (row == 0) return;
    found.push_back({"gray-falls", severity::warning,
                     "gray table (" + what_ + "), row " + std::to_string(row) + ": " + channel_names[channel] +
                         " falls by " + short_number(most) + " although the gray gets brighter",
                     advice_on_restart(set_)});
  }

  const settings& set_;
  const monitor& display_;
  const gray_search& search_;
  std::string what_;
};

finding not_filled(const settings& set, int status) {
  const std::string where =
      status == 1 ? "alpha = " + short_number(set.alpha) + " is not below beta = " : "beta is above 1: ";
  return {"table-not-filled", severity::warning,
          where + short_number(set.beta) + ", so with temp the gray table is all zeros",
          "set alpha below beta, and beta to at most 1"};
}

}  // namespace

std::vector<finding> judge_grays(const settings& set, const monitor& display, const gray_match& match) {
  std::vector<finding> found;
  if (match.status != 0) found.push_back(not_filled(set, match.status));
  const gray_temperatures at = temperatures_of(gray_ramp_of(set), display);
  const auto judge_one = [&](const gray_search& search, const std::string& what, std::optional<double> temperature) {
    append(found, judged_search(set, display, search, what).warnings(temperature));
  };
  if (match.ramp) judge_one(*match.ramp, at.ramp ? "temp = " + short_number(set.temp) : white_text(set), at.ramp);
  if (match.top) judge_one(*match.top, "wptemp = " + short_number(set.wptemp), at.top);
  if (match.undefined_row) {
    found.push_back({"undefined-row", severity::warning,
                     "beta = " + short_number(set.beta) +
                         ": the shading towards wptemp begins in the last row, row " +
                         std::to_string(*match.undefined_row) + ", so this row is not a number",
                     "lower beta, or leave wptemp out"});
  }
  return found;
}

}  // namespace corvantile
