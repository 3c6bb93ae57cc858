// Parsing of the predicate language into PredicateNode trees.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <stdexcept>

#include "DataBase/Predicate.h"
#include "Utilities/Error.h"

namespace ledgeon {

namespace {

using Node = PredicateNode;

struct SyntaxError {
  size_t position;
  std::string message;
};

std::string upper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return result;
}

class Parser {
 public:
  Parser(std::string_view text, const std::vector<Value>& arguments)
      : text_(text), arguments_(arguments) {}

  Node parseAll() {
    Node node = parseOr();
    skipSpace();
    if (pos_ < text_.size())
      fail("unexpected text \"" + std::string(text_.substr(pos_, 12)) + "\"");
    return node;
  }

 private:
  [[noreturn]] void fail(const std::string& message) const { throw SyntaxError{pos_, message}; }

  void skipSpace() {
    while (pos_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[pos_]))) ++pos_;
  }

  bool startsWithSymbol(std::string_view symbol) {
    skipSpace();
    return text_.substr(pos_, symbol.size()) == symbol;
  }

  bool acceptSymbol(std::string_view symbol) {
    if (!startsWithSymbol(symbol)) return false;
    pos_ += symbol.size();
    return true;
  }

  void expectSymbol(std::string_view symbol) {
    if (!acceptSymbol(symbol)) fail("expected \"" + std::string(symbol) + "\"");
  }

  // The identifier at the cursor, without consuming it.
  std::string_view peekWord() {
    skipSpace();
    size_t end = pos_;
    while (end < text_.size() &&
           (std::isalnum(static_cast<unsigned char>(text_[end])) || text_[end] == '_')) {
      ++end;
    }
    if (end == pos_ || std::isdigit(static_cast<unsigned char>(text_[pos_]))) return {};
    return text_.substr(pos_, end - pos_);
  }

  bool acceptKeyword(std::string_view keyword) {
    const std::string_view word = peekWord();
    if (word.empty() || upper(word) != keyword) return false;
    pos_ += word.size();
    return true;
  }

  Node parseOr() {
    Node left = parseAnd();
    while (acceptKeyword("OR") || acceptSymbol("||")) {
      Node node;
      node.type = Node::Type::Or;
      node.children = {std::move(left), parseAnd()};
      left = std::move(node);
    }
    return left;
  }

  Node parseAnd() {
    Node left = parseNot();
    while (acceptKeyword("AND") || acceptSymbol("&&")) {
      Node node;
      node.type = Node::Type::And;
      node.children = {std::move(left), parseNot()};
      left = std::move(node);
    }
    return left;
  }

  Node parseNot() {
    if (acceptKeyword("NOT") || (!startsWithSymbol("!=") && acceptSymbol("!"))) {
      Node node;
      node.type = Node::Type::Not;
      node.children = {parseNot()};
      return node;
    }
    return parsePrimary();
  }

  Node parsePrimary() {
    if (acceptSymbol("(")) {
      Node node = parseOr();
      expectSymbol(")");
      return node;
    }
    Node node;
    if (acceptKeyword("TRUEPREDICATE")) return node;
    if (acceptKeyword("FALSEPREDICATE")) {
      node.type = Node::Type::False;
      return node;
    }
    node.type = Node::Type::Comparison;
    if (acceptKeyword("ANY") || acceptKeyword("SOME")) {
      node.quantifier = Node::Quantifier::Any;
    } else if (acceptKeyword("ALL")) {
      node.quantifier = Node::Quantifier::All;
    } else if (acceptKeyword("NONE")) {
      node.quantifier = Node::Quantifier::NoMember;
    }
    node.left = parseOperand();
    parseOperator(node);
    node.right = parseOperand();
    if (node.op == Node::Operator::In &&
        (node.right.isKeyPath() || (node.right.constant.kind() != Value::Kind::List &&
                                    node.right.constant.kind() != Value::Kind::Objects))) {
      fail("IN needs a list such as {1, 2} or a %@ argument holding a list or a set of objects");
    }
    if (!node.left.isKeyPath() && !node.right.isKeyPath()) fail("a comparison needs a key path");
    return node;
  }

  void parseOperator(Node& node) {
    using Op = Node::Operator;
    static const std::pair<const char*, Op> kSymbols[] = {
        {"==", Op::Equal},          {"!=", Op::NotEqual},
        {"<>", Op::NotEqual},       {"<=", Op::LessOrEqual},
        {"=<", Op::LessOrEqual},    {">=", Op::GreaterOrEqual},
        {"=>", Op::GreaterOrEqual}, {"<", Op::Less},
        {">", Op::Greater},         {"=", Op::Equal}};
    static const std::pair<const char*, Op> kWords[] = {{"LIKE", Op::Like},
                                                        {"CONTAINS", Op::Contains},
                                                        {"BEGINSWITH", Op::BeginsWith},
                                                        {"ENDSWITH", Op::EndsWith},
                                                        {"IN", Op::In}};
    for (const auto& [symbol, op] : kSymbols) {
      if (acceptSymbol(symbol)) {
        node.op = op;
        parseModifiers(node);
        return;
      }
    }
    for (const auto& [word, op] : kWords) {
      if (acceptKeyword(word)) {
        node.op = op;
        parseModifiers(node);
        return;
      }
    }
    fail(
        "expected a comparison operator (==, !=, <, <=, >, >=, like, contains, beginswith, "
        "endswith, in)");
  }

  void parseModifiers(Node& node) {
    if (pos_ >= text_.size() || text_[pos_] != '[') return;
    const size_t close = text_.find(']', pos_);
    if (close == std::string_view::npos) fail("expected \"]\" after the operator's options");
    for (size_t i = pos_ + 1; i < close; ++i) {
      const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(text_[i])));
      if (c == 'c') {
        node.caseInsensitive = true;
      } else if (c != 'd' && c != 'n') {
        pos_ = i;
        fail("unknown operator option; expected c, d or n");
      }
    }
    pos_ = close + 1;
  }

  const Value& nextArgument() {
    if (argumentIndex_ >= arguments_.size()) fail("more format arguments than values given");
    return arguments_[argumentIndex_++];
  }

  Node::Operand parseOperand() {
    skipSpace();
    Node::Operand operand;
    if (pos_ >= text_.size()) fail("expected a key path or a value");
    const char c = text_[pos_];
    if (c == '%') {
      parseArgument(operand);
    } else if (c == '"' || c == '\'') {
      operand.constant = Value(parseString(c));
    } else if (std::isdigit(static_cast<unsigned char>(c)) || c == '-' || c == '+' || c == '.') {
      operand.constant = parseNumber();
    } else if (c == '{') {
      ++pos_;
      ValueList list;
      if (!acceptSymbol("}")) {
        do {
          Node::Operand element = parseOperand();
          if (element.isKeyPath()) fail("a list holds values, not key paths");
          list.push_back(std::move(element.constant));
        } while (acceptSymbol(","));
        expectSymbol("}");
      }
      operand.constant = Value(std::move(list));
    } else if (!parseLiteralWord(operand)) {
      operand.keyPath = parseKeyPath();
    }
    return operand;
  }

  bool parseLiteralWord(Node::Operand& operand) {
    const std::string word = upper(peekWord());
    if (word == "NULL" || word == "NIL") {
      operand.constant = Value();
    } else if (word == "TRUE" || word == "YES") {
      operand.constant = Value(int64_t{1});
    } else if (word == "FALSE" || word == "NO") {
      operand.constant = Value(int64_t{0});
    } else {
      return false;
    }
    pos_ += word.size();
    return true;
  }

  std::vector<std::string> parseKeyPath() {
    std::vector<std::string> path;
    do {
      // Aggregates of a to-many relationship's members: "entries.@sum.amount".
      const bool aggregate = !path.empty() && pos_ < text_.size() && text_[pos_] == '@';
      if (aggregate) ++pos_;
      const std::string_view word = peekWord();
      if (word.empty()) fail("expected a key path or a value");
      path.push_back((aggregate ? "@" : "") + std::string(word));
      pos_ += word.size();
    } while (pos_ < text_.size() && text_[pos_] == '.' && ++pos_);
    return path;
  }

  static std::vector<std::string> splitKeyPath(const std::string& text) {
    std::vector<std::string> path;
    size_t start = 0;
    while (true) {
      const size_t dot = text.find('.', start);
      path.push_back(text.substr(start, dot - start));
      if (dot == std::string::npos) break;
      start = dot + 1;
    }
    return path;
  }

  void parseArgument(Node::Operand& operand) {
    const size_t start = pos_++;
    std::string specifier;
    while (pos_ < text_.size() && std::isalpha(static_cast<unsigned char>(text_[pos_])) &&
           specifier.size() < 3) {
      specifier += text_[pos_++];
      if (specifier != "l" && specifier != "ll") break;
    }
    if (pos_ < text_.size() && text_[pos_] == '@' && specifier.empty()) {
      ++pos_;
      operand.constant = nextArgument();
      return;
    }
    if (specifier == "K") {
      const Value& key = nextArgument();
      if (key.kind() != Value::Kind::String || key.asString().empty()) {
        pos_ = start;
        fail("%K needs a key path given as text");
      }
      operand.keyPath = splitKeyPath(key.asString());
      return;
    }
    if (specifier == "d" || specifier == "i" || specifier == "ld" || specifier == "lld" ||
        specifier == "lu" || specifier == "llu" || specifier == "u") {
      const Value& number = nextArgument();
      if (!number.isNumber()) {
        pos_ = start;
        fail("%" + specifier + " needs an integer argument");
      }
      operand.constant = Value(number.asInteger());
      return;
    }
    pos_ = start;
    fail("unknown format argument; expected %@, %K, %d or %ld");
  }

  std::string parseString(char quote) {
    ++pos_;
    std::string text;
    while (pos_ < text_.size() && text_[pos_] != quote) {
      if (text_[pos_] == '\\' && pos_ + 1 < text_.size()) ++pos_;
      text += text_[pos_++];
    }
    if (pos_ >= text_.size()) fail("unterminated string");
    ++pos_;
    return text;
  }

  Value parseNumber() {
    const size_t start = pos_;
    if (text_[pos_] == '-' || text_[pos_] == '+') ++pos_;
    bool fraction = false;
    while (pos_ < text_.size() &&
           (std::isdigit(static_cast<unsigned char>(text_[pos_])) || text_[pos_] == '.')) {
      fraction = fraction || text_[pos_] == '.';
      ++pos_;
    }
    const std::string number(text_.substr(start, pos_ - start));
    if (number == "-" || number == "+" || number == "." ||
        std::count(number.begin(), number.end(), '.') > 1) {
      pos_ = start;
      fail("malformed number");
    }
    if (fraction) {
      const Amount amount = Amount::fromString(number);
      if (amount.isNaN()) {
        pos_ = start;
        fail("malformed number");
      }
      return Value(amount);
    }
    errno = 0;
    const long long value = std::strtoll(number.c_str(), nullptr, 10);
    if (errno == ERANGE) {
      pos_ = start;
      fail("number out of range");
    }
    return Value(static_cast<int64_t>(value));
  }

  std::string_view text_;
  const std::vector<Value>& arguments_;
  size_t pos_ = 0;
  size_t argumentIndex_ = 0;
};

}  // namespace

Predicate::Predicate() : root_(std::make_shared<const PredicateNode>()) {}

Result<Predicate> Predicate::parse(std::string_view format, const std::vector<Value>& arguments) {
  try {
    Parser parser(format, arguments);
    return Predicate(std::make_shared<const PredicateNode>(parser.parseAll()));
  } catch (const SyntaxError& error) {
    return Error::make(kLErrorDomain, 1,
                       "predicate syntax error at position " + std::to_string(error.position) +
                           ": " + error.message + " in \"" + std::string(format) + "\"");
  }
}

Predicate Predicate::withFormatArguments(std::string_view format, const std::vector<Value>& args) {
  auto result = parse(format, args);
  if (!result) throw std::logic_error(result.error().localizedDescription());
  return std::move(result).value();
}

}  // namespace ledgeon
