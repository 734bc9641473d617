# What `cmake --install` lays down: the library, its headers, the tool, and what pkg-config and
# find_package(vellum) read. All of these are found from where they lie, so that any prefix works for them.
include(CMakePackageConfigHelpers)

install(TARGETS vellum EXPORT vellum-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(TARGETS vellum_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/vellum DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")

# The installed tool finds the library beside it, not through the loader's cache.
file(RELATIVE_PATH tool_to_library
    ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(vellum_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${tool_to_library}")

file(RELATIVE_PATH VELLUM_PC_TO_PREFIX
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/vellum.pc.in ${CMAKE_CURRENT_BINARY_DIR}/vellum.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vellum.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

set(VELLUM_CMAKE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/vellum)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/vellum-config.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/vellum-config.cmake
    INSTALL_DESTINATION ${VELLUM_CMAKE_FOLDER}
    NO_SET_AND_CHECK_MACRO)
# Before 1.0 a minor release may break the interface.
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/vellum-config-version.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/vellum-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/vellum-config-version.cmake
    DESTINATION ${VELLUM_CMAKE_FOLDER} COMPONENT development)
install(EXPORT vellum-targets NAMESPACE vellum:: DESTINATION ${VELLUM_CMAKE_FOLDER} COMPONENT development)

# The framework of the legacy font service: see CMakeLists.txt beside this. Ours is a bundle over share/vellum;
# what is loaded of it is the component `legacy`, which legacy/CMakeLists.txt lays down beside this.
file(RELATIVE_PATH framework_to_resources
    ${CMAKE_INSTALL_FULL_LIBDIR}/vellum/Fount.framework ${CMAKE_INSTALL_FULL_DATADIR}/vellum)
file(CREATE_LINK ${framework_to_resources} ${CMAKE_CURRENT_BINARY_DIR}/Resources SYMBOLIC)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/resources/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vellum
    COMPONENT runtime)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/Resources DESTINATION ${CMAKE_INSTALL_LIBDIR}/vellum/Fount.framework
    COMPONENT runtime)
