// MetadataCache: the service object's cache of the configuration it reads
// again and again. InitLists loads the search links and the multi-selects
// (read through the index by ID, MetadataIndex) and, in the key-generation
// modes that need them, the data-tables recordset and the table-key
// collection (table name -> last key, or table ID). Look-ups, list filling,
// key generation and safe delete all read it; only InitLists refills it.
//
// Owned by the service object; reads through the ServicePort it is given,
// which must outlive it. One thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/lookups/internal/MetadataIndex.h"
#include "kelvary/platform/KeyedCollection.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/Variant.h"
#include "kelvary/service/internal/ServicePort.h"

namespace kelvary::lookups {

class MetadataCache {
 public:
  explicit MetadataCache(ServicePort& services) : services_(services) {}
  ~MetadataCache();  // Close(); never throws
  MetadataCache(const MetadataCache&) = delete;
  MetadataCache& operator=(const MetadataCache&) = delete;

  // InitLists reloads the search-link cache (bFSLnx), the multi-select cache
  // (bMSlcts) and, in modes 1, 3 and 7, the data tables and table keys.
  void InitLists(bool bFSLnx, bool bMSlcts);

  // Index: the index over the two caches as now loaded, built on first use.
  // The reference holds until the next InitLists; a caller that may run a
  // statement (and so a host's handler) while it reads records keeps the
  // index alive with HeldIndex instead.
  const MetadataIndex& Index() {
    if (!index_) BuildIndex();
    return *index_;
  }
  std::shared_ptr<const MetadataIndex> HeldIndex() {
    if (!index_) BuildIndex();
    return index_;
  }

  // DataTables: the data-tables recordset (ValuesTable, ID, MaxID), kept
  // open only in the dynamic-tables mode; nullptr otherwise.
  const std::shared_ptr<Recordset>& DataTables() const { return data_tables_; }
  // TableKey: the table-key collection's entry for a table (Error 5 when
  // there is none); the collection is created on first use.
  std::shared_ptr<Variant> TableKey(const std::string& Table_Name);
  // FindTableKey: the entry, or nullptr (also before any collection exists).
  std::shared_ptr<Variant> FindTableKey(const std::string& Table_Name) const;
  // StoreTableKey replaces or adds the entry.
  void StoreTableKey(const std::string& Table_Name, const Variant& value);
  // MoveToDataTableRow positions the data-tables recordset on the table's
  // row, by the ID the table-key collection remembers or else by name
  // (remembering the ID found); true when the ID was already known.
  // REQUIRES: loaded in the dynamic-tables mode (else Error 91).
  bool MoveToDataTableRow(const std::string& Table_Name);

  // Close releases the caches in the service object's order of release.
  void Close() noexcept;

 private:
  void BuildIndex();
  void LoadTableKeys(CodeGenMethods method);

  ServicePort& services_;
  std::shared_ptr<Recordset> search_links_;               // search-link cache
  std::shared_ptr<Recordset> multi_selects_;              // multi-select cache
  std::shared_ptr<Recordset> data_tables_;                // kept open in cgmDynamicTables mode
  std::shared_ptr<KeyedCollection<Variant>> table_keys_;  // created on first use
  // Index by ID over the two caches; dropped by each InitLists.
  std::shared_ptr<MetadataIndex> index_;
};

}  // namespace kelvary::lookups
