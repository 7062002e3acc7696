# What is installed, as two components: runtime is what programs load, development is what they are built
# with. The same components become the Debian packages.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/okpcv)

install(TARGETS okpcv okpcore okpcv_static okpcore_static EXPORT okpcv
  LIBRARY COMPONENT runtime
  ARCHIVE COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ TYPE INCLUDE COMPONENT development)

# find_package(okpcv): the targets okpcv::okpcv and okpcv::okpcore, and their static variants.
install(EXPORT okpcv NAMESPACE okpcv:: DESTINATION ${package_dir} FILE okpcv-config.cmake COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/okpcv-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/okpcv-config-version.cmake DESTINATION ${package_dir} COMPONENT development)

# pkg-config: the files find the headers and libraries relative to themselves, so the tree may be moved.
file(RELATIVE_PATH OKPCV_PC_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(library okpcv okpcore)
  configure_file(cmake/${library}.pc.in ${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
endforeach()

install(FILES ${PROJECT_SOURCE_DIR}/docs/okpcv.7 DESTINATION ${CMAKE_INSTALL_MANDIR}/man7 COMPONENT development)
install(FILES README.md TYPE DOC COMPONENT development)

# Packages are the outermost project's business.
if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The okpcv developers <okpcv@localhost>")
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libokpcvy8)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "Arithmetic, statistics, integral images, filters, morphology, edges, fills,
labelling, distances, pyramids and sampling on images that the caller owns.
This is the shared library. It needs a processor with SSE4.2.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libokpcv-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libokpcvy8 (= ${PROJECT_VERSION}), libc6-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers and static libraries, and what CMake and pkg-config need to find them.")
include(CPack)
