#include "LIFLedgerGenerator.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "ImportExport/ImportDropRules.h"

namespace ledgeon::testing {
namespace {

enum class Kind { kChecking, kCard, kCash, kAsset };

struct GeneratedAccount {
  std::string name;
  Kind kind = Kind::kChecking;
  size_t section = 0;  // position of its transaction section in the file
};

const std::vector<std::string> kCategories = {"Groceries", "Rent",   "Fuel",
                                              "Salary",    "Dining", "Gifts"};
const std::vector<std::string> kTags = {"Vacation", "Work", "Kids", "Home"};
const std::vector<std::string> kPayees = {"Greenfield Market", "City Power", "Acme Payroll",
                                          "Corner Cafe"};
const std::vector<std::string> kMemos = {"weekly", "birthday", "refund", "monthly bill"};

const char* typeText(Kind kind) {
  switch (kind) {
    case Kind::kChecking:
      return "Bank";
    case Kind::kCard:
      return "CCard";
    case Kind::kCash:
      return "Cash";
    case Kind::kAsset:
      break;
  }
  return "Oth A";
}

// What a record's own fields (all but amount and category) are, as written and as expected.
struct Fields {
  std::string dateText;
  std::string date;  // ISO, or "none"
  std::string checkNumber;
  int64_t reconcileStatus = 0;
  std::string payee;
  std::string memo;

  std::string lines() const {
    std::string text = "D" + dateText + "\n";
    if (!checkNumber.empty()) text += "N" + checkNumber + "\n";
    if (reconcileStatus == 1) text += "C*\n";
    if (reconcileStatus == 2) text += "CX\n";
    if (!payee.empty()) text += "P" + payee + "\n";
    if (!memo.empty()) text += "M" + memo + "\n";
    return text;
  }
  ExpectedTransaction expected(const std::string& account) const {
    ExpectedTransaction transaction;
    transaction.account = account;
    transaction.date = date;
    transaction.payee = payee;
    transaction.note = memo;
    transaction.checkNumber = checkNumber;
    transaction.reconcileStatus = reconcileStatus;
    return transaction;
  }
};

// One split line as written.
struct SplitLine {
  std::string category;  // "" for a transfer line
  std::string transfer;  // account name for a transfer line
  std::string tag;
  std::string memo;
  int64_t cents = 0;
};

// How a transfer's copy in the other account is present in the file.
enum class Copy { kAbsent, kPresent, kAmountAfterTransfer };

class Generator {
 public:
  explicit Generator(uint32_t seed) : random_(seed) {}

  GeneratedLIFFile generate() {
    makeAccounts();
    const size_t transactions = 10 + below(30);
    for (size_t i = 0; i < transactions; ++i) {
      const size_t kind = below(9);
      if (kind < 3) {
        plain();
      } else if (kind < 5) {
        transfer();
      } else if (kind < 6) {
        split(false);
      } else {
        split(true);
      }
    }
    writeFile();
    return std::move(file_);
  }

 private:
  size_t below(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(random_); }
  bool chance(size_t percent) { return below(100) < percent; }
  const std::string& pick(const std::vector<std::string>& list) { return list[below(list.size())]; }
  std::string maybe(const std::vector<std::string>& list, size_t percent) {
    return chance(percent) ? pick(list) : std::string();
  }
  // Every amount differs from every other, so that no two transfers can be taken for twins.
  int64_t uniqueCents(bool negative) {
    int64_t cents = 0;
    do {
      cents = static_cast<int64_t>(100 + below(500000));
    } while (!usedCents_.insert(cents).second);
    return negative ? -cents : cents;
  }
  std::string money(int64_t cents, bool grouping) {
    const int64_t whole = std::llabs(cents) / 100;
    std::string digits = std::to_string(whole);
    if (grouping && whole >= 1000) digits.insert(digits.size() - 3, ",");
    return fmt::format("{}{}.{:02}", cents < 0 ? "-" : "", digits, std::llabs(cents) % 100);
  }
  std::string writtenMoney(int64_t cents) { return money(cents, chance(30)); }
  static std::string expectedMoney(int64_t cents) {
    const int64_t whole = std::llabs(cents) / 100;
    return Amount::fromString(
               fmt::format("{}{}.{:02}", cents < 0 ? "-" : "", whole, std::llabs(cents) % 100))
        .stringValue();
  }
  const GeneratedAccount& anyAccount() { return accounts_[below(accounts_.size())]; }
  const GeneratedAccount& otherAccount(const std::string& than) {
    while (true) {
      const GeneratedAccount& account = anyAccount();
      if (account.name != than) return account;
    }
  }

