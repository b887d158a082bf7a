# How tests of the Windows build run on the machine that built them: under wine, on a virtual screen.
# Both are started before the first test that is run and ended after the last; neither is needed to
# build, so that packages can be made on a machine that has none.
set(TESSAVO_DEMO_SERVICE "" CACHE FILEPATH "The demo studio service, built for this machine")

set(TESSAVO_WINE_SESSION ${CMAKE_BINARY_DIR}/wine)
set(TESSAVO_RUNNER ${CMAKE_CURRENT_LIST_DIR}/run ${TESSAVO_WINE_SESSION})
set(TESSAVO_TEST_RUNNER ${TESSAVO_RUNNER} --report)
set(TESSAVO_DEMO_COMMAND ${TESSAVO_DEMO_SERVICE} --path-prefix Z:)
set(TESSAVO_RUN_FIXTURE wine)

# Programs in the build folder find the libraries that an installed one has beside it.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libstdc++-6.dll
    OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libwinpthread-1.dll
    OUTPUT_VARIABLE threads OUTPUT_STRIP_TRAILING_WHITESPACE)
get_filename_component(runtime ${runtime} REALPATH)
get_filename_component(runtime ${runtime} DIRECTORY)
get_filename_component(threads ${threads} REALPATH)
get_filename_component(threads ${threads} DIRECTORY)
get_target_property(qtcore Qt5::Core LOCATION)
get_filename_component(qtbin ${qtcore} DIRECTORY)
get_filename_component(qt ${qtbin} DIRECTORY)
# Joined by the runner: WINEPATH is separated by semicolons, as lists are here.
set(TESSAVO_RUN_ENVIRONMENT TESSAVO_QT=${qt} TESSAVO_RUNTIME=${runtime}:${threads})

foreach(step start stop)
    add_test(NAME wine_${step} COMMAND ${CMAKE_CURRENT_LIST_DIR}/session ${step} ${TESSAVO_WINE_SESSION})
endforeach()
set_tests_properties(wine_start PROPERTIES FIXTURES_SETUP wine)
set_tests_properties(wine_stop PROPERTIES FIXTURES_CLEANUP wine)
