#pragma once
// Gamma files and files of gray factors: a count n, then n points of a few numbers each, in free format.
//
// A point is a drive value and a luminance (gamma file), or a drive value and the factors of X, Y and Z. Drive values
// and luminances may be in any unit. `name` is the file's name for messages. Every function throws `fault::content`,
// with file and line, for bad or missing numbers and for fewer than two points.

#include <optional>
#include <string>
#include <string_view>

#include "corvantile/colour/gray_factors.hpp"
#include "corvantile/job/tone_samples.hpp"

namespace corvantile {

/// Reads a gamma file; std::nullopt if it cannot be opened, which is for the caller to judge.
std::optional<tone_samples> load_tone_samples(const std::string& name);
tone_samples parse_tone_samples(const std::string& name, std::string_view text);

/// Reads a file of gray factors. Throws `fault::content` also if it cannot be opened, and as `make_gray_factors`
/// does.
gray_factors load_gray_factors(const std::string& name);
gray_factors parse_gray_factors(const std::string& name, std::string_view text);

/// The text of a file of gray factors.
std::string gray_factors_text(const gray_factors& factors);

}  // namespace corvantile
