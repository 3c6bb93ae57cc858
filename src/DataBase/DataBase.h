#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <vector>

#include "DataBase/FetchOptions.h"
#include "DataBase/ReaderCommitterLock.h"
#include "LObjects/LObject.h"
#include "LObjects/LObjectContext.h"
#include "Utilities/Result.h"

namespace ledgeon {

namespace sql {
class Connection;
class Statement;
}  // namespace sql

// The ledger of one document: the object graph of the package's store file "data", its fetches
// and lookups, its commit with notifications, and the document properties. Everything that reads
// or writes the store goes through it. Main thread only (the thread that opened it), except the
// background-reading operations, which say so.
class DataBase final : public LObjectContext {
 public:
  // Opens the store file, or creates it when `newFile` (an existing file is then an error). A
  // file that is not a SQLite database, another program's database or a truncated file is a clear
  // error, and the file is left untouched.
  static Result<std::unique_ptr<DataBase>> initWithFileURL(const std::filesystem::path& file,
                                                           bool newFile);
  ~DataBase() override;
  DataBase(const DataBase&) = delete;
  DataBase& operator=(const DataBase&) = delete;

  // Lifetime and commit (DataBase.cpp, DataBaseCommit.cpp).
  void close();
  void reset();  // drops every uncommitted change and every loaded object
  // Drops every uncommitted change and every object made since the last commit; the objects that
  // were stored stay loaded, with their committed values (DataBaseRollback.cpp).
  void rollback();
  bool hasChanges() const;
  Result<void> commit() { return commitAndSendNotifications(true); }
  Result<void> commitAndSendNotifications(bool sendNotifications);
  const std::filesystem::path& fileURL() const { return file_; }
  // The store file where it is now. The open store keeps a bookmark on the file itself, so a
  // rename or move of the file or of a folder above it, which a path alone would lose, is
  // followed (DataBaseBookmark.cpp).
  std::filesystem::path bookmarkedFileURL() const;
  // Whether the store file has been moved or renamed since it was opened.
  bool fileWasMoved() const;
  const std::set<std::string>& modifiedEntityTypes() const { return modifiedEntityTypes_; }
  // The stored model version name and entity version hashes.
  std::map<std::string, std::string> storeMetadata();
  // What the store file at `file` says about itself, read without opening it as a ledger: its
  // model version, whether this program reads that version (`supportedModel`) and whether it
  // must be migrated first. A file that is not a ledger store is an error.
  struct StoreVersion {
    bool migrationRequired = false;
    bool supportedModel = false;
    std::string modelVersion;
    std::map<std::string, std::string> metadata;
  };
  static Result<StoreVersion> getMigrationRequired(const std::filesystem::path& file);
  // Records a fact about the store (which program opened it last ...) in its metadata, at once
  // and outside any pending changes.
  void setStoreMetadataValue(const std::string& key, const std::string& value);
  // Committed objects of each concrete entity that has any, soft-deleted ones among them.
  struct ObjectCount {
    size_t total = 0;
    size_t deleted = 0;
  };
  std::map<std::string, ObjectCount> storedObjectCounts();

  // Entities.
  LObject& createEntityType(std::string_view entityName);  // a new object with its identifiers
  LObject& createEntity(std::string_view entityName, const EditDict& data);
  // Removes the object from the store at the next commit (soft deletion is deleteLObject).
  void deleteEntity(LObject& object);
  const EntityDescription& entityDescriptionForName(std::string_view name) const;
  // The object with a primary key, loaded lazily; null when no such object exists.
  LObject* objectWithPrimaryKey(const EntityDescription& entity, int64_t primaryKey);

  // Fetching (DataBaseFetch.cpp). Pending changes are included: a fetch sees the graph as it is
  // in memory, not only as it was committed. A predicate naming unknown keys is an error.
  Result<std::vector<LObject*>> fetch(std::string_view entityName,
                                      const FetchOptions& options = {});
  // As fetch, for predicates written in code: an invalid predicate is a programming error.
  std::vector<LObject*> instancesOfClass(std::string_view entityName,
                                         const FetchOptions& options = {});
  size_t countForInstancesOfClass(std::string_view entityName,
                                  const Predicate& predicate = Predicate(),
                                  bool includeDeleted = false);
  // Rows of plain values (to-one relationships as primary keys) of the committed store.
  Result<std::vector<EditDict>> dictionariesForClass(std::string_view entityName,
                                                     const std::vector<std::string>& propertyNames,
                                                     const FetchOptions& options = {});

  // Named lookups (DataBaseLookups.cpp).
  LObject* transactionWithSyncID(std::string_view syncID, LObject* account);
  LObject* categoryTagWithSyncID(std::string_view syncID);
  LObject* categoryTagWithCategoryID(int64_t categoryID);
  LObject* userTagWithSyncID(std::string_view syncID);
  bool transactionExistsInAccount(LObject* account, std::string_view fitid);
  LObject* undeletedTransactionWithImportFileID(std::string_view fileID, std::string_view sourceID);
  // `typeName` is an AccountType class ("Checking"); `bid` the account's routing number.
  LObject* accountOfType(std::string_view typeName, std::string_view bid,
                         std::string_view accountNumber);
  // The categories most used by the payee's transactions in the account, most used first.
  std::vector<LObject*> recentCategoriesForPayee(LObject* payee, LObject* account, size_t limit);

