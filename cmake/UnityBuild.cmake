# SPDX-License-Identifier: Apache-2.0
# A first start compiles everything once, and most of a source's time goes into the headers that its neighbours read too. Where nobody is
# going to edit one file, eight sources are therefore compiled as one. Presets for developers leave this off.

option(TOLVA_UNITY "Compile several sources as one" OFF)
set(CMAKE_UNITY_BUILD ${TOLVA_UNITY})
set(CMAKE_UNITY_BUILD_BATCH_SIZE 8)
# It takes each of the eight for a header, in which a type made of what is local to it would be wrong.
if(TOLVA_UNITY AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    add_compile_options(-Wno-subobject-linkage)
endif()

# tolva_compile_alone(TARGET SOURCE...): sources whose local names a neighbour has too.
function(tolva_compile_alone target)
    set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
