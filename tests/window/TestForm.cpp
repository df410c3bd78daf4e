#include <thread>

#include <gtest/gtest.h>

#include "filetypes/Image.h"
#include "platform/files/FileTypes.h"
#include "platform/values/Exceptions.h"
#include "tests/support/Naming.h"
#include "tests/support/ProgramRun.h"
#include "window/Fit.h"
#include "window/WVeltrane.h"

using namespace veltrane;
using tests::ProgramRun;

namespace {

// Runs the program and looks at its window.
void Look(const std::function<void(ProgramRun&)>& look)
{
    ProgramRun run;
    bool looked = false;
    run.body.user.push_back([&] {
        look(run);
        looked = true;
    });
    run.Go();
    EXPECT_TRUE(looked);
}

struct FitCase {
    std::int64_t pictureWidth, pictureHeight, width, height;
    Rect at;
};

constexpr FitCase kFits[] = {
    { 1000, 800, 569, 343, { 70, 0, 428, 343 } },
    { 3000, 500, 569, 343, { 0, 124, 569, 94 } },
    { 200, 100, 569, 343, { 184, 121, 200, 100 } },
    { 569, 343, 569, 343, { 0, 0, 569, 343 } },
    { 570, 343, 569, 343, { 0, 0, 569, 342 } },
    { 569, 344, 569, 343, { 1, 0, 567, 343 } },
    { 500, 2000, 569, 343, { 242, 0, 85, 343 } },
    { 4000, 3000, 569, 343, { 56, 0, 457, 343 } },
    { 1138, 687, 569, 343, { 0, 0, 569, 343 } }, // as high as the canvas after the first step
    { 1920, 1080, 569, 343, { 0, 11, 569, 320 } },
    { 100000, 1, 569, 343, { 0, 171, 569, 0 } },
    { 1, 100000, 569, 343, { 284, 0, 0, 343 } },
    { 4000, 3000, 479, 213, { 97, 0, 284, 213 } },
};

} // namespace

TEST(Form, FitsTheWorkedExamples)
{
    for (const FitCase& c : kFits) {
        EXPECT_EQ(FitCentred(c.pictureWidth, c.pictureHeight, c.width, c.height), c.at)
            << c.pictureWidth << " x " << c.pictureHeight;
    }
}

TEST(Form, PaintsWhiteAndThenThePictureBeforeTheSave)
{
    Look([](ProgramRun& run) {
        run.Plain("a.tif", 1000, 800);
        WVeltrane()->CbPNG()->Value(false);
        WVeltrane()->CV()->Refresh(false);
        const Drawing white { Drawing::Kind::Fill, 0xFFFFFF, 0, 0, 569, 343 };
        EXPECT_EQ(run.body.paints.back(), std::vector { white });
        WVeltrane()->mTraitFichier(FolderItem::FromPath(run.pictures.Path("a.tif")));
        const Drawing picture { Drawing::Kind::Picture, 0, 70, 0, 428, 343, 0, 0, 1000, 800 };
        EXPECT_EQ(run.body.paints.back(), (std::vector { white, picture }));
    });
}

TEST(Form, OnlyTheCanvasGrowsWithTheWindow)
{
    Look([](ProgramRun&) {
        const auto window = WVeltrane();
        const auto at
            = [&](const char* name) { return Cast<RectControl>(window->_ControlByName(name))->Bounds(); };
        EXPECT_EQ(at("CV"), (Rect { 20, 167, 569, 343 }));
        const Rect group = at("GroupBox1"), slider = at("SLQualite");
        EXPECT_EQ(group, (Rect { 20, 9, 474, 146 }));
        EXPECT_EQ(slider, (Rect { 223, 63, 251, 23 }));
        for (const auto& [width, height] : { std::pair(510, 400), { 1000, 800 }, { 600, 530 } }) {
            window->TakeSize(width, height);
            EXPECT_EQ(at("CV"), (Rect { 20, 167, width - 31, height - 187 }));
            EXPECT_EQ(at("GroupBox1"), group);
            EXPECT_EQ(at("SLQualite"), slider);
        }
    });
}

