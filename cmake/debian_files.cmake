# What Debian asks for in each package, put into the folders that CPack makes packages of: compressed manual pages,
# copyright, and changelogs. Read by cpack itself.
set(packaging ${CMAKE_CURRENT_LIST_DIR}/../packaging)

function(compress file)
  execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(add_debian_files component package)
  set(top ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  set(doc ${top}/doc/${package})
  file(MAKE_DIRECTORY ${doc})
  file(COPY_FILE ${packaging}/copyright ${doc}/copyright)
  file(COPY_FILE ${packaging}/changelog ${doc}/changelog.Debian)
  file(COPY_FILE ${packaging}/../CHANGELOG.md ${doc}/changelog)
  file(GLOB pages ${top}/man/man1/*.1)
  foreach(file ${doc}/changelog.Debian ${doc}/changelog ${pages})
    compress(${file})
  endforeach()
  file(GLOB_RECURSE all ${CPACK_TEMPORARY_DIRECTORY}/${component}/*.gz ${doc}/copyright)
  file(CHMOD ${all} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()

add_debian_files(programs ${CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME})
add_debian_files(development ${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME})
