# Installs the runtime and dev components of BUILD_DIR into a scratch prefix
# under WORK_DIR and checks what a user of the installed library sees:
#   1. the prefix holds exactly the expected files and links;
#   2. the library's soname is libkoradata.so.<major> and it has no run path;
#   3. CONSUMER_DIR builds through find_package and through pkg-config, each
#      pointed at the prefix only, and both builds read a frame written by the
#      installed kora-writer, agreeing with the writer's peak count;
#   4. when PYTHON is given, the python component adds only the package's
#      files and the kora command, and the package imports from the prefix
#      with its extension module finding the installed library.
# Arguments (-D): BUILD_DIR WORK_DIR CONSUMER_DIR VERSION LIBDIR DOCDIR
# CONFIG (the build type, lower case) C_COMPILER SANITIZE, and PYTHON (the
# interpreter) with PYTHON_VERSION (3.X) when the Python package is built.

# Runs the command after COMMAND, with DESTDIR unset and the variables of ENV
# (NAME=value) set; OUT_VAR and ERR_VAR receive its stdout and stderr. Fails
# the test unless the exit status is EXPECT_RC (0 when not given).
function(run)
  cmake_parse_arguments(ARG "" "OUT_VAR;ERR_VAR;EXPECT_RC" "COMMAND;ENV" ${ARGN})
  if(NOT DEFINED ARG_EXPECT_RC)
    set(ARG_EXPECT_RC 0)
  endif()
  execute_process(COMMAND ${CMAKE_COMMAND} -E env --unset=DESTDIR ${ARG_ENV} ${ARG_COMMAND}
    OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE rc)
  if(NOT rc STREQUAL ARG_EXPECT_RC)
    string(JOIN " " line ${ARG_COMMAND})
    message(FATAL_ERROR "${line}\nexited with ${rc}, expected ${ARG_EXPECT_RC}:\n${out}${err}")
  endif()
  if(ARG_OUT_VAR)
    set(${ARG_OUT_VAR} "${out}" PARENT_SCOPE)
  endif()
  if(ARG_ERR_VAR)
    set(${ARG_ERR_VAR} "${err}" PARENT_SCOPE)
  endif()
endfunction()

function(expect_equal what expected actual)
  if(NOT "${actual}" STREQUAL "${expected}")
    message(FATAL_ERROR "${what}:\n  expected: ${expected}\n  actual:   ${actual}")
  endif()
endfunction()

set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})
foreach(component runtime dev)
  run(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix} --component ${component})
endforeach()

# 1. The installed tree, files and symbolic links.
string(REPLACE "." ";" parts ${VERSION})
list(GET parts 0 major)
set(expected
  bin/kora-writer
  include/koradata.h
  ${LIBDIR}/cmake/koradata/koradataConfig.cmake
  ${LIBDIR}/cmake/koradata/koradataConfigVersion.cmake
  ${LIBDIR}/cmake/koradata/koradataTargets-${CONFIG}.cmake
  ${LIBDIR}/cmake/koradata/koradataTargets.cmake
  ${LIBDIR}/libkoradata.so
  ${LIBDIR}/libkoradata.so.${major}
  ${LIBDIR}/libkoradata.so.${VERSION}
  ${LIBDIR}/pkgconfig/koradata.pc
  ${DOCDIR}/examples/consumer/CMakeLists.txt
  ${DOCDIR}/examples/consumer/read_frame.c
  ${DOCDIR}/examples/kora_summary.c
  ${DOCDIR}/examples/lumo-logconf.xml)
