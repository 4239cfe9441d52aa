#include <iostream>
#include <nlohmann/json.hpp>

#include "corvantile/kit/files.hpp"
#include "corvantile/kit/verbs.hpp"

namespace corvantile::kit {

void say(const common_options& o, const std::string& line) {
  if (!o.quiet) std::cerr << line << '\n';
}

void print_record(const nlohmann::ordered_json& record) {
  write_output("-", record.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n', true);
}

}  // namespace corvantile::kit
