#include "Documents/LBackupInfo.h"

namespace ledgeon {

LPropertyList LBackupInfo::propertyList() const {
  LPropertyList plist = LPropertyList::dictionary();
  plist.setDate("dateCreated", dateCreated);
  plist.setString("note", note);
  plist.setString("originalFilePath", originalFilePath);
  plist.setInteger("reason", static_cast<int64_t>(reason));
  plist.setString("UID", UID);
  return plist;
}

Result<LBackupInfo> LBackupInfo::readFromData(std::string_view data, const std::string& origin) {
  auto plist = LPropertyList::fromData(data, origin);
  if (!plist) return plist.error();
  if (!plist->isDictionary()) {
    return Error::make(kLErrorDomain, 1, origin + ": backup information must be a dictionary");
  }
  auto dateCreated = plist->date("dateCreated");
  if (!dateCreated) {
    return Error::make(kLErrorDomain, 1, origin + ": backup information without dateCreated");
  }
  LBackupInfo info;
  info.dateCreated = *dateCreated;
  info.note = plist->string("note").value_or("");
  info.originalFilePath = plist->string("originalFilePath").value_or("");
  // An unknown reason is kept as its number: a newer program may know more reasons.
  info.reason = static_cast<BackupReason>(plist->integer("reason").value_or(0));
  info.UID = plist->string("UID").value_or("");
  return info;
}

}  // namespace ledgeon
