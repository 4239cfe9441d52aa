#pragma once
// Sentences about a correction, for the page and the terminal.

#include <string>
#include <vector>

#include "corvantile/appraisal/job_figures.hpp"
#include "corvantile/appraisal/verification.hpp"

namespace corvantile {

/// The name of a patch: "drive 50 %" for a gray, "cyan" for a mixture at full drive, else "25, 50, 75 %".
std::string patch_name(const vec3& drive);

/// How grays with such differences follow their target: "very closely", ...
const char* how_close(const difference_summary& gray);

/// The verdict at the top of the page: grays, luminance, primaries.
std::string verdict_of(const job_figures& f);

/// The verdict of a verification, about the grays.
std::string verdict_of(const verification& v);

/// Paragraphs about how the tables were loaded, the figures behind that, and what else the two measurements show.
std::vector<std::string> diagnosis_of(const verification& v);

}  // namespace corvantile