TEST(Form, TellsTheUserWhatEachThingIs)
{
    Look([](ProgramRun&) {
        const auto window = WVeltrane();
        EXPECT_EQ(window->Title().Bytes(), "Veltrane V2");
        EXPECT_EQ(window->GroupBox1()->Caption().Bytes(),
            "D\u00e9poser un fichier sur cette fen\u00eatre (Conversion automatique)");
        EXPECT_EQ(window->CbJPG()->Caption().Bytes(), "Auto Sauvegarde en JPG");
        EXPECT_EQ(window->CbPNG()->Caption().Bytes(), "Auto Sauvegarde en PNG");
        EXPECT_EQ(window->lbNbFich()->Text().Bytes(), "0 fichiers traités depuis l'ouverture.");
        EXPECT_EQ(window->TypeQual()->TextAlign(), Label::Align::Right);
        EXPECT_EQ(window->lbNbFich()->TextAlign(), Label::Align::Left);
        EXPECT_EQ(window->AcceptedTypes().Bytes(), Image::All);
        std::string order;
        for (const auto& control : window->Controls())
            order += std::string(control->Name().Bytes()) + " ";
        EXPECT_EQ(order, "CV GroupBox1 CbJPG SLQualite TypeQual CbPNG lbNbFich ");
    });
}

TEST(Form, MenusStandInTheirOrder)
{
    Look([](ProgramRun&) {
        const auto window = WVeltrane();
        const auto texts = [](const Ref<MenuItem>& menu) {
            std::string all(menu->Text().Bytes());
            for (const auto& item : menu->Children())
                all += "|" + std::string(item->Text().Bytes()) + " "
                    + std::string(item->KeyboardShortcut().Bytes()) + (item->Enabled() ? "" : "-");
            return all;
        };
        EXPECT_EQ(texts(window->FileMenu()), "&File|&Quit Cmd+Q");
        EXPECT_EQ(texts(window->EditMenu()),
            "&Edit|&Undo Cmd+Z-|- -|Cu&t Cmd+X-|&Copy Cmd+C-|&Paste Cmd+V-|&Delete -|- -|Select &All Cmd+A-");
        EXPECT_EQ(window->EditClear()->Name().Bytes(), "EditClear");
        EXPECT_EQ(window->FileQuit()->Name().Bytes(), "FileQuit");
        EXPECT_THROW(window->EditMenu()->Append(window->EditCut()), MenuHasParentException);
    });
}

TEST(Form, SliderKeepsItsRangeAndTellsWhenItMoved)
{
    Look([](ProgramRun&) {
        const auto slider = WVeltrane()->SLQualite();
        int changes = 0;
        slider->ValueChanged.Add([&](const auto&) { ++changes; });
        for (const auto& [given, kept] :
            { std::pair(250, 100), { 100, 100 }, { -1, 0 }, { 0, 0 }, { 42, 42 } }) {
            slider->Value(std::int64_t { given });
            EXPECT_EQ(slider->Value(), kept);
        }
        EXPECT_EQ(changes, 3) << "told only when it moved";
        EXPECT_EQ(WVeltrane()->TypeQual()->Text().Bytes(), "Qualité (42%) : ");
    });
}

TEST(Form, WidgetsBelongToTheMainThread)
{
    Look([](ProgramRun&) {
        std::string message;
        std::thread([&, label = WVeltrane()->lbNbFich()] {
            try {
                label->Text("x");
            } catch (const ThreadAccessingUIException& failure) {
                message = failure.Message().Bytes();
            }
        }).join();
        EXPECT_TRUE(
            message.starts_with("A thread has attempted to manipulate a user interface element. This"));
    });
}

TEST(Form, UnknownPropertiesAndWrongKindsAreRefused)
{
    Slider slider;
    EXPECT_THROW(slider._SetProperty({ "Vallue", 1 }), UnsupportedOperationException);
    EXPECT_THROW(slider._SetProperty({ "Value", true }), UnsupportedOperationException);
}

TEST(FileTypes, FiveAreDeclaredOnceEach)
{
    EXPECT_STREQ(Image::All, "image/gif;image/jpeg;image/pict;image/png;image/tiff;");
    Look([](ProgramRun&) {
        const auto jpeg = Image::ImageJpeg();
        EXPECT_EQ(jpeg->Extensions().Bytes(), ".jfif;.jpe;.jpeg;.jpg");
        std::string names;
        for (const auto& type : Image::AllFileTypes()) {
            EXPECT_TRUE(type->Registered());
            names += std::string(type->Name().Bytes()) + ";";
        }
        EXPECT_TRUE(names.ends_with(Image::All));
        jpeg->UTI("public.jpeg");
        EXPECT_FALSE(jpeg->Registered()) << "a write takes the registration back";
        EXPECT_EQ(jpeg->Operator_Convert().Bytes(), "image/jpeg");
        EXPECT_TRUE(jpeg->Registered()) << "use as a string registers";
        RuntimeDeregisterFileType("image/jpeg"); // behind the record's back
        jpeg->Register();
        EXPECT_FALSE(filetypes::FitsByName(Image::All, "a.jpg")) << "a standing record is not declared again";
        jpeg->Deregister();
        jpeg->Register();
        EXPECT_TRUE(filetypes::FitsByName(Image::All, "a.jpg"));
    });
}
