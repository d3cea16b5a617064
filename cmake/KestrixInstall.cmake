# find_package(kestrix) and kestrix::page_sources: the component, its headers, nothing of a host.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kestrix)

set_target_properties(kestrix_page_sources PROPERTIES EXPORT_NAME page_sources)
set_target_properties(kestrix_utils PROPERTIES EXPORT_NAME utils)

install(TARGETS kestrix_page_sources kestrix_utils EXPORT kestrix-targets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT page_sources
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT page_sources
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT kestrix-targets
  NAMESPACE kestrix::
  DESTINATION ${package_dir} COMPONENT page_sources)

configure_package_config_file(cmake/kestrix-config.cmake.in kestrix-config.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(kestrix-config-version.cmake COMPATIBILITY SameMinorVersion)
install(
  FILES
    ${CMAKE_CURRENT_BINARY_DIR}/kestrix-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/kestrix-config-version.cmake
    ${PROJECT_SOURCE_DIR}/cmake/FindRE2.cmake
  DESTINATION ${package_dir} COMPONENT page_sources)

# cpack -G DEB: the program alone, with its man pages and completions.
if(KESTRIX_PROGRAM)
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGE_NAME page-sources)
  set(CPACK_PACKAGE_CONTACT "The page_sources maintainers <maintainers@kestrix.invalid>")
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_COMPONENTS_ALL program)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME page-sources)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION devel)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  include(CPack)
endif()
