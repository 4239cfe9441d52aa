#include "corvantile/measuring/procedure.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

#include "corvantile/measuring/checksum.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/file_output.hpp"
#include "corvantile/utils/temporary_file.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::measuring {
namespace {

using nlohmann::ordered_json;

constexpr int record_version = 1;

std::string in_folder(const std::string& folder, std::string_view name) { return folder + '/' + std::string(name); }

// A step as the record has it.
struct done_step {
  std::string name, inputs;                  // a checksum of the inputs
  std::map<std::string, std::string> files;  // name to checksum
  friend bool operator==(const done_step&, const done_step&) = default;
};

std::optional<std::vector<done_step>> read_record(const std::string& path) {
  const auto record = ordered_json::parse(read_file(path).value_or(""), nullptr, false);
  try {
    if (record.is_discarded() || record.at("version") != record_version) return std::nullopt;
    std::vector<done_step> done;
    for (const auto& s : record.at("done"))
      done.push_back({s.at("step"), s.at("inputs"), s.at("files").get<std::map<std::string, std::string>>()});
    return done;
  } catch (const nlohmann::json::exception&) {
    return std::nullopt;
  }
}

// Replaces the record, on disk when this returns.
void write_record(const std::string& path, const std::vector<done_step>& done) {
  ordered_json record{{"version", record_version}, {"done", ordered_json::array()}};
  for (const done_step& s : done)
    record["done"].push_back(ordered_json{{"step", s.name}, {"inputs", s.inputs}, {"files", s.files}});
  write_file(path, record.dump(2, ' ', true, ordered_json::error_handler_t::replace) + '\n');
  for (const std::string& name : {path, (std::filesystem::path(path).parent_path() / ".").string()}) {
    const descriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() >= 0) ::fsync(file.get());
  }
}

bool is_as_left(const std::string& folder, const step& s, const done_step& before) {
  if (before.name != s.name || before.inputs != checksum(s.inputs)) return false;
  return std::ranges::all_of(
      before.files, [&](const auto& file) { return checksum_of_file(in_folder(folder, file.first)) == file.second; });
}

// The steps from the first on that are as they were left.
std::vector<done_step> still_done(const std::string& folder, std::string_view name, const std::vector<step>& steps) {
  auto done = read_record(in_folder(folder, std::string(name) + ".json")).value_or(std::vector<done_step>{});
  std::size_t n = 0;
  while (n < done.size() && n < steps.size() && is_as_left(folder, steps[n], done[n])) ++n;
  done.resize(n);
  return done;
}

done_step as_done(const std::string& folder, const step& s, const step_result& r) {
  done_step done{.name = s.name, .inputs = checksum(s.inputs), .files = {}};
  for (const std::string& name : r.files) {
    const auto sum = checksum_of_file(in_folder(folder, name));
    if (!sum) throw failure(fault::unwritable, "The step " + s.name + " left no " + printable(name));
    done.files[name] = *sum;
  }
  return done;
}

descriptor lock(const std::string& path) {
  descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  if (file.get() < 0)
    throw failure(fault::unwritable,
                  "Cannot write " + printable(path) + ": " + std::generic_category().message(errno));
  if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
    throw failure(fault::unwritable, "Another run is at work in this folder: " + printable(path) + " is locked");
  return file;
}

template <class F, class... Arguments>
void call(const F& f, const Arguments&... arguments) {
  if (f) f(arguments...);
}

}  // namespace

procedure_result run_procedure(const std::string& folder, std::string_view name, const std::vector<step>& steps,
                               const procedure_watch& watch) {
  const descriptor only_one = lock(in_folder(folder, std::string(name) + ".lock"));
  const std::string record = in_folder(folder, std::string(name) + ".json");
  std::vector<done_step> done = still_done(folder, name, steps);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    if (i < done.size() && (!steps[i].holds || steps[i].holds())) {
      call(watch.skipped, steps[i]);
      continue;
    }
    call(watch.begins, steps[i]);
    const step_result r = steps[i].run();
    call(watch.ended, steps[i], r);
    if (!r.status.ok() || r.decide) return {.status = r.status, .stopped_at = steps[i].name, .decide = r.decide};
    done_step now = as_done(folder, steps[i], r);
    if (i < done.size() && now == done[i]) continue;  // those behind it began from the same
    done.resize(i);
    done.push_back(std::move(now));
    write_record(record, done);
  }
  return {};
}

std::vector<std::string> steps_done(const std::string& folder, std::string_view name,
                                    const std::vector<step>& steps) {
  std::vector<std::string> names;
  for (const done_step& s : still_done(folder, name, steps)) names.push_back(s.name);
  return names;
}

}  // namespace corvantile::measuring
