#include "kelvary/platform/internal/WriteBack.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "kelvary/platform/Text.h"

namespace kelvary::internal {
namespace {

constexpr const char* kSource = "Recordset";

bool IsNothing(const Variant& v) {
  return v.IsNull() || v.IsEmpty();
}

[[noreturn]] void ThrowRowChanged(const std::string& statement) {
  throw Error(kErrRowChanged,
              "Row cannot be located for updating. Some values may have been changed since it "
              "was last read.",
              kSource)
      .WithStatement(statement);
}

[[noreturn]] void ThrowNoBaseTable(const char* why) {
  throw Error(
      kErrProviderFailure,
      std::string("Insufficient base table information for updating or refreshing. (") + why + ")",
      kSource);
}

// Located: a statement's text, the WHERE clause in it that finds its row,
// and where its parameters come from: the new values of the fields in set,
// then the values as read of the fields in located. All of it follows from
// the statement's shape, so it is worked out once with the text.
struct Located {
  std::string sql;
  std::string where;
  std::vector<int32_t> set;
  std::vector<int32_t> located;
};

class Writer final : public RowWriter {
 public:
  Writer(std::shared_ptr<Session> session, const std::vector<ColumnInfo>& columns)
      : session_(std::move(session)) {
    for (size_t i = 0; i < columns.size(); ++i) {
      const ColumnInfo& c = columns[i];
      if (c.base_table.empty() || c.base_column.empty()) continue;
      if (table_.empty()) {
        table_ = c.base_table;
      } else if (!EqualsNoCase(table_, c.base_table)) {
        mixed_ = true;
      }
      base_columns_.push_back(static_cast<int32_t>(i));
    }
    quoted_table_ = QuoteName(table_);
    names_.resize(columns.size());
    quoted_names_.resize(columns.size());
    types_.resize(columns.size());
    is_key_.assign(columns.size(), 0);
    for (int32_t c : base_columns_) {
      const ColumnInfo& column = columns[static_cast<size_t>(c)];
      names_[static_cast<size_t>(c)] = column.base_column;
      quoted_names_[static_cast<size_t>(c)] = QuoteName(column.base_column);
      types_[static_cast<size_t>(c)] = column.type;
    }
  }

  void Insert(const RowChange& change, Variant* row) override {
    session_->Recorded([&] { WriteInsert(change, row); });
  }
  void Update(const RowChange& change) override {
    session_->Recorded([&] { WriteUpdate(change); });
  }
  void Delete(const RowChange& change) override {
    session_->Recorded([&] { WriteDelete(change); });
  }

 private:
  // Driver, once the table and its key are known: the key is asked of the
  // driver on the first write, not when the rows are read.
  DriverConnection& Driver() {
    DriverConnection& driver = session_->Driver();
    if (key_known_) return driver;  // the table was found usable on the first write
    if (mixed_) ThrowNoBaseTable("The rows come from more than one table.");
    if (table_.empty()) ThrowNoBaseTable("No field comes from a table.");
    if (!key_known_) {
      key_names_ = driver.KeyColumns(table_);
      key_fetched_ = !key_names_.empty();
      for (const std::string& key : key_names_) {
        int32_t ordinal = -1;
        for (int32_t c : base_columns_) {
          if (EqualsNoCase(names_[static_cast<size_t>(c)], key)) {
            ordinal = c;
            break;
          }
        }
        key_ordinals_.push_back(ordinal);
        if (ordinal < 0) {
          key_fetched_ = false;
        } else {
          is_key_[static_cast<size_t>(ordinal)] = 1;
        }
      }
      key_known_ = true;
    }
    return driver;
  }

  const std::string& QuotedName(int32_t ordinal) const {
    return quoted_names_[static_cast<size_t>(ordinal)];
  }

  bool IsKey(int32_t ordinal) const { return is_key_[static_cast<size_t>(ordinal)] != 0; }

