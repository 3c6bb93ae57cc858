// Following the store file when it is moved while open.
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "DataBase/DataBase.h"

namespace ledgeon {

namespace {

constexpr std::string_view kDeletedSuffix = " (deleted)";

}  // namespace

void DataBase::openBookmark() {
  std::error_code ec;
  openedAt_ = std::filesystem::weakly_canonical(std::filesystem::absolute(file_, ec), ec);
  if (ec) openedAt_ = file_;
  bookmark_ = ::open(file_.c_str(), O_RDONLY | O_CLOEXEC);
}

void DataBase::closeBookmark() {
  if (bookmark_ >= 0) ::close(bookmark_);
  bookmark_ = -1;
}

std::filesystem::path DataBase::bookmarkedFileURL() const {
  if (bookmark_ < 0) return openedAt_;
  // The kernel names the file a descriptor refers to by its present path.
  std::error_code ec;
  const std::filesystem::path link = "/proc/self/fd/" + std::to_string(bookmark_);
  std::string target = std::filesystem::read_symlink(link, ec).string();
  if (ec || target.empty()) return openedAt_;
  if (target.size() > kDeletedSuffix.size() &&
      target.compare(target.size() - kDeletedSuffix.size(), kDeletedSuffix.size(),
                     kDeletedSuffix) == 0) {
    return openedAt_;  // removed: the last place it was
  }
  return target;
}

bool DataBase::fileWasMoved() const { return bookmarkedFileURL() != openedAt_; }

}  // namespace ledgeon
