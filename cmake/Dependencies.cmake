# SPDX-License-Identifier: MIT
# The libraries the player is built on, each as one imported target.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(GLEW REQUIRED)
find_package(OpenGL REQUIRED COMPONENTS OpenGL GLX)
find_package(X11 REQUIRED)

pkg_check_modules(GLU REQUIRED IMPORTED_TARGET glu)
pkg_check_modules(FFMPEG REQUIRED IMPORTED_TARGET
    libavformat>=59.27 libavcodec>=59.37 libavutil>=57.28 libswscale>=6.7 libswresample>=4.7)
# Loaded when a camera is opened: its header says which one.
pkg_check_modules(AVDEVICE REQUIRED libavdevice>=59.7)

# The SDL 1.2 API: what is installed (the maintained sdl12-compat, or classic SDL 1.2), or an
# unpacked one.
set(VYX_SDL_ROOT "" CACHE PATH "Folder of an SDL 1.2 to build with instead of the installed one")
add_library(vyx_sdl INTERFACE)
if(VYX_SDL_ROOT)
    find_library(VYX_SDL_LIBRARY NAMES SDL-1.2 libSDL-1.2.so.0 NO_DEFAULT_PATH REQUIRED
        PATHS ${VYX_SDL_ROOT}/lib ${VYX_SDL_ROOT}/lib/${CMAKE_LIBRARY_ARCHITECTURE})
    target_include_directories(vyx_sdl SYSTEM INTERFACE ${VYX_SDL_ROOT}/include/SDL)
    target_compile_definitions(vyx_sdl INTERFACE _GNU_SOURCE=1 _REENTRANT)
    target_link_libraries(vyx_sdl INTERFACE ${VYX_SDL_LIBRARY})
else()
    pkg_search_module(SDL12 REQUIRED IMPORTED_TARGET sdl sdl12_compat)
    target_link_libraries(vyx_sdl INTERFACE PkgConfig::SDL12)
endif()
add_library(vyx_gl INTERFACE)
target_link_libraries(vyx_gl INTERFACE GLEW::GLEW OpenGL::GL PkgConfig::GLU)
add_library(vyx_ffmpeg INTERFACE)
target_link_libraries(vyx_ffmpeg INTERFACE PkgConfig::FFMPEG)
