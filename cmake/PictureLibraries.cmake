# The picture libraries, linked statically where the system offers it: a shared library costs time
# at every start, even of a server that is never asked for a picture.
include_guard(GLOBAL)

find_path(PNG_INCLUDE_DIR png.h REQUIRED)
find_library(PNG_LIBRARY NAMES libpng.a png REQUIRED)
find_library(PNG_ZLIB_LIBRARY NAMES libz.a z REQUIRED)
find_path(JPEG_INCLUDE_DIR jpeglib.h REQUIRED)
find_library(JPEG_LIBRARY NAMES libjpeg.a jpeg REQUIRED)

add_library(corvane_png INTERFACE)
target_include_directories(corvane_png SYSTEM INTERFACE ${PNG_INCLUDE_DIR})
target_link_libraries(corvane_png INTERFACE ${PNG_LIBRARY} ${PNG_ZLIB_LIBRARY} m)

add_library(corvane_jpeg INTERFACE)
target_include_directories(corvane_jpeg SYSTEM INTERFACE ${JPEG_INCLUDE_DIR})
target_link_libraries(corvane_jpeg INTERFACE ${JPEG_LIBRARY})