  // Locate: the WHERE clause that finds the row as it was read: by its key
  // and, for an update, the original values of the changed fields; without
  // a fetched key, by the original values of all the table's fields. A Null
  // is matched by IS NULL, so the text depends on which values are Null too.
  // changed is the update's Shape after its kind (one code per table
  // column), null for a delete. located receives the fields whose values
  // are the clause's parameters, in their order.
  void Locate(DriverConnection& driver, const Variant* originals, const char* changed,
              std::string& where, std::vector<int32_t>& located) {
    auto add = [&](int32_t ordinal) {
      const bool null = IsNothing(originals[ordinal]);
      if (!null) located.push_back(ordinal);
      if (!where.empty()) where += " AND ";
      const std::string& name = QuotedName(ordinal);
      where += null ? name + " IS NULL"
                    : driver.EqualsParameter(name, types_[static_cast<size_t>(ordinal)]);
    };
    if (key_fetched_) {
      for (int32_t k : key_ordinals_)
        add(k);
      if (changed) {
        for (size_t i = 0; i < base_columns_.size(); ++i) {
          const int32_t c = base_columns_[i];
          if (IsChangedCode(changed[i]) && !IsKey(c)) add(c);
        }
      }
    } else {
      for (int32_t c : base_columns_)
        add(c);
    }
  }

  // Parameters: the values statement takes, the new ones of its set fields
  // from values, then those that locate the row from originals.
  static void Parameters(const Located& statement, const Variant* values, const Variant* originals,
                         std::vector<Variant>& params) {
    params.resize(statement.set.size() + statement.located.size());
    Variant* out = params.data();
    for (int32_t c : statement.set)
      *out++ = values[c];
    for (int32_t c : statement.located)
      *out++ = originals[c];
  }

  // RefuseAmbiguous: without its key, a row is found by its values; when
  // other rows hold the same, writing would change them all.
  void RefuseAmbiguous(DriverConnection& driver, const std::string& where,
                       const std::vector<Variant>& params, const std::string& statement) {
    const StatementResult count =
        driver.Run("SELECT COUNT(*) FROM " + quoted_table_ + " WHERE " + where, params, 0);
    if (count.rows.RowCount() == 1 && CLngLng(count.rows.Cell(0, 0)) > 1) {
      throw Error(kErrProviderFailure,
                  "Insufficient key column information for updating or refreshing. (" +
                      CStr(count.rows.Cell(0, 0)) + " rows of " + table_ +
                      " hold the same values and the key is not among the fields.)",
                  kSource)
          .WithStatement(statement);
    }
  }

  // MarkRefusal: the database refused a write: the fields a constraint names,
  // or every changed one, carry the status.
  void MarkRefusal(DriverConnection& driver, const Error& error, const RowChange& change) {
    if (!driver.IsConstraintViolation(error)) return;
    bool named = false;
    for (const std::string& name : driver.ConstraintColumns(error)) {
      for (size_t c = 0; c < change.columns.size(); ++c) {
        if (EqualsNoCase(change.columns[c].base_column, name)) {
          change.status[c] = adFieldSchemaViolation;
          named = true;
        }
      }
    }
    if (named) return;
    for (size_t c = 0; c < change.columns.size(); ++c) {
      if (change.changed[c]) change.status[c] = adFieldSchemaViolation;
    }
  }

  // Statement: text made once per shape and kept.
  template <class Make>
  const Located& Statement(const std::string& shape, Make&& make) {
    if (last_statement_ != nullptr && SameShape(last_statement_->first, shape)) {
      return last_statement_->second;  // a run of edits to the same fields
    }
    auto it = statements_.find(shape);
    if (it == statements_.end()) it = statements_.emplace(shape, make()).first;
    last_statement_ = &*it;
    return it->second;
  }

  // Shape: which fields a write touches and which originals are Null, as a
  // key for the statement it needs: the kind, then one code per table
  // column. Written into shape_, whose room is kept from one write to the
  // next.
  const std::string& Shape(char kind, const RowChange& change, const Variant* originals) {
    const size_t count = base_columns_.size();
    shape_.resize(count + 1);
    char* out = shape_.data();
    *out++ = kind;
    const int32_t* column = base_columns_.data();
    for (size_t i = 0; i < count; ++i) {
      const auto c = static_cast<size_t>(column[i]);
      const bool null = originals && IsNothing(originals[c]);
      out[i] = static_cast<char>('0' + (change.changed[c] ? 1 : 0) + (null ? 2 : 0));
    }
    return shape_;
  }
  // SameShape: a == b, without a library call for a few characters.
  static bool SameShape(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
      if (a[i] != b[i]) return false;
    }
    return true;
  }
  static bool IsChangedCode(char code) { return ((code - '0') & 1) != 0; }

