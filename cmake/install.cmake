if(WIN32)
  # One folder that can stand anywhere, with the manual for a browser.
  install(TARGETS tapforge tapforge-replay RUNTIME DESTINATION .)
  set(documents .)
  install(FILES packaging/copyright DESTINATION . RENAME copyright.txt)
  # The compiler's thread library is a part of the programs and wants to be named.
  find_file(TAPFORGE_RUNTIME_COPYRIGHT copyright PATHS /usr/share/doc/mingw-w64-common
            NO_CMAKE_FIND_ROOT_PATH)
  if(TAPFORGE_RUNTIME_COPYRIGHT)
    install(FILES ${TAPFORGE_RUNTIME_COPYRIGHT} DESTINATION . RENAME copyright-runtime.txt)
  endif()
  find_program(TAPFORGE_MANDOC mandoc)
  if(TAPFORGE_MANDOC)
    foreach(page tapforge tapforge-replay)
      add_custom_command(OUTPUT ${page}.html
                         COMMAND ${TAPFORGE_MANDOC} -T html
                                 ${PROJECT_SOURCE_DIR}/docs/${page}.1 > ${page}.html
                         DEPENDS docs/${page}.1)
      install(FILES ${PROJECT_BINARY_DIR}/${page}.html DESTINATION .)
    endforeach()
    add_custom_target(manual ALL DEPENDS tapforge.html tapforge-replay.html)
  else()
    message(STATUS "The manual is left out: it needs mandoc.")
  endif()
else()
  include(GNUInstallDirs)
  set(documents ${CMAKE_INSTALL_DOCDIR})
  install(TARGETS tapforge tapforge-replay RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES docs/tapforge.1 docs/tapforge-replay.1
          DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES completions/tapforge.bash
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
          RENAME tapforge)
  install(FILES completions/tapforge-replay.bash
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
          RENAME tapforge-replay)
  install(FILES completions/_tapforge completions/_tapforge-replay
          DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
endif()

# All that their links lead to, in the same places.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${documents})
install(FILES bench/README.md DESTINATION ${documents}/bench)
install(FILES packaging/copyright DESTINATION ${documents}/packaging)
install(DIRECTORY docs DESTINATION ${documents}
        FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.1")
install(DIRECTORY player DESTINATION ${documents}
        FILES_MATCHING PATTERN "*.c" PATTERN "*.h" PATTERN "*.py")
install(DIRECTORY examples DESTINATION ${documents})
