// Loading the built plug-in through the host's loader, as a host does.
#include <hbrchost/componentsystem.h>
#include <hbrchost/logcapture.h>
#include <hbrchost/pluginloader.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

bool contains(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

TEST(PluginLoading, RegistersTheHelperAndSettingsFactories)
{
    hbrc::host::ComponentSystem system;
    hbrc::host::PluginLoader loader;
    std::string error;
    ASSERT_TRUE(loader.Load(HBRC_PLUGIN_PATH, error)) << error;
    EXPECT_TRUE(contains(system.GetFactoryNames(), "RevisionControlUIHelper"));
    EXPECT_TRUE(contains(system.GetFactoryNames(), "RevisionControlPropertiesMgr"));
    // The helper needs a database proxy to start; the settings manager stands alone.
    nrk::IBase* settings = system.GetSingleton("RevisionControlPropertiesMgr");
    ASSERT_NE(settings, nullptr);
    EXPECT_STREQ(settings->GetClsName(), "Korvex.QLT.RevisionControlPropertiesMgr");
}

TEST(PluginLoading, ASystemThatTakesNoRegistrationsGetsNoFactory)
{
    hbrc::host::ComponentSystem system;
    system.SetAcceptingRegistrations(false);
    hbrc::host::PluginLoader loader;
    std::string error;
    ASSERT_TRUE(loader.Load(HBRC_PLUGIN_PATH, error)) << error;
    EXPECT_TRUE(system.GetFactoryNames().empty());
}

TEST(PluginLoading, WithoutARunningSystemNothingIsRegistered)
{
    {
        hbrc::host::PluginLoader loader;
        std::string error;
        ASSERT_FALSE(nrkIsSystemInitialized());
        ASSERT_TRUE(loader.Load(HBRC_PLUGIN_PATH, error)) << error;
    }
    hbrc::host::ComponentSystem system;
    EXPECT_TRUE(system.GetFactoryNames().empty());
}

TEST(PluginLoading, AFailedLoadNamesTheLibraryAndTheReason)
{
    hbrc::host::ComponentSystem system;
    hbrc::host::LogCapture log;
    hbrc::host::PluginLoader loader;
    std::string error;
    const std::string missing = "/nonexistent/libnothing.so";
    EXPECT_FALSE(loader.Load(missing, error));
    EXPECT_NE(error.find(missing), std::string::npos) << error;
    EXPECT_NE(error.find("No such file"), std::string::npos) << error;
    ASSERT_EQ(log.TextsOfType(Log::eError).size(), 1u);
    EXPECT_EQ(log.TextsOfType(Log::eError).front(), error);
    EXPECT_TRUE(loader.LoadedLibraries().empty());
}

TEST(PluginLoading, ALibraryWithoutTheEntryIsRefused)
{
    hbrc::host::ComponentSystem system;
    hbrc::host::PluginLoader loader;
    std::string error;
    EXPECT_FALSE(loader.Load("libm.so.6", error));
    EXPECT_NE(error.find("plxPluginRegister"), std::string::npos) << error;
}

}  // namespace
