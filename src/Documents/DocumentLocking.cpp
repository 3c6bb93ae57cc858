#include "Documents/DocumentLocking.h"

#include <array>
#include <memory>
#include <utility>

#include <unicode/datefmt.h>
#include <unicode/unistr.h>

#include "Documents/internal/LocalTime.h"
#include "Utilities/DateFormatter.h"
#include "Utilities/Log.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

namespace {

constexpr const char* kOtherApplicationMessage =
    "The document \u201c%@\u201d is already open in another application.";
constexpr const char* kOtherApplicationInformation =
    "To open this document, quit the application \u201c%@\u201d (PID %@), then click the "
    "\u201cTry Again\u201d button.";
constexpr const char* kOtherUserMessage =
    "The document \u201c%@\u201d is already open by another user.";
constexpr const char* kOtherUserInformation =
    "To open this document, switch to the %@ (%@) account and quit the application \u201c%@\u201d "
    "(PID %@), then click the \u201cTry Again\u201d button.";
constexpr const char* kOtherComputerMessage =
    "The document \u201c%@\u201d may already be open on a different computer.";
constexpr const char* kOtherComputerInformation =
    "This document was last opened in %@ on %@ by %@ at %@ on %@, %@.\n\nOpening a document on "
    "multiple computers at the same time will cause corruption and data loss. Before you open "
    "this document, verify that you have quit %@ on the other computer and click the \u201cTry "
    "Again\u201d button.";

std::string formatDate(icu::DateFormat* format, Date date) {
  if (!format) return "";
  icu::UnicodeString text;
  format->format(date.unixTime() * 1000.0, text);
  std::string result;
  text.toUTF8String(result);
  return result;
}

struct LockTimeTexts {
  std::string time;
  std::string weekday;
  std::string date;
};

LockTimeTexts lockTimeTexts(Date when) {
  const icu::Locale locale = icu::Locale::getDefault();
  std::unique_ptr<icu::DateFormat> time(
      icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, locale));
  std::unique_ptr<icu::DateFormat> date(
      icu::DateFormat::createDateInstance(icu::DateFormat::kLong, locale));
  const DateFormatter weekday("EEEE", documents_internal::localLocaleIdentifier(),
                              documents_internal::localTimeZoneIdentifier());
  return {formatDate(time.get(), when), weekday.stringFromDate(when), formatDate(date.get(), when)};
}

}  // namespace

std::string computerDescription(const LFileLockInfo& lock) {
  // Longer identifiers first: "MacBookPro" must not be taken for "MacBook".
  static const std::array<std::pair<const char*, const char*>, 7> kModels = {{
      {"MacBookPro", " (a MacBook Pro)"},
      {"MacBookAir", " (a MacBook Air)"},
      {"MacBook", " (a MacBook)"},
      {"MacPro", " (a Mac Pro)"},
      {"Macmini", " (a Mac mini)"},
      {"iMac", " (an iMac)"},
      {"Xserve", " (an Xserve)"},
  }};
  for (const auto& [prefix, words] : kModels) {
    if (lock.deviceModel.rfind(prefix, 0) == 0) return lock.hostName + words;
  }
  return lock.hostName;
}

Alert lockConflictAlert(const LFileLockInfo& lock, const std::string& documentName) {
  Alert alert;
  alert.buttons = {kLockTryAgainButton, kLockOpenAnywayButton, kLockCancelButton};
  switch (lock.owner) {
    case LockOwner::kOtherUser:
      alert.messageText = stringWithFormat(kOtherUserMessage, documentName);
      alert.informativeText = stringWithFormat(kOtherUserInformation, lock.fullUserName,
                                               lock.userName, lock.bundleName, lock.pidNumber);
      break;
    case LockOwner::kOtherComputer: {
      const LockTimeTexts when = lockTimeTexts(lock.createdAt);
      alert.messageText = stringWithFormat(kOtherComputerMessage, documentName);
      alert.informativeText =
          stringWithFormat(kOtherComputerInformation, lock.bundleName, computerDescription(lock),
                           lock.fullUserName, when.time, when.weekday, when.date, lock.bundleName);
      break;
    }
    default:
      alert.messageText = stringWithFormat(kOtherApplicationMessage, documentName);
      alert.informativeText =
          stringWithFormat(kOtherApplicationInformation, lock.bundleName, lock.pidNumber);
      break;
  }
  return alert;
}

Result<LockOutcome> lockDocumentPackage(LDocumentPackage& package, UserInterface& userInterface) {
  for (;;) {
    auto conflict = package.tryLockAndReturnConflictingLock();
    if (!conflict) return conflict.error();
    if (!conflict->has_value()) return LockOutcome::kLocked;
    const Alert alert = lockConflictAlert(**conflict, package.documentName());
    const AlertResponse response = userInterface.runAlert(alert);
    const std::string& button = alert.buttons.at(response.buttonIndex);
    if (button == kLockTryAgainButton) continue;
    if (button == kLockOpenAnywayButton) {
      LLog("Opening %@ although it is locked by %@ (PID %@)", package.documentFullPath(),
           (*conflict)->bundleName, (*conflict)->pidNumber);
      if (auto created = package.createLock(LFileLockInfo::currentProcess()); !created) {
        return created.error();
      }
      return LockOutcome::kOpenedAnyway;
    }
    return Error::userCancelled();
  }
}

}  // namespace ledgeon
