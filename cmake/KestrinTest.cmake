# kestrin_test(<name> [LIBRARIES …] [LONGEST]): one test executable from every .cpp of the calling folder, its cases
# registered with CTest one by one, so that a failure names the rule that broke. LONGEST ones are begun first: CTest
# remembers what took long, but in a fresh clone it would find out in the end, with one processor left idle.
find_package(GTest REQUIRED)
find_package(rapidcheck REQUIRED)
include(GoogleTest)

function(kestrin_test name)
    cmake_parse_arguments(ARG "LONGEST" "" "LIBRARIES" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE kestrin_options TestSupport ${ARG_LIBRARIES})
    target_precompile_headers(${name} REUSE_FROM TestSupport)
    if(KESTRIN_UNITY)
        set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8)
    endif()
    set(properties TIMEOUT 300)
    if(ARG_LONGEST)
        list(APPEND properties COST 100)
    endif()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 120 PROPERTIES ${properties})
endfunction()
