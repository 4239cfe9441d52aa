// corvantile-kit: a verb for each step from an instrument's file to a device.

#include <iostream>
#include <new>
#include <stdexcept>
#include <string>

#include "corvantile/kit/verbs.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/program_start.hpp"

namespace corvantile::kit {
namespace {

int status_of(fault kind) {
  switch (kind) {
    case fault::no_mode:
    case fault::unknown_mode:
    case fault::no_measurement_file:
    case fault::setting:
      return status::bad_settings;
    case fault::content:
    case fault::no_measurements:
    case fault::version:
    case fault::no_gamma:
      return status::bad_input;
    case fault::unwritable:
      return status::cannot_write;
    case fault::not_finite:
      return status::not_finite;
    case fault::inexpressible:
      return status::cannot_express;
  }
  return status::bad_input;
}

int fail(int with, const std::string& message) {
  std::cerr << "corvantile-kit: " << message << '\n';
  return with;
}

int main(int argc, char** argv) {
  start_program();
  try {
    return run_command_line(argc, argv);
  } catch (const failure& f) {
    return fail(status_of(f.kind), f.message);
  } catch (const std::bad_alloc&) {
    return fail(status::no_memory, "out of memory");
  } catch (const std::length_error&) {  // a size beyond any memory
    return fail(status::no_memory, "out of memory");
  }
}

}  // namespace
}  // namespace corvantile::kit

int main(int argc, char** argv) { return corvantile::kit::main(argc, argv); }
