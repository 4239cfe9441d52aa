// gamma_files FOLDER: writes the usual target curves as gamma files, named after the curves; examples/gamma holds
// them. They come from the same function as the curves of `corvantile-kit make`.

#include <array>
#include <cstdio>
#include <string>

#include "corvantile/kit/files.hpp"
#include "corvantile/kit/request.hpp"
#include "corvantile/utils/failure.hpp"

namespace {

struct shipped {
  const char* name;
  const char* curve;
  double black = 0;  // for a white of 1
};
constexpr std::array<shipped, 8> curves{{{"gamma-srgb", "srgb"},
                                         {"gamma-lstar", "lstar"},
                                         {"gamma-bt1886-1000", "bt1886", 1.0 / 1000},
                                         {"gamma-bt1886-2000", "bt1886", 1.0 / 2000},
                                         {"gamma-1.8", "1.8"},
                                         {"gamma-2.2", "2.2"},
                                         {"gamma-2.4", "2.4"},
                                         {"gamma-2.6", "2.6"}}};

}  // namespace

int main(int argc, char** argv) try {
  using namespace corvantile;
  if (argc != 2) return std::fputs("Usage: gamma_files FOLDER\n", stderr), 2;
  for (const shipped& s : curves)
    kit::write_output(std::string(argv[1]) + '/' + s.name + ".txt", kit::gamma_file_of(s.curve, 1, s.black), true);
} catch (const corvantile::failure& f) {
  return std::fprintf(stderr, "gamma_files: %s\n", f.message.c_str()), 1;
}
