// The checked-in interface definition, and the vtable side of its dual
// interfaces, are the ones the member tables give.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "kelvary/automation/Classes.h"
#include "kelvary/automation/Enumerations.h"
#include "kelvary/automation/InterfaceText.h"

namespace kelvary::automation {
namespace {

std::string CheckedInCopy(const std::string& path) {
  std::ifstream in(KELVARY_SOURCE_DIR "/src/kelvary/automation/" + path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

TEST(InterfaceText, TheCheckedInCopiesAreWhatTheTablesGive) {
  const std::pair<std::string, std::string> copies[] = {
      {"Kelvary.idl", InterfaceDefinition()}, {"com/DualInterfaces.cpp", DualInterfaceStubs()}};
  for (const auto& [path, generated] : copies) {
    EXPECT_TRUE(generated == CheckedInCopy(path))
        << "src/kelvary/automation/" << path
        << " differs from the member tables; regenerate it with\n"
           "  cmake --build build --target update-idl\n"
           "and commit the result.";
  }
}

// A Long of an enumeration is declared as the enumeration, and every
// enumeration the tables name is declared with its members, whose names are
// unique across the library (they share one scope in a type library).
TEST(InterfaceText, EnumerationsAreDeclaredWithTheirMembers) {
  std::set<std::string> named;
  auto note = [&](const TypeRef& type) {
    if (type.kind == ValueKind::kLong && !type.name.empty()) named.insert(type.name);
  };
  for (const MemberTable* t : AllTables()) {
    for (const MemberInfo& m : t->Members()) {
      note(m.result);
      for (const ParamInfo& p : m.params)
        note(p.type);
    }
    for (const EventInfo& e : t->Events()) {
      for (const ParamInfo& p : e.params)
        note(p.type);
    }
  }
  ASSERT_FALSE(named.empty());
  const std::string text = InterfaceDefinition();
  for (const std::string& name : named) {
    ASSERT_NE(FindEnumeration(name), nullptr) << name << " is not listed with its members";
    EXPECT_NE(text.find("} " + name + ";"), std::string::npos) << name;
  }
  std::set<std::string> members;
  for (const EnumerationInfo& e : AllEnumerations()) {
    EXPECT_FALSE(e.members.empty()) << e.name;
    for (const EnumerationMember& m : e.members)
      EXPECT_TRUE(members.insert(m.name).second) << m.name << " declared twice";
  }
  for (const char* expected :
       {"    pdsmaindata = 1,\n", "    adOpenStatic = 3\n",
        "[in] ProjectDataSources SourceofData, [in, out] _Recordset** rs",
        "[id(4), propget] HRESULT State([out, retval] ObjectStateEnum* pRetVal);"}) {
    EXPECT_NE(text.find(expected), std::string::npos) << expected;
  }
}

// Each vtable entry forwards to its own member: the entry the definition
// declares for a member's kind calls that member's dispatch ID, with the
// member's parameters, in the definition's order.
TEST(InterfaceText, EveryVtableEntryCallsItsMemberByDispatchId) {
  const std::string stubs = DualInterfaceStubs();
  size_t last = 0;
  for (const MemberTable* t : AllTables()) {
    SCOPED_TRACE(t->ClassName());
    const size_t start = stubs.find("public DualFace<" + t->InterfaceName() + ">");
    ASSERT_NE(start, std::string::npos);
    EXPECT_GT(start, last) << "interfaces in the definition's order";
    last = start;
    size_t at = start;
    for (const MemberInfo& m : t->Members()) {
      std::vector<std::pair<std::string, std::string>> entries;
      if (m.Answers(kInvokeMethod)) {
        entries.emplace_back(m.name, "Method");
      } else {
        if (m.Answers(kInvokePropertyGet)) entries.emplace_back("get_" + m.name, "Get");
        if (m.Answers(kInvokePropertyPut)) entries.emplace_back("put_" + m.name, "Put");
        if (m.Answers(kInvokePropertyPutRef)) entries.emplace_back("putref_" + m.name, "PutRef");
      }
      for (const auto& [entry, call] : entries) {
        const size_t found = stubs.find(" " + entry + "(", at);
        ASSERT_NE(found, std::string::npos) << entry;
        const size_t end = stubs.find('\n', found);
        const std::string line = stubs.substr(found, end - found);
        EXPECT_NE(line.find("return " + call + "(" + std::to_string(m.id) + ", "),
                  std::string::npos)
            << line;
        // One argument per parameter, plus the new value of a let or set.
        size_t passed = 0;
        for (const char* kind : {"In<", "Ref<", "OptionalRef("}) {
          for (size_t p = line.find(kind); p != std::string::npos; p = line.find(kind, p + 1))
            ++passed;
        }
        const size_t expected = m.params.size() + (call == "Put" || call == "PutRef" ? 1 : 0);
        EXPECT_EQ(passed, expected) << line;
        at = found;
      }
    }
  }
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
