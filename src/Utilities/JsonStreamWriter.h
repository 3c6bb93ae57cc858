#pragma once

#include <ostream>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace ledgeon {

// Writes one JSON document as it is produced: containers are opened and closed around values
// written one at a time, so a listing of a million records never holds more than one of them.
// The text is the same as nlohmann::json::dump(indent) of the whole tree would give (members
// in the order written), so a listing's output does not depend on how it was produced.
// Not thread-safe; a misuse (a value without a key inside an object, closing what is not open)
// is a programming error and throws std::logic_error.
class JsonStreamWriter final {
 public:
  explicit JsonStreamWriter(std::ostream& out, int indent = 2);

  void beginObject();
  void beginArray();
  // Closes the innermost open container; a document ends with a newline when the outermost closes.
  void end();
  // The name of the next member of the open object.
  void key(std::string_view name);
  // A whole value: a member (after key()), an element, or the document itself.
  void value(const nlohmann::json& value);
  // key() then value().
  void member(std::string_view name, const nlohmann::json& value);

  bool finished() const { return finished_; }

 private:
  struct Container {
    bool isObject;
    bool empty = true;
  };

  void beforeValue();
  void newlineAndIndent(size_t depth);

  std::ostream& out_;
  int indent_;
  std::vector<Container> open_;
  bool keyPending_ = false;
  bool finished_ = false;
};

}  // namespace ledgeon
