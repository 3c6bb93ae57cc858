#include <thread>

#include <gtest/gtest.h>

#include "DataBase/LedgerFixture.h"

namespace ledgeon::testing {
namespace {

TEST(BookmarkTest, TheStoreFollowsItsFileWhenTheFolderAboveIsRenamed) {
  TempFolder folder;
  const auto package = folder / "Household.ledgeon";
  std::filesystem::create_directories(package);
  auto opened = DataBase::initWithFileURL(package / "data", true);
  ASSERT_TRUE(opened.ok()) << opened.error().localizedDescription();
  DataBase& db = **opened;
  db.createEntity("Account", {{"name", Value("Checking")}});
  ASSERT_TRUE(db.commit().ok());
  EXPECT_FALSE(db.fileWasMoved());
  EXPECT_EQ(db.bookmarkedFileURL(), std::filesystem::canonical(package / "data"));

  const auto moved = folder / "Renamed.ledgeon";
  std::filesystem::rename(package, moved);
  EXPECT_TRUE(db.fileWasMoved());
  EXPECT_EQ(db.bookmarkedFileURL(), std::filesystem::canonical(moved / "data"));

  // A background reader opens the store where it now is.
  size_t counted = 0;
  std::thread reader([&] {
    db.lockForBackgroundReading();
    auto count = db.backgroundCountForInstancesOfClass("Account");
    counted = count.ok() ? *count : 0;
    db.releaseBackgroundConnection();
    db.unlockForBackgroundReading();
  });
  reader.join();
  EXPECT_EQ(counted, 1u);
}

}  // namespace
}  // namespace ledgeon::testing
