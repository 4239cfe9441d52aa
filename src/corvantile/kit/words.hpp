#pragma once
// Sentences for a terminal.

#include <cstddef>
#include <string>
#include <string_view>

#include "corvantile/appraisal/check.hpp"

namespace corvantile::kit {

/// `text` in lines of at most `width` characters, each indented by `margin` blanks, as far as its words allow.
std::string wrapped(std::string_view text, std::size_t margin, std::size_t width = 80);

/// "note", "warning" or "error".
std::string_view name_of(severity level);

}  // namespace corvantile::kit
