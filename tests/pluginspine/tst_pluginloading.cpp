// Loading the built plug-in through the host's loader, as a host does.
#include <hbrchost/componentsystem.h>
#include <hbrchost/logcapture.h>
#include <hbrchost/pluginloader.h>

#include <gtest/gtest.h>

namespace {

// The factories go to a running system that takes registrations only. (Both components start from
// a loaded plug-in in tst_batchfaults and the studio's suites.)
TEST(PluginLoading, RegistersItsFactoriesOnlyWithARunningSystemThatTakesThem)
{
    std::string error;
    {
        hbrc::host::PluginLoader loader;
        ASSERT_FALSE(nrkIsSystemInitialized());
        ASSERT_TRUE(loader.Load(HBRC_PLUGIN_PATH, error)) << error;
    }
    {
        hbrc::host::ComponentSystem system;
        EXPECT_TRUE(system.GetFactoryNames().empty()) << "loaded before the system ran";
        system.SetAcceptingRegistrations(false);
        hbrc::host::PluginLoader loader;
        ASSERT_TRUE(loader.Load(HBRC_PLUGIN_PATH, error)) << error;
        EXPECT_TRUE(system.GetFactoryNames().empty());
    }
}

// A library that is missing, or has no plug-in entry, is refused with its name and the reason,
// logged once.
TEST(PluginLoading, AFailedLoadNamesTheLibraryAndTheReason)
{
    const std::pair<std::string, const char*> libraries[] = {{"/nonexistent/libnothing.so", "No such file"},
                                                             {"libm.so.6", "plxPluginRegister"}};
    for (const auto& [library, reason] : libraries) {
        hbrc::host::ComponentSystem system;
        hbrc::host::LogCapture log;
        hbrc::host::PluginLoader loader;
        std::string error;
        EXPECT_FALSE(loader.Load(library, error));
        EXPECT_NE(error.find(library), std::string::npos) << error;
        EXPECT_NE(error.find(reason), std::string::npos) << error;
        EXPECT_EQ(log.TextsOfType(Log::eError), std::vector<std::string>{error});
        EXPECT_TRUE(loader.LoadedLibraries().empty());
    }
}

}  // namespace
