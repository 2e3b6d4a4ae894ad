# SPDX-License-Identifier: MIT
# vyx_embed_resource(<target> <name> <file>): compiles the bytes of a file in.
#
# resources/<name>.h, in the build folder, holds them as the array <name>.

if(CMAKE_SCRIPT_MODE_FILE)
    file(READ ${INPUT} bytes HEX)
    string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
    string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" bytes "${bytes}")
    file(WRITE ${OUTPUT} "// Made from a file of bytes. Do not edit.\n#pragma once\n\n"
        "inline constexpr unsigned char ${NAME}[] = {\n${bytes}};\n")
    return()
endif()

function(vyx_embed_resource target name file)
    set(out ${CMAKE_CURRENT_BINARY_DIR}/generated)
    add_custom_command(
        OUTPUT ${out}/resources/${name}.h
        COMMAND ${CMAKE_COMMAND} "-DNAME=${name}" "-DINPUT=${file}"
            "-DOUTPUT=${out}/resources/${name}.h"
            -P ${PROJECT_SOURCE_DIR}/cmake/EmbedResources.cmake
        DEPENDS ${file} ${PROJECT_SOURCE_DIR}/cmake/EmbedResources.cmake
        VERBATIM)
    target_sources(${target} PRIVATE ${out}/resources/${name}.h)
    target_include_directories(${target} PRIVATE ${out})
endfunction()
