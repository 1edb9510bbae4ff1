# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# Finds the driver: libmongoc and libbson 1.x from 1.23 on, or 2.x. Their CMake packages, targets and pkg-config modules
# have different names. If both are installed, 1.x is used, unless CMAKE_DISABLE_FIND_PACKAGE_mongoc-1.0 is set.
#
# Code that is not installed links mongo::mongoc_shared and mongo::bson_shared, which exist for both versions.
find_package(mongoc-1.0 1.23 QUIET)
if(mongoc-1.0_FOUND)
  database_client_package(bson-1.0 libbson-dev 1.23)
  set(database_client_driver_major 1)
  set(database_client_driver_least 1.23)
  set(database_client_soname_suffix "")
  set(database_client_bson_package bson-1.0)
  set(database_client_bson_target mongo::bson_shared)
  set(database_client_bson_module libbson-1.0)
  set(database_client_mongoc_package mongoc-1.0)
  set(database_client_mongoc_target mongo::mongoc_shared)
  set(database_client_mongoc_module libmongoc-1.0)
else()
  find_package(bson 2 QUIET)
  find_package(mongoc 2 QUIET)
  if(NOT bson_FOUND OR NOT mongoc_FOUND)
    message(FATAL_ERROR "The driver is missing: libmongoc and libbson, 1.23 or newer. On Debian: apt install libmongoc-dev libbson-dev")
  endif()
  set(database_client_driver_major 2)
  set(database_client_driver_least 2.0)
  # A bson_t of libbson 2.x has another alignment. A different soname prevents that a program loads a library that was
  # built with the other version.
  set(database_client_soname_suffix -mongoc2)
  set(database_client_bson_package bson)
  set(database_client_bson_target bson::shared)
  set(database_client_bson_module bson2)
  set(database_client_mongoc_package mongoc)
  set(database_client_mongoc_target mongoc::shared)
  set(database_client_mongoc_module mongoc2)
  foreach(library IN ITEMS bson mongoc)
    if(NOT TARGET mongo::${library}_shared)
      add_library(mongo::${library}_shared INTERFACE IMPORTED)
      set_target_properties(mongo::${library}_shared PROPERTIES INTERFACE_LINK_LIBRARIES ${library}::shared)
    endif()
  endforeach()
endif()
