# vellum_add_service(PROGRAM BUS_NAME): a service, a program over the library's objects. The sources are those
# of the calling folder: the target PROGRAM_objects has all of them but main.cpp, so that tests can link them.
# Started on demand: by the user's service manager, or by the session's bus under BUS_NAME; the forms of what both
# read lie in the folder's units/.
function(vellum_add_service program bus_name)
    string(REPLACE _ - file_name ${program})
    file(GLOB sources CONFIGURE_DEPENDS *.cpp)
    list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
    add_library(${program}_objects STATIC ${sources})
    target_link_libraries(${program}_objects PUBLIC vellum_service)
    add_executable(${program} main.cpp)
    target_link_libraries(${program} PRIVATE ${program}_objects)
    set_target_properties(${program} PROPERTIES OUTPUT_NAME ${file_name})

    foreach(unit ${file_name}.socket ${file_name}.service ${bus_name}.service)
        configure_file(units/${unit}.in ${CMAKE_CURRENT_BINARY_DIR}/${unit} @ONLY)
    endforeach()
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR} COMPONENT server)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${file_name}.socket ${CMAKE_CURRENT_BINARY_DIR}/${file_name}.service
        DESTINATION lib/systemd/user COMPONENT server)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${bus_name}.service
        DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/services COMPONENT server)
endfunction()
