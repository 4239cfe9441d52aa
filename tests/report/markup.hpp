#pragma once
// Judges markup as a strict parser would, for pages and pictures alike.

#include <string>

namespace corvantile {

/// The first fault of `markup`: a tag that is not closed, closes another or has attributes that are not quoted, a
/// stray bracket or ampersand, a character beyond ASCII, an id given twice. Empty when there is none.
std::string fault_of(const std::string& markup);

/// Expects no fault, leaving out what <style> holds, and no attribute that holds a nan, an infinity or an exponent.
void expect_sound(const std::string& markup);

/// Expects nothing that a browser would fetch or run.
void expect_standalone(const std::string& page);

}  // namespace corvantile
