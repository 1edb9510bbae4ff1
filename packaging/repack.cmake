# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# CPack runs this script after it has built the packages, for two settings that CPack 3.25 does not have:
# - A trigger runs ldconfig once for all packages of an installation, instead of a script in each package.
# - The libraries of several architectures can be installed side by side; one dbc works for all (Multi-Arch).
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(tree ${CPACK_TEMPORARY_DIRECTORY}/repack)
  file(REMOVE_RECURSE ${tree})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${tree} COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS ${tree}/DEBIAN/shlibs)
    file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)
    file(WRITE ${tree}/DEBIAN/triggers "activate-noawait ldconfig\n")
  endif()
  file(READ ${tree}/DEBIAN/control control)
  if(EXISTS ${tree}/usr/bin)
    set(multi_arch foreign)
  else()
    set(multi_arch same)
  endif()
  string(REPLACE "\nPackage: " "\nMulti-Arch: ${multi_arch}\nPackage: " control "${control}")
  file(WRITE ${tree}/DEBIAN/control "${control}")
  execute_process(COMMAND dpkg-deb --root-owner-group -Zxz --build ${tree} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${tree})
endforeach()
