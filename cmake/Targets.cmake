# One helper per kind of target. Sources are listed explicitly; LINK names what the folder may depend on,
# so that an arrow in the wrong direction does not build.
include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET default)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_BUILD_WITH_INSTALL_RPATH OFF)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release)
endif()

# What every target is compiled with. Contraction of a*b + c is off everywhere: a pose must score the same
# bits at every optimisation level.
add_library(morvanex_flags INTERFACE)
target_compile_options(morvanex_flags INTERFACE -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow
                                                -Wconversion -Wno-sign-conversion)
if(MORVANEX_WERROR)
    # GCC 12 takes a literal put before a std::string for a copy that overlaps itself.
    target_compile_options(morvanex_flags INTERFACE -Werror $<$<CXX_COMPILER_ID:GNU>:-Wno-error=restrict>)
endif()
if(MORVANEX_FUZZ)
    list(APPEND MORVANEX_SANITIZE fuzzer-no-link)
endif()
if(MORVANEX_SANITIZE)
    list(JOIN MORVANEX_SANITIZE "," sanitizers)
    target_compile_options(morvanex_flags INTERFACE -fsanitize=${sanitizers} -fno-sanitize-recover=all
                                                    -fno-omit-frame-pointer)
    target_compile_definitions(morvanex_flags INTERFACE MORVANEX_SANITIZED)
    target_link_options(morvanex_flags INTERFACE -fsanitize=${sanitizers})
endif()

# morvanex_library(name STATIC|SHARED [INCLUDE folder] SOURCES ... LINK ... [PRIVATE_LINK ...]): headers are named from
# INCLUDE on, the library's own folder unless given.
function(morvanex_library name kind)
    cmake_parse_arguments(ARG "" "INCLUDE" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
    if(NOT ARG_INCLUDE)
        set(ARG_INCLUDE ${CMAKE_CURRENT_SOURCE_DIR})
    endif()
    add_library(${name} ${kind} ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${ARG_INCLUDE}>)
    target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE morvanex_flags ${ARG_PRIVATE_LINK})
endfunction()

# morvanex_plugin(name OUTPUT_NAME name SOVERSION n SOURCES ... EXPORTS version-script LINK ...): a shared library that
# exports what the version script names and nothing else, and that stays mapped until the process ends, however it
# was loaded.
function(morvanex_plugin name)
    cmake_parse_arguments(ARG "" "OUTPUT_NAME;SOVERSION;EXPORTS" "SOURCES;LINK" ${ARGN})
    add_library(${name} SHARED ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES OUTPUT_NAME ${ARG_OUTPUT_NAME} SOVERSION ${ARG_SOVERSION}
                                             LINK_DEPENDS ${ARG_EXPORTS} INSTALL_RPATH "$ORIGIN")
    target_link_libraries(${name} PRIVATE morvanex_flags ${ARG_LINK})
    target_link_options(${name} PRIVATE -Wl,--version-script=${ARG_EXPORTS} -Wl,-z,nodelete)
endfunction()

# morvanex_program(name SOURCES ... LINK ...)
function(morvanex_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE morvanex_flags ${ARG_LINK})
endfunction()

# Compiling the many test sources takes longer than running them: they are not optimised, what they test is.
set(morvanex_test_optimisation -O0)

# morvanex_test(name SOURCES ... LINK ... [LEAKS file] [THREADS] [DESKTOP]): one GoogleTest program; each of its tests is one test
# of ctest. LEAKS is the file of LeakSanitizer's suppressions; THREADS says that the program runs threads, so that it
# belongs under ThreadSanitizer: into the target and under the label "threads". DESKTOP says likewise that it needs the
# desktop application.
add_custom_target(threads)
add_custom_target(desktop)
function(morvanex_test name)
    cmake_parse_arguments(ARG "THREADS;DESKTOP" "LEAKS" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_compile_options(${name} PRIVATE ${morvanex_test_optimisation})
    target_precompile_headers(${name} REUSE_FROM morvanex_test_support)
    target_link_libraries(${name} PRIVATE morvanex_flags morvanex_test_support ${ARG_LINK} GTest::gmock
                                          GTest::gtest_main)
    set(properties TIMEOUT 600)
    if(ARG_LEAKS)
        list(APPEND properties ENVIRONMENT LSAN_OPTIONS=suppressions=${ARG_LEAKS})
    endif()
    if(ARG_THREADS)
        list(APPEND properties LABELS threads)
        add_dependencies(threads ${name})
    endif()
    if(ARG_DESKTOP)
        list(APPEND properties LABELS desktop)
        add_dependencies(desktop ${name})
    endif()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()

# morvanex_bench(name SOURCES ... LINK ...): one Google Benchmark program.
function(morvanex_bench name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE morvanex_flags ${ARG_LINK} benchmark::benchmark)
endfunction()

# morvanex_fuzz(name SOURCES ... LINK ...): the target fuzz_name, one LLVMFuzzerTestOneInput over seeds of corpus/name.
# With the preset "fuzz" it is libFuzzer's program; else it reads its seeds once, as one test of ctest.
function(morvanex_fuzz name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(fuzz_${name} ${ARG_SOURCES})
    target_link_libraries(fuzz_${name} PRIVATE morvanex_flags ${ARG_LINK})
    if(MORVANEX_FUZZ)
        target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    else()
        target_link_libraries(fuzz_${name} PRIVATE morvanex_read_seeds)
        add_test(NAME Fuzz.ReadsItsSeeds_${name}
            COMMAND fuzz_${name} ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name})
    endif()
endfunction()
