# What `cmake --install` puts under the prefix, and the Debian packages CPack
# makes of it. Included at the end of the top-level CMakeLists.txt, once every
# target exists.
#
# Components, one Debian package each:
#   runtime  libkoradata0     the shared library (libkoradata.so.0 and the
#                             file it names)
#   dev      libkoradata-dev  the public header, the libkoradata.so link, the
#                             CMake package, koradata.pc, kora-writer and the
#                             examples' sources
#   python   python3-koradata the Python package and the kora command, when
#                             they are built (cmake/KoraInstallPython.cmake)
# Nothing internal is installed: no static subsystem library, no header but
# include/koradata.h.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(KORA_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/koradata)
set(KORA_INSTALL_PKGCONFIGDIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS koradata EXPORT koradataTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/koradata.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
install(TARGETS kora-writer RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT dev)

# CMake package: koradata::koradata, relocatable (paths relative to the
# installed files).
install(EXPORT koradataTargets NAMESPACE koradata::
  DESTINATION ${KORA_INSTALL_CMAKEDIR} COMPONENT dev)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/koradataConfig.cmake.in
  ${PROJECT_BINARY_DIR}/koradataConfig.cmake
  INSTALL_DESTINATION ${KORA_INSTALL_CMAKEDIR}
  NO_SET_AND_CHECK_MACRO)
# The soname changes with the major number only, so any 0.x satisfies a
# request for 0.y with y <= x.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/koradataConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/koradataConfig.cmake
              ${PROJECT_BINARY_DIR}/koradataConfigVersion.cmake
  DESTINATION ${KORA_INSTALL_CMAKEDIR} COMPONENT dev)

# pkg-config: the prefix is known only when installing (`--prefix`, or /usr
# for the Debian packages), so the file is made in two steps: everything but
# the prefix now, the prefix by the install script.
set(KORA_PC_PREFIX "@KORA_PC_PREFIX@")
configure_file(${CMAKE_CURRENT_LIST_DIR}/koradata.pc.in ${PROJECT_BINARY_DIR}/koradata.pc.in @ONLY)
install(CODE "
  set(KORA_PC_PREFIX \"\${CMAKE_INSTALL_PREFIX}\")
  configure_file(\"${PROJECT_BINARY_DIR}/koradata.pc.in\" \"${PROJECT_BINARY_DIR}/koradata.pc\" @ONLY)"
  COMPONENT dev)
install(FILES ${PROJECT_BINARY_DIR}/koradata.pc
  DESTINATION ${KORA_INSTALL_PKGCONFIGDIR} COMPONENT dev)

install(FILES
    ${PROJECT_SOURCE_DIR}/examples/kora_summary.c
    ${PROJECT_SOURCE_DIR}/examples/lumo-logconf.xml
  DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT dev)
install(FILES
    ${PROJECT_SOURCE_DIR}/examples/consumer/CMakeLists.txt
    ${PROJECT_SOURCE_DIR}/examples/consumer/read_frame.c
  DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples/consumer COMPONENT dev)

# Debian packages (make package): one per component, dependencies of the
# binaries from dpkg-shlibdeps.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME koradata)
set(CPACK_PACKAGE_VENDOR koradata)
set(CPACK_PACKAGE_CONTACT "koradata maintainers <koradata@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "read-only access to the raw data of an ion-mobility TOF mass spectrometer")
# Staged through DESTDIR, so that the install script sees the real prefix
# (/usr), not the staging directory: koradata.pc names it.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libkoradata0)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# A shlibs file and the ldconfig trigger.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libkoradata-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libkoradata0 (= ${PROJECT_VERSION}-1)")
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-koradata)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
# The extension module needs the library of the same build, which is not
# installed while the packages are made: dpkg-shlibdeps could not place it.
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS OFF)
get_property(kora_python_version GLOBAL PROPERTY KORA_PYTHON_VERSION)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "libkoradata0 (= ${PROJECT_VERSION}-1), python${kora_python_version}, python3-numpy, python3-pandas")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS "python3-tqdm")
include(CPack)
cpack_add_component(runtime DESCRIPTION "the koradata shared library")
cpack_add_component(dev DESCRIPTION "header, CMake and pkg-config files, kora-writer, examples")
cpack_add_component(python DESCRIPTION "the koradata Python package")

if(KORA_BUILD_TESTS)
  # Installs the runtime and dev components into a scratch prefix and builds
  # and runs examples/consumer against it, once through find_package and once
  # through pkg-config; then the python component, when it is built.
  get_property(kora_python_executable GLOBAL PROPERTY KORA_PYTHON_EXECUTABLE)
  add_test(NAME install_consumer
    COMMAND ${CMAKE_COMMAND}
      -DBUILD_DIR=${PROJECT_BINARY_DIR}
      -DWORK_DIR=${PROJECT_BINARY_DIR}/install-test
      -DCONSUMER_DIR=${PROJECT_SOURCE_DIR}/examples/consumer
      -DVERSION=${PROJECT_VERSION}
      -DLIBDIR=${CMAKE_INSTALL_LIBDIR}
      -DDOCDIR=${CMAKE_INSTALL_DOCDIR}
      -DCONFIG=$<LOWER_CASE:$<CONFIG>>
      -DC_COMPILER=${CMAKE_C_COMPILER}
      -DSANITIZE=${KORA_SANITIZE}
      -DPYTHON=${kora_python_executable}
      -DPYTHON_VERSION=${kora_python_version}
      -P ${CMAKE_CURRENT_LIST_DIR}/kora_install_test.cmake)
endif()
