#include <gtest/gtest.h>

#include "platform/qt/onewindow/Launch.h"
#include "tests/support/Naming.h"

using namespace veltrane;
using qt::Launch;

namespace {

struct TimeCase {
    std::string_view name;
    const char* startupId;
    std::int64_t time; // -1: none
};

constexpr TimeCase kTimes[] = {
    { "FromADesktop", "shell/Files/1234-5-host_TIME98765", 98765 },
    { "TheLastMarkCounts", "a_TIME1_TIME2", 2 },
    { "TheWholeRangeOfTheClock", "_TIME4294967295", 4294967295 },
    { "BeyondTheClock", "_TIME4294967296", -1 },
    { "NoMark", "host-1234", -1 },
    { "NothingBehindTheMark", "host_TIME", -1 },
    { "MoreThanANumber", "host_TIME12x", -1 },
    { "BelowZero", "host_TIME-1", -1 },
    { "NoneAtAll", "", -1 },
};

class Times : public testing::TestWithParam<TimeCase> { };

TEST_P(Times, AreReadFromTheStartupId)
{
    const Launch launch { GetParam().startupId, {}, {}, false };
    const auto time = launch.UserTime();
    EXPECT_EQ(time ? std::int64_t(*time) : -1, GetParam().time);
}

INSTANTIATE_TEST_SUITE_P(Launch, Times, testing::ValuesIn(kTimes), tests::kByName);

struct Screen {
    const char *display = "", *wayland = "", *runtime = "/run/user/1";
};

struct ScreenCase {
    std::string_view name;
    Screen first, later;
    bool seen;
};

constexpr ScreenCase kScreens[] = {
    { "TheSameDisplay", { ":0" }, { ":0" }, true },
    { "AnotherScreenOfTheDisplay", { ":0" }, { ":0.1" }, true },
    { "AnotherDisplay", { ":0" }, { ":1" }, false },
    { "AsLongANumber", { ":1" }, { ":10" }, false },
    { "ForwardedByAShell", { ":0" }, { "localhost:10.0" }, false },
    { "AHostWithPoints", { "a.b.example:1.0" }, { "a.c.example:1.0" }, false },
    { "TheSameCompositorByItsPath", { "", "wayland-0" }, { "", "/run/user/1/wayland-0" }, true },
    { "AnotherCompositor", { "", "wayland-0" }, { "", "wayland-1" }, false },
    { "OneOfTwoInCommon", { ":0" }, { ":0", "wayland-0" }, true },
    { "NoneInCommon", { "", "wayland-0" }, { ":0" }, false },
    { "NowhereElseToGo", { ":0" }, {}, true },
    { "AWindowThatNobodySees", {}, { ":0" }, false },
};

void Set(const char* variable, const char* value)
{
    if (*value == '\0')
        unsetenv(variable);
    else
        setenv(variable, value, 1);
}

Launch StartedOn(const Screen& screen)
{
    Set("DISPLAY", screen.display);
    Set("WAYLAND_DISPLAY", screen.wayland);
    Set("XDG_RUNTIME_DIR", screen.runtime);
    return Launch::OfThisProcess();
}

class Screens : public testing::TestWithParam<ScreenCase> { };

TEST_P(Screens, TellWhoSeesTheWindow)
{
    const Launch first = StartedOn(GetParam().first);
    const Launch later = Launch::From(StartedOn(GetParam().later).PlatformData());
    EXPECT_EQ(later.Sees(first.screens), GetParam().seen);
    EXPECT_TRUE(later.ofLaterStart);
}

INSTANTIATE_TEST_SUITE_P(Launch, Screens, testing::ValuesIn(kScreens), tests::kByName);

} // namespace

TEST(Launch, ADesktopsCallBringsItsTokensAndSeesEveryWindow)
{
    const Launch launch = Launch::From({ { QStringLiteral("desktop-startup-id"), QStringLiteral("id_TIME7") },
        { QStringLiteral("activation-token"), QStringLiteral("token") }, { QStringLiteral("other"), 3 } });
    EXPECT_EQ(launch.UserTime(), 7u);
    EXPECT_EQ(launch.activationToken, "token");
    EXPECT_FALSE(launch.ofLaterStart);
    EXPECT_TRUE(launch.Sees({ QStringLiteral("1 x11 :0") }));
    EXPECT_EQ(launch.PlatformData().size(), 2) << "sent on, it is still a desktop's call";
}
