# SPDX-License-Identifier: Apache-2.0
# Language level, warnings and instrumentation for every target of the tree.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_AUTOMOC ON)
# What moc reads is no work of another target, so it waits for none.
set(CMAKE_AUTOGEN_ORIGIN_DEPENDS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# What a host may use is marked with TOLVA_EXPORT.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set_property(GLOBAL PROPERTY AUTOGEN_SOURCE_GROUP "generated")

find_program(TOLVA_CCACHE ccache)
if(TOLVA_CCACHE)
    # Objects of one checkout serve another, also where headers are precompiled.
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=pch_defines,time_macros CCACHE_INODECACHE=1 "${TOLVA_CCACHE}")
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        add_compile_options(-fpch-preprocess)
    endif()
endif()

# The default linker is the slowest part of a rebuild; lld is taken where it is there.
find_program(TOLVA_LLD ld.lld)
if(TOLVA_LLD AND NOT TOLVA_COVERAGE)
    add_link_options(-fuse-ld=lld)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wconversion
                    -Wno-sign-conversion -Werror)
add_compile_definitions(QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_KEYWORDS
                        QT_NO_FOREACH QT_STRICT_ITERATORS)

if(TOLVA_SANITIZE)
    add_compile_options(-fsanitize=${TOLVA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    # What is put between the instructions hides from the compiler what was written before; the sanitizers find it anyhow.
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
    add_link_options(-fsanitize=${TOLVA_SANITIZE})
endif()
if(TOLVA_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()
