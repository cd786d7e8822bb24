// The one place the loader includes tinygltf. The library is linked from its
// shared build, so no implementation is compiled here; its images are taken
// as their raw bytes (see gltf_loader.cpp), so stb_image is not needed either.
#pragma once

#define TINYGLTF_NO_STB_IMAGE
#define TINYGLTF_NO_STB_IMAGE_WRITE
#define TINYGLTF_NO_INCLUDE_STB_IMAGE
#define TINYGLTF_NO_INCLUDE_STB_IMAGE_WRITE
#include <tiny_gltf.h>
