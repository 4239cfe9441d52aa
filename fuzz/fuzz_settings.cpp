// The settings reader, the judging of what it read, and the echo.

#include <cstddef>
#include <cstdint>
#include <sstream>

#include "corvantile/documents/settings_text.hpp"
#include "corvantile/documents/table_files.hpp"
#include "corvantile/utils/text.hpp"
#include "fuzz/expect.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvantile;
  using namespace corvantile::fuzz;

  opts p;
  const auto refused_as_setting = [](const auto& f) {
    const auto stop = stop_of(f);
    if (stop) expect(stop->kind == fault::setting, "settings without a result are refused as such");
    return stop.has_value();
  };
  if (refused_as_setting([&] { p = read_opts(as_text(data, size)); })) return 0;
  const std::string text = opts_text(p);
  expect(opts_text(read_opts(text)) == text, "settings written out are read as the same");

  if (const auto stop = stop_of([&] { name_mode(p); }))
    expect(stop->kind == fault::no_mode || stop->kind == fault::unknown_mode, "a mode is missing or unknown");
  std::ostringstream out;
  fill_xytable(p.set, out);
  end_outdir_with_slash(p);
  expect(p.outdir.size() <= longest_name, "a directory's name is cut to its length");
  expect(echo(p).ends_with("\n\n"), "the echo ends with an empty line");
  refused_as_setting([&] { check_outdir(p); });
  for (const bool power_law : {false, true}) refused_as_setting([&] { check_settings(p.set, power_law); });
  return 0;
}
