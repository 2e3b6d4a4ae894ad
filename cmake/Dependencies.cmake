# SPDX-License-Identifier: MIT
# The libraries the player is built on, each as one imported target.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(GLEW REQUIRED)
find_package(OpenGL REQUIRED COMPONENTS OpenGL GLX)

# The SDL 1.2 API: the maintained sdl12-compat by default, classic SDL 1.2 where only that is there.
pkg_search_module(SDL12 REQUIRED IMPORTED_TARGET sdl sdl12_compat)
pkg_check_modules(GLU REQUIRED IMPORTED_TARGET glu)
pkg_check_modules(FFMPEG REQUIRED IMPORTED_TARGET
    libavformat>=59.27 libavcodec>=59.37 libavutil>=57.28 libswscale>=6.7 libswresample>=4.7
    libavdevice>=59.7)

add_library(vyx_sdl INTERFACE)
target_link_libraries(vyx_sdl INTERFACE PkgConfig::SDL12)
add_library(vyx_gl INTERFACE)
target_link_libraries(vyx_gl INTERFACE GLEW::GLEW OpenGL::GL PkgConfig::GLU)
add_library(vyx_ffmpeg INTERFACE)
target_link_libraries(vyx_ffmpeg INTERFACE PkgConfig::FFMPEG)