  void WriteUpdate(const RowChange& change) {
    DriverConnection& driver = Driver();
    // The shape is read first, each field looked at once: a run of edits to
    // the same fields finds its statement, and where its values come from,
    // without building anything.
    const std::string& shape = Shape('U', change, change.originals);
    const Located& statement = Statement(shape, [&] {
      const char* codes = shape.data() + 1;
      Located made;
      std::string set;
      for (size_t i = 0; i < base_columns_.size(); ++i) {
        if (!IsChangedCode(codes[i])) continue;
        if (!set.empty()) set += ", ";
        set += QuotedName(base_columns_[i]) + " = ?";
        made.set.push_back(base_columns_[i]);
      }
      if (made.set.empty()) return made;  // only fields that no table holds were changed
      Locate(driver, change.originals, codes, made.where, made.located);
      made.sql = "UPDATE " + quoted_table_ + " SET " + set + " WHERE " + made.where;
      return made;
    });
    if (statement.set.empty()) return;
    // The vector is reused from one update to the next, its values
    // overwritten by the next update's.
    std::vector<Variant>& params = update_params_;
    Parameters(statement, change.values, change.originals, params);
    const auto set_count = static_cast<ptrdiff_t>(statement.set.size());
    int64_t affected = 0;
    try {
      if (!key_fetched_) {
        RefuseAmbiguous(driver, statement.where,
                        std::vector<Variant>(params.begin() + set_count, params.end()),
                        statement.sql);
      }
      affected = driver.Run(statement.sql, params, 0).records_affected;
    } catch (const Error& e) {
      MarkRefusal(driver, e, change);
      throw;
    }
    if (affected == 0) {
      MarkMoved(driver, change);
      ThrowRowChanged(statement.sql);
    }
  }

  // MarkMoved: which of the changed fields moved under us: the row read
  // again by its key; without a key (or when the row is gone) all of them
  // are suspect.
  void MarkMoved(DriverConnection& driver, const RowChange& change) {
    std::vector<uint8_t> offending = change.changed;
    if (key_fetched_) {
      std::string columns_sql;
      std::string key_where;
      std::vector<Variant> key_params;
      std::vector<int32_t> read;
      for (int32_t c : base_columns_) {
        if (!change.changed[static_cast<size_t>(c)]) continue;
        columns_sql += (columns_sql.empty() ? "" : ", ") + QuotedName(c);
        read.push_back(c);
      }
      for (int32_t k : key_ordinals_) {
        key_where += (key_where.empty() ? "" : " AND ") + QuotedName(k) + " = ?";
        key_params.push_back(change.originals[k]);
      }
      try {
        const StatementResult now =
            driver.Run("SELECT " + columns_sql + " FROM " + quoted_table_ + " WHERE " + key_where,
                       key_params, 1);
        if (now.rows.RowCount() == 1) {
          for (size_t i = 0; i < read.size(); ++i) {
            const Variant& was = change.originals[read[i]];
            const Variant& is = now.rows.Cell(0, i);
            const bool same =
                IsNothing(was) ? IsNothing(is) : (!IsNothing(is) && CompareValues(was, is) == 0);
            offending[static_cast<size_t>(read[i])] = !same;
          }
        }
      } catch (const Error&) {
        // Keep every changed field marked.
      }
    }
    for (size_t c = 0; c < offending.size(); ++c) {
      if (offending[c]) change.status[c] = adFieldUnavailable;
    }
  }

