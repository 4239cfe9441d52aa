# Little CMS 2 as the target lcms2::lcms2: it brings no CMake package of its own.
find_path(LCMS2_INCLUDE_DIR lcms2.h REQUIRED)
find_library(LCMS2_LIBRARY lcms2 REQUIRED)
mark_as_advanced(LCMS2_INCLUDE_DIR LCMS2_LIBRARY)
add_library(lcms2::lcms2 UNKNOWN IMPORTED)
set_target_properties(lcms2::lcms2 PROPERTIES
  IMPORTED_LOCATION ${LCMS2_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${LCMS2_INCLUDE_DIR})
