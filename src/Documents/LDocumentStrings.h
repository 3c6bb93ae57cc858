#pragma once

namespace ledgeon {

// Notifications an open document posts about itself (the sender is the LDocument).
inline constexpr const char* kLDocumentWillCloseNotification = "LDocumentWillCloseNotification";
inline constexpr const char* kLDocumentDidCloseNotification = "LDocumentDidCloseNotification";

// The preferences documents read.
inline constexpr const char* kAutomateBackupDataKey = "automateBackupData";
inline constexpr const char* kAskToBackupDataKey = "askToBackupData";
inline constexpr const char* kMaximumAutomaticBackupsKey = "maximumAutomaticBackups";
inline constexpr const char* kAllowCanadaFeaturesKey = "allowCanadaFeatures";
inline constexpr const char* kAllowUSFeaturesKey = "allowUSFeatures";
inline constexpr const char* kCloudEnvironmentTypeKey = "LCSEnvironmentType";

// Document properties documents keep about themselves.
inline constexpr const char* kClientDocumentIdProperty = "clientDocumentId";
inline constexpr const char* kLastOneTimeFixRevisionProperty = "lastOneTimeFixRevision";

// Facts recorded in the store's metadata each time a program opens it, so that a program too old
// to read the store can say who wrote it.
inline constexpr const char* kLastOpenedTimestampKey = "lastOpenedTimestamp";
inline constexpr const char* kLastOpenedApplicationNameKey = "lastOpenedApplicationName";
inline constexpr const char* kLastOpenedApplicationVersionKey = "lastOpenedApplicationVersion";
inline constexpr const char* kLastOpenedApplicationBuildKey = "lastOpenedApplicationBuild";

// The question asked on close when backups are automatic but the user wants to be asked.
inline constexpr const char* kBackupQuestion = "Do you want to back up?";
inline constexpr const char* kBackUpButton = "Back Up";
inline constexpr const char* kDontBackUpButton = "Don\u2019t Back Up";
inline constexpr const char* kBackupSuppressionTitle =
    "Don\u2019t ask me again but continue to back up";

// Texts of a document that cannot be opened.
inline constexpr const char* kCouldNotBeOpened = "The document \u201c%@\u201d could not be opened.";
inline constexpr const char* kUnsupportedModelInformation =
    "Choose Ledgeon > Check for Updates to make sure you have the latest version of %@. You are "
    "currently using version %@.";
inline constexpr const char* kLastOpenedByInformation =
    "\u201c%@\u201d was last opened on %@ by %@ %@ (Build %@).";
inline constexpr const char* kProtectedDocumentInformation =
    "The document is protected with a password, and this version of %@ cannot open protected "
    "documents.";
inline constexpr const char* kCloudEnvironmentWarning =
    "Warning: \u201c%@\u201d uses the %@ environment.";
inline constexpr const char* kCloudEnvironmentInformation =
    "This build of %@ can only be used with the %@ environment.";

// This program as the documents it writes name it.
inline constexpr const char* kApplicationName = "Ledgeon";
inline constexpr const char* kApplicationIdentifier = "org.ledgeon.Ledgeon";

}  // namespace ledgeon
