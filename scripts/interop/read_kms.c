/* Reads blobs through the structures that the kernel declares, and prints their numbers, one a line:
   read_kms lut FILE | lut32 FILE | ctm FILE | ctm3x4 FILE. Fails on a file that is not a whole number of structures. */
#include <drm_mode.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

/* Newer than the header of many systems. */
struct lut32 { uint32_t red, green, blue, reserved; };
struct ctm3x4 { uint64_t matrix[12]; };

static double sign_magnitude(uint64_t v) {
  const double magnitude = (double)(v & ~(UINT64_C(1) << 63)) / 4294967296.0;
  return v >> 63 ? -magnitude : magnitude;
}

int main(int argc, char** argv) {
  union { struct drm_color_lut lut; struct lut32 lut32; struct drm_color_ctm ctm; struct ctm3x4 ctm3x4; } u;
  const char* kind = argc == 3 ? argv[1] : "";
  FILE* f = argc == 3 ? fopen(argv[2], "rb") : NULL;
  const size_t size = !strcmp(kind, "lut") ? sizeof u.lut : !strcmp(kind, "lut32") ? sizeof u.lut32
                    : !strcmp(kind, "ctm") ? sizeof u.ctm : sizeof u.ctm3x4;
  size_t got = 0;
  if (!f) return 2;
  while ((got = fread(&u, 1, size, f)) == size) {
    if (!strcmp(kind, "lut")) {
      if (u.lut.reserved) return 1;
      printf("%.17g\n%.17g\n%.17g\n", u.lut.red / 65535.0, u.lut.green / 65535.0, u.lut.blue / 65535.0);
    } else if (!strcmp(kind, "lut32")) {
      if (u.lut32.reserved) return 1;
      printf("%.17g\n%.17g\n%.17g\n", u.lut32.red / 4294967295.0, u.lut32.green / 4294967295.0,
             u.lut32.blue / 4294967295.0);
    } else if (!strcmp(kind, "ctm")) {
      for (int i = 0; i < 9; ++i) printf("%.17g\n", sign_magnitude(u.ctm.matrix[i]));
    } else {
      for (int i = 0; i < 12; ++i) printf("%.17g\n", sign_magnitude(u.ctm3x4.matrix[i]));
    }
  }
  return got != 0;
}
