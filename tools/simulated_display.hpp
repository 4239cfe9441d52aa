#pragma once
// A simulated display: what an instrument would read from a panel whose parameters are known exactly.
//
// Everything here is made up, and the file that it writes says so. The same parameters give the same file on every
// machine: the noise comes from a generator of our own, and rounding to the digits of an instrument hides the last
// bit, in which mathematical libraries differ.

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// A display and the instrument in front of it. Drive values are normalised (0..1), luminances are in cd/m2.
///
/// The light of the channels adds up. With m_c the luminance fraction of channel c,
///   Y = sum Ymax_c m_c + dark,  X = sum Xmax_c ((1 - nX_c) m_c + nX_c m_c^2) + dark,  Z likewise with nZ.
/// The dark light has the chromaticity of the white, and so does the first sample.
///
/// Three ways in which the light of real displays does not add up, all off by default:
///   crosstalk k_c        m_c loses the share k_c m_n; n is the next channel (of red, green, blue, red)
///   power_limit k        all light above the dark is scaled by 1 - k (m_red + m_green + m_blue) / 3
///   dynamic_backlight k  all light, including the dark, is scaled by 1 - k (1 - p), with p the mean drive: a dark
///                        picture dims the backlight
/// `white_luminance` and `primaries` are those without crosstalk and limit.
struct simulated_display {
  int levels = 17;                // samples in a ramp, at least 2
  int version = 2;                // of the file: 1 has seven ramps, 2 has four
  int extra = 0;                  // random samples after the ramps
  double white_luminance = 250;   // of the first sample, dark light included
  double black_luminance = 0.25;  // at zero drive
  vec2 red{{0.64, 0.33}};         // chromaticities x, y
  vec2 green{{0.30, 0.60}};
  vec2 blue{{0.15, 0.06}};
  vec2 white{{0.3127, 0.3290}};
  vec3 gamma{{2.2, 2.2, 2.2}};  // exponents of the tone curves
  double toe = 0;               // offset of the power law: above 0 lifts the darkest levels, at most 1
  double s_shape = 0;           // 0 a pure power law, 1 fully bent over near full drive
  vec3 nX{};                    // quadratic shape of X and Z over luminance, -1..1
  vec3 nZ{};
  double noise = 0;              // standard deviation of a reading relative to its light above the dark
  std::uint64_t seed = 1;        // of the noise and of the extra samples
  int digits = 6;                // significant digits of a reading, 1..17
  double drive = 255;            // drive value of full drive, as written to the file
  bool dark_red_z = false;       // a red primary without Z: its Z is exactly that of the dark
  vec3 crosstalk{};              // 0..1
  double power_limit = 0;        // 0..1
  double dynamic_backlight = 0;  // 0..1
};

/// Says what is wrong with the parameters; empty if nothing is.
std::string problem(const simulated_display& d);

/// Luminance fraction of channel c at normalised drive u. Rises from 0 at 0 to 1 at 1.
double tone(const simulated_display& d, std::size_t c, double u);

/// Column c is X, Y, Z of primary c at full drive without the dark light, in cd/m2.
mat3 primaries(const simulated_display& d);

/// X, Y, Z at zero drive.
vec3 dark_light(const simulated_display& d);

/// X, Y, Z shown for a normalised drive triple, without noise or rounding.
vec3 shown(const simulated_display& d, const vec3& drive);

/// The readings as in the file, one sample per row: R, G, B, X, Y, Z. First the ramps (white, red, green, blue; in
/// version 1 also yellow, magenta, cyan), each from full drive down to zero, then the extra samples.
matrix sample_rows(const simulated_display& d);

/// The text of a measurement file: comment lines that call it simulated and list every parameter, then the readings.
std::string measurement_text(const simulated_display& d);

/// What an instrument reads for the drives `asked`, 0 to 1, which reach the display through `loaded`: lines R G B X Y
/// Z under a heading. The drives are those of `asked`; noise and digits are those of `measurement_text`.
std::string readings_table(const simulated_display& d, std::span<const vec3> asked,
                           const std::function<vec3(const vec3&)>& loaded);

/// The parameters that differ from the default, as `key=value` words.
std::string arguments(const simulated_display& d);

/// Sets a parameter from one `key=value` word. Returns what is wrong with it, or an empty text.
std::string set_parameter(simulated_display& d, const std::string& word);

/// One line of help for each parameter: key, default, meaning.
std::string parameter_help();

/// A plausible display for each seed, for tests over many displays: 60 to 1000 cd/m2, small to wide gamut, whites
/// from about 5000 to 10 000 K, tone curves near gamma 2.2, contrast 500 to 5000, little noise.
simulated_display random_display(std::uint64_t seed);

}  // namespace corvantile
