# SPDX-License-Identifier: MIT
# `cmake --workflow --preset package` makes three Debian packages in build/package/packages: the
# player, the library, and what programs with the library are built with.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vyx)
set(CPACK_PACKAGE_VENDOR "The VYX authors")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own, the first line below
set(CPACK_PACKAGE_CONTACT "The VYX authors <${VYX_CONTACT}>")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL player video-library video-development)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
if(NOT VYX_WEB_PAGE MATCHES "example\\.org")
    set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${VYX_WEB_PAGE})
endif()
# Programs with the library that is being packaged look for it here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/lib)

set(CPACK_DEBIAN_PLAYER_PACKAGE_NAME vyx)
set(CPACK_DEBIAN_PLAYER_PACKAGE_SECTION video)
# Either library with the API of SDL 1.2 will do; this is the one that is tended.
set(CPACK_DEBIAN_PLAYER_PACKAGE_DEPENDS "libsdl1.2-compat-shim | libsdl1.2debian")
# The player loads it when a camera is opened.
string(REGEX MATCH "^[0-9]+" avdevice_major "${AVDEVICE_VERSION}")
set(CPACK_DEBIAN_PLAYER_PACKAGE_RECOMMENDS "libavdevice${avdevice_major}")
set(CPACK_DEBIAN_PLAYER_DESCRIPTION "media player that enhances pictures
VYX plays films, files of sound and cameras, and makes films look better
while they play: super-resolution, denoising that is steered by how
coarsely the film was coded, and pictures between pictures along the
film's own motion, all in real time on the graphics processor.

It plays whatever FFmpeg reads, in a window drawn with OpenGL. The program
vyx-enhance writes enhanced films to files.")

set(library libvyxvideo${VYX_VIDEO_SOVERSION})
set(CPACK_DEBIAN_VIDEO-LIBRARY_PACKAGE_NAME ${library})
set(CPACK_DEBIAN_VIDEO-LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_VIDEO-LIBRARY_PACKAGE_RECOMMENDS "libavdevice${avdevice_major}")
# dpkg runs ldconfig on this trigger. CPack would write scripts for it instead, but where their names
# are given it takes these, and passes over the ones that are not there.
file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/triggers CONTENT "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_VIDEO-LIBRARY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/triggers
    ${CMAKE_CURRENT_BINARY_DIR}/none/postinst ${CMAKE_CURRENT_BINARY_DIR}/none/postrm)
set(CPACK_DEBIAN_VIDEO-LIBRARY_DESCRIPTION "frames of films as packed RGB
This library gives programs in any language the frames of films and cameras
as packed RGB, one by one, and makes films of frames. Its functions take
records of fixed layout.")

set(CPACK_DEBIAN_VIDEO-DEVELOPMENT_PACKAGE_NAME libvyxvideo-dev)
set(CPACK_DEBIAN_VIDEO-DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_VIDEO-DEVELOPMENT_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_VIDEO-DEVELOPMENT_DESCRIPTION "frames of films as packed RGB, development files
The header, the pkg-config and CMake files, the manual and examples in C and
Python of a library that reads the frames of films and cameras as packed RGB
and makes films of frames, and a program that tries it.")

include(CPack)
