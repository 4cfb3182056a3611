# Helpers that keep every subsystem's build to one line.

set(OMBRELLE_WARNINGS -Wall -Wextra)

# ombrelle_subsystem(<name> [DEPS <lower subsystems...>] [QT <Qt components...>])
# Builds src/<name>/ (without its ui/ folder) into the static library
# ombrelle_<name>. The library links only the subsystems below it, so an
# include that points upward fails to link and a widget header fails to compile.
function(ombrelle_subsystem name)
  cmake_parse_arguments(ARG "" "" "DEPS;QT" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS
       ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  set(target ombrelle_${name})
  set(qt_libs)
  foreach(c ${ARG_QT})
    list(APPEND qt_libs Qt6::${c})
  endforeach()
  set(deps)
  foreach(d ${ARG_DEPS})
    list(APPEND deps ombrelle_${d})
  endforeach()
  # Headers stay in the source list so that AUTOMOC finds every Q_OBJECT.
  set(cpp_sources ${sources})
  list(FILTER cpp_sources INCLUDE REGEX "\\.cpp$")
  if(cpp_sources)
    add_library(${target} STATIC ${sources})
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} PUBLIC ${deps} ${qt_libs})
    target_compile_options(${target} PRIVATE ${OMBRELLE_WARNINGS})
    target_compile_definitions(${target} PUBLIC QT_NO_KEYWORDS)
  else()
    # A subsystem whose code has not been written yet still takes part in the
    # dependency chain.
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} INTERFACE ${deps} ${qt_libs})
  endif()
endfunction()

# ombrelle_add_test(<subsystem> [LIBS <extra libraries...>] [WIDGETS])
# One GoogleTest executable per folder tests/<subsystem>/, linked to the
# subsystem's library; tests never list production sources.
function(ombrelle_add_test name)
  cmake_parse_arguments(ARG "WIDGETS" "" "LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
  if(NOT sources)
    return()
  endif()
  set(target test_${name})
  add_executable(${target} ${sources})
  target_link_libraries(${target} PRIVATE ombrelle_testmain ${ARG_LIBS} GTest::gtest GTest::gmock)
  if(ARG_WIDGETS)
    # The shared main is compiled again with OMBRELLE_TEST_WIDGETS so that it
    # starts a QApplication; its object then takes the place of the library's.
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/common/TestMain.cpp)
    target_compile_definitions(${target} PRIVATE OMBRELLE_TEST_WIDGETS)
    target_link_libraries(${target} PRIVATE ombrelle_ui Qt6::Widgets)
  endif()
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${target} PRIVATE
      OMBRELLE_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
      OMBRELLE_BUILD_DIR="${CMAKE_BINARY_DIR}")
  target_compile_options(${target} PRIVATE ${OMBRELLE_WARNINGS})
  gtest_discover_tests(${target}
      DISCOVERY_MODE PRE_TEST
      DISCOVERY_TIMEOUT 60
      PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" TIMEOUT 300)
endfunction()
