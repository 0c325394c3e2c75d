# How every target of the project is built: standard, warnings, arithmetic, visibility, sanitizers.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

set(CMAKE_FIND_PACKAGE_TARGETS_GLOBAL ON)  # a folder's find_package serves the library too
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

# Products and sums stay unfused: results are the same to the last bit on every machine.
add_library(veral3_options INTERFACE)
target_compile_options(veral3_options INTERFACE
  -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  -Wcast-qual -Wformat=2 -Wundef -Wnon-virtual-dtor -Woverloaded-virtual -Wdouble-promotion)
option(VERAL3_WARNINGS_AS_ERRORS "Treat warnings as errors" OFF)
if(VERAL3_WARNINGS_AS_ERRORS)
  target_compile_options(veral3_options INTERFACE -Werror)
endif()
if(VERAL3_SANITIZE)
  add_compile_options(-fsanitize=${VERAL3_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VERAL3_SANITIZE})
endif()
if(VERAL3_BUILD_FUZZERS)
  # The engine's own objects too: a fuzzer finds its way by the counters in what it calls.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

set(VERAL3_MODULES "" CACHE INTERNAL "folders that make up the library")
set(VERAL3_PUBLIC_HEADERS Veral3.h CACHE INTERNAL "headers that are installed")
set(VERAL3_LINK_LIBRARIES "" CACHE INTERNAL "what the library links")

# veral3_add_module(NAME SOURCES ... [PUBLIC_HEADERS ...] [LIBRARIES ...])
# One folder of the library. LIBRARIES are private to the engine: no installed header needs them.
function(veral3_add_module name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC_HEADERS;LIBRARIES" ${ARGN})
  add_library(veral3_${name} OBJECT ${ARG_SOURCES})
  target_include_directories(veral3_${name} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_compile_definitions(veral3_${name} PRIVATE VERAL3_BUILDING)
  target_link_libraries(veral3_${name} PRIVATE veral3_options ${ARG_LIBRARIES})
  set(VERAL3_MODULES ${VERAL3_MODULES} ${name} CACHE INTERNAL "")
  set(VERAL3_LINK_LIBRARIES ${VERAL3_LINK_LIBRARIES} ${ARG_LIBRARIES} CACHE INTERNAL "")
  list(TRANSFORM ARG_PUBLIC_HEADERS PREPEND "${name}/" OUTPUT_VARIABLE public)
  set(VERAL3_PUBLIC_HEADERS ${VERAL3_PUBLIC_HEADERS} ${public} CACHE INTERNAL "")
  foreach(header IN LISTS ARG_PUBLIC_HEADERS)
    cmake_path(GET header PARENT_PATH sub)
    install(FILES ${header}
            DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/veral3/${name}/${sub}" COMPONENT sdk)
  endforeach()
endfunction()

# The shared library, and a static one of the same objects in which the tests, the command and the
# training tools reach what the shared library hides.
function(veral3_add_libraries)
  set(objects "")
  foreach(module IN LISTS VERAL3_MODULES)
    list(APPEND objects $<TARGET_OBJECTS:veral3_${module}>)
  endforeach()

  add_library(Veral3 SHARED ${objects})
  target_link_libraries(Veral3 PRIVATE veral3_options ${VERAL3_LINK_LIBRARIES} Threads::Threads)
  target_include_directories(Veral3 INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/veral3>)
  target_compile_features(Veral3 INTERFACE cxx_std_20)
  set_target_properties(Veral3 PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})

  add_library(veral3_internal STATIC ${objects})
  target_link_libraries(veral3_internal PUBLIC ${VERAL3_LINK_LIBRARIES} Threads::Threads)
  target_include_directories(veral3_internal PUBLIC "${PROJECT_SOURCE_DIR}")

  include(CMakePackageConfigHelpers)
  install(TARGETS Veral3 EXPORT Veral3Targets COMPONENT sdk
          LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
  install(EXPORT Veral3Targets NAMESPACE Veral3:: COMPONENT sdk
          DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/Veral3")
  configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/Veral3Config.cmake.in"
    "${CMAKE_CURRENT_BINARY_DIR}/Veral3Config.cmake"
    INSTALL_DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/Veral3"
    PATH_VARS CMAKE_INSTALL_DATADIR)
  write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/Veral3ConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/Veral3Config.cmake"
                "${CMAKE_CURRENT_BINARY_DIR}/Veral3ConfigVersion.cmake"
          DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/Veral3" COMPONENT sdk)
  # From its own place, so that an installation can be moved or put under another prefix.
  file(RELATIVE_PATH VERAL3_PREFIX_FROM_PC
    "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
  string(REGEX REPLACE "/$" "" VERAL3_PREFIX_FROM_PC "${VERAL3_PREFIX_FROM_PC}")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/veral3.pc.in"
                 "${CMAKE_CURRENT_BINARY_DIR}/veral3.pc" @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/veral3.pc"
          DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT sdk)
  install(FILES "${PROJECT_SOURCE_DIR}/Veral3.h"
          DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/veral3" COMPONENT sdk)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/resources/"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/veral3" COMPONENT sdk)
  set(documents "${CMAKE_INSTALL_DATADIR}/doc/veral3")
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/NOTICE"
                "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
          DESTINATION "${documents}" COMPONENT sdk)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION "${documents}" COMPONENT sdk)
endfunction()
