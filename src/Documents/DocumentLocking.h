#pragma once

#include <string>

#include "Documents/LDocumentPackage.h"
#include "Documents/LFileLockInfo.h"
#include "Platform/UserInterface.h"
#include "Utilities/Result.h"

namespace ledgeon {

// Buttons of the question asked when someone else holds a document's lock.
inline constexpr const char* kLockTryAgainButton = "Try Again";
inline constexpr const char* kLockOpenAnywayButton = "Open Anyway";
inline constexpr const char* kLockCancelButton = "Cancel";

enum class LockOutcome {
  kLocked,        // no one else held the document
  kOpenedAnyway,  // someone did; the user chose to open it regardless and took the lock
};

// The question for a conflicting `lock` on the document named `documentName`: one of three, by
// who holds it (another application of this user, another user of this computer, another
// computer), with the holder's details filled in.
Alert lockConflictAlert(const LFileLockInfo& lock, const std::string& documentName);

// The computer of a lock record in words: its name followed by its model, " (an iMac)".
std::string computerDescription(const LFileLockInfo& lock);

// Takes the package's lock, asking the user what to do while another opener holds it: try again
// (the locks are read afresh), open anyway (the lock is taken regardless) or cancel (a
// user-cancelled error). The first step of opening a document.
Result<LockOutcome> lockDocumentPackage(LDocumentPackage& package, UserInterface& userInterface);

}  // namespace ledgeon