  Fields fields(bool badDateAllowed) {
    Fields f;
    const int month = static_cast<int>(1 + below(12));
    const int day = static_cast<int>(1 + below(28));
    f.date = fmt::format("2024-{:02}-{:02}", month, day);
    switch (below(3)) {
      case 0:
        f.dateText = fmt::format("{}/{}'24", month, day);
        break;
      case 1:
        f.dateText = fmt::format("{:02}/{:02}/24", month, day);
        break;
      default:
        f.dateText = fmt::format("{:>2}/{:>2}'24", month, day);
        break;
    }
    if (badDateAllowed && chance(6)) {
      f.dateText = chance(50) ? "13/45'24" : "someday";
      f.date = "none";
      feature("date that does not read");
    }
    if (chance(25)) {
      f.checkNumber = std::to_string(1000 + below(9000));
      feature("check number");
    }
    f.reconcileStatus = static_cast<int64_t>(below(3));
    f.payee = maybe(kPayees, 70);
    f.memo = maybe(kMemos, 40);
    return f;
  }

  void add(const std::string& account, std::string record) {
    ++file_.records;
    records_[account].push_back(std::move(record));
  }
  void drop(const char* rule) { ++file_.dropped[rule]; }
  void feature(const char* name) { ++file_.features[name]; }

  void makeAccounts() {
    const size_t count = 2 + below(4);
    for (size_t i = 0; i < count; ++i) {
      const Kind kind = i == 0 ? Kind::kChecking : static_cast<Kind>(below(4));
      static const char* const kWords[] = {"Checking", "Card", "Cash", "Asset"};
      accounts_.push_back({fmt::format("{} {}", kWords[static_cast<int>(kind)], i + 1), kind, i});
    }
    std::vector<size_t> order(count);
    for (size_t i = 0; i < count; ++i) order[i] = i;
    std::shuffle(order.begin(), order.end(), random_);
    for (size_t i = 0; i < count; ++i) accounts_[order[i]].section = i;
    for (const auto& account : accounts_) file_.accounts.push_back(account.name);
  }

  // A record with its own category line ("L"), amount after or before it.
  std::string plainRecord(const Fields& f, int64_t cents, const std::string& category,
                          const std::string& tag, bool amountAfterCategory) {
    std::string amount = "T" + writtenMoney(cents) + "\n";
    std::string categoryLine;
    if (!category.empty() || !tag.empty()) {
      categoryLine = "L" + category + (tag.empty() ? "" : "/" + tag) + "\n";
    }
    return f.lines() + (amountAfterCategory ? categoryLine + amount : amount + categoryLine) +
           "^\n";
  }

  // The transaction a transfer copy in `account` from or to `other` becomes.
  static ExpectedTransaction transferCopy(const Fields& f, const std::string& account,
                                          const std::string& other, int64_t cents,
                                          const std::string& tag) {
    ExpectedTransaction t = f.expected(account);
    t.amount = expectedMoney(cents);
    t.targetAccount = other;
    t.lines.push_back({"", tag.empty() ? std::vector<std::string>{} : std::vector<std::string>{tag},
                       other, t.amount, f.memo});
    return t;
  }

  void plain() {
    const GeneratedAccount& account = anyAccount();
    const Fields f = fields(true);
    const int64_t cents = uniqueCents(chance(75));
    const std::string category = maybe(kCategories, 80);
    const std::string tag = maybe(kTags, 30);
    if (chance(5)) {
      add(account.name, f.lines() + (chance(50) ? "Tabc\n" : "Tn/a\n") + "L" + category + "\n^\n");
      drop(droprule::kAmountNotANumber);
      return;
    }
    add(account.name, plainRecord(f, cents, category, tag, false));
    ExpectedTransaction t = f.expected(account.name);
    t.amount = expectedMoney(cents);
    t.lines.push_back({category,
                       tag.empty() ? std::vector<std::string>{} : std::vector<std::string>{tag}, "",
                       t.amount, f.memo});
    file_.ledger.push_back(std::move(t));
  }

  Copy copyPresence(size_t presentPercent) {
    if (!chance(presentPercent)) return Copy::kAbsent;
    return chance(10) ? Copy::kAmountAfterTransfer : Copy::kPresent;
  }

  void transfer() {
    const GeneratedAccount& from = anyAccount();
    const GeneratedAccount& to = otherAccount(from.name);
    const int64_t cents = uniqueCents(false);
    const Fields base = fields(false);
    const size_t presence = below(4);  // both, both, only the paying side, only the receiving one
    struct Side {
      const GeneratedAccount* account;
      const GeneratedAccount* other;
      int64_t cents;
      Copy copy;
      Fields fields;
      std::string tag;
    };
    std::vector<Side> sides;
    for (const bool paying : {true, false}) {
      const bool present = presence < 2 || (presence == 2) == paying;
      Side side{
          paying ? &from : &to,
          paying ? &to : &from,
          paying ? -cents : cents,
          present ? (chance(10) ? Copy::kAmountAfterTransfer : Copy::kPresent) : Copy::kAbsent,
          fields(false),
          maybe(kTags, 20)};
      side.fields.dateText = base.dateText;
      side.fields.date = base.date;
      if (side.copy == Copy::kAbsent) continue;
      add(side.account->name, plainRecord(side.fields, side.cents, "[" + side.other->name + "]",
                                          side.tag, side.copy == Copy::kAmountAfterTransfer));
      if (side.copy == Copy::kAmountAfterTransfer) {
        drop(droprule::kZeroTransfer);
      } else {
        sides.push_back(std::move(side));
      }
    }
    feature(presence < 2 ? "transfer listed in both accounts" : "transfer listed once");
    if (sides.empty()) return;
    // Of two copies, the one seen second is created, in the account whose section holds it.
    const Side* kept = &sides.front();
    if (sides.size() == 2) {
      ++file_.merged;
      if (sides[1].account->section > kept->account->section) kept = &sides[1];
    }
    file_.ledger.push_back(
        transferCopy(kept->fields, kept->account->name, kept->other->name, kept->cents, kept->tag));
  }

  std::string splitRecord(const Fields& f, int64_t total, const std::vector<SplitLine>& lines) {
    std::string text = f.lines() + "T" + writtenMoney(total) + "\n";
    for (const SplitLine& line : lines) {
      const std::string category =
          line.transfer.empty() ? line.category : "[" + line.transfer + "]";
      text += "S" + category + (line.tag.empty() ? "" : "/" + line.tag) + "\n";
      if (!line.memo.empty()) text += "E" + line.memo + "\n";
      text += "$" + writtenMoney(line.cents) + "\n";
    }
    return text + "^\n";
  }

  void split(bool withTransfers) {
    const GeneratedAccount& account = anyAccount();
    std::vector<const GeneratedAccount*> targets;
    if (withTransfers) {
      const size_t wanted = accounts_.size() > 2 && chance(50) ? 2 : 1;
      while (targets.size() < wanted) {
        const GeneratedAccount* target = &otherAccount(account.name);
        if (std::find(targets.begin(), targets.end(), target) == targets.end()) {
          targets.push_back(target);
        }
      }
    }
    std::vector<SplitLine> lines;
    const size_t categories = withTransfers ? below(3) : 2 + below(3);
    for (size_t i = 0; i < categories; ++i) {
      lines.push_back(
          {pick(kCategories), "", maybe(kTags, 30), maybe(kMemos, 40), uniqueCents(chance(80))});
    }
    for (const GeneratedAccount* target : targets) {
      lines.push_back({"", target->name, maybe(kTags, 20), maybe(kMemos, 40), uniqueCents(true)});
    }
    std::shuffle(lines.begin(), lines.end(), random_);
    int64_t total = 0;
    for (const SplitLine& line : lines) total += line.cents;
    const Fields f = fields(!withTransfers);
    add(account.name, splitRecord(f, total, lines));
    feature(targets.size() == 2   ? "split transferring to two accounts"
            : targets.size() == 1 ? "split transferring to one account"
                                  : "split without transfer lines");

    ExpectedTransaction t = f.expected(account.name);
    t.amount = expectedMoney(total);
    if (!withTransfers) {
      for (const SplitLine& line : lines) {
        t.lines.push_back(
            {line.category,
             line.tag.empty() ? std::vector<std::string>{} : std::vector<std::string>{line.tag}, "",
             expectedMoney(line.cents), line.memo});
      }
      file_.ledger.push_back(std::move(t));
      return;
    }
    splitWithTransfers(account, f, lines, std::move(t));
  }

