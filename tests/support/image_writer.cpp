// The image writer the tests make PNG, JPEG and other image files with. Its
// JPEG encoder shifts negative numbers left, which the sanitizers would stop
// on; this file alone is built without that check (see CMakeLists.txt).
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wunused-parameter"
#pragma GCC diagnostic ignored "-Wsign-compare"
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop
