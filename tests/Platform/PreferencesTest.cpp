#include <fstream>

#include <gtest/gtest.h>

#include "Platform/ApplicationPaths.h"
#include "Platform/Preferences.h"
#include "support/TestSupport.h"

namespace ledgeon {
namespace {

TEST(Preferences, UserValuesOverrideDefaultsAndSurviveSynchronize) {
  testing::TempFolder folder;
  const auto file = folder / "config/preferences.json";
  {
    Preferences preferences(file);
    preferences.registerDefaults({{"automateBackupData", true}, {"timeout", 60}});
    EXPECT_TRUE(preferences.boolForKey("automateBackupData"));
    EXPECT_EQ(preferences.integerForKey("timeout"), 60);
    preferences.setObject("automateBackupData", false);
    preferences.setObject("rateServiceHost", "https://127.0.0.1:8443");
    ASSERT_TRUE(preferences.synchronize().ok());
  }
  Preferences reread(file);
  ASSERT_TRUE(reread.load().ok());
  reread.registerDefaults({{"automateBackupData", true}});
  EXPECT_FALSE(reread.boolForKey("automateBackupData"));
  EXPECT_EQ(reread.stringForKey("rateServiceHost"), "https://127.0.0.1:8443");
  EXPECT_EQ(reread.objectForKey("missing"), std::nullopt);
  reread.removeObjectForKey("automateBackupData");
  EXPECT_TRUE(reread.boolForKey("automateBackupData"));
}

TEST(Preferences, DamagedFileIsAnErrorNamingIt) {
  testing::TempFolder folder;
  const auto file = folder / "preferences.json";
  std::ofstream(file) << "{ not json";
  Preferences preferences(file);
  auto loaded = preferences.load();
  ASSERT_FALSE(loaded.ok());
  EXPECT_NE(loaded.error().localizedDescription().find(file.string()), std::string::npos);
}

TEST(ApplicationPaths, LedgeonHomeHoldsEverything) {
  testing::TempFolder folder;
  setenv("LEDGEON_HOME", folder.path().c_str(), 1);
  EXPECT_EQ(ApplicationPaths::logsFolder(), folder / "logs");
  EXPECT_EQ(ApplicationPaths::backupsFolder(), folder / "support" / "Backups");
  EXPECT_EQ(ApplicationPaths::preferencesFile(), folder / "config/preferences.json");
  unsetenv("LEDGEON_HOME");
  setenv("XDG_CONFIG_HOME", "/xdg/config", 1);
  EXPECT_EQ(ApplicationPaths::preferencesFile(), "/xdg/config/ledgeon/preferences.json");
  unsetenv("XDG_CONFIG_HOME");
}

}  // namespace
}  // namespace ledgeon
