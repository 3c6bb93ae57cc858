#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iosfwd>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace ledgeon {

// The text of one OFX element, one pointer wide: an element the server leaves out costs eight
// bytes and no allocation. Message classes hold dozens of such texts and a statement can hold a
// hundred thousand transactions, so a full std::string per element would dwarf the response.
class OFXString final {
 public:
  OFXString() noexcept = default;
  OFXString(std::string_view text) { assign(text); }    // NOLINT: implicit, as a string is
  OFXString(const std::string& text) { assign(text); }  // NOLINT: implicit
  OFXString(const char* text) { assign(text); }         // NOLINT: implicit
  OFXString(const OFXString& other) { assign(other.view()); }
  OFXString(OFXString&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
  OFXString& operator=(const OFXString& other) {
    if (this != &other) assign(other.view());
    return *this;
  }
  OFXString& operator=(OFXString&& other) noexcept {
    if (this != &other) {
      release();
      block_ = std::exchange(other.block_, nullptr);
    }
    return *this;
  }
  OFXString& operator=(std::string_view text) {
    assign(text);
    return *this;
  }
  OFXString& operator=(const std::string& text) { return *this = std::string_view(text); }
  OFXString& operator=(const char* text) { return *this = std::string_view(text); }
  ~OFXString() { release(); }

  size_t size() const noexcept {
    if (block_ == nullptr) return 0;
    uint32_t length = 0;
    std::memcpy(&length, block_, sizeof length);
    return length;
  }
  bool empty() const noexcept { return block_ == nullptr; }
  const char* data() const noexcept { return block_ ? block_ + sizeof(uint32_t) : ""; }
  const char* c_str() const noexcept { return data(); }
  std::string_view view() const noexcept { return {data(), size()}; }
  std::string str() const { return std::string(view()); }
  std::string description() const { return str(); }
  size_t find(std::string_view part, size_t from = 0) const noexcept {
    return view().find(part, from);
  }
  operator std::string_view() const noexcept { return view(); }  // NOLINT: implicit
  operator std::string() const { return str(); }                 // NOLINT: implicit

  friend bool operator==(const OFXString& a, const OFXString& b) { return a.view() == b.view(); }
  friend bool operator==(const OFXString& a, std::string_view b) { return a.view() == b; }
  friend bool operator==(const OFXString& a, const std::string& b) { return a.view() == b; }
  friend bool operator==(const OFXString& a, const char* b) { return a.view() == b; }
  friend std::string operator+(const OFXString& a, std::string_view b) { return a.str().append(b); }
  friend std::string operator+(std::string a, const OFXString& b) { return a.append(b.view()); }

 private:
  void assign(std::string_view text) {
    release();
    if (text.empty()) return;
    if (text.size() >= UINT32_MAX) throw std::length_error("OFX element text too long");
    const auto length = static_cast<uint32_t>(text.size());
    block_ = static_cast<char*>(std::malloc(sizeof length + text.size() + 1));
    if (block_ == nullptr) throw std::bad_alloc();
    std::memcpy(block_, &length, sizeof length);
    std::memcpy(block_ + sizeof length, text.data(), text.size());
    block_[sizeof length + text.size()] = '\0';
  }
  void release() noexcept {
    std::free(block_);
    block_ = nullptr;
  }

  char* block_ = nullptr;  // the length (uint32_t), the characters, a NUL; null when empty
};

std::ostream& operator<<(std::ostream& out, const OFXString& text);

}  // namespace ledgeon
