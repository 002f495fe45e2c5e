# cmake -P script behind the install_consumer test.
#
#   BUILD_DIR             the build tree to install
#   WORK_DIR              scratch folder (emptied first): prefix/, consumer/, consumer-build/
#   CONSUMER_SOURCE_DIR   the consumer project (its list file is CMakeLists.txt.in)
#   GENERATOR, CXX_COMPILER  how to build the consumer
#   LIB_DIR               library folder relative to the prefix
#   DESIGNER_PLUGIN_DIR   Designer plugin folder relative to the prefix
#   DESIGNER_PLUGIN_FILE  the plugin's file name
#
# Checks: the install writes only inside the prefix and holds the library,
# headers, CMake package and Designer plugin; the plugin finds the installed
# library; no internal header (*_p.h) is installed; a consumer configured
# with only the prefix builds and prints the version text "2.00.0003"; it
# loads the installed plugin.

cmake_minimum_required(VERSION 3.25)

foreach(var BUILD_DIR WORK_DIR CONSUMER_SOURCE_DIR GENERATOR CXX_COMPILER LIB_DIR DESIGNER_PLUGIN_DIR
        DESIGNER_PLUGIN_FILE)
    if(NOT DEFINED ${var} OR "${${var}}" STREQUAL "")
        message(FATAL_ERROR "${var} is not set")
    endif()
endforeach()

set(prefix "${WORK_DIR}/prefix")
set(consumer_build "${WORK_DIR}/consumer-build")
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")

function(run_step name)
    execute_process(COMMAND ${ARGN}
        RESULT_VARIABLE result
        OUTPUT_VARIABLE output
        ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${name} failed (${result}):\n${output}")
    endif()
    set(step_output "${output}" PARENT_SCOPE)
endfunction()

# ---- install ----------------------------------------------------------------
file(REMOVE "${BUILD_DIR}/install_manifest.txt")
run_step("cmake --install" "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")

# Everything installed lies under the prefix (the manifest lists every file).
if(NOT EXISTS "${BUILD_DIR}/install_manifest.txt")
    message(FATAL_ERROR "cmake --install wrote no install_manifest.txt")
endif()
file(STRINGS "${BUILD_DIR}/install_manifest.txt" installed)
list(LENGTH installed installed_count)
if(installed_count EQUAL 0)
    message(FATAL_ERROR "nothing was installed")
endif()
foreach(file IN LISTS installed)
    string(FIND "${file}" "${prefix}/" at)
    if(NOT at EQUAL 0)
        message(FATAL_ERROR "installed outside the prefix ${prefix}: ${file}")
    endif()
endforeach()
string(REGEX MATCHALL "(Installing|Up-to-date): [^\n]*" reported "${step_output}")
foreach(line IN LISTS reported)
    string(REGEX REPLACE "^[^:]*: " "" path "${line}")
    string(FIND "${path}" "${prefix}/" at)
    if(NOT at EQUAL 0)
        message(FATAL_ERROR "install touched a path outside the prefix: ${line}")
    endif()
endforeach()

set(plugin "${prefix}/${DESIGNER_PLUGIN_DIR}/${DESIGNER_PLUGIN_FILE}")
foreach(expected
        "${prefix}/include/Kelocontrols/Kelocontrols.h"
        "${prefix}/include/Kelocontrols/KeloVersion.h"
        "${prefix}/include/Kelocontrols/KeloscoreCard.h"
        "${prefix}/${LIB_DIR}/libKelocontrols.so.2"
        "${prefix}/${LIB_DIR}/cmake/Kelocontrols/KelocontrolsConfig.cmake"
        "${prefix}/${LIB_DIR}/cmake/Kelocontrols/KelocontrolsConfigVersion.cmake"
        "${prefix}/${LIB_DIR}/cmake/Kelocontrols/KelocontrolsTargets.cmake"
        "${plugin}")
    if(NOT EXISTS "${expected}")
        message(FATAL_ERROR "missing after install: ${expected}")
    endif()
endforeach()

# Internal headers (*_p.h) stay in the source tree.
file(GLOB private_headers "${prefix}/include/Kelocontrols/*_p.h")
if(private_headers)
    message(FATAL_ERROR "internal headers installed: ${private_headers}")
endif()

# The installed plugin resolves libKelocontrols in the same prefix through
# its own run path, with no help from the environment.
function(check_links_to_installed_library binary)
    find_program(LDD ldd)
    if(NOT LDD)
        message(STATUS "ldd not found: library resolution of ${binary} not checked")
        return()
    endif()
    run_step("ldd ${binary}" "${CMAKE_COMMAND}" -E env --unset=LD_LIBRARY_PATH "${LDD}" "${binary}")
    string(REGEX MATCH "libKelocontrols\\.so\\.2 => ([^ \n]*)" resolved "${step_output}")
    file(REAL_PATH "${CMAKE_MATCH_1}" resolved_path)
    file(REAL_PATH "${prefix}/${LIB_DIR}/libKelocontrols.so.2" installed_path)
    if(NOT resolved OR NOT resolved_path STREQUAL installed_path)
        message(FATAL_ERROR "${binary} does not use the installed library:\n${step_output}")
    endif()
endfunction()
check_links_to_installed_library("${plugin}")

# ---- consumer -----------------------------------------------------------------
set(consumer_source "${WORK_DIR}/consumer")
file(COPY "${CONSUMER_SOURCE_DIR}/main.cpp" DESTINATION "${consumer_source}")
configure_file("${CONSUMER_SOURCE_DIR}/CMakeLists.txt.in" "${consumer_source}/CMakeLists.txt" COPYONLY)

# Only the scratch prefix may supply the package: no build tree, no registry.
run_step("configuring the consumer" "${CMAKE_COMMAND}"
    -S "${consumer_source}" -B "${consumer_build}"
    -G "${GENERATOR}"
    "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
    -DCMAKE_BUILD_TYPE=Release
    "-DCMAKE_PREFIX_PATH=${prefix}"
    -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF
    -DCMAKE_FIND_USE_SYSTEM_PACKAGE_REGISTRY=OFF)
file(STRINGS "${consumer_build}/CMakeCache.txt" package_dir REGEX "^Kelocontrols_DIR:")
if(NOT package_dir STREQUAL "Kelocontrols_DIR:PATH=${prefix}/${LIB_DIR}/cmake/Kelocontrols")
    message(FATAL_ERROR "the consumer found the package elsewhere: ${package_dir}")
endif()

run_step("building the consumer" "${CMAKE_COMMAND}" --build "${consumer_build}")
check_links_to_installed_library("${consumer_build}/app")

run_step("running the consumer" "${CMAKE_COMMAND}" -E env --unset=LD_LIBRARY_PATH QT_QPA_PLATFORM=offscreen
    "QT_LOGGING_RULES=qt.qpa.*=false" "${consumer_build}/app" "${plugin}")
string(REPLACE "\n" ";" lines "${step_output}")
list(FILTER lines EXCLUDE REGEX "^QStandardPaths:|^$")
set(expected_lines
    "2.00.0003"
    "KeloscoreCard Style=7 Value=0.75 Grade=4 UserMode=1"
    "plugin org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
if(NOT lines STREQUAL expected_lines)
    message(FATAL_ERROR "unexpected consumer output:\n${step_output}\nexpected:\n${expected_lines}")
endif()

message(STATUS "installed ${installed_count} files into ${prefix}; the consumer built and ran")
