#pragma once
// The file of gray factors: a count n, then n times a drive value and the factors of X, Y and Z, in free format.

#include <string>
#include <string_view>

#include "corvantile/colour/gray_factors.hpp"

namespace corvantile {

/// Throws `fault::content` with the file's name: where it cannot be opened, and as `parse_gray_factors` does.
gray_factors load_gray_factors(const std::string& name);

/// The same for the text of such a file; `name` names it in messages. Throws `fault::content` with the line for bad
/// or missing numbers, and for what `make_gray_factors` refuses.
gray_factors parse_gray_factors(const std::string& name, std::string_view text);

/// The text of such a file.
std::string gray_factors_text(const gray_factors& factors);

}  // namespace corvantile
