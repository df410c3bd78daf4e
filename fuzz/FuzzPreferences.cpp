// The reader of text files, on any bytes.

#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "platform/files/TextStreams.h"

using namespace veltrane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const int file = memfd_create("preferences", MFD_CLOEXEC);
    if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size))
        __builtin_trap();
    const auto stream = TextInputStream::Open(FolderItem::FromPath("/proc/self/fd/" + std::to_string(file)));
    std::size_t lines = 0;
    while (!stream->Eof()) {
        const String line = stream->ReadLine(nullptr);
        if (line.Bytes().find_first_of("\r\n") != std::string_view::npos || ++lines > size + 1)
            __builtin_trap(); // a line end inside a line, or lines without end
        (void)InStr(line, 0, "=");
        (void)ToInteger(Val(line));
    }
    stream->Close();
    close(file);
    return 0;
}
