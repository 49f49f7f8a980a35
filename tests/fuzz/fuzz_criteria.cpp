// Find and Filter criteria on a recordset held in memory. Two readings of
// the same criteria must agree: the rows a Filter keeps are the rows that
// Find visits, one after the other, forwards and backwards (Find answers an
// equality from an index it keeps, Filter by testing each row). The first
// byte picks a row to delete before the search, and how many rows the
// first Find skips.
#include <algorithm>
#include <memory>

#include "FuzzSupport.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/internal/CursorEngine.h"

using namespace kelvary;
using kelvary::fuzz::Refused;
using kelvary::fuzz::Violation;

namespace {

std::shared_ptr<Recordset> Patients() {
  RowSet rows;
  const std::pair<const char*, DataTypeEnum> columns[] = {
      {"ID", adInteger},       {"Name", adVarWChar},   {"Seen", adDate},
      {"Balance", adCurrency}, {"Insured", adBoolean}, {"Note", adVarWChar}};
  for (const auto& [name, type] : columns) {
    rows.columns.emplace_back().name = name;
    rows.columns.back().type = type;
  }
  const char* names[] = {"Smith", "O'Brien", "smith", "", "Zoe", "Jones 2", "*", "Smith"};
  for (int32_t id = 1; id <= 8; ++id) {
    rows.cells.emplace_back(id);
    rows.cells.emplace_back(names[id - 1]);
    rows.cells.push_back(id % 3 == 0 ? Variant::Null() : Variant(DateSerial(2024, id, id * 3)));
    rows.cells.emplace_back(Currency{(id - 4) * 12345});
    rows.cells.emplace_back(id % 2 == 0);
    rows.cells.push_back(id % 4 == 0 ? Variant::Null() : Variant(std::to_string(id * 7)));
  }
  auto rs = std::make_shared<Recordset>();
  internal::LoadRecordset(
      *rs, std::move(rows),
      internal::LoadOptions{"patients", nullptr, adLockOptimistic, internal::WriteMode::kMemory});
  return rs;
}

std::string Ids(const std::vector<int32_t>& ids) {
  std::string out;
  for (int32_t id : ids)
    out += std::to_string(id) + " ";
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1 || size > fuzz::kMaxInput) return 0;
  const uint8_t control = data[0];
  const std::string criteria(fuzz::AsText(data + 1, size - 1));
  auto rs = Patients();
  if (control & 0x80) {  // delete one row first, as a caller might just have done
    rs->Move(control & 7);
    rs->Delete();
  }
  const int32_t skip = static_cast<int32_t>((control >> 3) & 7) - 3;
  const bool backwards = control & 0x40;
  Refused([&] { rs->Find(criteria, skip, backwards ? adSearchBackward : adSearchForward); });

  // Filter's rows against Find's, over rows that all exist.
  rs = Patients();
  std::vector<int32_t> kept;
  if (Refused([&] { rs->Filter(criteria); })) return 0;
  for (; !rs->Eof(); rs->MoveNext())
    kept.push_back(CLng(rs->Fields("ID").Value()));
  rs->Filter("");
  for (const bool forwards : {true, false}) {
    std::vector<int32_t> found;
    const bool refused = Refused([&] {
      forwards ? rs->MoveFirst() : rs->MoveLast();
      rs->Find(criteria, 0, forwards ? adSearchForward : adSearchBackward);
      while (!(forwards ? rs->Eof() : rs->Bof()) && found.size() <= 8) {
        found.push_back(CLng(rs->Fields("ID").Value()));
        rs->Find(criteria, 1, forwards ? adSearchForward : adSearchBackward);
      }
    });
    if (refused) return 0;  // Find takes one comparison; Filter takes more
    if (!forwards) std::reverse(found.begin(), found.end());
    if (found != kept) {
      Violation(std::string("Find ") + (forwards ? "forwards" : "backwards") + " visits " +
                    Ids(found) + "where Filter keeps " + Ids(kept),
                criteria);
    }
  }
  return 0;
}
