# What every target of the project is compiled with. Results must not depend on the machine or on the compiler's
# mood: no contraction to fused multiply-add, no fast-math, no -march.
add_library(build_flags INTERFACE)
target_compile_features(build_flags INTERFACE cxx_std_20)
target_compile_options(build_flags INTERFACE
  -ffp-contract=off -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
target_include_directories(build_flags INTERFACE ${PROJECT_SOURCE_DIR}/src ${PROJECT_BINARY_DIR}/generated)
set(CMAKE_CXX_EXTENSIONS OFF)
