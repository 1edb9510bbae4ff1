# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# The installed files. The component "runtime" is the shared library, "development" is everything else.
include(CMakePackageConfigHelpers)

set(database_client_headers
  bson_to_properties.h
  database_client.h
  database_client_export.h
  factories.h
  json_to_properties.h
  object_filter.h
  object_properties.h
  properties_to_bson.h
  properties_to_json.h
  property.h)
set(dbc_headers
  access.h
  build.h
  bulk.h
  collection.h
  connection_string.h
  cursor.h
  database.h
  document_ref.h
  errors.h
  file_store.h
  files.h
  filter.h
  log.h
  loss_guard.h
  options.h
  pool.h
  results.h
  scopes.h
  value.h
  value_type.h
  values.h)
list(TRANSFORM database_client_headers PREPEND ${PROJECT_SOURCE_DIR}/include/)
list(TRANSFORM dbc_headers PREPEND ${PROJECT_SOURCE_DIR}/include/dbc/)

install(TARGETS database_client EXPORT database_client
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/database_client)
install(FILES ${database_client_headers}
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/database_client COMPONENT development)
install(FILES ${dbc_headers} ${PROJECT_BINARY_DIR}/include/dbc/version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/database_client/dbc COMPONENT development)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/database_client)
install(EXPORT database_client NAMESPACE database_client:: FILE database_client-targets.cmake
  DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/database_client-config.cmake.in
  ${PROJECT_BINARY_DIR}/database_client-config.cmake
  INSTALL_DESTINATION ${package_dir}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/database_client-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/database_client-config.cmake
  ${PROJECT_BINARY_DIR}/database_client-config-version.cmake
  DESTINATION ${package_dir} COMPONENT development)

# Every path in the .pc file is relative to the file itself, so an installed copy can be moved.
file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pc_prefix ${pc_prefix})
file(RELATIVE_PATH pc_libdir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH pc_includedir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
set(pc_requires "${database_client_bson_module} >= ${database_client_driver_least}")
if(NOT BUILD_SHARED_LIBS)
  string(APPEND pc_requires ", ${database_client_mongoc_module} >= ${database_client_driver_least}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/database_client.pc.in ${PROJECT_BINARY_DIR}/database_client.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/database_client.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
