# Private servers, and a network to them at the test's command; also the bench's, which is built without the tests.
include_guard(GLOBAL)
set(doubles ${CMAKE_CURRENT_LIST_DIR})
add_library(harrowby_test_cluster STATIC
    ${doubles}/cluster_tools.cpp ${doubles}/private_cluster.cpp ${doubles}/proxy.cpp ${doubles}/proxy_links.cpp)
set_target_properties(harrowby_test_cluster PROPERTIES AUTOMOC OFF) # no signal, slot or property of its own
target_include_directories(harrowby_test_cluster PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(harrowby_test_cluster PUBLIC harrowby_build Qt6::Core PRIVATE PkgConfig::LIBPQ)
