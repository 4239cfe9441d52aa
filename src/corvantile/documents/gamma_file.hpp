#pragma once
// The gamma-curve file: a count n, then n pairs of drive value and luminance, in free format and any unit.

#include <optional>
#include <string>
#include <string_view>

#include "corvantile/job/tone_samples.hpp"

namespace corvantile {

/// Reads the file. Nothing when it cannot be opened, which is no error in itself. Throws `fault::content` with the
/// file's name and the line for bad or missing numbers.
std::optional<tone_samples> load_tone_samples(const std::string& name);

/// The same for the text of such a file; `name` names it in messages.
tone_samples parse_tone_samples(const std::string& name, std::string_view text);

}  // namespace corvantile
