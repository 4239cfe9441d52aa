#include "corvantile/colour/color_metrics.hpp"

#include <cmath>
#include <numbers>

namespace corvantile {

namespace {

using std::numbers::pi;

double square(double x) { return x * x; }

/// sqrt(c^7 / (c^7 + 25^7)): how strongly the chroma-dependent corrections act.
double chroma_weight(double c) {
  const double c2 = c * c;
  const double c7 = c2 * c * (c2 * c2);
  constexpr double pow25_7 = 6103515625.0;
  return std::sqrt(c7 / (c7 + pow25_7));
}

/// Hue angle in [0, 2 pi); 0 for a gray.
double hue(double b, double a) {
  if (a == 0 && b == 0) return 0;
  const double h = std::atan2(b, a);
  return h < 0 ? h + 2 * pi : h;
}

}  // namespace

double cuberoot(double t) {
  // Deliberately the rounded constants 0.008856 and 7.787, not 216/24389 and 841/108.
  return t > 0.008856 ? std::pow(t, 0.3333333333333333) : 7.787 * t + 16.0 / 116.0;
}

static auto xyz2lab(const vec3& white) {
  return [white](const vec3& xyz) {
    const double fx = cuberoot(xyz[0] / white[0]);
    const double fy = cuberoot(xyz[1] / white[1]);
    const double fz = cuberoot(xyz[2] / white[2]);
    return vec3{{116 * fy - 16, 500 * (fx - fy), 200 * (fy - fz)}};
  };
}
vec3 xyz2lab_vec(const vec3& xyz, const vec3& white) { return apply(xyz2lab(white), xyz); }
matrix xyz2lab_mat(const matrix& xyz, const vec3& white) { return apply(xyz2lab(white), xyz); }

double deltae2000_vec(const vec3& lab1, const vec3& lab2, const vec3& k) {
  // Chroma and hue; a* is stretched near the gray axis.
  const double c1 = std::sqrt(square(lab1[1]) + square(lab1[2]));
  const double c2 = std::sqrt(square(lab2[1]) + square(lab2[2]));
  const double G = 0.5 * (1 - chroma_weight((c1 + c2) / 2));
  const double a1 = (1 + G) * lab1[1];
  const double a2 = (1 + G) * lab2[1];
  const double C1 = std::sqrt(square(a1) + square(lab1[2]));
  const double C2 = std::sqrt(square(a2) + square(lab2[2]));
  const double h1 = hue(lab1[2], a1);
  const double h2 = hue(lab2[2], a2);
  const bool gray = C1 * C2 == 0;

  // Differences.
  const double dL = lab2[0] - lab1[0];
  const double dC = C2 - C1;
  double dh = h2 - h1;
  if (gray) {
    dh = 0;
  } else if (dh > pi) {
    dh -= 2 * pi;
  } else if (dh < -pi) {
    dh += 2 * pi;
  }
  const double dH = 2 * std::sqrt(C1 * C2) * std::sin(dh / 2);

  // Means.
  const double L = (lab1[0] + lab2[0]) / 2;
  const double C = (C1 + C2) / 2;
  double h = (h1 + h2) / 2;
  if (gray) {
    h = h1 + h2;
  } else if (std::abs(h1 - h2) > pi) {
    h -= pi;
    if (h < 0) h += 2 * pi;
  }

  // Weights.
  constexpr double deg63 = 1.0995574287564276;
  const double T = 1 - 0.17 * std::cos(h - pi / 6) + 0.24 * std::cos(2 * h) + 0.32 * std::cos(3 * h + pi / 30) -
                   0.20 * std::cos(4 * h - deg63);
  const double dtheta = pi / 6 * std::exp(-square((h * 180 / pi - 275) / 25));
  const double RC = 2 * chroma_weight(C);
  const double RT = -std::sin(2 * dtheta) * RC;
  const double SL = 1 + 0.015 * square(L - 50) / std::sqrt(20 + square(L - 50));
  const double SC = 1 + 0.045 * C;
  const double SH = 1 + 0.015 * C * T;

  const double l = dL / (k[0] * SL);
  const double c = dC / (k[1] * SC);
  const double d = dH / (k[2] * SH);
  return std::sqrt(square(l) + square(c) + square(d) + RT * c * d);
}

std::vector<double> deltae2000_mat(const matrix& lab1, const matrix& lab2, const vec3& k) {
  std::vector<double> de(lab1.rows());
  for (std::size_t i = 0; i < de.size(); ++i) de[i] = deltae2000_vec(row3(lab1, i), row3(lab2, i), k);
  return de;
}

}  // namespace corvantile
