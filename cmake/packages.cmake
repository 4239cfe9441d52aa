# Debian packages by CPack: `corvantile` with the programs, `libcorvantile-dev` with the library. scripts/package.sh
# builds, judges and tries them. packaging/ holds what only Debian asks for.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME corvantile)
set(CPACK_PACKAGE_VENDOR "the Corvantile authors")
set(CPACK_COMPONENTS_ALL programs development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS  # whatever the umask is
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian_files.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Corvantile maintainers <maintainers@corvantile.invalid>" CACHE STRING
    "Who answers for the Debian packages")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # the first line of each description below

set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME corvantile)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SUGGESTS "argyll, libcorvantile-dev")
set(CPACK_DEBIAN_PROGRAMS_DESCRIPTION "correction tables for displays from colourimetric measurements
Corvantile reads the measured CIE XYZ of a display's white, red, green and
blue ramps, fits a model of the display to them, and solves for the tables
that make it follow a target: a white, a tone curve and, if wanted, a set of
primaries.

corvantile-kit is for everything around that: it reads what instruments write
(ArgyllCMS, HCFR, CSV), says whether the measurements can be trusted, solves,
writes what devices load (colour pipelines, ICC profiles, video players,
Linux, Windows, FPGAs) and shows the result on one page.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libcorvantile-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "corvantile, pkg-config")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "correction tables for displays: development files
Static library and headers (C++20) behind Corvantile: one call from settings
and measurements of a display to its correction tables, without files and from
any number of threads.

With the files that CMake and pkg-config look for. An example is among the
documentation of the package corvantile.")

include(CPack)
