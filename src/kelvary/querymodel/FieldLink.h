// FieldLink: the description of one data field bound to one input control on
// a host form; and FieldLinks, the fields of a form. Plain records, filled
// and read by the host; one thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/platform/Variant.h"
#include "kelvary/querymodel/QueryCollection.h"
#include "kelvary/querymodel/QueryModelEnums.h"

namespace kelvary {

// FieldLink: one field on a form.
class FieldLink : public Object {
 public:
  std::string FieldName;                                    // field name
  std::string Caption;                                      // caption shown with the control
  FieldDataTypes DataType = fdtUnknown;                     // data type
  Variant DefaultValue;                                     // value used when none is entered
  std::string ControlName;                                  // name of the host control
  int16_t ControlIndex = 0;                                 // index within a control array
  int32_t PolicyFlags = 0;                                  // policy bits, as the host defines them
  NullActions NullAction = naIgnore;                        // what to do when left empty
  int32_t FieldID = 0;                                      // ID of the field in DataTableFields
  ControlTypes ControlType = static_cast<ControlTypes>(0);  // kind of control
  int16_t MaxLength = 0;                                    // maximum input length
  int32_t FormatStyle = 0;                                  // display format code
  std::string DisplayUnits;                                 // units shown beside the value
  float xLeft = 0;                                          // left position of the control
  float yTop = 0;                                           // top position of the control
  float ControlWidth = 0;                                   // width
  float ControlHeight = 0;                                  // height
  int32_t SearchLinkID = 0;                                 // search link supplying the choices
  bool HasManyEntries = false;                              // the search link's list is large
};

// FieldLinks: the fields of one form.
class FieldLinks : public QueryCollection<FieldLink> {
 public:
  // Add creates a field link and assigns NullAction, ControlType (from
  // TypeOfControl), ControlIndex, ControlName, DefaultValue (as a value: an
  // object raises Error 438), DataType, Caption and FieldID (from ID) in that
  // order, inserts it under sKey (none when "") and returns it. On any error
  // nothing is inserted; a duplicate key raises Error 457.
  std::shared_ptr<FieldLink> Add(int32_t ID, NullActions NullAction, ControlTypes TypeOfControl,
                                 int16_t ControlIndex, const std::string& ControlName,
                                 const Variant& DefaultValue, FieldDataTypes DataType,
                                 const std::string& Caption, const std::string& sKey = "");
};

}  // namespace kelvary
