#include "Documents/internal/UUID.h"

#include <array>
#include <random>

#include <fmt/format.h>
#include <openssl/rand.h>

namespace ledgeon::documents_internal {

std::string newUUIDString() {
  std::array<unsigned char, 16> bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
    std::random_device device;
    for (auto& byte : bytes) byte = static_cast<unsigned char>(device());
  }
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += fmt::format("{:02X}", bytes[i]);
  }
  return text;
}

}  // namespace ledgeon::documents_internal
