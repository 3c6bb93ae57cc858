#include <algorithm>
#include <exception>

#include <expat.h>

#include "OnlineBankingFramework/OFXDates.h"
#include "OnlineBankingFramework/OFXException.h"
#include "OnlineBankingFramework/OFXText.h"
#include "OnlineBankingFramework/XMLMapping.h"
#include "OnlineBankingFramework/internal/CompiledMapping.h"
#include "Utilities/Log.h"
#include "Utilities/StringWithFormat.h"

namespace ledgeon {

using xml_mapping_detail::CompiledObject;
using xml_mapping_detail::Field;
using xml_mapping_detail::PathNode;

namespace {

// An object being filled, and where it goes when its element ends.
struct ObjectState {
  std::unique_ptr<OFXObject> object;
  const CompiledObject* compiled = nullptr;
  std::vector<char> defaultsSet;
  const Field* target = nullptr;  // the property of the enclosing object it goes into
  size_t parent = 0;
};

struct Frame {
  enum class Kind : uint8_t { Path, Scalar, Ignore, Switch };
  Kind kind = Kind::Ignore;
  const PathNode* node = nullptr;
  const Field* field = nullptr;
  size_t objectIndex = 0;
  bool opensObject = false;
};

OFXMappedValue scalarValue(const Field& field, std::string text) {
  const OFXPropertyKind kind = field.property->kind;
  const bool ofxRules = field.format == "OFX";
  auto number = [&](bool decimal) {
    const Amount value = numberFromXMLString(text, decimal, ofxRules);
    if (value.isNaN()) {
      throw OFXException("InvalidValue", stringWithFormat("Invalid number: %@", text));
    }
    return value;
  };
  if (field.type == XMLMappingType::Date) {
    std::optional<Date> date;
    if (field.format == "OFX") {
      date = OFXDates::dateFromOFXString(text);
    } else if (field.format.empty() || field.format == "XML") {
      date = OFXDates::dateFromXMLString(text);
    } else {
      date = OFXDates::dateFromPattern(text, field.format);
    }
    if (!date) throw OFXException("InvalidValue", stringWithFormat("Invalid date: %@", text));
    if (kind == OFXPropertyKind::Date) return *date;
    return text;
  }
  const bool numeric = field.type == XMLMappingType::Number;
  switch (kind) {
    case OFXPropertyKind::Bool:
      return mappingBoolValue(text);
    case OFXPropertyKind::Decimal:
      return number(true);
    case OFXPropertyKind::Integer:
      return number(false).longLongValue();
    case OFXPropertyKind::Date: {
      auto date = OFXDates::dateFromOFXString(text);
      if (!date) throw OFXException("InvalidValue", stringWithFormat("Invalid date: %@", text));
      return *date;
    }
    default:
      return numeric ? number(true).stringValue() : std::move(text);
  }
}

class Unmarshaller {
 public:
  Unmarshaller(const CompiledObject& root, std::string_view rootName, XML_Parser parser)
      : root_(root), rootName_(rootName), parser_(parser) {}

  std::unique_ptr<OFXObject> takeResult() { return std::move(objects_.front().object); }
  std::exception_ptr failure() const { return failure_; }
  bool sawRoot() const { return !objects_.empty(); }

  static void XMLCALL start(void* data, const XML_Char* name, const XML_Char**) {
    auto* self = static_cast<Unmarshaller*>(data);
    self->guarded([&] { self->startElement(name); });
  }
  static void XMLCALL end(void* data, const XML_Char*) {
    auto* self = static_cast<Unmarshaller*>(data);
    self->guarded([&] { self->endElement(); });
  }
  static void XMLCALL characters(void* data, const XML_Char* text, int length) {
    auto* self = static_cast<Unmarshaller*>(data);
    if (!self->frames_.empty() && self->frames_.back().kind == Frame::Kind::Scalar) {
      self->text_.append(text, static_cast<size_t>(length));
    }
  }

