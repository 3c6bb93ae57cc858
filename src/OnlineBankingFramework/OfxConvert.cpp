#include "OnlineBankingFramework/OfxConvert.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <unordered_map>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#include "OnlineBankingFramework/OFXRoot.h"
#include "OnlineBankingFramework/OFXText.h"

namespace ledgeon {

namespace {

constexpr std::string_view kMessageBodyStart = "<MSGBODY>";
constexpr std::string_view kMessageBodyEnd = "</MSGBODY>";

// Writes the whitespace clean-up back into the text it reads, which never grows: outside
// <MSGBODY> spans CR and LF go and tabs become blanks; then, everywhere, runs of blanks that
// follow ">" or precede "<" go. Blanks are held back until the next character shows whether
// a tag follows them.
class WhiteSpaceStripper {
 public:
  explicit WhiteSpaceStripper(std::string& text) : text_(text) {}

  void run() {
    size_t position = 0;
    while (position < text_.size()) {
      const size_t bodyStart = text_.find(kMessageBodyStart, position);
      if (bodyStart == std::string::npos) break;
      copyWithoutLineBreaks(position, bodyStart);
      size_t bodyEnd = text_.find(kMessageBodyEnd, bodyStart);
      bodyEnd = bodyEnd == std::string::npos ? text_.size() : bodyEnd + kMessageBodyEnd.size();
      for (size_t i = bodyStart; i < bodyEnd; ++i) put(text_[i]);
      position = bodyEnd;
    }
    copyWithoutLineBreaks(position, text_.size());
    if (!lastWasTag_) writeBlanks();  // trailing blanks stay unless they follow a tag
    text_.resize(written_);
  }

 private:
  static bool isPrintable(char c) { return static_cast<unsigned char>(c) > ' '; }

  void copyWithoutLineBreaks(size_t from, size_t to) {
    size_t i = from;
    while (i < to) {
      const char c = text_[i];
      if (!isPrintable(c)) {
        if (c != '\r' && c != '\n') put(c == '\t' ? ' ' : c);
        ++i;
        continue;
      }
      // A run with neither blanks nor line breaks moves as one block, once its first character
      // has settled the blanks held back before it.
      size_t end = i + 1;
      while (end < to && isPrintable(text_[end])) ++end;
      put(c);
      const size_t rest = end - i - 1;
      if (rest > 0) {
        const char last = text_[end - 1];
        std::memmove(text_.data() + written_, text_.data() + i + 1, rest);
        written_ += rest;
        lastWasTag_ = last == '>';
      }
      i = end;
    }
  }

  // Held-back blanks are written as blanks; the text read so far is always ahead of them.
  void put(char c) {
    if (c == ' ') {
      ++blanks_;
      return;
    }
    if (!lastWasTag_ && c != '<') writeBlanks();
    blanks_ = 0;
    text_[written_++] = c;
    lastWasTag_ = c == '>';
  }

  void writeBlanks() {
    std::memset(text_.data() + written_, ' ', blanks_);
    written_ += blanks_;
  }

  std::string& text_;
  size_t written_ = 0;
  size_t blanks_ = 0;
  bool lastWasTag_ = false;
};

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

// Where each end tag stands, so that finding the end tag of a start tag costs a lookup instead of
// a scan of the rest of its aggregate (a statement's transaction list spans most of the file).
class EndTagIndex {
 public:
  explicit EndTagIndex(std::string_view text) : text_(text) {
    size_t nextClose = 0;  // the first ">" at or after the name being read
    for (size_t lt = text.find("</"); lt != std::string_view::npos; lt = text.find("</", lt + 1)) {
      const size_t nameStart = lt + 2;
      if (nextClose < nameStart) nextClose = text.find('>', nameStart);
      if (nextClose == std::string_view::npos) break;
      tags_[text.substr(nameStart, nextClose - nameStart)].positions.push_back(lt);
    }
  }

  // The first "</name>" that starts at or after `from` and ends by `limit`; npos when none.
  // Successive calls for one name must not go backwards.
  size_t find(std::string_view name, size_t from, size_t limit) {
    if (name.find('>') != std::string_view::npos) {
      // Such a name cannot be an indexed one: search for it literally.
      const std::string closing = "</" + std::string(name) + ">";
      return text_.substr(0, limit).find(closing, from);
    }
    auto it = tags_.find(name);
    if (it == tags_.end()) return std::string_view::npos;
    Occurrences& occurrences = it->second;
    const auto& positions = occurrences.positions;
    while (occurrences.next < positions.size() && positions[occurrences.next] < from) {
      ++occurrences.next;
    }
    if (occurrences.next == positions.size()) return std::string_view::npos;
    const size_t at = positions[occurrences.next];
    return at + name.size() + 3 <= limit ? at : std::string_view::npos;
  }

