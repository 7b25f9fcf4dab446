install(TARGETS vxtools Talm_Base Talm_Config
    EXPORT VxTools
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/vx DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/talm DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${CMAKE_BINARY_DIR}/generated/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/VxTools")
install(EXPORT VxTools NAMESPACE VxTools:: DESTINATION ${package_dir})
configure_package_config_file(cmake/VxToolsConfig.cmake.in
    ${CMAKE_BINARY_DIR}/VxToolsConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/VxToolsConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_BINARY_DIR}/VxToolsConfig.cmake
    ${CMAKE_BINARY_DIR}/VxToolsConfigVersion.cmake
    DESTINATION ${package_dir})

# From the file itself, so that an installed copy can be moved.
file(RELATIVE_PATH VX_PREFIX_FROM_PC ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/vxtools.pc.in ${CMAKE_BINARY_DIR}/vxtools.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/vxtools.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
