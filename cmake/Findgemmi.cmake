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

# gemmi::cif::Block holds a vector of Item, which is not complete before Block is: clang 14 refuses the constructors
# that stand inside Block, because a constexpr vector's destructor (C++20) is needed there at once. GCC waits until Item
# is complete. For clang the header is copied with these constructors behind Item; being included first, its guard keeps
# the packaged one out.
function(gemmi_mend_for_clang header)
    file(READ ${gemmi_INCLUDE_DIR}/gemmi/cifdoc.hpp text)
    string(REGEX REPLACE "#include \"([a-z]+\\.hpp)\"" "#include <gemmi/\\1>" text "${text}")
    string(REPLACE "explicit Block(const std::string& name_) : name(name_) {}\n  Block() {}"
                   "explicit Block(const std::string& name_);\n  Block();" text "${text}")
    string(REPLACE "struct ItemSpan {"
                   "inline Block::Block(const std::string& name_) : name(name_) {}\ninline Block::Block() {}\n\nstruct ItemSpan {"
                   text "${text}")
    file(WRITE ${header} "#pragma GCC system_header\n${text}")
endfunction()

if(gemmi_FOUND AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    set(gemmi_mended ${CMAKE_BINARY_DIR}/gemmi-for-clang/cifdoc.hpp)
    gemmi_mend_for_clang(${gemmi_mended})
    target_compile_options(gemmi::headers INTERFACE "SHELL:-include ${gemmi_mended}")
endif()
