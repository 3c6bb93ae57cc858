#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace ledgeon {

// Turns an OFX response of either generation into one XML text: OFX 2.x passes through after
// whitespace clean-up; OFX 1.x (SGML) loses its header and trailer and gets its missing end tags.
class OfxConvert final {
 public:
  // The whole conversion, in its fixed order of steps.
  static std::string convertOFXToXML(std::string_view text);
  // The same, reusing the text's storage: a statement file can be large.
  static std::string convertOFXToXML(std::string&& text);
  static std::string convertOFXToXML(const char* text) {
    return convertOFXToXML(std::string_view(text));
  }
  // The same, handing the XML to `sink` in pieces as they are made instead of returning it, so
  // that a reader can parse a large statement without ever holding its whole XML form.
  using Sink = std::function<void(std::string_view piece)>;
  static void convertOFXToXML(std::string&& text, const Sink& sink);
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
  // Strips white space and, for SGML, runs the steps before the end tags; true for SGML.
  bool prepare();
  // The end-tag step, writing to `out`. With a sink, `out` is handed over whenever it grows large
  // and the text is used up as it goes: its pages already converted go back to the system.
  void insertEndTags(std::string& out, const Sink* sink);

  std::string text_;
};

}  // namespace ledgeon