 private:
  template <typename Body>
  void guarded(Body&& body) {
    if (failure_) return;
    try {
      body();
    } catch (const OFXException& e) {
      failure_ = std::make_exception_ptr(OFXException(
          e.name(), stringWithFormat("%@ (%@, line %ld, column %ld)", e.reason(), currentPath(),
                                     static_cast<long>(XML_GetCurrentLineNumber(parser_)),
                                     static_cast<long>(XML_GetCurrentColumnNumber(parser_)))));
      XML_StopParser(parser_, XML_FALSE);
    } catch (...) {
      failure_ = std::current_exception();
      XML_StopParser(parser_, XML_FALSE);
    }
  }

  std::string currentPath() const {
    std::string path;
    for (const auto& tag : tags_) path += (path.empty() ? "" : "/") + tag;
    return path;
  }

  size_t openObject(const CompiledObject& compiled, const Field* target, size_t parent) {
    ObjectState state;
    state.object = compiled.classInfo->make();
    state.compiled = &compiled;
    state.defaultsSet.assign(compiled.defaultedFields.size(), 0);
    state.target = target;
    state.parent = parent;
    for (const Field& constant : compiled.constants) {
      assign(*state.object, constant, scalarValue(constant, constant.defaultValue));
    }
    objects_.push_back(std::move(state));
    return objects_.size() - 1;
  }

  void assign(OFXObject& object, const Field& field, OFXMappedValue value) {
    if (!field.property->assign(object, std::move(value))) {
      throw OFXException("InvalidValue", stringWithFormat("%@ cannot take the value of %@",
                                                          field.property->name, field.label));
    }
  }

  void startElement(std::string_view tag) {
    tags_.emplace_back(tag);
    if (frames_.empty()) {
      if (tag != rootName_) {
        throw OFXException("XMLParseError",
                           stringWithFormat("the document element is %@, not %@", tag, rootName_));
      }
      frames_.push_back(
          {Frame::Kind::Path, &root_.root, nullptr, openObject(root_, nullptr, 0), true});
      return;
    }
    const Frame top = frames_.back();
    if (top.kind == Frame::Kind::Ignore || top.kind == Frame::Kind::Scalar) {
      frames_.push_back({Frame::Kind::Ignore});
      return;
    }
    if (top.kind == Frame::Kind::Switch) {
      for (const auto& [caseTag, compiled] : top.field->cases) {
        if (caseTag == tag) {
          LLog("Found mapping %@ for tag %@", compiled->classInfo->name, tag);
          frames_.push_back({Frame::Kind::Path, &compiled->root, nullptr,
                             openObject(*compiled, top.field, top.objectIndex), true});
          return;
        }
      }
    }
    const PathNode* node = top.node->child(tag);
    if (node == nullptr) {
      frames_.push_back({Frame::Kind::Ignore});
      return;
    }
    Frame frame{Frame::Kind::Path, node, nullptr, top.objectIndex, false};
    for (const Field& field : node->fields) {
      if (field.type == XMLMappingType::Constant) {
        assign(*objects_[top.objectIndex].object, field, scalarValue(field, field.defaultValue));
        markDefault(objects_[top.objectIndex], field);
        continue;
      }
      if (frame.field != nullptr) continue;
      frame.field = &field;
      if (field.type == XMLMappingType::Object) {
        frame.node = &field.object->root;
        frame.objectIndex = openObject(*field.object, &field, top.objectIndex);
        frame.opensObject = true;
      } else if (field.type == XMLMappingType::Switch) {
        frame.kind = Frame::Kind::Switch;
      } else {
        frame.kind = Frame::Kind::Scalar;
        text_.clear();
      }
    }
    frames_.push_back(frame);
  }

  static void markDefault(ObjectState& state, const Field& field) {
    if (field.defaultIndex >= 0) state.defaultsSet[static_cast<size_t>(field.defaultIndex)] = 1;
  }

