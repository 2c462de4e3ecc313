# SPDX-License-Identifier: MIT
# stowra_bench_content_peers: reads a feed with other libraries.

find_package(Qt6 REQUIRED COMPONENTS Core)
find_package(Poco REQUIRED COMPONENTS XML)
find_package(LibXml2 REQUIRED)

add_library(stowra_bench_content_peers STATIC
  feed_builder.cc feed_text.cc libxml2_feed.cc libxml2_tree_feed.cc poco_feed.cc poco_tree_feed.cc
  qt_feed.cc)
target_include_directories(stowra_bench_content_peers PUBLIC "${PROJECT_SOURCE_DIR}")
target_compile_options(stowra_bench_content_peers PRIVATE ${STOWRA_WARNINGS})
target_link_libraries(stowra_bench_content_peers PUBLIC Qt6::Core PRIVATE Poco::XML LibXml2::LibXml2)
