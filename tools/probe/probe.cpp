// What opening makes of each file, a line each; for developers and scripts.

#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "imaging/bits/Bytes.h"
#include "platform/pictures/Faults.h"
#include "platform/pictures/Picture.h"
#include "tools/probe/Sha256.h"
#ifdef VELTRANE_QT
#include "platform/qt/QtToolkit.h"
#endif

using namespace veltrane;

namespace {

void Probe(const std::string& path, const std::string& rgba)
{
    try {
        const imaging::Bitmap picture = Picture::Open(FolderItem::FromPath(path))->Pixels();
        Sha256 digest;
        std::ofstream rows;
        if (!rgba.empty())
            rows.open(rgba, std::ios::binary);
        for (int y = 0; y < picture.Height(); ++y) {
            const imaging::Bytes row(WithPixels([&] { return picture.Row(y); }), picture.Stride());
            digest.Add(row);
            if (!rgba.empty())
                rows.write(
                    reinterpret_cast<const char*>(row.data()), static_cast<std::streamsize>(row.size()));
        }
        std::cout << path << "\tdecoded\t" << picture.Width() << 'x' << picture.Height() << '\t'
                  << digest.Finish() << '\n';
    } catch (const RuntimeException& failure) {
        std::cout << path << "\trefused\t" << failure.ClassName() << '\t' << failure.Message().Bytes()
                  << '\n';
    }
}

} // namespace

int main(int count, char** arguments)
{
#ifdef VELTRANE_QT
    RegisterQtFallback();
#endif
    std::vector<std::string> files(arguments + 1, arguments + count);
    std::string folder;
    if (files.size() >= 2 && files.front() == "--rgba") {
        folder = files[1];
        files.erase(files.begin(), files.begin() + 2);
    }
    for (std::size_t i = 0; i < files.size(); ++i)
        Probe(files[i], folder.empty() ? "" : folder + "/" + std::to_string(i) + ".rgba");
}
