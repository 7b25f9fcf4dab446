# The stamp GetVerNum hands out, made anew at each build.
set(stamp "${CMAKE_BINARY_DIR}/generated/frame/version_stamp.h")
add_custom_target(version_stamp
    COMMAND ${CMAKE_COMMAND} -DSOURCE_DIR=${PROJECT_SOURCE_DIR} -DOUTPUT=${stamp}
            -P ${PROJECT_SOURCE_DIR}/cmake/VersionStamp.cmake
    BYPRODUCTS ${stamp}
    COMMENT "Version stamp")

set(export_dir "${CMAKE_BINARY_DIR}/generated/include")

# settings, include paths and libraries that both builds of the sources share
function(vx_configure target)
    target_link_libraries(${target}
        PRIVATE vxtools_settings $<BUILD_INTERFACE:vxtools_sources> ZLIB::ZLIB Threads::Threads)
    target_include_directories(${target}
        PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
               $<BUILD_INTERFACE:${export_dir}>
               $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
        PRIVATE ${PROJECT_SOURCE_DIR} ${CMAKE_BINARY_DIR}/generated)
    target_link_libraries(${target} PUBLIC Boost::headers PkgConfig::libtirpc)
    add_dependencies(${target} version_stamp)
endfunction()

add_library(vxtools SHARED)
add_library(VxTools::vxtools ALIAS vxtools)
vx_configure(vxtools)
target_link_libraries(vxtools PRIVATE Talm_Base Talm_Config)
generate_export_header(vxtools
    BASE_NAME vx
    EXPORT_MACRO_NAME VX_API
    STATIC_DEFINE VX_STATIC
    INCLUDE_GUARD_NAME VX_EXPORT_H
    EXPORT_FILE_NAME ${export_dir}/vx/export.h)
set_target_properties(vxtools PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "\$ORIGIN")
# The XDR routines are for applications; the toolkit calls none, and brings them all the same.
target_link_options(vxtools PRIVATE LINKER:--no-as-needed)
target_link_options(vxtools PRIVATE LINKER:-Bsymbolic-functions
    LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/library_templates.map)
set_property(TARGET vxtools APPEND PROPERTY LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/library_templates.map)
if(NOT VX_SANITIZE)
    target_link_options(vxtools PRIVATE LINKER:-z,defs)
endif()

if(VX_BUILD_TESTS OR VX_BUILD_FUZZ)
    add_library(vxtools_testable STATIC)
    vx_configure(vxtools_testable)
    target_link_libraries(vxtools_testable PUBLIC Talm_Base Talm_Config)
    target_include_directories(vxtools_testable PUBLIC ${PROJECT_SOURCE_DIR})
    target_compile_definitions(vxtools_testable PUBLIC VX_FAULTS VX_STATIC)
endif()
