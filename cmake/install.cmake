# Install tree: headers, both libraries, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS qkr qkr_static EXPORT qkr-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# Installed without debug information, ten times smaller; `cmake --install build/release --component debug` then
# puts it beside the library, where debuggers look for it.
# Distributions strip for themselves, and turn QKR_STRIP off.
set(installed "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}")
set(debug_file $<TARGET_FILE_NAME:qkr>.debug)
if(QKR_STRIP)
  install(CODE "
    execute_process(COMMAND ${CMAKE_STRIP} --strip-unneeded ${installed}/$<TARGET_FILE_NAME:qkr> COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND ${CMAKE_STRIP} --strip-debug ${installed}/$<TARGET_FILE_NAME:qkr_static> COMMAND_ERROR_IS_FATAL ANY)")
endif()
install(CODE "
  message(STATUS \"Installing: ${installed}/${debug_file}\")
  execute_process(COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:qkr> ${installed}/${debug_file} COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${CMAKE_OBJCOPY} --remove-section=.gnu_debuglink --add-gnu-debuglink=${debug_file}
                          $<TARGET_FILE_NAME:qkr> WORKING_DIRECTORY ${installed} COMMAND_ERROR_IS_FATAL ANY)"
        COMPONENT debug EXCLUDE_FROM_ALL)
list(TRANSFORM QKR_PUBLIC_HEADERS PREPEND ${PROJECT_SOURCE_DIR}/include/qkr/ OUTPUT_VARIABLE headers)
install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qkr)
foreach(header IN LISTS QKR_CXX_HEADERS)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${PROJECT_SOURCE_DIR}/include/qkr/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qkr/${folder})
endforeach()
install(EXPORT qkr-targets NAMESPACE qkr:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qkr)

configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/qkr-config.cmake.in ${PROJECT_BINARY_DIR}/qkr-config.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qkr)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qkr-config-version.cmake COMPATIBILITY SameMinorVersion)
file(RELATIVE_PATH QKR_PREFIX_FROM_PC /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" QKR_PREFIX_FROM_PC ${QKR_PREFIX_FROM_PC})
configure_file(${PROJECT_SOURCE_DIR}/cmake/qkr.pc.in ${PROJECT_BINARY_DIR}/qkr.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qkr-config.cmake ${PROJECT_BINARY_DIR}/qkr-config-version.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qkr)
install(FILES ${PROJECT_BINARY_DIR}/qkr.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES ${PROJECT_SOURCE_DIR}/docs/qkr.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)