  void endElement() {
    const Frame frame = frames_.back();
    frames_.pop_back();
    if (frame.kind == Frame::Kind::Scalar) {
      ObjectState& state = objects_[frame.objectIndex];
      std::string value = restoreStandardXMLEntities(text_);
      text_.clear();
      if (value.empty()) {
        if (!frame.field->hasDefault) {
          throw OFXException("InvalidValue", "Passed nil for value input string!");
        }
        value = frame.field->defaultValue;
      }
      assign(*state.object, *frame.field, scalarValue(*frame.field, std::move(value)));
      markDefault(state, *frame.field);
    } else if (frame.opensObject) {
      closeObject(frame.objectIndex);
    }
    tags_.pop_back();
  }

  void closeObject(size_t index) {
    ObjectState& state = objects_[index];
    for (size_t i = 0; i < state.defaultsSet.size(); ++i) {
      if (state.defaultsSet[i]) continue;
      const Field& field = state.compiled->defaultedFields[i];
      assign(*state.object, field, scalarValue(field, field.defaultValue));
    }
    if (index == 0) return;  // the root stays for the caller
    if (state.target != nullptr) {
      ObjectState& parent = objects_[state.parent];
      assign(*parent.object, *state.target, OFXMappedValue(std::move(state.object)));
      markDefault(parent, *state.target);
    }
    objects_.pop_back();
  }

  const CompiledObject& root_;
  std::string_view rootName_;
  XML_Parser parser_;
  std::vector<ObjectState> objects_;
  std::vector<Frame> frames_;
  std::vector<std::string> tags_;
  std::string text_;
  std::exception_ptr failure_;
};

}  // namespace

struct XMLMapping::Reader::State {
  std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser;
  Unmarshaller unmarshaller;

  // The text was decoded when it was read, so it is UTF-8 whatever its declaration says.
  State(const CompiledObject& root, std::string_view rootName)
      : parser(XML_ParserCreate("UTF-8"), &XML_ParserFree),
        unmarshaller(root, rootName, parser.get()) {
    XML_SetUserData(parser.get(), &unmarshaller);
    XML_SetElementHandler(parser.get(), &Unmarshaller::start, &Unmarshaller::end);
    XML_SetCharacterDataHandler(parser.get(), &Unmarshaller::characters);
  }

  void parse(const char* data, size_t length, bool last) {
    if (XML_Parse(parser.get(), data, static_cast<int>(length), last ? XML_TRUE : XML_FALSE) !=
        XML_STATUS_ERROR) {
      return;
    }
    if (unmarshaller.failure()) std::rethrow_exception(unmarshaller.failure());
    throw OFXException(
        "XMLParseError",
        stringWithFormat("%@ at line %ld, column %ld",
                         XML_ErrorString(XML_GetErrorCode(parser.get())),
                         static_cast<long>(XML_GetCurrentLineNumber(parser.get())),
                         static_cast<long>(XML_GetCurrentColumnNumber(parser.get()))));
  }
};

XMLMapping::Reader::Reader(const XMLMapping& mapping)
    : state_(std::make_unique<State>(*mapping.root_, mapping.rootName_)) {}

XMLMapping::Reader::~Reader() = default;

void XMLMapping::Reader::feed(std::string_view piece) {
  constexpr size_t kChunk = 1 << 20;  // Expat takes an int length
  for (size_t position = 0; position < piece.size(); position += kChunk) {
    state_->parse(piece.data() + position, std::min(kChunk, piece.size() - position), false);
  }
}

std::unique_ptr<OFXObject> XMLMapping::Reader::finish() {
  state_->parse("", 0, true);
  if (state_->unmarshaller.failure()) std::rethrow_exception(state_->unmarshaller.failure());
  if (!state_->unmarshaller.sawRoot()) throw OFXException("XMLParseError", "no document element");
  return state_->unmarshaller.takeResult();
}

std::unique_ptr<OFXObject> XMLMapping::unmarshal(std::string_view xml) const {
  Reader reader(*this);
  reader.feed(xml);
  return reader.finish();
}

}  // namespace ledgeon
