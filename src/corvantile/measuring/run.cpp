#include "corvantile/measuring/run.hpp"

#include <algorithm>
#include <fmt/core.h>
#include <iterator>

#include "corvantile/measuring/checksum.hpp"
#include "corvantile/measuring/clock.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile::measuring {
namespace {

constexpr vec3 white{{1, 1, 1}};

std::vector<vec3> light_of(std::span<const journal_entry> of_patch) {
  std::vector<vec3> light(of_patch.size());
  std::ranges::transform(of_patch, light.begin(), &journal_entry::xyz);
  return light;
}

// What all readings of a patch are together.
measured_patch patch_of(std::span<const journal_entry> of_patch) {
  return {of_patch.front().drive, median_of(light_of(of_patch)), of_patch.size(), of_patch.front().again};
}

// A run in progress.
class runner {
 public:
  runner(std::span<const chart_patch> chart, const run_parts& parts, const run_options& options, journal& into,
         journal_content& so_far, stop_signals& stop)
      : chart_(chart),
        parts_(parts),
        options_(options),
        into_(into),
        so_far_(so_far),
        stop_(stop),
        finished_(patches_of(so_far)),
        done_before_(finished_.size()) {
    for (const journal_entry& e : so_far.entries)
      if (e.position >= chart.size() || e.drive != chart[e.position].drive)
        refuse_content("journal", fmt::format("patch {} is not of this chart", e.position + 1));
    for (const measured_patch& p : finished_) note(p);
  }

  report run() {
    while (finished_.size() < chart_.size()) {
      if (report patch = measure_patch(finished_.size()); !patch.ok()) return patch;
      tell();
    }
    return {};
  }

 private:
  // The white's Y, or the largest so far, for what is dark.
  void note(const measured_patch& p) {
    brightest_ = p.drive == white ? p.xyz[1] : std::max(brightest_, p.xyz[1]);
    if (p.drive != white) return;
    if (!first_white_) first_white_ = p.xyz[1];
    last_white_ = p.xyz[1];
  }

  report measure_patch(std::size_t position) {
    const vec3 drive = chart_[position].drive;
    const std::optional<vec3> expected = expectation(drive);
    std::vector<journal_entry> of_patch;  // some may have been read before the run was ended
    std::ranges::copy_if(so_far_.entries, std::back_inserter(of_patch),
                         [&](const journal_entry& e) { return e.position == position; });
    do {
      instrument_reading r = show_and_read(drive);
      if (!r.status.ok()) return r.status;
      of_patch.push_back({position, drive, *r.xyz, {}});
      const double white_light = std::max(brightest_, (*r.xyz)[1]);
      of_patch.back().again = why_again(light_of(of_patch), expected, white_light, options_.rule);
      into_.append(of_patch.back());
      so_far_.entries.push_back(of_patch.back());
    } while (!of_patch.back().again.empty());
    finished_.push_back(patch_of(of_patch));
    note(finished_.back());
    return {};
  }

  // The mean of its earlier readings, else what the model says.
  std::optional<vec3> expectation(const vec3& drive) const {
    vec3 sum;
    double count = 0;
    for (const measured_patch& p : finished_) {
      if (p.drive != drive) continue;
      sum = sum + p.xyz;
      ++count;
    }
    if (count > 0) return (1 / count) * sum;
    return parts_.expect ? parts_.expect(drive, finished_) : std::nullopt;
  }

  instrument_reading show_and_read(const vec3& drive) {
    constexpr int patient = 10;
    for (int attempt = 0; attempt < patient; ++attempt) {
      if (report shown = show(drive); !shown.ok()) return {.xyz = {}, .status = shown};
      if (!on_screen()) continue;
      instrument_reading r = read();
      if (!r.status.ok() || on_screen()) return r;
    }
    return {.xyz = {}, .status = {outcome::failed, "the screen loses the patch again and again while it is read"}};
  }

