# Source files that a program of ours writes while the library is built.

# add_generated_source(PROGRAM FOLDER SOURCE): has PROGRAM, which FOLDER configures, write SOURCE. The program
# runs on the machine that builds: where that is not the machine built for, FOLDER is configured by itself. To be
# called in the folder of the targets that compile SOURCE, as a rule serves those alone.
function(add_generated_source program folder source)
    if(CMAKE_CROSSCOMPILING)
        include(ExternalProject)
        set(built ${PROJECT_BINARY_DIR}/${program})
        set(command ${built}/${program})
        ExternalProject_Add(${program}
            SOURCE_DIR ${folder} BINARY_DIR ${built} BUILD_BYPRODUCTS ${command}
            CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release INSTALL_COMMAND "" BUILD_ALWAYS ON)
    else()
        add_subdirectory(${folder} ${PROJECT_BINARY_DIR}/${program})
        set(command $<TARGET_FILE:${program}>)
    endif()
    cmake_path(GET source PARENT_PATH written)
    file(MAKE_DIRECTORY ${written})
    cmake_path(GET source FILENAME name)
    add_custom_command(
        OUTPUT ${source}
        COMMAND ${command} ${source}
        DEPENDS ${program} ${command}
        COMMENT "Writing ${name}"
        VERBATIM)
endfunction()
