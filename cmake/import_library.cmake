# The import library in the form that Microsoft's linker takes: short import objects, made from the definition file. The
# one for mingw (libzlv40.dll.a) comes from the link itself.
find_program(ZLV_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14 REQUIRED)  # package llvm
mark_as_advanced(ZLV_LLVM_DLLTOOL)

set(ZLV_MSVC_IMPORT_LIBRARY ${CMAKE_CURRENT_BINARY_DIR}/zlv40.lib CACHE INTERNAL "For Microsoft's linker")
add_custom_command(TARGET zlv40 POST_BUILD
    COMMAND ${ZLV_LLVM_DLLTOOL} -m i386:x86-64 -d ${ZLV_GENERATED}/zlv40.def -l ${ZLV_MSVC_IMPORT_LIBRARY}
    BYPRODUCTS ${ZLV_MSVC_IMPORT_LIBRARY} VERBATIM)
