#include <QFileOpenEvent>
#include <QUrl>

#include <gtest/gtest.h>

#include "platform/qt/QtApplication.h"
#include "tests/support/ProgramRun.h"
#include "window/WVeltrane.h"

using namespace veltrane;

// Where documents come as events of the toolkit and not as arguments, as on macOS.
TEST(QtApplication, OpensTheFilesThatTheDesktopAsksItTo)
{
    int count = 1;
    char name[] = "veltrane_tests";
    char* arguments[] = { name, nullptr };
    qt::QtApplication application(count, arguments);
    tests::ProgramRun run;
    run.Settings("ConversionJPG=ko\nConversionPNG=ko\nTauxJPG=70\n");
    for (const char* const file : { "a b#%41.tif", "\xFF.tif", "c.tif" })
        run.Plain(file);
    const auto ask = [&](QFileOpenEvent event) { QCoreApplication::sendEvent(&application, &event); };
    const std::string folder = "file://" + run.pictures.Path("");
    ask(QFileOpenEvent(QString::fromStdString(run.pictures.Path("a b#%41.tif"))));
    ask(QFileOpenEvent(QUrl::fromEncoded(QByteArray::fromStdString(folder + "/%FF.tif"))));
    ask(QFileOpenEvent(QUrl(QStringLiteral("sftp://elsewhere.invalid/x.tif"))));
    run.body.user.push_back([&] { ask(QFileOpenEvent(QString::fromStdString(run.pictures.Path("c.tif")))); });
    run.Go();
    std::vector<std::string> titles;
    for (const std::string& line : run.body.trace) {
        if (line.starts_with("title"))
            titles.push_back(line);
    }
    EXPECT_EQ(titles,
        (std::vector<std::string> { "title Veltrane V2 : a b#%41.tif", "title Veltrane V2 : \xFF.tif",
            "title Veltrane V2 : c.tif" }));
}
