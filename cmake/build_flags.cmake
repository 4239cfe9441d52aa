# What every target of the project is compiled with. Results must not depend on the machine or on the compiler's
# mood: no contraction to fused multiply-add, no fast-math, no -march.
add_library(corvantile_build_flags INTERFACE)
target_compile_features(corvantile_build_flags INTERFACE cxx_std_20)
target_compile_options(corvantile_build_flags INTERFACE
  -ffp-contract=off -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
option(CORVANTILE_WERROR "Treat compiler warnings as errors" OFF)
if(CORVANTILE_WERROR)
  target_compile_options(corvantile_build_flags INTERFACE -Werror)
endif()
target_include_directories(corvantile_build_flags INTERFACE ${PROJECT_SOURCE_DIR}/src ${PROJECT_BINARY_DIR}/generated)
# GCC takes parts of <regex> for uninitialized where the sanitizers keep it from inlining them.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_FLAGS_DEBUG MATCHES -fsanitize)
  target_compile_options(corvantile_build_flags INTERFACE -Wno-maybe-uninitialized)
endif()
# Skylake and its descendants decode a jump anew, each time, that touches a 32-byte boundary; the assembler keeps
# jumps clear of them (Intel, "Mitigations for Jump Conditional Code Erratum", 2019).
include(CheckCXXCompilerFlag)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  check_cxx_compiler_flag(-Wa,-mbranches-within-32B-boundaries CORVANTILE_PADS_JUMPS)
endif()
if(CORVANTILE_PADS_JUMPS)
  target_compile_options(corvantile_build_flags INTERFACE -Wa,-mbranches-within-32B-boundaries)
endif()
set(CMAKE_CXX_EXTENSIONS OFF)

# How a program is linked that is started for every display: without shared libraries to load, which take longer than
# its shortest jobs, but at random addresses all the same. (A plain -static spends many milliseconds on its first
# exception, and -static-pie does not go with -static-libgcc.) Only where the system has the C library for it, and not
# with sanitizers.
option(CORVANTILE_STATIC "Link Corvantile without shared libraries where that works" OFF)
add_library(corvantile_program_link_flags INTERFACE)
if(CORVANTILE_STATIC)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  include(CheckLinkerFlag)
  check_linker_flag(CXX -static-pie CORVANTILE_HAS_STATIC_PIE)
  if(CORVANTILE_HAS_STATIC_PIE)
    target_link_options(corvantile_program_link_flags INTERFACE -static-pie)
  else()
    target_link_options(corvantile_program_link_flags INTERFACE -static-libstdc++ -static-libgcc)
  endif()
endif()
