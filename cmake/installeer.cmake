# What `cmake --install` puts where, and the Debian package that CPack makes of it.
include(GNUInstallDirs)

install(TARGETS hoofdmnu opdsaldo voorraad winkel ixtool DESTINATION ${CMAKE_INSTALL_BINDIR})
# The launcher looks beside its own folder for share/opdsaldo/nls.
install(FILES ${CMAKE_BINARY_DIR}/nls/KBA351.cat ${CMAKE_BINARY_DIR}/nls/WINKEL.cat
        DESTINATION ${CMAKE_INSTALL_DATADIR}/opdsaldo/nls)
# Not README.md: its commands and links are those of the checkout.
install(FILES docs/gebruik.md docs/adviezen.md docs/beheer.md docs/bestanden.md docs/architectuur.md
              docs/snelheid.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES scripts/completion/winkel.bash RENAME winkel
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES scripts/completion/winkel.bash RENAME ixtool
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES scripts/completion/_winkel
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)

# Pages are compressed without a name and time, so that two builds give the same bytes.
find_program(GZIP gzip)
file(GLOB pages CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/docs/man/*.[157])
set(compressed)
foreach(page ${pages})
  get_filename_component(name ${page} NAME)
  string(REGEX REPLACE ".*\\." "" section ${name})
  if(GZIP)
    set(out ${CMAKE_BINARY_DIR}/man/${name}.gz)
    add_custom_command(OUTPUT ${out}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/man
      COMMAND ${GZIP} -9nc ${page} > ${out}
      DEPENDS ${page} VERBATIM)
    list(APPEND compressed ${out})
  else()
    set(out ${page})
  endif()
  install(FILES ${out} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endforeach()
if(compressed)
  add_custom_target(man ALL DEPENDS ${compressed})
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME opdsaldo)
set(CPACK_PACKAGE_VERSION 8.70)
set(CPACK_PACKAGE_VENDOR opdsaldo)
set(CPACK_PACKAGE_CONTACT "opdsaldo maintainers <opdsaldo@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "stock and collective orders of a shop chain, on terminals")
set(CPACK_PACKAGE_DESCRIPTION
  "Series of articles in colours and sizes, labelled pieces, branches, and the collective orders
that move pieces between branches. Operators sit at numbered terminals of one host and work in one
data directory; there is no server.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# infocmp and tic, for the terminal entries that winkel terminal makes.
set(CPACK_DEBIAN_PACKAGE_DEPENDS ncurses-bin)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "cups-client, tmux")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
if(DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
  string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS
         ", libc6, libstdc++6, libncursesw6, libtinfo6, libfmt9, libsqlite3-0, libmd0")
endif()
include(CPack)
