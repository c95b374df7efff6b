# `make package`: Debian packages, one for each component of an installation.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velocard)
set(CPACK_PACKAGE_VENDOR Velocard)
set(CPACK_PACKAGE_CONTACT "Velocard maintainers <maintainers@velocard.example>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}" CACHE STRING "The packages' version")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_OUTPUT_FILE_PREFIX "${PROJECT_BINARY_DIR}/packages")
set(CPACK_STRIP_FILES ON)
set(CPACK_SET_DESTDIR OFF)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL runtime development server)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME velocard)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS libsecret-1-0) # loaded when an account asks for the keyring
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS chafa)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "Address Book for FileMaker calculations, with a host to run them
The plug-in KORU gives FileMaker calculations and scripts an address book:
search, open, change and save people and groups, their phones, addresses,
pictures. With it come fmhost, which evaluates calculations and runs scripts
without FileMaker, and addressbook, which brings contacts in and out.")

set(CPACK_DEBIAN_SERVER_PACKAGE_NAME velocard-fmserver)
set(CPACK_DEBIAN_SERVER_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_SERVER_DESCRIPTION "Address Book plug-in, in the folder of FileMaker Server
The plug-in KORU and the libraries that it needs, where FileMaker Server for
Linux looks for plug-ins. The server must be told to use it.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libaddressbook-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "velocard (= ${CPACK_PACKAGE_VERSION}), libgnustep-base-dev, gobjc")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Address Book of Velocard, for programs in Objective-C and C
Headers with Apple's Address Book interface, a pkg-config file and a CMake
package for programs that read and write Velocard's address book.")

# What Debian asks of each package: who may copy it, and since when it is what it is. The date is that of the sources,
# so that two builds of them are equal.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH}) # which TIMESTAMP goes by
  execute_process(COMMAND git -C "${PROJECT_SOURCE_DIR}" log -1 --format=%ct OUTPUT_VARIABLE seconds
    OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(seconds)
    set(ENV{SOURCE_DATE_EPOCH} "${seconds}")
  endif()
endif()
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER "${component}" COMPONENT)
  set(name "${CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME}")
  set(folder "${PROJECT_BINARY_DIR}/packaging/${name}")
  file(WRITE "${folder}/changelog" "${name} (${CPACK_PACKAGE_VERSION}) stable; urgency=medium\n\n\
  * What changed: /usr/share/doc/velocard/CHANGELOG.md\n\n -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
  execute_process(COMMAND gzip --best --no-name --force "${folder}/changelog" COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${folder}/changelog.gz" "${PROJECT_SOURCE_DIR}/packaging/copyright"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${name}" COMPONENT ${component})
  set(overrides "${PROJECT_SOURCE_DIR}/packaging/${name}.lintian-overrides")
  if(EXISTS "${overrides}")
    install(FILES "${overrides}" DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" RENAME "${name}"
      COMPONENT ${component})
  endif()
endforeach()

include(CPack)
