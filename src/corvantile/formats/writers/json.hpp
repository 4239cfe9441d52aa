#pragma once
// All tables with their axes as one JSON object, for any other program: exact for every correction.

#include <string>

#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// Keys: `format` ("corvantile-tables"), `version` (1), `title`, `comments`, `order` (of the parts as applied),
/// and each part: `pre` and `post` with `axis`, `red`, `green`, `blue` (equally long lists of numbers), `matrix` with
/// three rows. A gray-axis job has `post` only. Every digit of a double is kept.
std::string json_file(const device_tables& tables, const description& about);

}  // namespace corvantile
