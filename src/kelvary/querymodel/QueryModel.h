// The query model in one include: the record classes of a stored query
// definition (levels, tables, output columns, condition groups, parameters,
// sort options) and the host's value records, each with its keyed
// collection, and the model's enumerations.
#pragma once

#include "kelvary/querymodel/ConditionNode.h"
#include "kelvary/querymodel/FieldLink.h"
#include "kelvary/querymodel/QueryCollection.h"
#include "kelvary/querymodel/QueryDataTable.h"
#include "kelvary/querymodel/QueryModelEnums.h"
#include "kelvary/querymodel/QueryOutputField.h"
#include "kelvary/querymodel/QueryShapeNest.h"
#include "kelvary/querymodel/QueryTemplateSortOption.h"
#include "kelvary/querymodel/RepParam.h"
#include "kelvary/querymodel/ValueSet.h"
