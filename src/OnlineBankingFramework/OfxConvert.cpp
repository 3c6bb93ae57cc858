#include "OnlineBankingFramework/OfxConvert.h"

#include "OnlineBankingFramework/OFXRoot.h"
#include "OnlineBankingFramework/OFXText.h"

namespace ledgeon {

namespace {

constexpr std::string_view kMessageBodyStart = "<MSGBODY>";
constexpr std::string_view kMessageBodyEnd = "</MSGBODY>";

// Removes CR and LF and turns tabs into blanks in `part`, appending to `out`.
void appendWithoutLineBreaks(std::string& out, std::string_view part) {
  for (char c : part) {
    if (c == '\r' || c == '\n') continue;
    out.push_back(c == '\t' ? ' ' : c);
  }
}

// Drops runs of blanks that follow ">" or precede "<".
std::string dropBlanksAroundTags(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  size_t i = 0;
  while (i < text.size()) {
    if (text[i] != ' ') {
      out.push_back(text[i++]);
      continue;
    }
    size_t end = i;
    while (end < text.size() && text[end] == ' ') ++end;
    const bool afterTag = !out.empty() && out.back() == '>';
    const bool beforeTag = end < text.size() && text[end] == '<';
    if (!afterTag && !beforeTag) out.append(text.substr(i, end - i));
    i = end;
  }
  return out;
}

// The next start tag at or after `from`: "<", a character other than "/" and "!", then the
// shortest run up to ">" on the same line. Returns its [begin, end) or npos.
std::pair<size_t, size_t> findStartTag(std::string_view text, size_t from) {
  for (size_t lt = text.find('<', from); lt != std::string_view::npos;
       lt = text.find('<', lt + 1)) {
    if (lt + 1 >= text.size()) break;
    const char first = text[lt + 1];
    if (first == '/' || first == '!') continue;
    for (size_t gt = lt + 2; gt < text.size(); ++gt) {
      if (text[gt] == '>') return {lt, gt + 1};
      if (text[gt] == '\n') break;
    }
  }
  return {std::string_view::npos, std::string_view::npos};
}

// The value of an SGML leaf at `from`: a CDATA section, else the text up to the next "<".
size_t leafValueEnd(std::string_view text, size_t from) {
  constexpr std::string_view kCDataStart = "<![CDATA[";
  if (text.substr(from, kCDataStart.size()) == kCDataStart) {
    const size_t close = text.find("]]>", from + kCDataStart.size());
    if (close != std::string_view::npos) return close + 3;
  }
  const size_t next = text.find('<', from);
  return next == std::string_view::npos ? text.size() : next;
}

}  // namespace

std::string OfxConvert::stripWhiteSpace(std::string_view text) {
  std::string joined;
  joined.reserve(text.size());
  size_t position = 0;
  while (position < text.size()) {
    const size_t bodyStart = text.find(kMessageBodyStart, position);
    if (bodyStart == std::string_view::npos) break;
    appendWithoutLineBreaks(joined, text.substr(position, bodyStart - position));
    size_t bodyEnd = text.find(kMessageBodyEnd, bodyStart);
    bodyEnd = bodyEnd == std::string_view::npos ? text.size() : bodyEnd + kMessageBodyEnd.size();
    joined.append(text.substr(bodyStart, bodyEnd - bodyStart));
    position = bodyEnd;
  }
  if (position < text.size()) appendWithoutLineBreaks(joined, text.substr(position));
  return dropBlanksAroundTags(joined);
}

std::string OfxConvert::convertOFXToXML(std::string_view text) {
  OfxConvert converter(stripWhiteSpace(text));
  if (!OFXRoot::isXMLOFX(converter.text())) {
    converter.stripOldOfxHeader();
    converter.stripAnythingAfterClosingOfx();
    converter.trimLeadingPlusSigns();
    converter.replaceXMLEntityReferences();
    converter.insertEndTagsAndNewHeader();
  }
  converter.convertOFXToXML();
  return std::move(converter.text_);
}

void OfxConvert::stripOldOfxHeader() {
  const size_t start = text_.find("<OFX>");
  if (start != std::string::npos) text_.erase(0, start);
}

void OfxConvert::stripAnythingAfterClosingOfx() {
  constexpr std::string_view kClose = "</OFX>";
  const size_t end = text_.find(kClose);
  if (end != std::string::npos) text_.resize(end + kClose.size());
}

void OfxConvert::trimLeadingPlusSigns() {
  std::string out;
  out.reserve(text_.size());
  for (size_t i = 0; i < text_.size(); ++i) {
    out.push_back(text_[i]);
    if (text_[i] == '>') {
      while (i + 1 < text_.size() && text_[i + 1] == '+') ++i;
    }
  }
  text_ = std::move(out);
}

void OfxConvert::replaceXMLEntityReferences() {
  text_ = ledgeon::replaceXMLEntityReferences(text_);
}

void OfxConvert::insertEndTagsAndNewHeader() {
  const std::string_view text = text_;
  std::string out;
  out.reserve(text.size() + text.size() / 2 + kXMLPrologue.size());
  out.append(kXMLPrologue);
  std::string closing;
  size_t position = 0;
  size_t limit = text.size();
  for (;;) {
    const auto [tagBegin, tagEnd] = findStartTag(text, position);
    if (tagBegin == std::string_view::npos) break;
    if (tagBegin >= limit) limit = text.size();
    out.append(text.substr(position, tagEnd - position));
    closing.assign("</");
    closing.append(text.substr(tagBegin + 1, tagEnd - tagBegin - 1));
    const size_t found = text.substr(0, limit).find(closing, tagEnd);
    if (found != std::string_view::npos) {
      // An aggregate: its leaves must not pair with an end tag beyond it.
      limit = found;
      position = tagEnd;
      continue;
    }
    const size_t valueEnd = leafValueEnd(text, tagEnd);
    out.append(text.substr(tagEnd, valueEnd - tagEnd));
    out.append(closing);
    position = valueEnd;
  }
  out.append(text.substr(position));
  text_ = std::move(out);
}

void OfxConvert::convertOFXToXML() {}

}  // namespace ledgeon
