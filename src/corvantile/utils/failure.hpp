#pragma once
// The one way in which anything below a program says that there can be no result.

#include <exception>
#include <string>
#include <string_view>
#include <utility>

namespace corvantile {

/// What kept a result from being made. Each program decides for itself what a kind means to whoever called it.
enum class fault {
  no_mode,              ///< no matching mode was named
  unknown_mode,         ///< a mode was named that does not exist
  no_measurement_file,  ///< no measurement file was named
  setting,              ///< settings that cannot be read, or a value that cannot give a result
  content,              ///< measurements or tone samples that cannot give a result
  no_measurements,      ///< the measurement file cannot be opened
  version,              ///< the measurement file has an unknown version
  no_gamma,             ///< the gamma file cannot be opened and nothing can stand in for it
  unwritable,           ///< a file that cannot be written
  not_finite,           ///< a table would hold an entry that is not a finite number
  inexpressible         ///< cannot be expressed in that format
};

/// The kind, and a message for people: one sentence or line, without a line end, that names what, where and which
/// value.
struct failure : std::exception {
  failure(fault kind_, std::string message_) : kind(kind_), message(std::move(message_)) {}
  const char* what() const noexcept override { return message.c_str(); }

  fault kind;
  std::string message;
};

/// Throws `fault::setting`: `key` has a `value`, given as text, that cannot give a result, and `why`.
[[noreturn]] inline void refuse_setting(std::string_view key, std::string_view value, std::string_view why) {
  std::string message = "Settings: ";
  message.append(key).append(" = ").append(value).append(": ").append(why);
  throw failure(fault::setting, message);
}

/// Throws `fault::content`: `where` (a file's name, as a rule) has content that cannot give a result, and `what` is
/// wrong with it.
[[noreturn]] inline void refuse_content(std::string_view where, std::string_view what) {
  std::string message(where);
  message.append(": ").append(what);
  throw failure(fault::content, message);
}

}  // namespace corvantile
