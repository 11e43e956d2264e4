#pragma once
// libvips as a benchmark peer, loaded at run time (libvips.so.42, from the libvips-tools package)
// so that the build needs no libvips headers. It runs on one thread (vips_concurrency_set(1)) with
// its operation cache off, like the library's single-threaded loops.

#include <benchmark/benchmark.h>

#include <dlfcn.h>

#include <cstdint>
#include <vector>

struct VipsImage;
struct Vips {
  int (*init)(const char*) = nullptr;
  void (*concurrencySet)(int) = nullptr;
  void (*cacheSetMax)(int) = nullptr;
  VipsImage* (*newFromMemory)(const void*, size_t, int, int, int, int) = nullptr;
  int (*gaussblur)(VipsImage*, VipsImage**, double, ...) = nullptr;
  int (*histEqual)(VipsImage*, VipsImage**, ...) = nullptr;
  int (*histFind)(VipsImage*, VipsImage**, ...) = nullptr;
  void* (*writeToMemory)(VipsImage*, size_t*) = nullptr;
  void (*unref)(void*) = nullptr;
  void (*gfree)(void*) = nullptr;
  bool loaded = false;

  Vips() {
    void* lib = dlopen("libvips.so.42", RTLD_NOW | RTLD_GLOBAL);
    if (!lib) return;
    init = reinterpret_cast<decltype(init)>(dlsym(lib, "vips_init"));
    concurrencySet = reinterpret_cast<decltype(concurrencySet)>(dlsym(lib, "vips_concurrency_set"));
    cacheSetMax = reinterpret_cast<decltype(cacheSetMax)>(dlsym(lib, "vips_cache_set_max"));
    newFromMemory = reinterpret_cast<decltype(newFromMemory)>(dlsym(lib, "vips_image_new_from_memory"));
    gaussblur = reinterpret_cast<decltype(gaussblur)>(dlsym(lib, "vips_gaussblur"));
    histEqual = reinterpret_cast<decltype(histEqual)>(dlsym(lib, "vips_hist_equal"));
    histFind = reinterpret_cast<decltype(histFind)>(dlsym(lib, "vips_hist_find"));
    writeToMemory = reinterpret_cast<decltype(writeToMemory)>(dlsym(lib, "vips_image_write_to_memory"));
    unref = reinterpret_cast<decltype(unref)>(dlsym(RTLD_DEFAULT, "g_object_unref"));
    gfree = reinterpret_cast<decltype(gfree)>(dlsym(RTLD_DEFAULT, "g_free"));
    loaded = init && concurrencySet && cacheSetMax && newFromMemory && gaussblur && histEqual && histFind &&
             writeToMemory && unref && gfree && init("vesperon-bench") == 0;
    if (loaded) {
      concurrencySet(1);
      cacheSetMax(0);
    }
  }

  // Runs one operation on the pixels and makes libvips compute all of its output.
  template <typename Operation>
  bool run(const std::vector<uint8_t>& pixels, int width, int height, Operation operation) {
    VipsImage* in = newFromMemory(pixels.data(), pixels.size(), width, height, 4, 0 /* uchar */);
    VipsImage* out = nullptr;
    bool ok = in && operation(in, &out) == 0 && out;
    if (ok) {
      size_t size = 0;
      void* memory = writeToMemory(out, &size);
      benchmark::DoNotOptimize(memory);
      ok = memory != nullptr;
      gfree(memory);
    }
    if (out) unref(out);
    if (in) unref(in);
    return ok;
  }
};

inline Vips& vips() {
  static Vips instance;
  return instance;
}

