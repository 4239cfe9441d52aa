#pragma once
// How everything below a program reports that there can be no result.

#include <exception>
#include <string>
#include <string_view>
#include <utility>

namespace corvantile {

/// Why there is no result. Each program decides what a kind means to its caller.
enum class fault {
  no_mode,              ///< no matching mode is named
  unknown_mode,         ///< the named mode does not exist
  no_measurement_file,  ///< no measurement file is named
  setting,              ///< settings that cannot be read, or a value that gives no result
  content,              ///< measurements or tone samples that give no result
  no_measurements,      ///< the measurement file cannot be opened
  version,              ///< the measurement file has an unknown version
  no_gamma,             ///< the gamma file cannot be opened and nothing can replace it
  unwritable,           ///< a file cannot be written
  not_finite,           ///< a table would hold an entry that is not finite
  inexpressible         ///< the format cannot express it
};

/// The kind, and a message for people: one sentence or line, without a line end, that names the thing, the place and
/// the value.
struct failure : std::exception {
  failure(fault kind_, std::string message_) : kind(kind_), message(std::move(message_)) {}
  const char* what() const noexcept override { return message.c_str(); }

  fault kind;
  std::string message;
};

/// Throws `fault::setting`. `value` is what `key` has, as text, and `why` says why it gives no result.
[[noreturn]] inline void refuse_setting(std::string_view key, std::string_view value, std::string_view why) {
  std::string message = "Settings: ";
  message.append(key).append(" = ").append(value).append(": ").append(why);
  throw failure(fault::setting, message);
}

/// Throws `fault::content`. `where` is usually a file's name, and `what` says what is wrong with its content.
[[noreturn]] inline void refuse_content(std::string_view where, std::string_view what) {
  std::string message(where);
  message.append(": ").append(what);
  throw failure(fault::content, message);
}

}  // namespace corvantile
