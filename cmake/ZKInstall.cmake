include(CMakePackageConfigHelpers)

set(zk_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZKFoundation)
install(TARGETS zk_platform ZKFoundation EXPORT ZKFoundationTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zkfoundation COMPONENT development)
# Below gdb's own folder where the library is installed with the system's prefix.
install(FILES ${PROJECT_SOURCE_DIR}/debugging/printers.py RENAME libzkplatform.so.${PROJECT_VERSION}-gdb.py
  DESTINATION "${CMAKE_INSTALL_DATADIR}/gdb/auto-load\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}"
  COMPONENT runtime)
install(EXPORT ZKFoundationTargets NAMESPACE ZKFoundation:: DESTINATION ${zk_package_dir}
  FILE ZKFoundationConfig.cmake COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZKFoundationConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZKFoundationConfigVersion.cmake DESTINATION ${zk_package_dir}
  COMPONENT development)

# The installation may be moved as a whole: the file finds its prefix from where it lies.
file(RELATIVE_PATH ZK_PREFIX_FROM_PKGCONFIG
  /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/zkfoundation.pc.in zkfoundation.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zkfoundation.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
