#include "Documents/LPropertyList.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <utility>

#include <plist/plist.h>
#include <unistd.h>

#include "Utilities/FileContents.h"

namespace ledgeon {

namespace {

Error fileError(const std::string& path, const std::string& what) {
  Error error = Error::make(kLErrorDomain, 1, path + ": " + what);
  error.userInfo[kFilePathErrorKey] = path;
  return error;
}

}  // namespace

LPropertyList LPropertyList::dictionary() { return LPropertyList(plist_new_dict()); }

Result<LPropertyList> LPropertyList::fromData(std::string_view data, const std::string& origin) {
  if (data.size() < 8 || data.size() > std::numeric_limits<uint32_t>::max()) {
    return Error::make(kLErrorDomain, 1, origin + ": not a property list");
  }
  plist_t node = nullptr;
  const auto length = static_cast<uint32_t>(data.size());
  if (plist_is_binary(data.data(), length)) {
    plist_from_bin(data.data(), length, &node);
  } else {
    plist_from_xml(data.data(), length, &node);
  }
  if (!node) return Error::make(kLErrorDomain, 1, origin + ": not a property list");
  return LPropertyList(node);
}

Result<LPropertyList> LPropertyList::fromFile(const std::string& path) {
  auto text = readFileContents(path);
  if (!text) return fileError(path, "cannot be read");
  return fromData(*text, path);
}

LPropertyList::LPropertyList(LPropertyList&& other) noexcept
    : node_(std::exchange(other.node_, nullptr)) {}

LPropertyList& LPropertyList::operator=(LPropertyList&& other) noexcept {
  if (this != &other) {
    if (node_) plist_free(node_);
    node_ = std::exchange(other.node_, nullptr);
  }
  return *this;
}

LPropertyList::~LPropertyList() {
  if (node_) plist_free(node_);
}

bool LPropertyList::isDictionary() const {
  return node_ && plist_get_node_type(node_) == PLIST_DICT;
}

void LPropertyList::setString(const char* key, std::string_view value) {
  plist_dict_set_item(node_, key, plist_new_string(std::string(value).c_str()));
}

void LPropertyList::setInteger(const char* key, int64_t value) {
  // libplist keeps integers as 64-bit patterns; a negative value round-trips through the cast.
  plist_dict_set_item(node_, key, plist_new_uint(static_cast<uint64_t>(value)));
}

void LPropertyList::setUnsigned(const char* key, uint64_t value) {
  plist_dict_set_item(node_, key, plist_new_uint(value));
}

void LPropertyList::setDate(const char* key, Date value) {
  // Dates are held as 32-bit seconds around 2001 (1933 to 2069); anything beyond is clamped,
  // which only a damaged record can ask for.
  double seconds = value.timeIntervalSinceReferenceDate();
  if (std::isnan(seconds)) seconds = 0;
  seconds = std::clamp(seconds, double{std::numeric_limits<int32_t>::min()},
                       double{std::numeric_limits<int32_t>::max()});
  // libplist reads a date before 2001 back with the sign of its fraction lost, so those keep
  // whole seconds.
  double whole = seconds < 0 ? std::round(seconds) : std::floor(seconds);
  auto micro = seconds < 0 ? 0 : static_cast<int32_t>(std::lround((seconds - whole) * 1e6));
  if (micro >= 1000000 && whole < double{std::numeric_limits<int32_t>::max()}) {
    micro -= 1000000;
    whole += 1;
  } else if (micro >= 1000000) {
    micro = 999999;
  }
  plist_dict_set_item(node_, key, plist_new_date(static_cast<int32_t>(whole), micro));
}

plist_t LPropertyList::item(const char* key) const {
  return isDictionary() ? plist_dict_get_item(node_, key) : nullptr;
}

std::optional<std::string> LPropertyList::string(const char* key) const {
  plist_t value = item(key);
  if (!value || plist_get_node_type(value) != PLIST_STRING) return std::nullopt;
  // Not plist_get_string_val: it aborts on a text with an embedded NUL, which a damaged binary
  // property list can hold.
  uint64_t length = 0;
  const char* text = plist_get_string_ptr(value, &length);
  if (!text) return std::nullopt;
  return std::string(text, static_cast<std::size_t>(length));
}

std::optional<int64_t> LPropertyList::integer(const char* key) const {
  auto value = unsignedInteger(key);
  if (!value) return std::nullopt;
  return static_cast<int64_t>(*value);
}

std::optional<uint64_t> LPropertyList::unsignedInteger(const char* key) const {
  plist_t value = item(key);
  if (!value) return std::nullopt;
  if (plist_get_node_type(value) == PLIST_UINT) {
    uint64_t number = 0;
    plist_get_uint_val(value, &number);
    return number;
  }
  if (plist_get_node_type(value) == PLIST_REAL) {
    double number = 0;
    plist_get_real_val(value, &number);
    if (!(number >= 0 && number < 1.8e19)) return std::nullopt;
    return static_cast<uint64_t>(number);
  }
  return std::nullopt;
}

std::optional<Date> LPropertyList::date(const char* key) const {
  plist_t value = item(key);
  if (!value || plist_get_node_type(value) != PLIST_DATE) return std::nullopt;
  int32_t seconds = 0;
  int32_t micro = 0;
  plist_get_date_val(value, &seconds, &micro);
  return Date(static_cast<double>(seconds) + static_cast<double>(micro) / 1e6);
}

std::vector<std::string> LPropertyList::keys() const {
  std::vector<std::string> result;
  if (!isDictionary()) return result;
  plist_dict_iter iterator = nullptr;
  plist_dict_new_iter(node_, &iterator);
  for (;;) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(node_, iterator, &key, &value);
    if (!key) break;
    result.emplace_back(key);
    std::free(key);
  }
  std::free(iterator);
  return result;
}

std::string LPropertyList::xmlData() const {
  char* text = nullptr;
  uint32_t length = 0;
  plist_to_xml(node_, &text, &length);
  std::string result(text ? text : "", text ? length : 0);
  plist_to_xml_free(text);
  return result;
}

std::string LPropertyList::binaryData() const {
  char* bytes = nullptr;
  uint32_t length = 0;
  plist_to_bin(node_, &bytes, &length);
  std::string result(bytes ? bytes : "", bytes ? length : 0);
  plist_to_bin_free(bytes);
  return result;
}

Result<void> LPropertyList::writeToFile(const std::string& path) const {
  const std::string temporary = path + ".tmp" + std::to_string(::getpid());
  {
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    const std::string text = binaryData();
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!out.flush()) {
      std::remove(temporary.c_str());
      return fileError(path, "cannot be written");
    }
  }
  if (std::rename(temporary.c_str(), path.c_str()) != 0) {
    std::remove(temporary.c_str());
    return fileError(path, "cannot be written");
  }
  return {};
}

}  // namespace ledgeon
