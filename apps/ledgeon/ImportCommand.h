#pragma once

#include <memory>
#include <string>

#include "ImportExport/ImportFileCommand.h"

namespace ledgeon::cli {

// "lif" when the file's first non-blank line is a "!" header, else "csv".
std::string formatOfFile(const std::string& file);
// The import command for a file in a format ("lif", "csv"; empty: recognised from the content).
std::shared_ptr<ImportFileCommand> importCommandForFile(
    const std::string& file, const std::string& format,
    const std::shared_ptr<LCommandDocument>& document);

}  // namespace ledgeon::cli
