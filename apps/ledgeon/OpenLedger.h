#pragma once

#include <memory>
#include <string>
#include <vector>

namespace ledgeon {
class LDocument;
}  // namespace ledgeon

namespace ledgeon::cli {

// A document a subcommand opens (or creates) and closes when it ends, however it ends. A document
// that cannot be opened is a CommandFailure naming it; `answers` are the buttons to press should
// opening or closing ask something (the lock questions, the backup question).
class OpenLedger final {
 public:
  explicit OpenLedger(const std::string& path, const std::vector<std::string>& answers = {},
                      bool newFile = false);
  ~OpenLedger();
  OpenLedger(const OpenLedger&) = delete;
  OpenLedger& operator=(const OpenLedger&) = delete;

  LDocument& operator*() { return *document_; }
  LDocument* operator->() { return document_.get(); }
  const std::shared_ptr<LDocument>& shared() { return document_; }

 private:
  std::shared_ptr<LDocument> document_;
};

}  // namespace ledgeon::cli
