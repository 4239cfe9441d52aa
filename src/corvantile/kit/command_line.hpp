#pragma once
// Arguments to verbs.

namespace corvantile::kit {

/// Reads the command line, runs the verb that it asks for (or prints help or version) and gives the status of the
/// process. Failures of the verb are let through.
int run_command_line(int argc, char** argv);

}  // namespace corvantile::kit
