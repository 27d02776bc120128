# What is installed where, and the Debian package made of it by: cpack -G DEB
include(GNUInstallDirs)

install(TARGETS quorvel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES packaging/quorvel.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/quorvel.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME quorvel)
install(FILES packaging/_quorvel DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)
if(QUORVEL_GUI)
  install(DIRECTORY samples DESTINATION ${CMAKE_INSTALL_DATADIR}/quorvel)
  install(FILES packaging/quorvel.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES packaging/org.example.quorvel.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES packaging/quorvel.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()

# The reference text stands beside the program in the build folder, and with the program's data once installed.
if(NOT CMAKE_CROSSCOMPILING)
  add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/CLA_ref.txt
    COMMAND quorvel --help > ${CMAKE_BINARY_DIR}/CLA_ref.txt
    DEPENDS quorvel
    COMMENT "Writing the command line reference" VERBATIM)
  add_custom_target(command_line_reference ALL DEPENDS ${CMAKE_BINARY_DIR}/CLA_ref.txt)
  install(FILES ${CMAKE_BINARY_DIR}/CLA_ref.txt DESTINATION ${CMAKE_INSTALL_DATADIR}/quorvel)
endif()

set(CPACK_PACKAGE_NAME quorvel)
set(CPACK_PACKAGE_VENDOR "Quorvel developers")
set(CPACK_PACKAGE_CONTACT "Quorvel developers <support@quorvel.example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
  "Reads the text log of an FTP server, lists its user sessions in a tree,\ncuts out their log lines and counts their transfers. It runs in a window\nor unattended from its command line.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# A package needs the program, not the tests: what is installed has to be built before.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
include(CPack)
