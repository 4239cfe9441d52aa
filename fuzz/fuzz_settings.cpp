// The settings reader, the judging of what it read, and the echo.

#include <cstddef>
#include <cstdint>
#include <sstream>

#include "driver/settings.hpp"
#include "fuzz/expect.hpp"
#include "fuzz/profile.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvantile;
  using namespace corvantile::fuzz;

  settings set;
  if (const auto stop = stop_of([&] { set = read_settings(as_text(data, size)); })) {
    expect(stop->status == 4, "unreadable settings have status 4");
    return 0;
  }
  const std::string text = profile_of(set);
  expect(profile_of(read_settings(text)) == text, "settings written out are read as the same");

  auto mode = match_mode::cv1;
  if (const auto stop = stop_of([&] { mode = mode_of(set); }))
    expect(stop->status == 1 || stop->status == 2, "a missing or unknown mode has status 1 or 2");
  if (const auto stop = stop_of([&] { require_wgfile(set); }))
    expect(stop->status == 3, "a missing measurement file has status 3");
  std::ostringstream out;
  fill_xytable(set, out);
  end_outdir_with_slash(set);
  expect(set.outdir.size() <= 256, "a directory's name is cut to its length");
  expect(echo(set).ends_with("\n\n"), "the echo ends with an empty line");
  maxcode(set);
  for (const bool power_law : {false, true}) {
    if (const auto stop = stop_of([&] { check_settings(set, mode, power_law); }))
      expect(stop->status == 4, "settings without a result have status 4");
  }
  return 0;
}
