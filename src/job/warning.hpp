#pragma once
// Results that were made but are not to be trusted.

#include <string>
#include <string_view>

namespace corvantile {

/// What is wrong. `name_of` gives the name by which programs know it.
enum class caution {
  table_not_filled,  ///< the gray match made no table
};

/// A name of lower-case words and hyphens, such as "table-not-filled".
std::string_view name_of(caution kind);

/// The kind, and a sentence or two for people: key or sample, value, what it means, what to do.
struct warning {
  caution kind;
  std::string message;
};

}  // namespace corvantile
