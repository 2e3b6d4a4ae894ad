# SPDX-License-Identifier: MIT
# Language level, warnings, sanitizers and the compiler cache, for every target of the project.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

set(vyx_warnings -Wall -Wextra -Wpedantic -Wshadow -Wcast-align -Wconversion
    -Wformat=2 -Wimplicit-fallthrough -Wnull-dereference
    -Werror=deprecated-declarations -Werror=format-security)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    list(APPEND vyx_warnings -Wduplicated-cond -Wlogical-op)
    list(REMOVE_ITEM vyx_warnings -Wnull-dereference)  # false positives through inlined containers
endif()
if(VYX_WERROR)
    list(APPEND vyx_warnings -Werror)
endif()

if(VYX_SANITIZE)
    add_compile_options(-fsanitize=${VYX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VYX_SANITIZE})
endif()
if(VYX_FUZZ)
    # What the code reaches guides the fuzzers.
    add_compile_options(-fsanitize=fuzzer-no-link)
    add_link_options(-fsanitize=fuzzer-no-link)
endif()
if(VYX_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()

# Applies the project's warnings to a target of ours.
function(vyx_target target)
    target_compile_options(${target} PRIVATE ${vyx_warnings})
endfunction()
