# Debian packages: the libraries, what is needed to build with them, the documentation, and for each
# its debug symbols. `scripts/package` makes and tries them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zkfoundation)
set(CPACK_PACKAGE_VENDOR ZKFoundation)
set(CPACK_PACKAGE_CONTACT "ZKFoundation developers <zkfoundation@example.org>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_COMPONENTS_ALL runtime development documentation)
set(CPACK_COMPONENTS_GROUPING IGNORE)
# Installs to the final paths below a staging folder.
set(CPACK_SET_DESTDIR ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(zk_runtime_package libzkfoundation${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${zk_runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
  "UTF-16 texts, collections, blocks run later or on other threads, formatters,
 deep copies and plane geometry for C++20.")
# Tells other packages' dependencies, and has the loader's cache made anew.
configure_file(${PROJECT_SOURCE_DIR}/packaging/shlibs.in shlibs @ONLY)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
  ${PROJECT_BINARY_DIR}/shlibs ${PROJECT_SOURCE_DIR}/packaging/triggers)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzkfoundation-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${zk_runtime_package} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
  "What programs that use the library are compiled and linked with, by CMake or
 by pkg-config.")
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libzkfoundation-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DOCUMENTATION_DEBUGINFO_PACKAGE OFF)
set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION
  "Guides with examples, and the description of every operation.")

# What every Debian package has in its folder below share/doc.
configure_file(${PROJECT_SOURCE_DIR}/packaging/changelog.in debian-changelog @ONLY)
execute_process(COMMAND gzip --best --no-name --stdout debian-changelog
  WORKING_DIRECTORY ${PROJECT_BINARY_DIR} OUTPUT_FILE changelog.gz COMMAND_ERROR_IS_FATAL ANY)
foreach(component RUNTIME DEVELOPMENT DOCUMENTATION)
  string(TOLOWER ${component} name)
  install(FILES ${PROJECT_BINARY_DIR}/changelog.gz ${PROJECT_SOURCE_DIR}/packaging/copyright
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${component}_PACKAGE_NAME}
    COMPONENT ${name} EXCLUDE_FROM_ALL)
endforeach()
set(zk_doc ${CMAKE_INSTALL_DATADIR}/doc/libzkfoundation-doc)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION ${zk_doc}/guides
  COMPONENT documentation EXCLUDE_FROM_ALL FILES_MATCHING PATTERN *.md PATTERN *.svg PATTERN *.png)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/build/docs/html DESTINATION ${zk_doc}
  COMPONENT documentation EXCLUDE_FROM_ALL)
include(CPack)
