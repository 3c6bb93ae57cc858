// Feeds arbitrary bytes to the OFX reader: conversion, XML parsing and mapping must end in a
// root or a status, never a crash.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "OnlineBankingFramework/OFXRootController.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr size_t kMaxInput = 64 * 1024;
  if (size > kMaxInput) return 0;
  ledgeon::OFXRootController controller;
  const bool ok =
      controller.openOFXData(std::string(reinterpret_cast<const char*>(data), size), false);
  if (!ok && controller.statusMessage().empty()) std::abort();
  controller.root().setRunningBalances();
  (void)controller.root().toJSON().dump();
  return 0;
}
