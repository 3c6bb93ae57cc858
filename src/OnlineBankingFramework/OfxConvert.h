#pragma once

#include <string>
#include <string_view>

namespace ledgeon {

// Turns an OFX response of either generation into one XML text: OFX 2.x passes through after
// whitespace clean-up; OFX 1.x (SGML) loses its header and trailer and gets its missing end tags.
class OfxConvert final {
 public:
  // The whole conversion, in its fixed order of steps.
  static std::string convertOFXToXML(std::string_view text);
  // Outside <MSGBODY> spans drops CR and LF and turns tabs into blanks; then drops blanks between
  // a tag and its value everywhere.
  static std::string stripWhiteSpace(std::string_view text);

  // The prologue every converted 1.x text starts with.
  static constexpr std::string_view kXMLPrologue =
      "<?xml version=\"1.0\"?><?OFX OFXHEADER=\"200\" VERSION=\"200\" SECURITY=\"NONE\" "
      "OLDFILEUID=\"NONE\" NEWFILEUID=\"NONE\"?><!DOCTYPE OFX SYSTEM \"ofx202.dtd\">";

  explicit OfxConvert(std::string text) : text_(std::move(text)) {}

  // The SGML steps, each rewriting text().
  void stripOldOfxHeader();
  void stripAnythingAfterClosingOfx();
  void trimLeadingPlusSigns();
  void replaceXMLEntityReferences();
  void insertEndTagsAndNewHeader();
  // The last step: kept for one institution server's quirks and deliberately empty.
  void convertOFXToXML();

  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

}  // namespace ledgeon
