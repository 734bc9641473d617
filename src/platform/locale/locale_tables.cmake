# The rule for the source file with the tables of languages, VELLUM_LOCALE_TABLES. Included, because a
# rule serves the targets of its own folder alone.
set(VELLUM_LOCALE_TABLES ${PROJECT_BINARY_DIR}/generated/locale_tables.cpp)
set(generator_folder ${CMAKE_CURRENT_LIST_DIR}/generator)

if(CMAKE_CROSSCOMPILING)
    include(ExternalProject)
    set(built ${PROJECT_BINARY_DIR}/locale_generator)
    set(generator ${built}/generate_locale_tables)
    ExternalProject_Add(locale_generator
        SOURCE_DIR ${generator_folder} BINARY_DIR ${built} BUILD_BYPRODUCTS ${generator}
        CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release INSTALL_COMMAND "" BUILD_ALWAYS ON)
    set(generator_target locale_generator)
else()
    add_subdirectory(${generator_folder} ${PROJECT_BINARY_DIR}/locale_generator)
    set(generator $<TARGET_FILE:generate_locale_tables>)
    set(generator_target generate_locale_tables)
endif()

file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/generated)
add_custom_command(
    OUTPUT ${VELLUM_LOCALE_TABLES}
    COMMAND ${generator} ${VELLUM_LOCALE_TABLES}
    DEPENDS ${generator_target} $<$<NOT:$<BOOL:${CMAKE_CROSSCOMPILING}>>:${generator}>
    COMMENT "Writing the tables of languages"
    VERBATIM)
