# What a user of the library gets: the library with its import libraries, the header, a CMake package, a pkg-config file
# and the licence. Everything finds its neighbours from its own place, so an installed tree may be moved.
include(CMakePackageConfigHelpers)

install(TARGETS zlv40
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(WIN32)
    install(FILES ${ZLV_MSVC_IMPORT_LIBRARY} ${ZLV_GENERATED}/zlv40.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(FILES ${PROJECT_SOURCE_DIR}/include/zlv40.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

set(zlv_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zlv40)
if(WIN32)
    set(ZLV_PACKAGE_SYSTEM Windows)
    set(ZLV_LIBRARY_FILE ${CMAKE_INSTALL_BINDIR}/zlv40.dll)
else()
    set(ZLV_PACKAGE_SYSTEM Linux)
    set(ZLV_LIBRARY_FILE ${CMAKE_INSTALL_LIBDIR}/libzlv40.so)
endif()
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/zlv40Config.cmake.in ${PROJECT_BINARY_DIR}/zlv40Config.cmake
    INSTALL_DESTINATION ${zlv_package_folder}
    PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR ZLV_LIBRARY_FILE
    NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zlv40ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zlv40Config.cmake ${PROJECT_BINARY_DIR}/zlv40ConfigVersion.cmake
    DESTINATION ${zlv_package_folder})

set(zlv_pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH ZLV_PREFIX_FROM_PKGCONFIG /prefix/${zlv_pkgconfig_folder} /prefix)
string(REGEX REPLACE "/$" "" ZLV_PREFIX_FROM_PKGCONFIG ${ZLV_PREFIX_FROM_PKGCONFIG})
configure_file(${CMAKE_CURRENT_LIST_DIR}/zlv40.pc.in ${PROJECT_BINARY_DIR}/zlv40.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zlv40.pc DESTINATION ${zlv_pkgconfig_folder})
