# gemmi of Debian 12 is a set of headers without a CMake or pkg-config file. Reading mmCIF needs PEGTL, writing
# numbers stb_sprintf, reading .gz zlib; none of them is named by the package.
#
# Defines the target gemmi::headers.
find_path(gemmi_INCLUDE_DIR gemmi/model.hpp)
find_path(gemmi_PEGTL_INCLUDE_DIR tao/pegtl.hpp)
find_path(gemmi_STB_INCLUDE_DIR stb/stb_sprintf.h)
find_package(ZLIB QUIET)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(gemmi
    REQUIRED_VARS gemmi_INCLUDE_DIR gemmi_PEGTL_INCLUDE_DIR gemmi_STB_INCLUDE_DIR ZLIB_FOUND)

if(gemmi_FOUND AND NOT TARGET gemmi::headers)
    add_library(gemmi::headers INTERFACE IMPORTED)
    target_include_directories(gemmi::headers SYSTEM INTERFACE
        ${gemmi_INCLUDE_DIR} ${gemmi_PEGTL_INCLUDE_DIR} ${gemmi_STB_INCLUDE_DIR})
    target_link_libraries(gemmi::headers INTERFACE ZLIB::ZLIB)
endif()