  report show(const vec3& drive) {
    if (options_.between) {
      if (report gray = parts_.shown_by.show(*options_.between); !gray.ok()) return gray;
      if (!stop_.pause(options_.between_time)) return interrupted();
    }
    if (report patch = parts_.shown_by.show(drive); !patch.ok()) return patch;
    return stop_.pause(options_.settle) ? report{} : interrupted();
  }

  static report interrupted() { return {outcome::interrupted, "the run was interrupted"}; }
  bool on_screen() const { return !parts_.shown_by.still_shown || parts_.shown_by.still_shown(); }

  instrument_reading read() const {
    instrument_reading r = parts_.read();
    if (r.status.how == outcome::failed && r.again_may_help) r = parts_.read();
    return r;
  }

  void tell() const {
    if (!parts_.tell) return;
    const auto now_done = finished_.size();
    const double spent = std::chrono::duration<double>(steady::now() - started_).count();
    const double each = spent / static_cast<double>(now_done - done_before_);
    progress p{.done = now_done, .of = chart_.size(), .seconds_left = 0, .drift = {}, .last = finished_.back()};
    p.seconds_left = each * static_cast<double>(chart_.size() - now_done);
    if (first_white_ && *first_white_ > 0) p.drift = 100 * (last_white_ / *first_white_ - 1);
    parts_.tell(p);
  }

  std::span<const chart_patch> chart_;
  const run_parts& parts_;
  const run_options& options_;
  journal& into_;
  journal_content& so_far_;
  stop_signals& stop_;
  std::vector<measured_patch> finished_;
  std::size_t done_before_;
  steady::time_point started_ = steady::now();
  std::optional<double> first_white_;
  double last_white_ = 0, brightest_ = 0;
};

// A generator of our own (splitmix64, Steele, Lea and Flood, OOPSLA 2014): the same order on every machine.
std::uint64_t next_random(std::uint64_t& state) {
  std::uint64_t z = (state += 0x9e3779b97f4a7c15U);
  z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9U;
  z = (z ^ (z >> 27U)) * 0x94d049bb133111ebU;
  return z ^ (z >> 31U);
}

}  // namespace

report measure(std::span<const chart_patch> chart, const run_parts& parts, const run_options& options, journal& into,
               journal_content& so_far, stop_signals& stop) {
  return runner(chart, parts, options, into, so_far, stop).run();
}

std::vector<measured_patch> patches_of(const journal_content& content) {
  std::vector<measured_patch> patches;
  std::span<const journal_entry> rest = content.entries;
  for (std::size_t n = 0; n < rest.size();) {
    if (!rest[n++].again.empty()) continue;
    patches.push_back(patch_of(rest.first(n)));
    rest = rest.subspan(n);
    n = 0;
  }
  return patches;
}

std::vector<chart_patch> reordered(std::span<const chart_patch> chart, std::uint64_t seed) {
  std::vector<chart_patch> order(chart.begin(), chart.end());
  if (seed == 0) return order;
  std::vector<std::size_t> places;  // of what may move
  for (std::size_t i = 0; i < order.size(); ++i)
    if (order[i].drive != white && order[i].drive != vec3{}) places.push_back(i);
  for (std::size_t n = places.size(); n > 1; --n)
    std::swap(order[places[n - 1]], order[places[next_random(seed) % n]]);
  return order;
}

std::vector<fact> facts_of(std::span<const chart_patch> chart, const run_description& about) {
  std::string drives;
  for (const chart_patch& p : chart) drives += fmt::format("{} {} {}\n", p.drive[0], p.drive[1], p.drive[2]);
  std::vector<fact> facts{{std::string(chart_fact), fmt::format("{} ({} patches)", checksum(drives), chart.size())}};
  for (const auto& [key, value] : {fact{"date", about.date}, fact{"instrument", about.instrument},
                                   fact{"shown_by", about.shown_by}, fact{"display", about.display}})
    if (!value.empty()) facts.push_back({key, value});
  return facts;
}

}  // namespace corvantile::measuring
