# Every library the project is built on; docs/dependencies.md says why each is here.
find_package(Threads REQUIRED)
find_package(simdjson REQUIRED)
# JsonTokens knows the inside of the library, which no version promises to keep.
if(simdjson_VERSION VERSION_LESS 3.0 OR simdjson_VERSION VERSION_GREATER_EQUAL 5.0)
  message(FATAL_ERROR "simdjson ${simdjson_VERSION} is not known to work; 3.0 to 4.6 are")
elseif(simdjson_VERSION VERSION_GREATER_EQUAL 4.7)
  message(WARNING "simdjson ${simdjson_VERSION} is newer than 4.6, the last one known to work")
endif()
find_package(CLI11 REQUIRED)

find_path(ASIO_INCLUDE_DIR asio.hpp REQUIRED)
add_library(corvane_asio INTERFACE)
target_include_directories(corvane_asio SYSTEM INTERFACE ${ASIO_INCLUDE_DIR})
target_compile_definitions(corvane_asio INTERFACE ASIO_STANDALONE ASIO_NO_DEPRECATED)
# What Asio finds of aligned allocation depends on what a source includes before it; all have to agree.
target_compile_definitions(corvane_asio INTERFACE ASIO_DISABLE_STD_ALIGNED_ALLOC)
# Asio 1.22 looks for the coroutines of clang's experimental days; these are the standard's.
target_compile_definitions(corvane_asio INTERFACE
  $<$<CXX_COMPILER_ID:Clang,AppleClang>:ASIO_HAS_CO_AWAIT=1>
  $<$<CXX_COMPILER_ID:Clang,AppleClang>:ASIO_HAS_STD_COROUTINE=1>)
target_link_libraries(corvane_asio INTERFACE Threads::Threads)

find_path(PUGIXML_INCLUDE_DIR pugixml.hpp REQUIRED)
find_library(PUGIXML_LIBRARY NAMES libpugixml.a pugixml REQUIRED)
add_library(corvane_pugixml INTERFACE)
target_include_directories(corvane_pugixml SYSTEM INTERFACE ${PUGIXML_INCLUDE_DIR})
target_link_libraries(corvane_pugixml INTERFACE ${PUGIXML_LIBRARY})

find_path(TOMLPLUSPLUS_INCLUDE_DIR toml++/toml.h REQUIRED)
add_library(corvane_tomlplusplus INTERFACE)
target_include_directories(corvane_tomlplusplus SYSTEM INTERFACE ${TOMLPLUSPLUS_INCLUDE_DIR})

# Linked statically where the system offers it: a shared library costs time at every start.
find_path(UTF8PROC_INCLUDE_DIR utf8proc.h REQUIRED)
find_library(UTF8PROC_LIBRARY NAMES libutf8proc.a utf8proc REQUIRED)
add_library(corvane_utf8proc INTERFACE)
target_include_directories(corvane_utf8proc SYSTEM INTERFACE ${UTF8PROC_INCLUDE_DIR})
target_compile_definitions(corvane_utf8proc INTERFACE UTF8PROC_STATIC)
target_link_libraries(corvane_utf8proc INTERFACE ${UTF8PROC_LIBRARY})
