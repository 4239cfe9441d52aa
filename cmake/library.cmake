# The core as one library for other programs: everything from numerics to documents, and the headers that users need.
# Warnings and what else the project builds with stay here; a user inherits C++20 and the headers' folder.
set(parts numerics utils monitor colorimetry colour matching job documents)
list(TRANSFORM parts REPLACE "(.+)" "$<TARGET_OBJECTS:corvantile_\\1>" OUTPUT_VARIABLE objects)
add_library(corvantile STATIC ${objects})
add_library(Corvantile::corvantile ALIAS corvantile)
set_target_properties(corvantile PROPERTIES LINKER_LANGUAGE CXX)
target_compile_features(corvantile INTERFACE cxx_std_20)

set(src ${PROJECT_SOURCE_DIR}/src)
target_sources(corvantile INTERFACE
  FILE_SET HEADERS BASE_DIRS ${src} ${PROJECT_BINARY_DIR}/generated
  FILES
    ${src}/corvantile.hpp
    ${src}/corvantile/documents/measurement_file.hpp
    ${src}/corvantile/job/correction.hpp
    ${src}/corvantile/job/device_tables.hpp
    ${src}/corvantile/job/settings.hpp
    ${src}/corvantile/job/tone_samples.hpp
    ${src}/corvantile/job/finding.hpp
    ${src}/corvantile/matching/matching.hpp
    ${src}/corvantile/colour/chromaticity.hpp
    ${src}/corvantile/colour/color_metrics.hpp
    ${src}/corvantile/colour/gray_factors.hpp
    ${src}/corvantile/colour/gray_search.hpp
    ${src}/corvantile/colour/standards.hpp
    ${src}/corvantile/monitor/measurements.hpp
    ${src}/corvantile/monitor/monitor.hpp
    ${src}/corvantile/monitor/synthetic_monitor.hpp
    ${src}/corvantile/utils/failure.hpp
    ${src}/corvantile/utils/lut.hpp
    ${src}/corvantile/numerics/matrix.hpp
    ${src}/corvantile/numerics/polynomials.hpp
    ${src}/corvantile/numerics/ppoly.hpp
    ${PROJECT_BINARY_DIR}/generated/corvantile/utils/version.hpp)

include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Corvantile)
install(TARGETS corvantile EXPORT Corvantile COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT Corvantile NAMESPACE Corvantile:: FILE CorvantileConfig.cmake DESTINATION ${package_dir}
  COMPONENT development)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/CorvantileConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/CorvantileConfigVersion.cmake DESTINATION ${package_dir}
  COMPONENT development)

# Up to the prefix: ../.. or, from a multiarch folder, ../../..
file(RELATIVE_PATH PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" PREFIX_FROM_PKGCONFIG "${PREFIX_FROM_PKGCONFIG}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/corvantile.pc.in corvantile.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/corvantile.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)
