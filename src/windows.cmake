# The DLL: no C run-time start-up, an entry point of its own, hardened, the same bytes from every folder.
set_target_properties(zlv40 PROPERTIES PREFIX "" IMPORT_PREFIX "lib" IMPORT_SUFFIX ".dll.a"
    LINK_DEPENDS ${ZLV_GENERATED}/zlv40.def)
target_sources(zlv40 PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/platform/version.rc)
target_link_options(zlv40 PRIVATE
    ${ZLV_GENERATED}/zlv40.def
    -nostartfiles -nodefaultlibs -Wl,--entry=ZlvDllEntry
    -Wl,--dynamicbase,--high-entropy-va,--nxcompat,--no-insert-timestamp)
target_link_libraries(zlv40 PRIVATE gcc msvcrt kernel32)
enable_language(RC)
include(${PROJECT_SOURCE_DIR}/cmake/import_library.cmake)
