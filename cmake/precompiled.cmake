# Headers of the standard library and of GoogleTest, parsed once and not in every file.
# The core goes without, so that its code is the same in every build. So do builds with ccache, which does not remember
# what was made this way, and the presets `clang` and `package` (CMAKE_DISABLE_PRECOMPILE_HEADERS), which tell of a file
# that leans on what another includes.
if("${CMAKE_CXX_COMPILER_LAUNCHER} ${CMAKE_CXX_COMPILER}" MATCHES ccache)
  set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)
endif()
set(usual_headers <algorithm> <array> <charconv> <cmath> <filesystem> <functional> <limits> <map> <memory> <optional>
    <span> <string> <string_view> <utility> <vector>)

# precompile(OWNER HEADER...): for `OWNER` and for those that `take_precompiled` names, which need the same flags.
function(precompile owner)
  target_precompile_headers(${owner} PRIVATE ${ARGN})
  allow_gcc_its_doubts(${owner})
endfunction()
function(take_precompiled target owner)
  target_precompile_headers(${target} REUSE_FROM ${owner})
  allow_gcc_its_doubts(${target})
endfunction()

# Of a precompiled header GCC 12 forgets what is the system's, and warns of std::string's insides where it optimises.
function(allow_gcc_its_doubts target)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
    target_compile_options(${target} PRIVATE
      -Wno-array-bounds -Wno-maybe-uninitialized -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread)
  endif()
endfunction()
