# What is installed beside the library (library.cmake): component `programs`, and the licence and the changelog on their
# own, for distributions have places of their own for these two.
install(TARGETS Corvantile RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
if(CORVANTILE_KIT)
  install(TARGETS corvantile-kit RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
  install(FILES completion/corvantile-kit.bash RENAME corvantile-kit
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT programs)
else()
  set(without_kit PATTERN "corvantile-kit*" EXCLUDE)
endif()
install(DIRECTORY man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT programs
        FILES_MATCHING PATTERN "*.1" ${without_kit})
install(FILES README.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT programs)
install(FILES CHANGELOG.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT terms)
# Without the tables that running an example where it stands leaves there. Scripts are installed as what they are.
install(DIRECTORY examples docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT programs
        REGEX "/examples/[^/]+/(preLUT|postLUT|matrix)\\.txt$" EXCLUDE
        PATTERN "*.sh" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