 private:
  struct Occurrences {
    std::vector<size_t> positions;
    size_t next = 0;
  };
  std::string_view text_;
  std::unordered_map<std::string_view, Occurrences> tags_;
};

// Gives the whole pages of `text` before `consumed` (and after `releasedUpTo`) back to the system;
// they read as zeros afterwards. The first page stays: the allocator keeps its records there when
// the string is freed. Returns the new end of what was given back.
uintptr_t releasePagesBefore(std::string& text, size_t consumed, uintptr_t releasedUpTo) {
  static const auto kPage = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  consumed = std::min(consumed, text.size());
  const auto begin = reinterpret_cast<uintptr_t>(text.data());
  const uintptr_t from = std::max((begin / kPage + 1) * kPage, releasedUpTo);
  const uintptr_t to = (begin + consumed) / kPage * kPage;
  if (to <= from) return releasedUpTo;
  madvise(reinterpret_cast<void*>(from), to - from, MADV_DONTNEED);
  return to;
}

}  // namespace

std::string OfxConvert::stripWhiteSpace(std::string_view text) {
  std::string stripped(text);
  WhiteSpaceStripper(stripped).run();
  return stripped;
}

std::string OfxConvert::convertOFXToXML(std::string_view text) {
  return convertOFXToXML(std::string(text));
}

bool OfxConvert::prepare() {
  WhiteSpaceStripper(text_).run();
  if (OFXRoot::isXMLOFX(text_)) return false;
  stripOldOfxHeader();
  stripAnythingAfterClosingOfx();
  trimLeadingPlusSigns();
  replaceXMLEntityReferences();
  return true;
}

std::string OfxConvert::convertOFXToXML(std::string&& text) {
  OfxConvert converter(std::move(text));
  if (converter.prepare()) converter.insertEndTagsAndNewHeader();
  converter.convertOFXToXML();
  return std::move(converter.text_);
}

void OfxConvert::convertOFXToXML(std::string&& text, const Sink& sink) {
  OfxConvert converter(std::move(text));
  if (converter.prepare()) {
    std::string out;
    converter.insertEndTags(out, &sink);
    converter.text_.clear();  // used up
    converter.convertOFXToXML();
    sink(out);
  } else {
    converter.convertOFXToXML();
    constexpr size_t kPieceSize = 1 << 20;
    uintptr_t releasedUpTo = 0;
    for (size_t position = 0; position < converter.text_.size(); position += kPieceSize) {
      sink(std::string_view(converter.text_).substr(position, kPieceSize));
      releasedUpTo = releasePagesBefore(converter.text_, position + kPieceSize, releasedUpTo);
    }
  }
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
  // Moves the text between one ">" and the next as a block, skipping the "+" run after each ">".
  const size_t size = text_.size();
  size_t written = 0;
  size_t position = 0;
  while (position < size) {
    const size_t close = text_.find('>', position);
    const size_t end = close == std::string::npos ? size : close + 1;
    if (written != position)
      std::memmove(text_.data() + written, text_.data() + position, end - position);
    written += end - position;
    position = end;
    while (position < size && text_[position] == '+') ++position;
  }
  text_.resize(written);
}

void OfxConvert::replaceXMLEntityReferences() {
  text_ = ledgeon::replaceXMLEntityReferences(text_);
}

void OfxConvert::insertEndTagsAndNewHeader() {
  std::string out;
  out.reserve(text_.size() + text_.size() / 2 + kXMLPrologue.size());
  insertEndTags(out, nullptr);
  text_ = std::move(out);
}

void OfxConvert::insertEndTags(std::string& out, const Sink* sink) {
  constexpr size_t kPieceSize = 1 << 20;
  const std::string_view text = text_;
  EndTagIndex endTags(text);
  uintptr_t releasedUpTo = 0;
  if (sink) out.reserve(kPieceSize + 4096);
  out.append(kXMLPrologue);
  size_t position = 0;
  size_t limit = text.size();
  for (;;) {
    const auto [tagBegin, tagEnd] = findStartTag(text, position);
    if (tagBegin == std::string_view::npos) break;
    if (tagBegin >= limit) limit = text.size();
    out.append(text.substr(position, tagEnd - position));
    const std::string_view name = text.substr(tagBegin + 1, tagEnd - tagBegin - 2);
    const size_t found = endTags.find(name, tagEnd, limit);
    if (found != std::string_view::npos) {
      // An aggregate: its leaves must not pair with an end tag beyond it.
      limit = found;
      position = tagEnd;
      continue;
    }
    const size_t valueEnd = leafValueEnd(text, tagEnd);
    out.append(text.substr(tagEnd, valueEnd - tagEnd));
    out.append("</").append(name).append(">");
    position = valueEnd;
    if (sink && out.size() >= kPieceSize) {
      (*sink)(out);
      out.clear();
      // Nothing before `position` is read again.
      releasedUpTo = releasePagesBefore(text_, position, releasedUpTo);
    }
  }
  out.append(text.substr(position));
}

void OfxConvert::convertOFXToXML() {}

}  // namespace ledgeon
