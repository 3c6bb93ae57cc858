// The converter's hand-written passes checked against a direct transcription of its rules as
// regular expressions, on random SGML-like texts built from the pieces that make the rules
// interesting (aggregates and leaves of one name, CDATA, blanks, plus signs, entities).
#include <random>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OnlineBankingFramework/OFXText.h"
#include "OnlineBankingFramework/OfxConvert.h"

namespace ledgeon {
namespace {

std::string oracleStripWhiteSpace(const std::string& text) {
  std::string joined;
  size_t position = 0;
  auto withoutLineBreaks = [&](size_t from, size_t to) {
    for (size_t i = from; i < to; ++i) {
      if (text[i] == '\r' || text[i] == '\n') continue;
      joined.push_back(text[i] == '\t' ? ' ' : text[i]);
    }
  };
  while (position < text.size()) {
    const size_t body = text.find("<MSGBODY>", position);
    if (body == std::string::npos) break;
    withoutLineBreaks(position, body);
    size_t end = text.find("</MSGBODY>", body);
    end = end == std::string::npos ? text.size() : end + 10;
    joined.append(text, body, end - body);
    position = end;
  }
  withoutLineBreaks(position, text.size());
  joined = std::regex_replace(joined, std::regex("[>][ ]+"), ">");
  return std::regex_replace(joined, std::regex("[ ]+[<]"), "<");
}

std::string oracleInsertEndTags(const std::string& text) {
  static const std::regex kStartTag("<([^/!].*?)>");
  static const std::regex kLeafValue("(<!\\[CDATA\\[.*?\\]\\]>)|([^<]*)");
  std::string out(OfxConvert::kXMLPrologue);
  size_t position = 0;
  size_t limit = text.size();
  std::smatch tag;
  while (std::regex_search(text.begin() + static_cast<std::ptrdiff_t>(position), text.end(), tag,
                           kStartTag)) {
    const size_t tagBegin = position + static_cast<size_t>(tag.position(0));
    const size_t tagEnd = tagBegin + static_cast<size_t>(tag.length(0));
    if (tagBegin >= limit) limit = text.size();
    out.append(text, position, tagEnd - position);
    const std::string closing = "</" + tag.str(1) + ">";
    const size_t found = text.substr(0, limit).find(closing, tagEnd);
    if (found != std::string::npos) {
      limit = found;
      position = tagEnd;
      continue;
    }
    std::smatch value;
    std::regex_search(text.begin() + static_cast<std::ptrdiff_t>(tagEnd), text.end(), value,
                      kLeafValue, std::regex_constants::match_continuous);
    out.append(value.str(0)).append(closing);
    position = tagEnd + static_cast<size_t>(value.length(0));
  }
  return out.append(text, position);
}

std::string oracleConvert(const std::string& text) {
  std::string xml = oracleStripWhiteSpace(text);
  if (const size_t start = xml.find("<OFX>"); start != std::string::npos) xml.erase(0, start);
  if (const size_t end = xml.find("</OFX>"); end != std::string::npos) xml.resize(end + 6);
  xml = std::regex_replace(xml, std::regex("[>][+]+"), ">");
  return oracleInsertEndTags(replaceXMLEntityReferences(xml));
}

std::string randomText(std::mt19937& random, const std::vector<std::string>& pieces) {
  std::uniform_int_distribution<size_t> length(1, 40);
  std::uniform_int_distribution<size_t> piece(0, pieces.size() - 1);
  std::string text;
  for (size_t n = length(random); n > 0; --n) text += pieces[piece(random)];
  return text;
}

TEST(OfxConvertOracleTest, WhiteSpaceAgreesWithTheRegularExpressions) {
  const std::vector<std::string> pieces = {"<A>", "</A>", "v",    " ",         "  ",
                                           "\t",  "\n",   "\r\n", "<MSGBODY>", "</MSGBODY>",
                                           ">",   "<",    "x y",  " <B> ",     "> <"};
  std::mt19937 random(20240301);
  for (int i = 0; i < 800; ++i) {
    const std::string text = randomText(random, pieces);
    ASSERT_EQ(OfxConvert::stripWhiteSpace(text), oracleStripWhiteSpace(text)) << text;
  }
}

TEST(OfxConvertOracleTest, SgmlConversionAgreesWithTheRegularExpressions) {
  const std::vector<std::string> pieces = {"<OFX>",  "</OFX>",
                                           "<A>",    "</A>",
                                           "<B>",    "</B>",
                                           "<NAME>", "</NAME>",
                                           "<A B>",  "</A B>",
                                           "<>",     "<>x>",
                                           "<!x>",   "v",
                                           "w w",    " ",
                                           "\t",     "+",
                                           "++1",    "&",
                                           "&amp;",  ">",
                                           "<",      "/",
                                           "</",     "<![CDATA[q<]]>",
                                           "]]>"};
  std::mt19937 random(20240302);
  for (int i = 0; i < 800; ++i) {
    const std::string text = randomText(random, pieces);
    ASSERT_EQ(OfxConvert::convertOFXToXML(text), oracleConvert(text)) << text;
  }
}

}  // namespace
}  // namespace ledgeon
