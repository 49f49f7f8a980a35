#include <iostream>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/Variant.h"
#include "kelvary/query/QueryInterpretor.h"
#include "kelvary/service/InfoLink.h"

int main() {
  kelvary::Variant v(2.5);
  std::cout << "kelvary consumer: CLng(2.5) = " << kelvary::CLng(v) << "\n";
  return kelvary::CLng(v) == 2 ? 0 : 1;
}
