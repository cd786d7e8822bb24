// `vexo` with an allocation that fails on purpose: the allocation numbered
// $GLTFIO_FAIL_ALLOCATION (counted from the start of main, plug-in included)
// throws std::bad_alloc, once. With $GLTFIO_ALLOCATION_COUNT set, the number
// of allocations made is written to that file at the end.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <new>

#include "command/cli.h"

namespace {
std::atomic<long> allocations{0};
std::atomic<long> failAt{-1};
}  // namespace

namespace {
// Null for the failing allocation or when memory runs out.
void* allocate(std::size_t size) {
  if (++allocations == failAt.load()) return nullptr;
  return std::malloc(size ? size : 1);
}
}  // namespace

// Every form a program allocates through without an alignment, so that each
// block is freed by the allocator that made it.
void* operator new(std::size_t size) {
  if (void* block = allocate(size)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }

int main(int argc, char** argv) {
  if (const char* at = std::getenv("GLTFIO_FAIL_ALLOCATION")) failAt = std::atol(at);
  const char* countFile = std::getenv("GLTFIO_ALLOCATION_COUNT");
  vexo::ignoreFileSizeSignal();
  allocations = 0;
  const int status = vexo::runCli(argc, argv, std::cout, std::cerr);
  if (countFile) {
    if (std::FILE* out = std::fopen(countFile, "w")) {
      std::fprintf(out, "%ld\n", allocations.load());
      std::fclose(out);
    }
  }
  return status;
}
