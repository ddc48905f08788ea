# The library is put together from three object libraries, one for each vector width. A room adds its files with
#   qkr_sources(a.cpp ...)   compiled once, for every x86-64 processor
#   qkr_kernels(b.cpp ...)   compiled three times, for SSE2, AVX2 and AVX-512; the first also holds the entries

set(QKR_LEVELS sse2 avx2 avx512)
if(QKR_SANITIZE)
  # One source serves all levels, so sanitizers look at the lowest; wider ones would compile for an hour. Tests
  # with guarded pages watch the bounds of all of them.
  set(QKR_LEVELS sse2)
  add_compile_definitions(QKR_ONE_LEVEL)
endif()
set(QKR_MARCH_sse2 x86-64)
set(QKR_MARCH_avx2 x86-64-v3)
set(QKR_MARCH_avx512 x86-64-v4)

foreach(level IN LISTS QKR_LEVELS)
  add_library(qkr_${level} OBJECT)
  target_include_directories(qkr_${level} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_compile_options(qkr_${level} PRIVATE ${QKR_LIBRARY_OPTIONS} -march=${QKR_MARCH_${level}} -mtune=generic)
endforeach()

function(qkr_sources)
  list(TRANSFORM ARGV PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(qkr_sse2 PRIVATE ${ARGV})
endfunction()

function(qkr_kernels)
  list(TRANSFORM ARGV PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  set_source_files_properties(${ARGV} DIRECTORY ${PROJECT_SOURCE_DIR}
                              PROPERTIES COMPILE_OPTIONS "${QKR_KERNEL_OPTIONS}")
  foreach(level IN LISTS QKR_LEVELS)
    target_sources(qkr_${level} PRIVATE ${ARGV})
  endforeach()
endfunction()

set(QKR_PUBLIC_HEADERS
    api.h convcorr.h dft.h distributions.h library.h qkr.h service.h service_level1.h
    sigfft.h sigfft_arrays.h sigfft_convolution.h sigfft_dft.h sigfft_flags.h sigfft_plan.h sigfft_transforms.h
    streams.h streams_abstract.h streams_files.h streams_generators.h
    vecmath.h vecmath_complex.h vecmath_control.h vecmath_elements.h vecmath_exact.h vecmath_extended.h vecmath_inverse.h)
# C++20, over the others.
set(QKR_CXX_HEADERS
    qkr.hpp cpp/arrays.hpp cpp/base.hpp cpp/convolution.hpp cpp/dft.hpp cpp/distributions.hpp cpp/fft.hpp cpp/fft_plan.hpp
    cpp/packing.hpp cpp/stream.hpp cpp/task.hpp cpp/vecmath.hpp)

# libqkr.so exports what the public headers declare with QKR_API and nothing else; libqkr.a also serves the
# white-box tests, which reach hidden functions.
function(qkr_add_libraries)
  list(TRANSFORM QKR_LEVELS REPLACE "(.+)" "$<TARGET_OBJECTS:qkr_\\1>" OUTPUT_VARIABLE objects)
  find_package(Threads REQUIRED)

  add_library(qkr SHARED ${objects})
  # Nothing of the compiler's start-up code is needed, so nothing runs when the library is loaded; linked as C,
  # it cannot come to depend on a C++ runtime.
  if(NOT QKR_SANITIZE)
    target_link_options(qkr PRIVATE -nostartfiles -Wl,-z,defs)
  endif()
  # Threads free their cells of vector math when they end, by functions of ours: the library stays once loaded.
  # Calls into the C library are resolved at once, so that their table can be read-only.
  target_link_options(qkr PRIVATE -Wl,-z,nodelete -Wl,-z,relro -Wl,-z,now
                      -Wl,-Bsymbolic-functions -Wl,--as-needed
                      -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/qkr.map)
  set_target_properties(qkr PROPERTIES
      LINKER_LANGUAGE C VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
      LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/qkr.map)

  add_library(qkr_static STATIC ${objects})
  set_target_properties(qkr_static PROPERTIES OUTPUT_NAME qkr LINKER_LANGUAGE C)

  foreach(library qkr qkr_static)
    target_include_directories(${library} INTERFACE
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${library} PRIVATE Threads::Threads m)
  endforeach()
  add_library(qkr::qkr ALIAS qkr)
  add_library(qkr::qkr_static ALIAS qkr_static)
  include(${PROJECT_SOURCE_DIR}/cmake/install.cmake)
endfunction()
