# The checks that are no GoogleTest programs: of the sources, the headers, the built library, the
# installed package and the tool, and the programs in C. Each script that checks has a test of its
# own, which plants what the script must find.

# Debian's own interpreter: it is the one that Debian's fontTools is for.
set(VELLUM_PYTHON /usr/bin/python3)
set(VELLUM_INCLUDE ${PROJECT_SOURCE_DIR}/include)

# vellum_add_check(NAME LABEL [TIMEOUT seconds] [ENVIRONMENT NAME=value...] COMMAND ...)
function(vellum_add_check name label)
    cmake_parse_arguments(PARSE_ARGV 2 CHECK "" "TIMEOUT" "ENVIRONMENT;COMMAND")
    if(NOT CHECK_TIMEOUT)
        set(CHECK_TIMEOUT 120)
    endif()
    add_test(NAME ${name} COMMAND ${CHECK_COMMAND})
    set_tests_properties(${name} PROPERTIES LABELS ${label} TIMEOUT ${CHECK_TIMEOUT}
        ENVIRONMENT "PYTHONDONTWRITEBYTECODE=1;ASAN_OPTIONS=allocator_may_return_null=1;${CHECK_ENVIRONMENT}")
endfunction()

# ---- the sources -----------------------------------------------------------------------------------
set(compilers CC=${CMAKE_C_COMPILER} CXX=${CMAKE_CXX_COMPILER})
set(folder ${CMAKE_CURRENT_SOURCE_DIR}/architecture)
vellum_add_check(architecture.includes architecture
    COMMAND ${VELLUM_PYTHON} ${folder}/check_includes.py ${PROJECT_SOURCE_DIR})
vellum_add_check(architecture.includes_checker architecture
    COMMAND ${VELLUM_PYTHON} ${folder}/test_check_includes.py)

# ---- the public headers ----------------------------------------------------------------------------
set(folder ${CMAKE_CURRENT_SOURCE_DIR}/headers)
vellum_add_check(headers.compile_alone headers
    COMMAND ${VELLUM_PYTHON} ${folder}/check_headers.py
        ${VELLUM_INCLUDE} ${CMAKE_C_COMPILER} ${CMAKE_CXX_COMPILER})
find_program(VELLUM_CLANG clang-14)
find_program(VELLUM_CLANGXX clang++-14)
if(VELLUM_CLANG AND VELLUM_CLANGXX)
    vellum_add_check(headers.compile_alone_with_clang headers
        COMMAND ${VELLUM_PYTHON} ${folder}/check_headers.py
            ${VELLUM_INCLUDE} ${VELLUM_CLANG} ${VELLUM_CLANGXX})
endif()
vellum_add_check(headers.documented headers
    COMMAND ${VELLUM_PYTHON} ${folder}/check_docs.py ${VELLUM_INCLUDE}/vellum)
vellum_add_check(headers.checkers headers ENVIRONMENT ${compilers}
    COMMAND ${VELLUM_PYTHON} ${folder}/test_header_checks.py)

# ---- the library's binary interface ----------------------------------------------------------------
set(folder ${CMAKE_CURRENT_SOURCE_DIR}/abi)
vellum_add_check(abi.checkers abi ENVIRONMENT ${compilers}
    COMMAND ${VELLUM_PYTHON} ${folder}/test_abi_checks.py)
vellum_add_check(abi.exports abi
    COMMAND ${VELLUM_PYTHON} ${folder}/check_exports.py
        $<TARGET_FILE:vellum> ${PROJECT_SOURCE_DIR}/src/vellum.map ${VELLUM_INCLUDE}/vellum)
