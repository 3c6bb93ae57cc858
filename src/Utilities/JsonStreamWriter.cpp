#include "Utilities/JsonStreamWriter.h"

#include <stdexcept>
#include <string>

namespace ledgeon {

JsonStreamWriter::JsonStreamWriter(std::ostream& out, int indent) : out_(out), indent_(indent) {}

void JsonStreamWriter::newlineAndIndent(size_t depth) {
  out_ << '\n';
  for (size_t i = 0; i < depth * static_cast<size_t>(indent_); ++i) out_ << ' ';
}

// Places what comes next: after its key in an object, or on a line of its own in an array.
void JsonStreamWriter::beforeValue() {
  if (finished_) throw std::logic_error("JsonStreamWriter: the document is already complete");
  if (open_.empty()) return;
  Container& container = open_.back();
  if (container.isObject) {
    if (!keyPending_) throw std::logic_error("JsonStreamWriter: a member needs a key");
    keyPending_ = false;
    return;
  }
  out_ << (container.empty ? "[" : ",");
  container.empty = false;
  newlineAndIndent(open_.size());
}

void JsonStreamWriter::beginObject() {
  beforeValue();
  open_.push_back({.isObject = true});
}

void JsonStreamWriter::beginArray() {
  beforeValue();
  open_.push_back({.isObject = false});
}

void JsonStreamWriter::key(std::string_view name) {
  if (open_.empty() || !open_.back().isObject || keyPending_) {
    throw std::logic_error("JsonStreamWriter: a key outside an object");
  }
  Container& container = open_.back();
  out_ << (container.empty ? "{" : ",");
  container.empty = false;
  newlineAndIndent(open_.size());
  out_ << nlohmann::json(std::string(name)).dump() << ": ";
  keyPending_ = true;
}

void JsonStreamWriter::value(const nlohmann::json& value) {
  beforeValue();
  const std::string text = value.dump(indent_);
  // dump() indents nested lines from column 0: shift them to this depth.
  const std::string shift(open_.size() * static_cast<size_t>(indent_), ' ');
  size_t start = 0;
  for (size_t newline = text.find('\n'); newline != std::string::npos;
       newline = text.find('\n', start)) {
    out_.write(text.data() + start, static_cast<std::streamsize>(newline + 1 - start));
    out_ << shift;
    start = newline + 1;
  }
  out_.write(text.data() + start, static_cast<std::streamsize>(text.size() - start));
  if (open_.empty()) {
    out_ << '\n';
    finished_ = true;
  }
}

void JsonStreamWriter::member(std::string_view name, const nlohmann::json& value) {
  key(name);
  this->value(value);
}

void JsonStreamWriter::end() {
  if (open_.empty() || keyPending_) throw std::logic_error("JsonStreamWriter: nothing to close");
  const Container container = open_.back();
  open_.pop_back();
  if (container.empty) {
    out_ << (container.isObject ? "{}" : "[]");
  } else {
    newlineAndIndent(open_.size());
    out_ << (container.isObject ? '}' : ']');
  }
  if (open_.empty()) {
    out_ << '\n';
    finished_ = true;
  }
}

}  // namespace ledgeon
