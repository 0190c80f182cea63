# SPDX-License-Identifier: Apache-2.0
# The libraries that the tree stands on. docs/dependencies.md gives the reason for each.

find_package(PkgConfig REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Svg PrintSupport)
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET "sqlite3>=3.35")
pkg_check_modules(PQ REQUIRED IMPORTED_TARGET "libpq>=14")
pkg_check_modules(GMIME REQUIRED IMPORTED_TARGET "gmime-3.0>=3.2")
# The compiler defines what this asks for by itself; said once more it keeps precompiled headers from being shared.
get_target_property(gmimeOptions PkgConfig::GMIME INTERFACE_COMPILE_OPTIONS)
list(REMOVE_ITEM gmimeOptions -D_LARGEFILE64_SOURCE -pthread)
set_target_properties(PkgConfig::GMIME PROPERTIES INTERFACE_COMPILE_OPTIONS "${gmimeOptions}")

pkg_check_modules(GUMBO REQUIRED IMPORTED_TARGET gumbo)
pkg_check_modules(HUNSPELL REQUIRED IMPORTED_TARGET "hunspell>=1.7")

# libphonenumber ships no usable package description on Debian.
find_path(PHONENUMBER_INCLUDE_DIR phonenumbers/phonenumberutil.h REQUIRED)
find_library(PHONENUMBER_LIBRARY phonenumber REQUIRED)
add_library(Tolva::PhoneNumber UNKNOWN IMPORTED)
set_target_properties(Tolva::PhoneNumber PROPERTIES
    IMPORTED_LOCATION "${PHONENUMBER_LIBRARY}"
    INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${PHONENUMBER_INCLUDE_DIR}")

if(TOLVA_TESTS)
    find_package(GTest REQUIRED)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
    # It tells every source the folders of this checkout, for a look-up of data that no test makes; the compiler's cache could not serve
    # another checkout then.
    set_target_properties(Qt6::Test PROPERTIES INTERFACE_COMPILE_DEFINITIONS QT_TESTLIB_LIB)
endif()
