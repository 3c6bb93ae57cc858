#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Utilities/Date.h"
#include "Utilities/Result.h"

typedef void* plist_t;

namespace ledgeon {

// An owned property-list node (libplist): the lock records, the backup information and the
// archived catalog metadata. Dictionaries keep their keys in insertion order, so a record is
// written with its keys in the order they were set. Reading is forgiving about types: a getter
// returns nothing when the key is missing or holds another type.
class LPropertyList final {
 public:
  static LPropertyList dictionary();
  // Parses XML or binary property-list bytes; `origin` names the source in the error.
  static Result<LPropertyList> fromData(std::string_view data, const std::string& origin);
  static Result<LPropertyList> fromFile(const std::string& path);

  LPropertyList(LPropertyList&& other) noexcept;
  LPropertyList& operator=(LPropertyList&& other) noexcept;
  LPropertyList(const LPropertyList&) = delete;
  LPropertyList& operator=(const LPropertyList&) = delete;
  ~LPropertyList();

  bool isDictionary() const;

  void setString(const char* key, std::string_view value);
  void setInteger(const char* key, int64_t value);
  void setUnsigned(const char* key, uint64_t value);
  void setDate(const char* key, Date value);

  std::optional<std::string> string(const char* key) const;
  std::optional<int64_t> integer(const char* key) const;
  std::optional<uint64_t> unsignedInteger(const char* key) const;
  std::optional<Date> date(const char* key) const;
  bool contains(const char* key) const { return item(key) != nullptr; }
  // The keys in order. Only for property lists this program made: libplist aborts on a key
  // with a NUL inside, which a damaged file can hold.
  std::vector<std::string> keys() const;

  std::string xmlData() const;
  std::string binaryData() const;
  // Writes the binary form atomically (a temporary file renamed over the target). Binary keeps
  // dates to the microsecond; libplist's XML form keeps whole seconds only.
  Result<void> writeToFile(const std::string& path) const;

 private:
  explicit LPropertyList(plist_t node) : node_(node) {}
  plist_t item(const char* key) const;
  plist_t node_ = nullptr;
};

}  // namespace ledgeon
