#pragma once
// Readings from any file that an instrument's program wrote. The content tells the kind, not the name.

#include <optional>
#include <string>
#include <string_view>

#include "corvantile/formats/source.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile {

enum class source_kind { ti3, cgats, csv, hcfr, corvantile };

/// The kind of that name (`ti3`, `cgats`, `csv`, `hcfr`, `corvantile`); nothing for any other.
std::optional<source_kind> kind_named(std::string_view name);

/// What the text seems to be: a table (`csv`) if it shows no sign of another kind.
source_kind kind_of(std::string_view text);

struct reading_options {
  std::optional<source_kind> from;  ///< overrides what the content says
  std::string layout;               ///< order of the ramps in a table of 12 columns without a header, such as "rgbw"
};

/// Reads `first`, and for HCFR the sheet that goes with it. Throws `fault::content`, with file, line, value and what
/// to do, if there are no readings, or if `second` is given with another kind.
readings read_readings(const source& first, const std::optional<source>& second = {},
                       const reading_options& options = {});

}  // namespace corvantile
