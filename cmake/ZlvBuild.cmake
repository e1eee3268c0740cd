# How this project compiles: flags, kernels by instruction set, and test programs.

# Warnings, exactness and paths that do not leak into what is built. For every target of ours.
add_library(zlv_common_flags INTERFACE)
target_compile_options(zlv_common_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Werror
    -ffp-contract=off
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>  # GCC 12 warns of its own std::string (GCC bug 105329)
    "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=." "-ffile-prefix-map=${PROJECT_BINARY_DIR}=build")
if(ZLV_SANITIZE)
    target_compile_options(zlv_common_flags INTERFACE
        # The library has no type information for the check of virtual calls.
        -fsanitize=${ZLV_SANITIZE} -fno-sanitize=vptr -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zlv_common_flags INTERFACE -fsanitize=${ZLV_SANITIZE})
endif()

# The library lives without the C++ run-time, so that it can be unloaded and loaded for ever and no exception crosses
# an export. -fno-math-errno makes sqrt one instruction; it changes no result.
add_library(zlv_library_flags INTERFACE)
target_link_libraries(zlv_library_flags INTERFACE zlv_common_flags)
target_compile_options(zlv_library_flags INTERFACE
    -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-math-errno
    -fvisibility=hidden -fvisibility-inlines-hidden)
target_compile_definitions(zlv_library_flags INTERFACE ZLV40_BUILDING $<$<BOOL:${ZLV_PORTABLE}>:ZLV_PORTABLE>)
if(ZLV_FUZZ)
    target_compile_options(zlv_library_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Kernels are compiled once for each of these, into a namespace of that name.
if(ZLV_PORTABLE)
    set(ZLV_TARGETS baseline)
else()
    set(ZLV_TARGETS baseline avx2 avx512)
endif()
set(ZLV_FLAGS_baseline "")
set(ZLV_FLAGS_avx2 -mavx2 -mbmi -mbmi2)
set(ZLV_FLAGS_avx512 -mavx2 -mbmi -mbmi2 -mavx512f -mavx512bw -mavx512dq -mavx512vl -mavx512vbmi)
if(WIN32)
    # The Windows ABI keeps the stack on 16 bytes only; aligned wide moves to it would fault.
    list(APPEND ZLV_FLAGS_avx2 -Wa,-muse-unaligned-vector-move)
    list(APPEND ZLV_FLAGS_avx512 -Wa,-muse-unaligned-vector-move)
endif()

# zlv_add_kernels(file.kernels.cpp ...): compiles each file for every target. Call it from the folder that holds them.
function(zlv_add_kernels)
    foreach(target IN LISTS ZLV_TARGETS)
        foreach(file IN LISTS ARGN)
            get_filename_component(stem ${file} NAME_WE)
            set(name zlv_kernels_${stem}_${target})
            add_library(${name} OBJECT ${file})
            target_link_libraries(${name} PRIVATE zlv_library_flags)
            target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
            target_compile_definitions(${name} PRIVATE ZLV_TARGET=${target} ZLV_TARGET_${target})
            target_compile_options(${name} PRIVATE -O3 ${ZLV_FLAGS_${target}})
            set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
            set_property(GLOBAL APPEND PROPERTY ZLV_OBJECT_LIBRARIES ${name})
        endforeach()
    endforeach()
endfunction()

# zlv_add_sources(file.cpp ...): adds ordinary sources of the library, from any folder below src/.
function(zlv_add_sources)
    foreach(file IN LISTS ARGN)
        target_sources(zlv_objects PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${file})
    endforeach()
endfunction()
