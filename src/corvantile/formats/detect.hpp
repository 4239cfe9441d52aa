#pragma once
// From any file that an instrument's program wrote to readings: told by the content, not by the name.

#include <optional>
#include <string>
#include <string_view>

#include "corvantile/formats/source.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile {

enum class source_kind { ti3, cgats, csv, hcfr, corvantile };

/// The kind of that name (`ti3`, `cgats`, `csv`, `hcfr`, `corvantile`); nothing for any other.
std::optional<source_kind> kind_named(std::string_view name);

/// What the text seems to be. A table (`csv`) where nothing speaks for another kind; its reader then judges.
source_kind kind_of(std::string_view text);

struct reading_options {
  std::optional<source_kind> from;  ///< instead of what the content says
  std::string layout;               ///< order of the ramps in a table of 12 columns without a header, such as "rgbw"
};

/// Reads `first`, and for HCFR the sheet that goes with it. Throws `fault::content`, with file, line, value and what
/// to do, where there are no readings, and where `second` is given to a kind that stands in one file.
readings read_readings(const source& first, const std::optional<source>& second = {},
                       const reading_options& options = {});

}  // namespace corvantile
