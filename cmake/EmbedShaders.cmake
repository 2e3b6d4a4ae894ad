# SPDX-License-Identifier: MIT
# vyx_embed_shaders(<target>): makes one header per folder of src/gpu/shaders.
#
# shaders/<pass>.h, in the build folder, holds every <pass>/<program>.frag as a string constant named
# <program>. The constants have internal linkage: two passes may have programs of one name.
# A line #include "name.glsl" stands for the text of src/gpu/shaders/common/name.glsl.

if(CMAKE_SCRIPT_MODE_FILE)
    set(text "// Made from ${PASS}/*.frag. Do not edit.\n#pragma once\n\nnamespace {\n")
    foreach(file IN LISTS INPUTS)
        get_filename_component(program ${file} NAME_WE)
        file(READ ${file} source)
        string(REGEX MATCHALL "#include \"[a-z_]+\\.glsl\"" includes "${source}")
        foreach(line IN LISTS includes)
            string(REGEX REPLACE "#include \"(.*)\"" "\\1" name ${line})
            file(READ ${COMMON}/${name} text_of_include)
            string(REPLACE "${line}\n" "${text_of_include}" source "${source}")
        endforeach()
        string(APPEND text "\n[[maybe_unused]] const char ${program}[] = R\"GLSL(${source})GLSL\";\n")
    endforeach()
    file(WRITE ${OUTPUT} "${text}\n}  // namespace\n")
    return()
endif()

function(vyx_embed_shaders target)
    set(folder ${CMAKE_CURRENT_SOURCE_DIR}/shaders)
    set(out ${CMAKE_CURRENT_BINARY_DIR}/generated)
    file(GLOB passes CONFIGURE_DEPENDS LIST_DIRECTORIES true RELATIVE ${folder} ${folder}/*)
    list(REMOVE_ITEM passes common)
    file(GLOB common CONFIGURE_DEPENDS ${folder}/common/*.glsl)
    foreach(pass IN LISTS passes)
        file(GLOB inputs CONFIGURE_DEPENDS ${folder}/${pass}/*.frag)
        add_custom_command(
            OUTPUT ${out}/shaders/${pass}.h
            COMMAND ${CMAKE_COMMAND} "-DPASS=${pass}" "-DINPUTS=${inputs}"
                "-DCOMMON=${folder}/common" "-DOUTPUT=${out}/shaders/${pass}.h"
                -P ${PROJECT_SOURCE_DIR}/cmake/EmbedShaders.cmake
            DEPENDS ${inputs} ${common} ${PROJECT_SOURCE_DIR}/cmake/EmbedShaders.cmake
            VERBATIM)
        target_sources(${target} PRIVATE ${out}/shaders/${pass}.h)
    endforeach()
    target_include_directories(${target} PUBLIC ${out})
endfunction()
