# kora_install_python_package(PACKAGE <name> FILES <files...> MODULES <targets...>
#                             [COMMAND <command name>])
#   Installs a Python package, as install component `python`, into
#   KORA_INSTALL_PYTHONDIR below the prefix:
#   - FILES: the package's pure-Python files, paths relative to the current
#     binary directory that keep their folders (koradata/cli.py);
#   - MODULES: extension module targets, into the folder PACKAGE; their run
#     path names the prefix's library folder, so that they find
#     libkoradata.so.<major> installed beside them under any prefix;
#   - COMMAND: bin/<command name>, running `python -m <PACKAGE>` with the
#     installed package first on the module path.
#   Expects find_package(Python ... Interpreter) in the calling directory.
#   KORA_INSTALL_PYTHONDIR is lib/python3.X/dist-packages, which Debian's
#   python3.X searches under both /usr and /usr/local.
include(GNUInstallDirs)

function(kora_install_python_package)
  cmake_parse_arguments(ARG "" "PACKAGE;COMMAND" "FILES;MODULES" ${ARGN})
  set(python_version ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR})
  set(KORA_INSTALL_PYTHONDIR ${CMAKE_INSTALL_LIBDIR}/python${python_version}/dist-packages
      CACHE STRING "Where the Python package is installed, relative to the prefix")
  # Read by the Debian package settings and the install test.
  set_property(GLOBAL PROPERTY KORA_PYTHON_VERSION ${python_version})
  set_property(GLOBAL PROPERTY KORA_PYTHON_EXECUTABLE ${Python_EXECUTABLE})

  foreach(file IN LISTS ARG_FILES)
    get_filename_component(folder ${file} DIRECTORY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${file}
      DESTINATION ${KORA_INSTALL_PYTHONDIR}/${folder} COMPONENT python)
  endforeach()

  file(RELATIVE_PATH to_libdir /prefix/${KORA_INSTALL_PYTHONDIR}/${ARG_PACKAGE}
       /prefix/${CMAKE_INSTALL_LIBDIR})
  string(REGEX REPLACE "/$" "" to_libdir ${to_libdir})
  foreach(target IN LISTS ARG_MODULES)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libdir}")
    install(TARGETS ${target}
      LIBRARY DESTINATION ${KORA_INSTALL_PYTHONDIR}/${ARG_PACKAGE} COMPONENT python)
  endforeach()

  if(ARG_COMMAND)
    file(RELATIVE_PATH to_pythondir /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${KORA_INSTALL_PYTHONDIR})
    set(launcher ${CMAKE_CURRENT_BINARY_DIR}/install/${ARG_COMMAND})
    file(CONFIGURE OUTPUT ${launcher} @ONLY CONTENT [[#!/bin/sh
here=$(dirname "$(readlink -f "$0")")
PYTHONPATH="$here/@to_pythondir@${PYTHONPATH:+:$PYTHONPATH}" exec @Python_EXECUTABLE@ -m @ARG_PACKAGE@ "$@"
]])
    install(PROGRAMS ${launcher} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT python)
  endif()
endfunction()