# A sanitizer adds libraries and constructors of its own, and must come first in every program.
if(NOT VELLUM_SANITIZE)
    vellum_add_check(abi.needed abi
        COMMAND ${VELLUM_PYTHON} ${folder}/check_needed.py $<TARGET_FILE:vellum> ${CMAKE_C_COMPILER})
    vellum_add_check(package package TIMEOUT 300
        ENVIRONMENT ${compilers} CMAKE=${CMAKE_COMMAND} VELLUM_GENERATOR=${CMAKE_GENERATOR}
            VELLUM_BUILD=${PROJECT_BINARY_DIR} VELLUM_SOURCE=${PROJECT_SOURCE_DIR}
            VELLUM_VERSION=${PROJECT_VERSION} VELLUM_LEGACY=$<BOOL:${VELLUM_LEGACY_FONT_SERVICE}>
            VELLUM_COMPANION=$<BOOL:${VELLUM_COMPANION}>
        COMMAND ${VELLUM_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/package/test_package.py)
endif()

# ---- the tool --------------------------------------------------------------------------------------
foreach(verb inspect coverage fontinfo list match text change monitor server policy activate index)
    vellum_add_check(tools.${verb} tools TIMEOUT 300
        ENVIRONMENT VELLUM_TOOL=$<TARGET_FILE:vellum_tool> VELLUM_BEACON=$<TARGET_FILE:vellum_beacon>
        COMMAND ${VELLUM_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/tools/test_${verb}.py)
endforeach()
# What a run of the tool alone cannot show, with the tool's own sources and the library's public functions.
if(NOT VELLUM_SANITIZE STREQUAL "thread")
    add_executable(tool_tests tools/change_lines_test.cpp support/font_builder.cpp support/name_records.cpp
        support/named_font.cpp support/sfnt_tables.cpp support/temp_dir.cpp
        ${PROJECT_SOURCE_DIR}/src/tools/change_lines.cpp ${PROJECT_SOURCE_DIR}/src/tools/text.cpp)
    target_include_directories(tool_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(tool_tests PRIVATE vellum vellum_options nlohmann_json::nlohmann_json
        PkgConfig::HARFBUZZ GTest::gmock GTest::gtest_main)
    gtest_discover_tests(tool_tests NO_PRETTY_VALUES PROPERTIES TIMEOUT 120 DISCOVERY_TIMEOUT 60)
endif()
vellum_add_check(examples examples
    ENVIRONMENT VELLUM_TOOL=$<TARGET_FILE:vellum_tool> EXAMPLES=$<TARGET_FILE_DIR:example_own_loop>
    COMMAND ${VELLUM_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/examples/test_examples.py)
set(folder ${CMAKE_CURRENT_SOURCE_DIR}/oracle)
vellum_add_check(oracle.inspect oracle TIMEOUT 600
    COMMAND ${VELLUM_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/tools/run_in_own_home.py
        ${VELLUM_PYTHON} ${folder}/inspect_oracle.py $<TARGET_FILE:vellum_tool>)
vellum_add_check(oracle.checker oracle
    COMMAND ${VELLUM_PYTHON} ${folder}/test_inspect_oracle.py)
vellum_add_check(oracle.properties oracle TIMEOUT 600
    COMMAND ${VELLUM_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/tools/run_in_own_home.py
        ${VELLUM_PYTHON} ${folder}/properties_oracle.py $<TARGET_FILE:vellum_tool>)
vellum_add_check(oracle.properties_checker oracle TIMEOUT 300
    COMMAND ${VELLUM_PYTHON} ${folder}/test_properties_oracle.py)

# ---- the tables of languages -----------------------------------------------------------------------
add_executable(print_languages ${folder}/print_languages.cpp)
target_link_libraries(print_languages PRIVATE vellum_internal)
vellum_add_check(oracle.languages oracle TIMEOUT 300
    COMMAND ${VELLUM_PYTHON} ${folder}/languages_oracle.py $<TARGET_FILE:print_languages>)
vellum_add_check(oracle.languages_checker oracle ENVIRONMENT VELLUM_PRINT_LANGUAGES=$<TARGET_FILE:print_languages>
    COMMAND ${VELLUM_PYTHON} ${folder}/test_languages_oracle.py)

# ---- the interface from C --------------------------------------------------------------------------
# Each file is a program that links the library alone, as its users do. Those whose names say
# concurrent also run under the thread sanitizer.
file(GLOB c_tests CONFIGURE_DEPENDS c/*_test.c)
foreach(source ${c_tests})
    get_filename_component(name ${source} NAME_WE)
    add_executable(c_${name} ${source})
    set_target_properties(c_${name} PROPERTIES C_STANDARD 11 C_EXTENSIONS OFF)
    target_compile_options(c_${name} PRIVATE -Wpedantic -Wstrict-prototypes -Werror)
    target_link_libraries(c_${name} PRIVATE vellum vellum_options Threads::Threads)
    set(label c)
    if(name MATCHES "(^|_)concurrent_")
        set(label concurrent)
    endif()
    vellum_add_check(c.${name} ${label}
        COMMAND ${VELLUM_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/tools/run_in_own_home.py $<TARGET_FILE:c_${name}>)
endforeach()

# ---- what fuzzing found ----------------------------------------------------------------------------
# Every fuzz target reads its corpus here too, with whatever compiler builds the tests.
file(GLOB fuzzers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/*_fuzzer.cpp)
foreach(source ${fuzzers})
    get_filename_component(target ${source} NAME_WE)
    string(REGEX REPLACE "_fuzzer$" "" name ${target})
    add_executable(${name}_replay ${source} ${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp)
    target_link_libraries(${name}_replay PRIVATE vellum_internal $<$<STREQUAL:${name},index_query>:vellum_beacon_objects>)
    vellum_add_check(replay.${name} replay
        COMMAND ${VELLUM_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/tools/run_in_own_home.py
            $<TARGET_FILE:${name}_replay> ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
endforeach()

# ---- what runs under the thread sanitizer ----------------------------------------------------------
# Builds the programs that have concurrent tests, and no others: cmake --build ... --target
# concurrent_tests. Read at configuration, so configure again after writing a program's first one.
add_custom_target(concurrent_tests)
get_property(targets DIRECTORY PROPERTY BUILDSYSTEM_TARGETS)
foreach(target ${targets})
    get_target_property(type ${target} TYPE)
    if(NOT type STREQUAL "EXECUTABLE")
        continue()
    endif()
    get_target_property(sources ${target} SOURCES)
    foreach(source ${sources})
        file(STRINGS ${source} found REGEX "Concurrent" LIMIT_COUNT 1)
        if(found OR source MATCHES "[/_]concurrent_[a-z0-9_]*\\.c$")
            add_dependencies(concurrent_tests ${target})
        endif()
    endforeach()
endforeach()
