// The reader of HCFR's sheets. A line of five equals signs begins the second sheet.

#include <cstddef>
#include <cstdint>

#include "corvantile/formats/hcfr.hpp"
#include "fuzz/number_mutator.hpp"
#include "fuzz/sound_readings.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvantile;
  using namespace corvantile::fuzz;

  constexpr std::string_view between = "=====\n";
  const std::string_view text = as_text(data, size);
  const std::size_t end = text.find(between);
  const source first{"source", std::string(text.substr(0, end))};
  std::optional<source> second;
  if (end != std::string_view::npos) second = {"second", std::string(text.substr(end + between.size()))};
  expect_read_or_refused([&] { return read_hcfr(first, second); }, size);
  return 0;
}
