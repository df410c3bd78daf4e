// Loaded before the program (LD_PRELOAD): adds a line to the file $COUNT_DECODES for each decode that the
// JPEG library begins.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

extern "C" int jpeg_start_decompress(void* decompressor)
{
    if (const char* path = std::getenv("COUNT_DECODES")) {
        if (std::FILE* file = std::fopen(path, "a")) {
            std::fputs("decode\n", file);
            std::fclose(file);
        }
    }
    using Start = int (*)(void*);
    return reinterpret_cast<Start>(dlsym(RTLD_NEXT, "jpeg_start_decompress"))(decompressor);
}
