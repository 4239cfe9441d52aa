#include "job/warning.hpp"

namespace corvantile {

std::string_view name_of(caution kind) {
  switch (kind) {
    case caution::table_not_filled:
      return "table-not-filled";
  }
  return "";
}

}  // namespace corvantile
