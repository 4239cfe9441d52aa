#pragma once
// Sentences about a correction, for the page and for the terminal.

#include <string>
#include <vector>

#include "corvantile/appraisal/job_figures.hpp"
#include "corvantile/appraisal/verification.hpp"

namespace corvantile {

/// A patch by its drive: "drive 50 %", "cyan" for a mixture at full drive, else "25, 50, 75 %".
std::string patch_name(const vec3& drive);

/// How closely grays of such differences follow their target, as an adverb.
const char* how_close(const difference_summary& gray);

/// What the page begins with: grays, luminance, primaries.
std::string verdict_of(const job_figures& f);

/// What a verification says about the grays, as a sentence.
std::string verdict_of(const verification& v);

/// How the tables were loaded, with the figures that say so, and what else the two measurements tell; a paragraph
/// each.
std::vector<std::string> diagnosis_of(const verification& v);

}  // namespace corvantile
