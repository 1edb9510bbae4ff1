# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# The Debian packages: libdatabase-client1 contains the component "runtime", libdatabase-client-dev "development", and
# libdatabase-client-tools "tools". With libmongoc 2.x, the name of the first is libdatabase-client1-mongoc2.
set(runtime_package libdatabase-client${PROJECT_VERSION_MAJOR}${database_client_soname_suffix})
set(runtime_packages
  libdatabase-client${PROJECT_VERSION_MAJOR}
  libdatabase-client${PROJECT_VERSION_MAJOR}-mongoc2)
list(REMOVE_ITEM runtime_packages ${runtime_package})
set(development_package libdatabase-client-dev)
set(tools_package libdatabase-client-tools)
set(revision 1)
set(debian_version ${PROJECT_VERSION}-${revision})
set(maintainer "database_client maintainers <maintainers@example.org>")

set(short_description "library for documents and files in MongoDB servers")
set(long_description
  "A C++ library to insert, find, update and remove documents in a MongoDB
server, with bulk writes, cursors, aggregation, indexes, users and files in
GridFS. Values hold every BSON type and convert to and from JSON. An older
interface with typed documents and query filters remains available.
.
")

# The documents that every package must contain.
string(TIMESTAMP changelog_date "%a, %d %b %Y %H:%M:%S +0000" UTC) # uses SOURCE_DATE_EPOCH if it is set
set(documents ${PROJECT_BINARY_DIR}/packaging)
configure_file(${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in ${documents}/changelog.Debian @ONLY)
file(STRINGS ${PROJECT_SOURCE_DIR}/LICENSE licence_lines)
set(debian_licence "")
foreach(line IN LISTS licence_lines)
  if(line MATCHES "^(MIT License|Copyright .*|)$")
    continue()
  endif()
  string(APPEND debian_licence " ${line}\n")
endforeach()
string(REPLACE "\n The above" "\n .\n The above" debian_licence "${debian_licence}")
string(REPLACE "\n THE SOFTWARE IS" "\n .\n THE SOFTWARE IS" debian_licence "${debian_licence}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/debian/copyright.in ${documents}/copyright @ONLY)
# Without name and time in the gzip header, the same sources always produce the same package.
execute_process(COMMAND gzip --best --no-name --force --keep changelog.Debian
  WORKING_DIRECTORY ${documents} COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN ITEMS runtime development tools)
  install(FILES ${documents}/copyright ${documents}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${${component}_package} COMPONENT ${component})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME database-client)
set(CPACK_PACKAGE_VENDOR "database_client")
set(CPACK_PACKAGE_CONTACT "${maintainer}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${short_description}")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development tools)

set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/repack.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${revision})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SOURCE database-client)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${long_description}This package contains the shared library.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# A process must not load both versions of the driver.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONFLICTS ${runtime_packages})
# For dpkg-shlibdeps: a program that is linked with the library needs this version or a later one.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${development_package})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
  "${long_description}This package contains the files for building programs: the headers, the CMake
package database_client and the pkg-config file.")
math(EXPR next_driver_major "${database_client_driver_major} + 1")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${runtime_package} (= ${debian_version}), libbson-dev (>= ${database_client_driver_least}), libbson-dev (<< ${next_driver_major}~)")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ${tools_package})
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION database)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
  "${long_description}This package contains dbc, which finds, changes, imports and exports documents,
stores files and administers users from the command line.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
# While the packages are built, no installed package contains the library. dpkg-shlibdeps finds it in this folder, and
# the dependency is added here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${runtime_package} (= ${debian_version})")

include(CPack)
