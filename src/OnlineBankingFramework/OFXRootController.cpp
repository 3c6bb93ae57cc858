#include "OnlineBankingFramework/OFXRootController.h"

#include <cstdint>
#include <cstring>
#include <fstream>

#include <unicode/ucnv.h>

#include "OnlineBankingFramework/OFXException.h"
#include "OnlineBankingFramework/OfxConvert.h"
#include "OnlineBankingFramework/XMLMapping.h"
#include "Utilities/Log.h"
#include "Utilities/Resources.h"

namespace ledgeon {

namespace {

bool isASCIIWord(const char* bytes) {
  uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return (word & 0x8080808080808080ULL) == 0;
}

bool isValidUTF8(std::string_view text) {
  size_t i = 0;
  while (i < text.size()) {
    // Plain ASCII, the bulk of any statement, eight bytes at a time.
    while (i + sizeof(uint64_t) <= text.size() && isASCIIWord(text.data() + i)) {
      i += sizeof(uint64_t);
    }
    if (i == text.size()) break;
    const auto c = static_cast<unsigned char>(text[i]);
    size_t extra = 0;
    if (c < 0x80) {
      ++i;
      continue;
    }
    if ((c & 0xE0) == 0xC0 && c >= 0xC2)
      extra = 1;
    else if ((c & 0xF0) == 0xE0)
      extra = 2;
    else if ((c & 0xF8) == 0xF0 && c <= 0xF4)
      extra = 3;
    else
      return false;
    if (i + extra >= text.size()) return false;
    for (size_t k = 1; k <= extra; ++k) {
      if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return false;
    }
    i += extra + 1;
  }
  return true;
}

std::string convertWithICU(std::string_view bytes, const char* encoding) {
  UErrorCode status = U_ZERO_ERROR;
  std::string out(bytes.size() * 3 + 4, '\0');
  const int32_t length =
      ucnv_convert("UTF-8", encoding, out.data(), static_cast<int32_t>(out.size()), bytes.data(),
                   static_cast<int32_t>(bytes.size()), &status);
  if (U_FAILURE(status)) return {};
  out.resize(static_cast<size_t>(length));
  return out;
}

}  // namespace

OFXRootController::OFXRootController() : root_(std::make_unique<OFXRoot>()) {}

std::string OFXRootController::decodeOFXText(std::string bytesIn) {
  std::string_view bytes = bytesIn;
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  if (bytes.substr(0, 2) == "\xFF\xFE" || bytes.substr(0, 2) == "\xFE\xFF") {
    std::string text = convertWithICU(bytes, "UTF-16");
    if (!text.empty()) return text;
  }
  if (isValidUTF8(bytes)) {
    if (bytes.size() != bytesIn.size()) bytesIn.erase(0, bytesIn.size() - bytes.size());
    return bytesIn;
  }
  // Not UTF-8: OFX 1.x declares CHARSET:1252 or ISO-8859-1, both read as 8-bit characters.
  std::string text = convertWithICU(bytes, "windows-1252");
  if (!text.empty() || bytes.empty()) return text;
  return convertWithICU(bytes, "ISO-8859-1");
}

std::unique_ptr<OFXRoot> OFXRootController::parseOFXText(std::string text, bool isDirectConnect) {
  const auto mapping = XMLMapping::fromFile(resourcePath("ofxXMLMapping.xml"), "OFX");
  // The XML is parsed as the converter makes it: a large statement's XML form is never whole.
  XMLMapping::Reader reader(*mapping);
  OfxConvert::convertOFXToXML(std::move(text), [&](std::string_view piece) { reader.feed(piece); });
  std::unique_ptr<OFXObject> object = reader.finish();
  std::unique_ptr<OFXRoot> root(dynamic_cast<OFXRoot*>(object.get()));
  if (!root) throw OFXException("InvalidMapping", "the OFX mapping does not make an OFXRoot");
  object.release();
  root->setDirectConnect(isDirectConnect);
  root->combineCCandBankingArrays();
  root->fixupData();
  root->postImportValidate();
  return root;
}

bool OFXRootController::openOFXFile(const std::filesystem::path& path, bool isDirectConnect) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    failWith(path.string() + ": the file cannot be read");
    return false;
  }
  std::string bytes;
  in.seekg(0, std::ios::end);
  const auto size = in.tellg();
  in.seekg(0, std::ios::beg);
  if (size > 0) {
    bytes.resize(static_cast<size_t>(size));
    in.read(bytes.data(), size);
    bytes.resize(static_cast<size_t>(in.gcount()));
  }
  return openOFXData(std::move(bytes), isDirectConnect);
}

bool OFXRootController::openOFXData(std::string bytes, bool isDirectConnect) {
  std::string text = decodeOFXText(std::move(bytes));
  LLog("\tWEBCONNECT import:\n%@", text);
  try {
    root_ = parseOFXText(std::move(text), isDirectConnect);
    return true;
  } catch (const OFXException& e) {
    LLog("OFX parsing failed %@", e.description());
    failWith(e.description());
  } catch (const std::exception& e) {
    LLog("OFX parsing failed %@", std::string(e.what()));
    failWith(e.what());
  }
  return false;
}

void OFXRootController::failWith(const std::string& message) {
  root_ = std::make_unique<OFXRoot>();
  root_->ofxStatus().setErrorCode(kParseFailureCode);
  root_->ofxStatus().setSeverity("ERROR");
  root_->ofxStatus().setMessage(message);
}

std::string OFXRootController::accountID(size_t index) const {
  const auto& statements = root_->statements();
  return index < statements.size() ? statements[index]->acctID().str() : std::string();
}

std::string OFXRootController::acctType(size_t index) const {
  const auto& statements = root_->statements();
  return index < statements.size() ? statements[index]->acctType().str() : std::string();
}

std::string OFXRootController::statementEndDateString() const {
  const auto& statements = root_->statements();
  return statements.empty() ? std::string() : statements.front()->statementEndDateString().str();
}

}  // namespace ledgeon
