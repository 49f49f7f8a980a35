// The checked-in interface definition is the one the member tables give.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "kelvary/automation/Classes.h"
#include "kelvary/automation/InterfaceText.h"

namespace kelvary::automation {
namespace {

std::string CheckedInCopy() {
  std::ifstream in(KELVARY_SOURCE_DIR "/src/kelvary/automation/Kelvary.idl", std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

TEST(InterfaceText, TheCheckedInCopyIsWhatTheTablesGive) {
  const std::string generated = InterfaceDefinition();
  EXPECT_TRUE(generated == CheckedInCopy())
      << "src/kelvary/automation/Kelvary.idl differs from the member tables; regenerate it with\n"
         "  cmake --build build --target update-idl\n"
         "and commit the result.";
}

TEST(InterfaceText, EveryClassMemberAndEventIsDeclared) {
  const std::string text = InterfaceDefinition();
  for (const MemberTable* t : AllTables()) {
    SCOPED_TRACE(t->ClassName());
    EXPECT_NE(text.find("interface " + t->InterfaceName() + " : IDispatch {"), std::string::npos);
    EXPECT_NE(text.find("coclass " + t->ClassName() + " {"), std::string::npos);
    for (const MemberInfo& m : t->Members()) {
      EXPECT_NE(text.find("[id(" + std::to_string(m.id)), std::string::npos) << m.name;
      EXPECT_NE(text.find("HRESULT " + m.name + "("), std::string::npos) << m.name;
    }
    for (const EventInfo& e : t->Events())
      EXPECT_NE(text.find("] void " + e.name + "("), std::string::npos) << e.name;
  }
  // The shapes a type library compiler and a host rely on.
  for (const char* expected :
       {"import \"oaidl.idl\";", "dispinterface __InfoLink {",
        "[default, source] dispinterface __InfoLink;", "[in, out] VARIANT_BOOL* bContinue",
        "[in, out] long* ReturnValue", "[in, out] double* ReturnValue",
        "[in, out, optional] VARIANT* DirectXectString",
        "[id(0), propget] HRESULT Item([in] VARIANT vntIndexKey, [out, retval] "
        "_QueryDataTable** pRetVal);",
        "[id(-4), propget, hidden, restricted] HRESULT NewEnum([out, retval] IUnknown** pRetVal);",
        "[id(0), propget] HRESULT Fields([out, retval] _Fields** pRetVal);",
        "propputref] HRESULT AppDataXion([in] _Connection* rhs);"}) {
    EXPECT_NE(text.find(expected), std::string::npos) << expected;
  }
}

}  // namespace
}  // namespace kelvary::automation
