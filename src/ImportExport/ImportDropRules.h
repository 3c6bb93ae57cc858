#pragma once

// Why an import leaves a record of a file out, as the import log and its summary name it. Each
// record a file holds is created, merged into its transfer twin, or left out for one of these.
namespace ledgeon::droprule {

// A not-a-number amount is never stored, and zero would be a different amount.
inline constexpr const char* kAmountNotANumber = "amount not a number";
// The bracketed transfer was read while the amount read so far was zero: the other account's
// bookkeeping entry for a transfer, or an amount written after its "L" line.
inline constexpr const char* kZeroTransfer = "transfer read while its amount was still zero";
inline constexpr const char* kNoAccount = "no account section before it";
inline constexpr const char* kCutShort = "not ended by \"^\" before the next section";
inline constexpr const char* kActionNotHandled = "investment action not handled";
// A split of a card or other account transferring to a checking account: the checking
// account's copy of the transaction is the one kept.
inline constexpr const char* kCheckingCopyKept =
    "split transfer to a checking account, whose copy is kept";
inline constexpr const char* kAccountMissing = "its account could not be created";
inline constexpr const char* kSecurityMissing = "its security could not be created";
inline constexpr const char* kRefused = "the ledger refused to create it";

// Rows of a CSV export.
inline constexpr const char* kNoDate = "no date";
inline constexpr const char* kDateUnreadable = "date does not read";

}  // namespace ledgeon::droprule
