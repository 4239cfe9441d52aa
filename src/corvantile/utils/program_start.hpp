#pragma once
// How every program begins.

namespace corvantile {

/// Prepares the process; call it before `main` opens a file.
/// - If a standard stream is closed, writing to it fails, and no file that is opened later takes its place.
/// - If a reader leaves or a file grows too large, that write fails and the process goes on.
/// - SIGINT, SIGTERM and SIGHUP remove temporary files and new folders first (`remove_temporaries_on_signals`).
void start_program();

}  // namespace corvantile
