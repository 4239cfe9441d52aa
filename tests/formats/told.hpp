#pragma once
// Readings and refusals as short texts, to compare.

#include <string>

#include "corvantile/readings/readings.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {

inline std::string told(const vec3& v) { return free_format(v[0]) + free_format(v[1]) + free_format(v[2]); }

/// One " r g b = X Y Z;" a reading.
inline std::string rows_of(const readings& r) {
  std::string s;
  for (const reading& row : r.rows) s += told(row.drive) + " =" + told(row.xyz) + ";";
  return s;
}

inline std::string notes_of(const readings& r) {
  std::string s;
  for (const std::string& note : r.notes.sentences()) s += note + "\n";
  return s;
}

/// Why `read` refuses; empty where it does not.
template <class F>
std::string refusal(const F& read) {
  try {
    read();
    return {};
  } catch (const failure& refused) {
    return refused.kind == fault::content ? refused.message : "another fault: " + refused.message;
  }
}

}  // namespace corvantile