  // The twins of a split's transfer lines are plain transfers in the other accounts. A card's
  // (or any non-checking account's) split transferring to a checking account is left to the
  // checking side, whose copies are then created on their own; any other split is kept, without
  // its lines' tags and memos, and its twins are merged into it.
  void splitWithTransfers(const GeneratedAccount& account, const Fields& f,
                          const std::vector<SplitLine>& lines, ExpectedTransaction t) {
    bool toChecking = false;
    std::vector<std::pair<const SplitLine*, Fields>> twins;
    for (const SplitLine& line : lines) {
      if (line.transfer.empty()) continue;
      const GeneratedAccount& target =
          *std::find_if(accounts_.begin(), accounts_.end(),
                        [&](const GeneratedAccount& a) { return a.name == line.transfer; });
      toChecking = toChecking || target.kind == Kind::kChecking;
      const Copy copy = copyPresence(60);
      if (copy == Copy::kAbsent) continue;
      Fields twin = fields(false);
      twin.dateText = f.dateText;
      twin.date = f.date;
      add(target.name, plainRecord(twin, -line.cents, "[" + account.name + "]", "",
                                   copy == Copy::kAmountAfterTransfer));
      if (copy == Copy::kAmountAfterTransfer) {
        drop(droprule::kZeroTransfer);
      } else {
        twins.emplace_back(&line, std::move(twin));
      }
    }
    if (account.kind != Kind::kChecking && toChecking) {
      feature("split left to the checking account's copy");
      drop(droprule::kCheckingCopyKept);
      for (const auto& [line, twin] : twins) {
        file_.ledger.push_back(transferCopy(twin, line->transfer, account.name, -line->cents, ""));
      }
      return;
    }
    file_.merged += twins.size();
    for (const SplitLine& line : lines) {
      if (!line.memo.empty()) ++file_.memosRemoved;
      if (!line.tag.empty()) ++file_.tagsRemoved;
      t.lines.push_back({line.category, {}, line.transfer, expectedMoney(line.cents), ""});
      if (!line.transfer.empty()) t.targetAccount = line.transfer;
    }
    file_.ledger.push_back(std::move(t));
  }

  void writeFile() {
    const std::map<std::string, Amount> balances = file_.balances();
    std::string& text = file_.text;
    text = "!Option:AutoSwitch\n!Account\n";
    for (const GeneratedAccount& account : accounts_) {
      text += "N" + account.name + "\nT" + typeText(account.kind) + "\n";
      if (chance(50)) {
        // A statement balance the transactions either give or miss by a dollar.
        Amount balance = balances.at(account.name);
        if (chance(50)) {
          balance = balance.decimalNumberByAdding(Amount::fromString("1"));
          ++file_.balanceDifferences;
        }
        text += "$" + balance.stringValue() + "\n";
      }
      text += "^\n";
    }
    text += "!Clear:AutoSwitch\n";
    std::vector<const GeneratedAccount*> sections;
    for (const GeneratedAccount& account : accounts_) sections.push_back(&account);
    std::sort(sections.begin(), sections.end(),
              [](const auto* a, const auto* b) { return a->section < b->section; });
    for (const GeneratedAccount* account : sections) {
      text += "!Account\nN" + account->name + "\n^\n!Type:" + typeText(account->kind) + "\n";
      auto& records = records_[account->name];
      std::shuffle(records.begin(), records.end(), random_);
      for (const std::string& record : records) text += record;
    }
  }

  std::mt19937 random_;
  std::vector<GeneratedAccount> accounts_;
  std::map<std::string, std::vector<std::string>> records_;
  std::set<int64_t> usedCents_;
  GeneratedLIFFile file_;
};

}  // namespace

std::string ExpectedTransaction::description() const {
  std::string text =
      fmt::format("{} {} {} payee={} note={} check={} status={} target={}", account, date, amount,
                  payee, note, checkNumber, reconcileStatus, targetAccount);
  for (const ExpectedLine& line : lines) {
    text += fmt::format(" [{}|{}|{}|{}|{}]", line.category, fmt::join(line.tags, ","),
                        line.transfer, line.amount, line.note);
  }
  return text;
}

std::map<std::string, Amount> balancesOf(const std::vector<ExpectedTransaction>& transactions) {
  std::map<std::string, Amount> balances;
  auto add = [&](const std::string& account, const std::string& amount, bool negate) {
    Amount value = Amount::fromString(amount);
    if (negate) value = value.decimalNumberByNegating();
    auto& balance = balances.try_emplace(account, Amount::zero()).first->second;
    balance = balance.decimalNumberByAdding(value);
  };
  for (const ExpectedTransaction& t : transactions) {
    add(t.account, t.amount, false);
    for (const ExpectedLine& line : t.lines) {
      if (!line.transfer.empty() && line.transfer != t.account)
        add(line.transfer, line.amount, true);
    }
  }
  return balances;
}

std::map<std::string, Amount> GeneratedLIFFile::balances() const {
  std::map<std::string, Amount> all = balancesOf(ledger);
  for (const std::string& account : accounts) all.try_emplace(account, Amount::zero());
  return all;
}

GeneratedLIFFile generateLIFFile(uint32_t seed) { return Generator(seed).generate(); }

}  // namespace ledgeon::testing
