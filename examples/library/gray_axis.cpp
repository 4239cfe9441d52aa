// Reads measurements, solves for a gray axis of 6500 K, and says what the top of it will look like.
#include <corvantile.hpp>
#include <cstdio>

int main(int argc, char** argv) try {
  namespace cv = corvantile;
  if (argc != 2) return std::fputs("Usage: gray_axis MEASUREMENTS\n", stderr), 2;
  const cv::measurements display = cv::load_measurements(argv[1]);
  const cv::correction result = cv::solve({.mode = cv::match_mode::cv1, .temp = 6500}, display);
  for (const cv::finding& f : result.warnings) std::fprintf(stderr, "Warning: %s\n", text_of(f).c_str());

  const cv::vec3 drive = cv::row3(result.gray, result.gray.rows() - 1);
  const cv::vec3 white = cv::inp2out_vec(result.display, drive);
  std::printf("white before: %7.1f K, Y = %.1f\n", cv::xyz2cct(result.measured.whitepoint),
              result.measured.whitepoint[1]);
  std::printf("white after:  %7.1f K, Y = %.1f, with drive values %.4f %.4f %.4f\n", cv::xyz2cct(white), white[1],
              drive[0], drive[1], drive[2]);
} catch (const corvantile::failure& f) {
  return std::fprintf(stderr, "%s\n", f.message.c_str()), 1;
}