file(GLOB_RECURSE installed LIST_DIRECTORIES false RELATIVE ${prefix} ${prefix}/*)
list(SORT installed)
list(SORT expected)
expect_equal("installed files" "${expected}" "${installed}")
file(READ_SYMLINK ${prefix}/${LIBDIR}/libkoradata.so link)
expect_equal("libkoradata.so points to" "libkoradata.so.${major}" "${link}")
file(READ_SYMLINK ${prefix}/${LIBDIR}/libkoradata.so.${major} link)
expect_equal("libkoradata.so.${major} points to" "libkoradata.so.${VERSION}" "${link}")

# 2. Soname, and no run path left over from the build tree.
run(COMMAND readelf -d ${prefix}/${LIBDIR}/libkoradata.so.${VERSION} OUT_VAR dynamic)
string(REGEX MATCHALL "Library soname: \\[[^]]*\\]" soname "${dynamic}")
expect_equal("soname" "Library soname: [libkoradata.so.${major}]" "${soname}")
string(REGEX MATCHALL "\\((RPATH|RUNPATH)\\)[^\n]*" runpath "${dynamic}")
expect_equal("run path of the installed library" "" "${runpath}")

# 3. An analysis of one frame, written by the installed writer.
set(analysis ${WORK_DIR}/analysis)
run(COMMAND ${prefix}/bin/kora-writer sample ${analysis} --compression 2 --frames 1 --seed 7
    OUT_VAR written)
if(NOT written MATCHES "1 frames of ([0-9]+) scans, ([0-9]+) peaks")
  message(FATAL_ERROR "unexpected kora-writer output: ${written}")
endif()
set(scans ${CMAKE_MATCH_1})
set(peaks ${CMAKE_MATCH_2})

set(configure_args -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_COMPILER=${C_COMPILER}
    -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF -DCMAKE_FIND_USE_SYSTEM_PACKAGE_REGISTRY=OFF)
if(SANITIZE)
  # An instrumented library needs its runtime loaded first, by the program.
  list(APPEND configure_args -DCMAKE_C_FLAGS=-fsanitize=${SANITIZE})
endif()
# The pkg-config search path is the prefix alone.
set(pc_env PKG_CONFIG_LIBDIR=${prefix}/${LIBDIR}/pkgconfig PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig)

set(outputs)
foreach(way find_package pkg_config)
  set(build ${WORK_DIR}/consumer-${way})
  if(way STREQUAL "find_package")
    run(COMMAND ${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${build} ${configure_args}
        -DCMAKE_PREFIX_PATH=${prefix} OUT_VAR configured)
    set(found "koradata ${VERSION}: ${prefix}/${LIBDIR}/cmake/koradata")
  else()
    run(ENV ${pc_env} COMMAND ${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${build} ${configure_args}
        -DKORA_CONSUMER_PKG_CONFIG=ON OUT_VAR configured)
    set(found "koradata ${VERSION}: ${prefix}/${LIBDIR}/libkoradata.so")
  endif()
  string(FIND "${configured}" "-- ${found}\n" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "${way}: koradata not found in ${prefix}:\n${configured}")
  endif()
  run(COMMAND ${CMAKE_COMMAND} --build ${build})

  run(COMMAND ${build}/read-frame ${analysis} 1 ${scans} OUT_VAR output)
  if(NOT output MATCHES "^koradata ${VERSION}\nframe 1, ${scans} scans: ${peaks} peaks, intensity [0-9]+\n$")
    message(FATAL_ERROR "${way}: unexpected read-frame output:\n${output}")
  endif()
  list(APPEND outputs "${output}")
  run(COMMAND ${build}/read-frame ${WORK_DIR}/missing 1 ${scans} EXPECT_RC 1 ERR_VAR error)
  expect_equal("${way}: read-frame on a missing directory"
    "read-frame: open: Specified analysis directory does not exist.\n" "${error}")
endforeach()
list(GET outputs 0 by_find_package)
list(GET outputs 1 by_pkg_config)
expect_equal("output of the pkg-config build" "${by_find_package}" "${by_pkg_config}")

# 4. The Python package, beside the library it loads.
if(PYTHON)
  run(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix} --component python)
  file(GLOB_RECURSE python_files LIST_DIRECTORIES false RELATIVE ${prefix} ${prefix}/*)
  list(REMOVE_ITEM python_files ${installed})
  set(package_dir ${LIBDIR}/python${PYTHON_VERSION}/dist-packages/koradata)
  set(modules)
  foreach(file IN LISTS python_files)
    if(file MATCHES "^${package_dir}/_koradata\\.cpython-[^/]*\\.so$")
      list(APPEND modules ${file})
    elseif(NOT file STREQUAL "bin/kora" AND NOT file MATCHES "^${package_dir}/[a-z_]+\\.py$")
      message(FATAL_ERROR "python component installed ${file}")
    endif()
  endforeach()
  list(LENGTH modules n)
  expect_equal("extension modules installed" 1 ${n})
  foreach(file bin/kora ${package_dir}/__init__.py)
    if(NOT EXISTS ${prefix}/${file})
      message(FATAL_ERROR "python component did not install ${file}")
    endif()
  endforeach()
  # The interpreter is not instrumented, so it cannot load an instrumented
  # extension module: with sanitizers the files are checked, not run.
  if(NOT SANITIZE)
    run(ENV PYTHONPATH=${prefix}/${LIBDIR}/python${PYTHON_VERSION}/dist-packages
        COMMAND ${PYTHON} -c "import koradata\nprint(koradata._koradata.__file__)"
        OUT_VAR imported)
    expect_equal("extension module imported" "${prefix}/${modules}\n" "${imported}")
    run(COMMAND ${prefix}/bin/kora --help)
  endif()
endif()
file(REMOVE_RECURSE ${WORK_DIR})
