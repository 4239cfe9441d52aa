// The reader of CSV, TSV and blank-separated tables.

#include <cstddef>
#include <cstdint>

#include "corvantile/formats/delimited.hpp"
#include "fuzz/number_mutator.hpp"
#include "fuzz/sound_readings.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvantile;
  using namespace corvantile::fuzz;

  const std::string_view text = as_text(data, size);
  for (const char* layout : {"", "rgbw", "x"})
    expect_read_or_refused([&] { return read_delimited("source", text, layout); }, size);
  return 0;
}
