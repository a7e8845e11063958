# How every target of ours is compiled, and kestrin_module(), which makes one library per module folder.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # Precompiled headers carry time stamps that ccache must overlook, or it would never hit; and a second clone of the
    # repository is to hit what the first one compiled.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE})
endif()

# The debug information of the test executables takes the default linker six times as long.
find_program(LLD ld.lld)
if(LLD)
    add_link_options($<$<CONFIG:Debug>:-fuse-ld=lld>)
endif()

add_library(kestrin_options INTERFACE)
# Some libraries ask for -pthread, and a precompiled header serves only who says the same of threads.
target_compile_options(kestrin_options INTERFACE -pthread -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(kestrin_options INTERFACE -fpch-preprocess)
    if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        # Said of correct code once the optimiser has inlined it: that "literal" + std::string overlaps itself, copies
        # too much or reads too much (GCC bugs 105651, 105329), and that the move of a std::variant reads the
        # alternatives that it doesn't hold (GCC bug 105593 and its kin).
        target_compile_options(kestrin_options INTERFACE
            -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread -Wno-maybe-uninitialized)
    endif()
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND CCACHE)
    # A time stamp in a precompiled header makes each of them new, and ccache would never hit.
    target_compile_options(kestrin_options INTERFACE "SHELL:-Xclang -fno-pch-timestamp")
endif()
if(KESTRIN_SANITIZE)
    # Frame pointers keep the reports readable.
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
if(KESTRIN_COVERAGE)
    add_compile_options(--coverage)
    add_link_options(--coverage)
endif()
if(KESTRIN_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# kestrin_module(<name> [PRIVATE_LIBRARIES …] [PUBLIC_LIBRARIES …] [EXCLUDE <file> …] [EXCLUDE_FOLDER <folder> …])
# Every .cpp at any depth of the calling folder goes in, so that a new file needs no edit here.
function(kestrin_module name)
    cmake_parse_arguments(ARG "" "" "PUBLIC_LIBRARIES;PRIVATE_LIBRARIES;EXCLUDE;EXCLUDE_FOLDER" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    foreach(excluded IN LISTS ARG_EXCLUDE)
        list(REMOVE_ITEM sources ${CMAKE_CURRENT_SOURCE_DIR}/${excluded})
    endforeach()
    foreach(excluded IN LISTS ARG_EXCLUDE_FOLDER)
        list(FILTER sources EXCLUDE REGEX "^${CMAKE_CURRENT_SOURCE_DIR}/${excluded}/")
    endforeach()
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LIBRARIES} PRIVATE kestrin_options ${ARG_PRIVATE_LIBRARIES})
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    if(KESTRIN_UNITY)
        set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8)
    endif()
    if(KESTRIN_SANITIZE)
        # The tests themselves are not optimised: that takes their compiler twice as long and gains little.
        target_compile_options(${name} PRIVATE -O1)
    endif()
    target_precompile_headers(${name} PRIVATE
        <algorithm> <chrono> <cstdint> <filesystem> <functional> <map> <memory> <optional> <span> <sstream> <stop_token>
        <string> <string_view> <utility> <variant> <vector>)
endfunction()