  void WriteInsert(const RowChange& change, Variant* row) {
    DriverConnection& driver = Driver();
    std::vector<Variant> params;
    for (int32_t c : base_columns_) {
      // Unset fields take the table's defaults.
      if (change.changed[static_cast<size_t>(c)]) params.push_back(change.values[c]);
    }
    const std::string& sql = Statement(Shape('I', change, nullptr), [&] {
                               Located made;
                               std::string names;
                               std::string marks;
                               for (int32_t c : base_columns_) {
                                 if (!change.changed[static_cast<size_t>(c)]) continue;
                                 if (!names.empty()) {
                                   names += ", ";
                                   marks += ", ";
                                 }
                                 names += QuotedName(c);
                                 marks += "?";
                               }
                               made.sql = names.empty()
                                              ? "INSERT INTO " + quoted_table_ + " DEFAULT VALUES"
                                              : "INSERT INTO " + quoted_table_ + " (" + names +
                                                    ") VALUES (" + marks + ")";
                               return made;
                             }).sql;
    try {
      driver.Run(sql, params, 0);
    } catch (const Error& e) {
      MarkRefusal(driver, e, change);
      throw;
    }
    // The row is written from here on: what follows must not fail the
    // Update, or a second Update would insert it twice.
    std::vector<Variant> key_values;
    try {
      // The key of the new row: as set, or as the database generated it.
      for (size_t k = 0; k < key_names_.size(); ++k) {
        const int32_t ordinal = key_ordinals_[k];
        Variant value = ordinal >= 0 ? row[ordinal] : Variant();
        if (IsNothing(value)) {
          value = driver.LastInsertedKey(table_, key_names_[k]);
          if (ordinal >= 0 && !value.IsEmpty()) {
            row[ordinal] =
                ConvertForColumn(change.columns[static_cast<size_t>(ordinal)].type, value);
          }
        }
        key_values.push_back(std::move(value));
      }
    } catch (const Error&) {
      return;  // the key stays unknown; the row cannot be read back
    }
    Resync(driver, row, key_values);
  }

  // Resync reads a newly inserted row back by its key, so that the values
  // the database supplied (defaults, generated keys) are what the recordset
  // holds and what a later update compares against.
  void Resync(DriverConnection& driver, Variant* row, const std::vector<Variant>& key_values) {
    if (key_values.empty()) return;
    for (const Variant& v : key_values) {
      if (IsNothing(v)) return;
    }
    const std::string& sql =
        Statement("R", [&] {
          Located made;
          std::string columns_sql;
          for (int32_t c : base_columns_)
            columns_sql += (columns_sql.empty() ? "" : ", ") + QuotedName(c);
          std::string where;
          for (const std::string& key : key_names_)
            where += (where.empty() ? "" : " AND ") + QuoteName(key) + " = ?";
          made.sql = "SELECT " + columns_sql + " FROM " + quoted_table_ + " WHERE " + where;
          return made;
        }).sql;
    try {
      const StatementResult now = driver.Run(sql, key_values, 2);
      if (now.rows.RowCount() != 1) return;
      for (size_t i = 0; i < base_columns_.size(); ++i)
        row[base_columns_[i]] = now.rows.Cell(0, i);
    } catch (const Error&) {
      // The row is written; reading it back is a courtesy.
    }
  }

  void WriteDelete(const RowChange& change) {
    DriverConnection& driver = Driver();
    const Located& statement = Statement(Shape('D', change, change.values), [&] {
      Located made;
      Locate(driver, change.values, nullptr, made.where, made.located);
      made.sql = "DELETE FROM " + quoted_table_ + " WHERE " + made.where;
      return made;
    });
    std::vector<Variant> params;
    Parameters(statement, change.values, change.values, params);
    if (!key_fetched_) RefuseAmbiguous(driver, statement.where, params, statement.sql);
    const StatementResult result = driver.Run(statement.sql, params, 0);
    if (result.records_affected == 0) ThrowRowChanged(statement.sql);
  }

  std::shared_ptr<Session> session_;
  std::string table_;
  std::string quoted_table_;
  bool mixed_ = false;                 // fields come from more than one table
  std::vector<int32_t> base_columns_;  // ordinals of the table's own columns
  // By ordinal: the base column's name, as SQL, and the field's type.
  std::vector<std::string> names_;
  std::vector<std::string> quoted_names_;
  std::vector<DataTypeEnum> types_;
  bool key_known_ = false;
  std::vector<std::string> key_names_;         // the table's key, as the driver names it
  std::vector<int32_t> key_ordinals_;          // ordinal per key column, -1 when not fetched
  bool key_fetched_ = false;                   // every key column is among the fields
  std::map<std::string, Located> statements_;  // by Shape
  const std::pair<const std::string, Located>* last_statement_ = nullptr;
  std::vector<Variant> update_params_;  // the last update's values, kept for the room
  std::vector<char> is_key_;            // by ordinal: a key column among the fields
  std::string shape_;                   // the last Shape, its room kept
};

}  // namespace

std::shared_ptr<RowWriter> BaseTableWriter(std::shared_ptr<Session> session,
                                           const std::vector<ColumnInfo>& columns) {
  return std::make_shared<Writer>(std::move(session), columns);
}

}  // namespace kelvary::internal
