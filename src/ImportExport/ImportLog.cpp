#include "ImportExport/ImportLog.h"

#include <nlohmann/json.hpp>

namespace ledgeon {
namespace {

void appendPlain(const ImportLogNode& node, size_t depth, std::string& out) {
  out.append(2 * depth, ' ');
  if (node.severity == ImportLogSeverity::kWarning) out += "WARNING: ";
  if (node.severity == ImportLogSeverity::kError) out += "ERROR: ";
  out += node.text;
  if (node.text.empty() || node.text.back() != '\n') out += '\n';
  for (const ImportLogNode& child : node.children) appendPlain(child, depth + 1, out);
}

nlohmann::json toJson(const ImportLogNode& node) {
  nlohmann::json children = nlohmann::json::array();
  for (const ImportLogNode& child : node.children) children.push_back(toJson(child));
  return {{"severity", static_cast<int>(node.severity)},
          {"text", node.text},
          {"children", std::move(children)}};
}

void collect(const ImportLogNode& node, ImportLogSeverity severity,
             std::vector<std::string>& texts) {
  if (node.severity >= severity) texts.push_back(node.text);
  for (const ImportLogNode& child : node.children) collect(child, severity, texts);
}

size_t countNodes(const ImportLogNode& node, ImportLogSeverity severity) {
  size_t total = node.severity == severity ? 1 : 0;
  for (const ImportLogNode& child : node.children) total += countNodes(child, severity);
  return total;
}

}  // namespace

ImportLogNode& ImportLogNode::addChild(ImportLogSeverity childSeverity, std::string childText) {
  children.push_back({childSeverity, std::move(childText), {}});
  return children.back();
}

ImportLog::ImportLog(std::string title, std::string filePathLine)
    : root_{ImportLogSeverity::kInfo, std::move(title), {}} {
  root_.addChild(ImportLogSeverity::kInfo, std::move(filePathLine));
}

ImportLogNode& ImportLog::add(ImportLogSeverity severity, std::string text) {
  return root_.addChild(severity, std::move(text));
}

std::vector<std::string> ImportLog::textsAtOrAbove(ImportLogSeverity severity) const {
  std::vector<std::string> texts;
  collect(root_, severity, texts);
  return texts;
}

size_t ImportLog::count(ImportLogSeverity severity) const { return countNodes(root_, severity); }

std::string ImportLog::plainText() const {
  std::string out;
  appendPlain(root_, 0, out);
  return out;
}

std::string ImportLog::jsonText() const { return toJson(root_).dump(2); }

}  // namespace ledgeon
