# Installation, and the packages that `./dev package` builds from it. zvr finds the plug-in in ../lib, and the sound
# library with its dependencies in ../lib/picturezvr.
set(ZVR_PRIVATE_LIBRARIES "lib/picturezvr")

install(TARGETS picturezvr LIBRARY DESTINATION lib)
install(FILES LICENSE DESTINATION share/doc/picturezvr RENAME copyright)
# Same layout as in the sources, so that links keep working.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENSE DESTINATION share/doc/picturezvr)
install(DIRECTORY docs DESTINATION share/doc/picturezvr)

if(ZVR_BUILD_HOST)
  # Linked again for installation: to edit a run path during installation CMake pads it in the built program with empty
  # elements, which mean the current folder.
  add_executable(zvr_installed $<TARGET_OBJECTS:zvr>)
  target_link_libraries(zvr_installed PRIVATE $<TARGET_PROPERTY:zvr,LINK_LIBRARIES>)
  zvr_run_path(zvr_installed)
  set_target_properties(zvr_installed PROPERTIES OUTPUT_NAME zvr RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/installed"
    BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "\$ORIGIN/../${ZVR_PRIVATE_LIBRARIES}")
  install(TARGETS zvr_installed RUNTIME DESTINATION bin)
  install(CODE "
    include(\"${CMAKE_SOURCE_DIR}/cmake/runtime.cmake\")
    zvr_runtime_libraries(libraries \"$<TARGET_FILE:zvr>\" ${ZVR_I386_LIBRARY_DIRS})
    file(INSTALL \${libraries} DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${ZVR_PRIVATE_LIBRARIES}\" FOLLOW_SYMLINK_CHAIN)")
  if(ZVR_I386_TREE)
    # Copyright notices of the shipped libraries.
    foreach(package libsndfile1 libflac12 libvorbis0a libvorbisenc2 libopus0 libogg0 libmpg123-0 libmp3lame0
        libpng16-16 zlib1g libjpeg62-turbo libffi8)
      install(FILES "${ZVR_I386_TREE}/usr/share/doc/${package}/copyright" OPTIONAL
        DESTINATION share/doc/picturezvr/third-party RENAME ${package}.copyright)
    endforeach()
  endif()

  set(manual_page "${CMAKE_BINARY_DIR}/zvr.1.gz")
  add_custom_command(OUTPUT "${manual_page}"
    COMMAND $<TARGET_FILE:zvr> --man-page | gzip -9n > "${manual_page}" DEPENDS zvr VERBATIM)
  add_custom_target(zvr_manual_page ALL DEPENDS "${manual_page}")
  install(FILES "${manual_page}" DESTINATION share/man/man1)
  install(FILES zvr/commands/completion.bash DESTINATION share/bash-completion/completions RENAME zvr)
endif()

set(CPACK_GENERATOR TGZ DEB)
set(CPACK_PACKAGE_NAME picturezvr)
set(CPACK_PACKAGE_VENDOR "The PictureZVR authors")
set(CPACK_PACKAGE_CONTACT "The PictureZVR authors <picturezvr@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Picture-processing plug-in, and a host of its own on the command line")
set(CPACK_PACKAGE_DESCRIPTION "libpicturezvr.so adds picture methods and filter classes to programs of a
BASIC dialect. zvr runs any of them on PNG and JPEG files.")
set(CPACK_PACKAGE_FILE_NAME "picturezvr-${PROJECT_VERSION}-linux-i386")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
# Opened at run time by the hosts that zvr plays; a console host needs neither.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS libcairo2)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS libgtk2.0-0)
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_BINARY_DIR}/package_needs.cmake")
configure_file(cmake/package_needs.cmake.in package_needs.cmake @ONLY)
include(CPack)
