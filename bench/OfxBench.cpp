// Reading a 100,000-transaction statement, as OFX 1.x (SGML) and as its OFX 2.x (XML) twin.
// Floor: reading the file once. Peer: libofx's ofxdump on the same file, run as a process.
// For scale, "expat" is Expat alone going over the XML the reader parses, with handlers that do
// nothing: the part of the reader no change on our side can make faster.
// The counter peak_rss_over_file is the peak memory of a child process that parses the file
// once, divided by the file's size.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>
#include <expat.h>
#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "OnlineBankingFramework/OFXRootController.h"
#include "OnlineBankingFramework/OfxConvert.h"

extern char** environ;  // NOLINT: passed on to ofxdump

namespace {

constexpr int kTransactions = 100000;

std::string transactionsText(bool xml) {
  std::string text;
  text.reserve(static_cast<size_t>(kTransactions) * 260);
  char buffer[512];
  for (int i = 0; i < kTransactions; ++i) {
    const int day = 1 + i % 28;
    const int cents = (i * 7919) % 100000 - 50000;
    const char* type = cents < 0 ? "DEBIT" : "CREDIT";
    const char* sign = cents < 0 ? "-" : "";
    const int units = (cents < 0 ? -cents : cents) / 100;
    const int hundredths = (cents < 0 ? -cents : cents) % 100;
    if (xml) {
      std::snprintf(buffer, sizeof buffer,
                    "<STMTTRN><TRNTYPE>%s</TRNTYPE><DTPOSTED>202403%02d120000.000[-5:EST]"
                    "</DTPOSTED><TRNAMT>%s%d.%02d</TRNAMT><FITID>F%08d</FITID><NAME>Payee number "
                    "%d</NAME><MEMO>Memo &amp; more %d</MEMO></STMTTRN>\n",
                    type, day, sign, units, hundredths, i, i % 977, i);
    } else {
      std::snprintf(buffer, sizeof buffer,
                    "<STMTTRN>\n<TRNTYPE>%s\n<DTPOSTED>202403%02d120000.000[-5:EST]\n"
                    "<TRNAMT>%s%d.%02d\n<FITID>F%08d\n<NAME>Payee number %d\n<MEMO>Memo & more "
                    "%d\n</STMTTRN>\n",
                    type, day, sign, units, hundredths, i, i % 977, i);
    }
    text += buffer;
  }
  return text;
}

std::string statementText(bool xml) {
  auto leaf = [xml](const char* tag, const char* value) {
    return std::string("<") + tag + ">" + value + (xml ? std::string("</") + tag + ">" : "") + "\n";
  };
  std::string text =
      xml ? "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<?OFX OFXHEADER=\"200\" VERSION=\"211\" "
            "SECURITY=\"NONE\" OLDFILEUID=\"NONE\" NEWFILEUID=\"NONE\"?>\n"
          : "OFXHEADER:100\nDATA:OFXSGML\nVERSION:102\nSECURITY:NONE\nENCODING:USASCII\n"
            "CHARSET:1252\nCOMPRESSION:NONE\nOLDFILEUID:NONE\nNEWFILEUID:NONE\n\n";
  text += "<OFX>\n<SIGNONMSGSRSV1>\n<SONRS>\n<STATUS>\n" + leaf("CODE", "0") +
          leaf("SEVERITY", "INFO") + "</STATUS>\n" + leaf("DTSERVER", "20240331120000") +
          leaf("LANGUAGE", "ENG") + "<FI>\n" + leaf("ORG", "Bench Bank") + leaf("FID", "1234") +
          "</FI>\n</SONRS>\n</SIGNONMSGSRSV1>\n<BANKMSGSRSV1>\n<STMTTRNRS>\n" +
          leaf("TRNUID", "1") + "<STATUS>\n" + leaf("CODE", "0") + leaf("SEVERITY", "INFO") +
          "</STATUS>\n<STMTRS>\n" + leaf("CURDEF", "USD") + "<BANKACCTFROM>\n" +
          leaf("BANKID", "011000138") + leaf("ACCTID", "123456") + leaf("ACCTTYPE", "CHECKING") +
          "</BANKACCTFROM>\n<BANKTRANLIST>\n" + leaf("DTSTART", "20240301") +
          leaf("DTEND", "20240331") + transactionsText(xml) + "</BANKTRANLIST>\n<LEDGERBAL>\n" +
          leaf("BALAMT", "1000.00") + leaf("DTASOF", "20240331") +
          "</LEDGERBAL>\n</STMTRS>\n</STMTTRNRS>\n</BANKMSGSRSV1>\n</OFX>\n";
  return text;
}

// A generated statement in the temporary folder, removed when the program ends.
class BenchFile final {
 public:
  explicit BenchFile(bool xml)
      : path_(std::filesystem::temp_directory_path() /
              (std::string("ledgeon-bench-") + std::to_string(getpid()) +
               (xml ? "-v211.ofx" : "-v102.ofx"))) {
    std::ofstream(path_, std::ios::binary) << statementText(xml);
  }
  ~BenchFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  BenchFile(const BenchFile&) = delete;
  BenchFile& operator=(const BenchFile&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

const std::filesystem::path& benchFile(bool xml) {
  static const BenchFile sgml(false);
  static const BenchFile xmlFile(true);
  return xml ? xmlFile.path() : sgml.path();
}

std::string readOnce(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

size_t parseOnce(const std::filesystem::path& path) {
  ledgeon::OFXRootController controller;
  if (!controller.openOFXFile(path, false)) return 0;
  return controller.root().totalNumberOfTransactions();
}

// Peak resident memory (bytes) of a child that parses the file once.
double childPeakMemory(const std::filesystem::path& path) {
  const pid_t child = fork();
  if (child == 0) {
    // Start from what the parent really holds: the memory its own parses freed stays resident in
    // its allocator and would otherwise count here.
    malloc_trim(0);
    _exit(parseOnce(path) == kTransactions ? 0 : 1);
  }
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  return static_cast<double>(usage.ru_maxrss) * 1024.0;
}

void runOfxdump(const std::filesystem::path& path) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  std::string program = "ofxdump";
  std::string file = path.string();
  char* argv[] = {program.data(), file.data(), nullptr};
  pid_t pid = 0;
  if (posix_spawnp(&pid, "ofxdump", &actions, nullptr, argv, environ) == 0) {
    int status = 0;
    waitpid(pid, &status, 0);
  }
  posix_spawn_file_actions_destroy(&actions);
}

void readFloor(benchmark::State& state, bool xml) {
  const auto& path = benchFile(xml);
  for (auto _ : state) benchmark::DoNotOptimize(readOnce(path));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(std::filesystem::file_size(path)));
}

void parseStatement(benchmark::State& state, bool xml) {
  const auto& path = benchFile(xml);
  for (auto _ : state) {
    if (parseOnce(path) != kTransactions) state.SkipWithError("the statement did not parse");
  }
  state.counters["peak_rss_over_file"] =
      childPeakMemory(path) / static_cast<double>(std::filesystem::file_size(path));
}

void XMLCALL ignoreStart(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL ignoreEnd(void*, const XML_Char*) {}
void XMLCALL ignoreText(void*, const XML_Char*, int) {}

void expatOnly(benchmark::State& state, bool xml) {
  const std::string text = ledgeon::OfxConvert::convertOFXToXML(readOnce(benchFile(xml)));
  for (auto _ : state) {
    XML_Parser parser = XML_ParserCreate("UTF-8");
    XML_SetElementHandler(parser, &ignoreStart, &ignoreEnd);
    XML_SetCharacterDataHandler(parser, &ignoreText);
    if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE) != XML_STATUS_OK) {
      state.SkipWithError("the XML did not parse");
    }
    XML_ParserFree(parser);
  }
}

void peerOfxdump(benchmark::State& state, bool xml) {
  const auto& path = benchFile(xml);
  for (auto _ : state) runOfxdump(path);
}

}  // namespace

BENCHMARK_CAPTURE(readFloor, sgml, false)->Name("OfxSgml/floor")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseStatement, sgml, false)
    ->Name("OfxSgml/parse")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expatOnly, sgml, false)->Name("OfxSgml/expat")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(peerOfxdump, sgml, false)
    ->Name("OfxSgml/ofxdump")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);
BENCHMARK_CAPTURE(readFloor, xml, true)->Name("OfxXml/floor")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseStatement, xml, true)->Name("OfxXml/parse")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expatOnly, xml, true)->Name("OfxXml/expat")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(peerOfxdump, xml, true)
    ->Name("OfxXml/ofxdump")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);
