# Where `cmake --install` puts things, and the packages that `./dev package` makes of it: a .deb of everything, and an
# archive of the plug-in and its manual for those who have a host.
set(document_folder share/doc/picturezvr)
install(TARGETS picturezvr LIBRARY DESTINATION "${ZVR_PLUGIN_FOLDER}")
install(DIRECTORY docs/manual DESTINATION ${document_folder})
install(TARGETS picturezvr LIBRARY DESTINATION . COMPONENT archive EXCLUDE_FROM_ALL)
install(FILES LICENSE cmake/INSTALL DESTINATION . COMPONENT archive EXCLUDE_FROM_ALL)
install(DIRECTORY docs/manual DESTINATION . COMPONENT archive EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR TGZ)
if(ZVR_BUILD_HOST)
  install(TARGETS zvr RUNTIME DESTINATION bin)
  install(CODE "file(RPATH_REMOVE FILE \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin/zvr\")")
  install(FILES zvr/commands/completion.bash DESTINATION share/bash-completion/completions RENAME zvr)
  install(FILES zvr/commands/completion.zsh DESTINATION share/zsh/vendor-completions RENAME _zvr)

  set(documents "${CMAKE_BINARY_DIR}/documents")
  file(READ LICENSE copyright)
  string(APPEND copyright "\nThe plug-in contains parts of GCC's run-time libraries, which the GCC Runtime Library\n"
    "Exception lets anyone pass on in such a form.\n")
  foreach(library libcli11-dev nlohmann-json3-dev libkainjow-mustache-dev)
    file(GLOB licence "${ZVR_I386_TREE}/usr/share/doc/${library}/copyright")
    if(licence)
      file(READ "${licence}" licence)
      string(APPEND copyright "\nzvr contains code of Debian's ${library}, whose licence follows.\n\n${licence}")
    endif()
  endforeach()
  file(WRITE "${documents}/copyright" "${copyright}")
  string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
  set(CPACK_PACKAGE_CONTACT "The PictureZVR authors <authors@picturezvr.invalid>")
  file(WRITE "${documents}/changelog.Debian" "picturezvr (${PROJECT_VERSION}-1) unstable; urgency=medium\n\n"
    "  * Packaged as ./dev package does; changelog.gz lists what is new.\n\n -- ${CPACK_PACKAGE_CONTACT}  ${now}\n")
  set(changelogs "${documents}/changelog.gz" "${documents}/changelog.Debian.gz")
  add_custom_command(OUTPUT "${documents}/zvr.1.gz" ${changelogs} WORKING_DIRECTORY "${documents}" VERBATIM
    DEPENDS zvr "${CMAKE_SOURCE_DIR}/CHANGELOG.md" "${documents}/changelog.Debian"
    COMMAND $<TARGET_FILE:zvr> --man-page | gzip -9n > zvr.1.gz
    COMMAND gzip -9nc "${CMAKE_SOURCE_DIR}/CHANGELOG.md" > changelog.gz
    COMMAND gzip -9nc changelog.Debian > changelog.Debian.gz)
  add_custom_target(zvr_documents ALL DEPENDS "${documents}/zvr.1.gz")
  install(FILES "${documents}/zvr.1.gz" DESTINATION share/man/man1)
  install(FILES "${documents}/copyright" ${changelogs} DESTINATION ${document_folder})
  if(ZVR_I386_TREE)
    list(APPEND CPACK_GENERATOR DEB)
  endif()
endif()

set(CPACK_PACKAGE_NAME picturezvr)
set(CPACK_PACKAGE_VENDOR "The PictureZVR authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "picture-processing plug-in, and a host of its own on the command line")
set(CPACK_PACKAGE_DESCRIPTION "The plug-in adds picture methods and filter classes to programs of a BASIC
dialect. It is /usr/${ZVR_PLUGIN_FOLDER}/libpicturezvr.so:
a link to it in a host's folder of plug-ins makes that host load it.
.
zvr runs any of the methods on picture files.")
set(CPACK_PACKAGE_FILE_NAME "picturezvr-${PROJECT_VERSION}-linux-i386")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
# Opened while zvr runs, by the hosts that it plays; a console host needs neither.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS libcairo2)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS libgtk2.0-0)
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_BINARY_DIR}/package_needs.cmake")
configure_file(cmake/package_needs.cmake.in package_needs.cmake @ONLY)
include(CPack)
