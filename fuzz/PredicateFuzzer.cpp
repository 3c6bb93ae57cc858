// Predicate texts typed by users (the CLI, smart registers) and stored in documents. Whatever the
// bytes, parsing must not crash, and a predicate that parses and names real keys must evaluate
// and print.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "DataBase/Predicate.h"
#include "LObjects/LObject.h"

using namespace ledgeon;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 64 * 1024) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  static const std::vector<Value> arguments = {Value("note"), Value(Amount::fromString("-12.5")),
                                               Value(int64_t{3}), Value("Sal*"),
                                               Value(ValueList{Value(1), Value(2)})};
  auto predicate = Predicate::parse(text, arguments);
  if (!predicate) return 0;
  const EntityDescription& entity = Model::shared().requireEntity("CashFlowTransaction");
  if (!predicate->validate(entity)) return 0;
  static LObject* object = [&entity] {
    auto* o = new LObject(entity, 1, nullptr);
    o->setPrimitiveValue(entity.property("note")->index, Value("Salary"));
    o->setPrimitiveValue(entity.property("amount")->index, Value(Amount::fromString("1000.5")));
    o->setPrimitiveValue(entity.property("reconcileStatus")->index, Value(int64_t{2}));
    return o;
  }();
  (void)predicate->evaluate(*object);
  (void)predicate->description();
  return 0;
}
