#pragma once
// The fitted model of one display: building it and evaluating it.
//
// The model has three spaces, each with one value per channel (red, green, blue) or per tristimulus value (X, Y, Z):
//   input          drive value, 0 (off) to 1 (full drive)
//   monitor value  the channel's dark-corrected Y over its dark-corrected Y at full drive, 0 to 1
//   output         CIE 1931 XYZ in the units of the measurements, dark light included
// For inputs u_c (after the front end, if there is one) and with c over red, green and blue, the model is
//   m_c = inpcurve_c(u_c)
//   X   = sum of Xmax_c xcurve_c(m_c) + darklight_X
//   Y   = sum of Ymax_c m_c           + darklight_Y
//   Z   = sum of Zmax_c zcurve_c(m_c) + darklight_Z
// Transforms come in pairs: `_vec` for one triple and `_mat` for an n x 3 batch, one triple per row, with the same
// bits for each row. They do not clamp their arguments: curves and tables continue beyond their ends.

#include <array>
#include <iosfwd>
#include <optional>
#include <string>

#include "corvantile/monitor/measurements.hpp"
#include "corvantile/numerics/matrix.hpp"
#include "corvantile/numerics/ppoly.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {

/// A correction chain in front of a display: input -> pre-table per channel -> matrix -> post-table per channel.
struct front_end {
  std::array<lut, 3> pre;
  std::array<lut, 3> post;
  mat3 matrix;
  bool clips = false;  ///< whether values between matrix and post-table are held in 0..1
  friend bool operator==(const front_end&, const front_end&) = default;
};

/// The model. After `makemonitor`, every curve is defined on [0, 1], and the columns of the ramps start at exactly 0.
struct monitor {
  std::string name;     ///< the measurement file's name, at most 256 characters
  int nramp = 0;        ///< levels in each ramp
  int nextra = 0;       ///< samples after the ramps
  int numsegs = 0;      ///< requested pieces of every fitted curve
  double minslope = 0;  ///< least slope of the tone curves
  matrix rgb;           ///< rows x 3: each sample's drive values over the largest in the file
  matrix xyz;           ///< rows x 3: each sample's X, Y, Z as measured
  matrix rampin;        ///< nramp x 3: inputs of each channel's ramp, zero drive first
  matrix rampy;         ///< nramp x 3: their monitor values
  matrix rampx;         ///< nramp x 3: dark-corrected X over `Xmax`
  matrix rampz;         ///< nramp x 3: dark-corrected Z over `Zmax`
  vec3 whitepoint;      ///< X, Y, Z of full white, dark light included
  vec3 darklight;       ///< X, Y, Z at zero drive: mean over the last samples of all ramps
  vec3 Xmax;            ///< per channel: dark-corrected X at full drive
  vec3 Ymax;
  vec3 Zmax;
  vec3 nX;                        ///< per channel: a of X / Xmax = (1 - a) m + a m^2
  vec3 nZ;                        ///< per channel: the same for Z
  mat3 RGB2XYZ;                   ///< column c is (Xmax, Ymax, Zmax) of channel c
  mat3 XYZ2RGB;                   ///< its inverse
  std::array<ppoly, 3> inpcurve;  ///< per channel: input -> monitor value, never falling
  std::array<ppoly, 3> xcurve;    ///< per channel: monitor value -> X / Xmax
  std::array<ppoly, 3> zcurve;    ///< per channel: monitor value -> Z / Zmax
  bool composite = false;         ///< whether `fe` precedes the display
  front_end fe;
  front_end ife;  ///< the inverse of `fe`
};

// ---- Building a model (quadmon.cpp) ----

/// Fits the model. Every curve gets `numsegs` pieces (5 if absent); `minslope` bounds the tone curves only. Throws
/// `fault::content` if the samples give no model: a value is not finite, a channel is no brighter than the dark, or
/// the primaries lie on one line. If a channel's X or Z has no range to form a ratio, or its fitted curve is not
/// finite, that component gets the identity as its curve and 0 as its quadratic coefficient.
monitor makemonitor(const measurements& samples, std::optional<int> numsegs = {}, double minslope = 0.0);

// ---- Evaluating it (transforms.cpp) ----

vec3 inp2mon_vec(const monitor& mon, const vec3& inp);
matrix inp2mon_mat(const monitor& mon, const matrix& inp);

vec3 mon2out_vec(const monitor& mon, const vec3& m);
matrix mon2out_mat(const monitor& mon, const matrix& m);

vec3 inp2out_vec(const monitor& mon, const vec3& inp);
matrix inp2out_mat(const monitor& mon, const matrix& inp);

/// Inverts the tone curves by bisection on [0, 1] to 1e-12. A monitor value out of reach gives the nearer bound.
vec3 mon2inp_vec(const monitor& mon, const vec3& m);
matrix mon2inp_mat(const monitor& mon, const matrix& m);

// ---- Front ends (front_end.cpp) ----

vec3 femap_vec(const front_end& fe, const vec3& u);
matrix femap_mat(const front_end& fe, const matrix& u);

/// Sets the parts that are given and leaves the others. `pre` and `post` are sampled tables of at least two rows.
void set3chluts(front_end& fe, const matrix* pre, const matrix* post = nullptr, const mat3* matrix3 = nullptr);

/// The chain that undoes `fe`: its tables with their axes swapped, in the opposite order, and the inverse matrix. It
/// never clips. Exact up to interpolation if the tables rise strictly. A singular matrix gives values that are not
/// finite.
front_end make_inverse_frontend(const front_end& fe);

/// A copy of `mon` that has `fe` in front of it.
monitor monwfe(const monitor& mon, const front_end& fe);

// ---- Held ready: no job calls these ----

/// Repairs the dark end of a sampled curve. For six samples (x, y), counted from 1, returns the values at the first
/// five of the cubic A x^2 + B x^3 that meets sample 5 with the slope of the chord from sample 5 to 6.
std::array<double, 5> fixlowend(const std::array<double, 6>& x, const std::array<double, 6>& y);

/// Prints the model's name, colours and matrices to `out`.
void dumpmon(std::ostream& out, const monitor& mon);

/// `mon2out` with the one-parameter quadratics instead of the curves.
vec3 quadmon2out_vec(const monitor& mon, const vec3& m);
matrix quadmon2out_mat(const monitor& mon, const matrix& m);

/// The monitor values that show `xyz` under the quadratics: the first two as the intersection of two conics, kept in
/// [0, 1]; the third from Y, clamped. `error`, if given, receives the squared XYZ distance. Values are not finite if
/// the blue channel's Ymax is 0.
vec3 quad_out2mon(const monitor& mon, const vec3& xyz, double* error = nullptr);

/// Maps through a sampled table, n x 3, with row i for the input i / (n - 1). Rebuilds its tables on every call.
vec3 lutmap_vec(const matrix& table, const vec3& u);
matrix lutmap_mat(const matrix& table, const matrix& u);

/// Maps through the inverse of such a table, which should rise strictly. A column that neither rises nor falls
/// strictly has no inverse and gives NaN.
vec3 invlutmap_vec(const matrix& table, const vec3& u);
matrix invlutmap_mat(const matrix& table, const matrix& u);

/// Writes the requested parts as sampled tables, with as many rows as the first channel's table has points.
void get3chluts(const front_end& fe, matrix* pre, matrix* post = nullptr, mat3* matrix3 = nullptr);

}  // namespace corvantile
