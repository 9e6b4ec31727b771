# One shared library per source folder: every .cpp below it is compiled, so adding a file needs
# no edit here. Headers are included by their path below src/ ("platform/db/database.hpp").
# Shared, because the host program and the module it loads must see one copy of the platform's
# state (working database, command stack, global tolerance), as they do in a CAD host.
function(tavrik_library name dir)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${dir}/*.cpp)
  if(sources)
    add_library(${name} SHARED ${sources})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
  endif()
  if(ARGN)
    if(sources)
      target_link_libraries(${name} PUBLIC ${ARGN})
    else()
      target_link_libraries(${name} INTERFACE ${ARGN})
    endif()
  endif()
endfunction()

# One GoogleTest executable per test folder, registered with CTest test by test.
function(tavrik_test_suite name dir)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${dir}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PRIVATE ${ARGN} GTest::gtest GTest::gtest_main GTest::gmock)
  target_compile_definitions(${name} PRIVATE
    TAVRIK_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    TAVRIK_BINARY_DIR="${PROJECT_BINARY_DIR}")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
endfunction()
