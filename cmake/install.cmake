include(GNUInstallDirs)

install(TARGETS tapforge tapforge-replay RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES docs/tapforge.1 docs/tapforge-replay.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES completions/tapforge.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME tapforge)
install(FILES completions/tapforge-replay.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME tapforge-replay)
install(FILES completions/_tapforge completions/_tapforge-replay
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR}
        FILES_MATCHING PATTERN "*.md" PATTERN "*.svg")
install(DIRECTORY player DESTINATION ${CMAKE_INSTALL_DOCDIR}
        FILES_MATCHING PATTERN "*.c" PATTERN "*.h")
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR})
