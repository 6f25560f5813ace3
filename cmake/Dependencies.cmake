# Every library comes from Debian's packages (scripts/install-deps.sh), except
# ExprTk, which Debian does not ship: its header is taken from the npm registry
# at configure time and never committed.

find_package(Boost 1.74 REQUIRED)

find_package(PkgConfig REQUIRED)
pkg_check_modules(FFTW3 REQUIRED IMPORTED_TARGET fftw3)
# QuantLib's flags carry -fopenmp. Debian builds it with boost::shared_ptr and
# boost::function, so QL_USE_STD_* must never be defined here.
pkg_check_modules(QUANTLIB REQUIRED IMPORTED_TARGET quantlib)

# Debian ships LIBSVM without a pkg-config file.
find_path(LIBSVM_INCLUDE_DIR libsvm/svm.h REQUIRED)
find_library(LIBSVM_LIBRARY svm REQUIRED)
add_library(libsvm INTERFACE)
target_include_directories(libsvm SYSTEM INTERFACE ${LIBSVM_INCLUDE_DIR})
target_link_libraries(libsvm INTERFACE ${LIBSVM_LIBRARY})

find_package(GTest REQUIRED)
find_package(benchmark REQUIRED)

# ExprTk: `npm pack` only (an `npm install` would run the package's own
# download and native build), then undo the package's patch to get the
# upstream header back.
set(EXPRTK_VERSION 2.2.1)
set(EXPRTK_ROOT ${CMAKE_BINARY_DIR}/_deps/exprtk)
set(EXPRTK_HEADER ${EXPRTK_ROOT}/include/exprtk.hpp)
if(NOT EXISTS ${EXPRTK_HEADER})
  file(REMOVE_RECURSE ${EXPRTK_ROOT})
  file(MAKE_DIRECTORY ${EXPRTK_ROOT}/include)
  find_program(NPM npm REQUIRED)
  find_program(PATCH patch REQUIRED)
  execute_process(
    COMMAND ${NPM} pack exprtk.js@${EXPRTK_VERSION} --silent --cache ${EXPRTK_ROOT}/npm-cache
    OUTPUT_QUIET
    WORKING_DIRECTORY ${EXPRTK_ROOT}
    RESULT_VARIABLE npm_result)
  if(NOT npm_result EQUAL 0)
    message(FATAL_ERROR "npm pack exprtk.js@${EXPRTK_VERSION} failed")
  endif()
  file(ARCHIVE_EXTRACT INPUT ${EXPRTK_ROOT}/exprtk.js-${EXPRTK_VERSION}.tgz
       DESTINATION ${EXPRTK_ROOT})
  execute_process(
    COMMAND ${PATCH} -R -p0 -i patches/exprtk.hpp.patch
    WORKING_DIRECTORY ${EXPRTK_ROOT}/package/deps
    RESULT_VARIABLE patch_result OUTPUT_QUIET)
  if(NOT patch_result EQUAL 0)
    message(FATAL_ERROR "reversing the exprtk.js patch failed")
  endif()
  file(COPY ${EXPRTK_ROOT}/package/deps/exprtk/exprtk.hpp
       DESTINATION ${EXPRTK_ROOT}/include)
endif()
add_library(exprtk INTERFACE)
target_include_directories(exprtk SYSTEM INTERFACE ${EXPRTK_ROOT}/include)