  // Document properties: named values stored as DocumentProperty objects
  // (DocumentProperties.cpp).
  Value valueForDocumentPropertyNamed(std::string_view name);
  LObject* getDocumentPropertyNamed(std::string_view name);
  void setValueForDocumentProperty(const Value& value, std::string_view name);
  int64_t getAndBumpPropertyNamed(const std::string& name) override;
  void deleteDocumentPropertyNamed(std::string_view name);

  // Reader/committer coordination (ReaderCommitterLock.h).
  void lockForCommit() { lock_.lockForCommit(); }
  void unlockForCommit() { lock_.unlockForCommit(); }
  void lockForBackgroundReading() { lock_.lockForBackgroundReading(); }
  void unlockForBackgroundReading() { lock_.unlockForBackgroundReading(); }
  bool isCurrentThreadLockedForBackgroundReading() const {
    return lock_.isCurrentThreadLockedForBackgroundReading();
  }
  // Background reading, on any thread holding the background read lock, through that thread's
  // own connection: the committed store only (BackgroundReading.cpp).
  Result<std::vector<EditDict>> backgroundDictionariesForClass(
      std::string_view entityName, const std::vector<std::string>& propertyNames,
      const FetchOptions& options = {});
  Result<size_t> backgroundCountForInstancesOfClass(std::string_view entityName,
                                                    const Predicate& predicate = Predicate());
  // Closes the calling thread's background connection (a reader thread calls it before ending).
  void releaseBackgroundConnection();

  // Repairs on open (DataBaseRepairs.cpp); each appends what it did to `messages`.
  void performRepairsWithLogMessages(std::vector<std::string>& messages);
  void performDocumentPropertyRepairs(std::vector<std::string>& messages);
  void performNaNValueRepairs(std::vector<std::string>& messages);

  // LObjectContext.
  LObject& insertNewObject(const EntityDescription& entity) override;
  void fulfillFault(LObject& object) override;
  ObjectSet loadToMany(LObject& object, const PropertyDescription& property) override;
  void objectWillChange(LObject& object, const PropertyDescription& property,
                        const Value& oldValue) override;
  void clearCacheForClass(const std::string& className) override;
  NotificationCenter& notificationCenter() override;

  // Objects loaded in memory, for measurements and tests.
  size_t registeredObjectCount() const;

 private:
  struct Table;
  struct ChangeRecord {
    std::map<int, Value> oldValues;  // committed value of each changed slot
  };
  struct Pending;

  DataBase(std::filesystem::path file, std::unique_ptr<sql::Connection> connection);
  void loadPrimaryKeyCounters();
  Table& tableFor(const EntityDescription& entity);
  LObject& registerObject(const EntityDescription& entity, int64_t primaryKey, bool fault);
  void fillFromRow(LObject& object, const sql::Statement& row);
  LObject& materialize(const EntityDescription& rootEntity, const sql::Statement& row);
  // The object of a fetched row read as faults (Z_PK and Z_ENT only).
  LObject& materializeFault(const EntityDescription& rootEntity, const sql::Statement& row);
  // Loads the stored values of the faults among `objects` a batch of rows at a time
  // (DataBasePrefetch.cpp).
  void fulfillFaults(const std::vector<LObject*>& objects);
  void prefetchKeyPath(const std::vector<LObject*>& objects, std::string_view keyPath);
  void prefetchToMany(const std::vector<LObject*>& owners, const PropertyDescription& property,
                      std::vector<LObject*>& members);
  Result<void> validatePrefetchKeyPath(const EntityDescription& entity,
                                       std::string_view keyPath) const;
  std::vector<LObject*> pendingObjectsOfEntity(const EntityDescription& entity);
  bool hasPendingChangesFor(const EntityDescription& entity) const;
  Result<void> validateOptions(const EntityDescription& entity, const FetchOptions& options) const;
  void writeChanges();
  void writeJoinRows(LObject& object);
  void finishCommit();
  void postCommitNotifications(const ObjectSet& added, const ObjectSet& changed,
                               const ObjectSet& deleted, const std::set<std::string>& properties);
  sql::Connection& backgroundConnection();
  void openBookmark();
  void closeBookmark();

  std::filesystem::path file_;
  std::filesystem::path openedAt_;  // the file's absolute path when opened
  int bookmark_ = -1;               // a descriptor of the file, which moves with it
  std::unique_ptr<sql::Connection> connection_;
  std::thread::id mainThread_;
  std::vector<std::unique_ptr<Table>> tables_;  // by root, in the model's root order
  std::vector<LObject*> inserted_;
  std::unordered_map<LObject*, ChangeRecord> updated_;
  std::vector<LObject*> deleted_;
  std::set<std::string> modifiedEntityTypes_;
  NameMap<LObject*> documentPropertyCache_;
  ReaderCommitterLock lock_;
  std::mutex threadDictionariesLock_;
  std::map<std::thread::id, std::unique_ptr<sql::Connection>> threadDictionaries_;
};

}  // namespace ledgeon
