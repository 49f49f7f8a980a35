#include "kelvary/automation/InterfaceText.h"

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "kelvary/automation/Classes.h"
#include "kelvary/automation/Enumerations.h"
#include "kelvary/automation/MemberTable.h"

namespace kelvary::automation {

namespace {

// Uuid: "{X-...}" without its braces, as the definition writes it.
std::string Uuid(const std::string& guid) {
  if (guid.size() > 2 && guid.front() == '{' && guid.back() == '}') {
    return guid.substr(1, guid.size() - 2);
  }
  return guid;
}

std::string TypeName(const TypeRef& type) {
  switch (type.kind) {
    case ValueKind::kBoolean:
      return "VARIANT_BOOL";
    case ValueKind::kInteger:
      return "short";
    case ValueKind::kLong:
      // A Long of an enumeration is declared as that enumeration.
      return FindEnumeration(type.name) != nullptr ? type.name : "long";
    case ValueKind::kSingle:
      return "float";
    case ValueKind::kDouble:
      return "double";
    case ValueKind::kCurrency:
      return "CURRENCY";
    case ValueKind::kDate:
      return "DATE";
    case ValueKind::kString:
      return "BSTR";
    case ValueKind::kObject:
      return type.name.empty() ? "IDispatch*" : "_" + type.name + "*";
    case ValueKind::kEnumerator:
      return "IUnknown*";
    case ValueKind::kVariant:
    case ValueKind::kVoid:
      break;
  }
  return "VARIANT";
}

// Param: one parameter. An optional one is a VARIANT, so that the callee
// can tell it was not passed.
std::string Param(const ParamInfo& p) {
  if (p.optional) {
    return p.by_ref ? "[in, out, optional] VARIANT* " + p.name : "[in, optional] VARIANT " + p.name;
  }
  if (p.by_ref) return "[in, out] " + TypeName(p.type) + "* " + p.name;
  return "[in] " + TypeName(p.type) + " " + p.name;
}

std::string Params(const std::vector<ParamInfo>& params, const std::string& last) {
  std::string out;
  for (const ParamInfo& p : params) {
    if (!out.empty()) out += ", ";
    out += Param(p);
  }
  if (!last.empty()) {
    if (!out.empty()) out += ", ";
    out += last;
  }
  return out;
}

std::string Id(DispId id) {
  return "id(" + std::to_string(id) + ")";
}

void WriteMember(std::ostream& os, const MemberInfo& m) {
  const std::string hidden = m.hidden ? ", hidden, restricted" : "";
  const std::string retval =
      m.result.kind == ValueKind::kVoid ? "" : "[out, retval] " + TypeName(m.result) + "* pRetVal";
  if (m.Answers(kInvokeMethod)) {
    os << "    [" << Id(m.id) << hidden << "] HRESULT " << m.name << "(" << Params(m.params, retval)
       << ");\n";
    return;
  }
  if (m.Answers(kInvokePropertyGet)) {
    os << "    [" << Id(m.id) << ", propget" << hidden << "] HRESULT " << m.name << "("
       << Params(m.params, retval) << ");\n";
  }
  if (m.Answers(kInvokePropertyPut)) {
    os << "    [" << Id(m.id) << ", propput] HRESULT " << m.name << "("
       << Params(m.params, "[in] " + TypeName(m.result) + " rhs") << ");\n";
  }
  if (m.Answers(kInvokePropertyPutRef)) {
    os << "    [" << Id(m.id) << ", propputref] HRESULT " << m.name << "("
       << Params(m.params, "[in] " + TypeName(m.result) + " rhs") << ");\n";
  }
}

void WriteInterface(std::ostream& os, const MemberTable& t) {
  os << "  [\n"
     << "    odl,\n"
     << "    uuid(" << Uuid(t.Guids().interface_id) << "),\n"
     << "    helpstring(\"" << t.Help() << "\"),\n"
     << "    dual,\n"
     << "    nonextensible,\n"
     << "    oleautomation\n"
     << "  ]\n"
     << "  interface " << t.InterfaceName() << " : IDispatch {\n";
  for (const MemberInfo& m : t.Members())
    WriteMember(os, m);
  os << "  };\n\n";
}

void WriteEnumeration(std::ostream& os, const EnumerationInfo& e) {
  os << "  typedef [v1_enum] enum {\n";
  for (size_t i = 0; i < e.members.size(); ++i) {
    os << "    " << e.members[i].name << " = " << e.members[i].value
       << (i + 1 < e.members.size() ? ",\n" : "\n");
  }
  os << "  } " << e.name << ";\n\n";
}

void WriteEvents(std::ostream& os, const MemberTable& t) {
  os << "  [\n"
     << "    uuid(" << Uuid(t.Guids().events_id) << "),\n"
     << "    helpstring(\"Events of " << t.ClassName() << "\")\n"
     << "  ]\n"
     << "  dispinterface " << t.EventInterfaceName() << " {\n"
     << "    properties:\n"
     << "    methods:\n";
  for (const EventInfo& e : t.Events()) {
    os << "      [" << Id(e.id) << "] void " << e.name << "(" << Params(e.params, "") << ");\n";
  }
  os << "  };\n\n";
}

void WriteClass(std::ostream& os, const MemberTable& t) {
  os << "  [\n"
     << "    uuid(" << Uuid(t.Guids().class_id) << "),\n"
     << "    helpstring(\"" << t.Help() << "\")" << (t.Creatable() ? "" : ",\n    noncreatable")
     << "\n  ]\n"
     << "  coclass " << t.ClassName() << " {\n"
     << "    [default] interface " << t.InterfaceName() << ";\n";
  if (!t.Events().empty()) {
    os << "    [default, source] dispinterface " << t.EventInterfaceName() << ";\n";
  }
  os << "  };\n\n";
}

// The vtable side. The stubs name their parameters by position (a1, a2,
// ..., r for the result): a parameter's own name may be a macro of the
// platform's headers.

// CxxType: the parameter's type as the type library compiler's header
// spells it.
std::string CxxType(const TypeRef& type) {
  switch (type.kind) {
    case ValueKind::kInteger:
      return "short";
    case ValueKind::kLong:
      // The enumeration as the header declares it, at global scope: the
      // library's own C++ enumeration of that name is another type.
      return FindEnumeration(type.name) != nullptr ? "::" + type.name : "LONG";
    case ValueKind::kCurrency:
      return "CY";
    case ValueKind::kVoid:
      break;
    default:
      return TypeName(type);
  }
  return "VARIANT";
}

// VarType: the tag of the parameter's value in a VARIANT.
std::string VarType(const TypeRef& type) {
  switch (type.kind) {
    case ValueKind::kBoolean:
      return "VT_BOOL";
    case ValueKind::kInteger:
      return "VT_I2";
    case ValueKind::kLong:
      return "VT_I4";
    case ValueKind::kSingle:
      return "VT_R4";
    case ValueKind::kDouble:
      return "VT_R8";
    case ValueKind::kCurrency:
      return "VT_CY";
    case ValueKind::kDate:
      return "VT_DATE";
    case ValueKind::kString:
      return "VT_BSTR";
    case ValueKind::kObject:
      return "VT_DISPATCH";
    case ValueKind::kEnumerator:
      return "VT_UNKNOWN";
    case ValueKind::kVariant:
    case ValueKind::kVoid:
      break;
  }
  return "VT_VARIANT";
}

// StubParam: the declaration of parameter k and the argument it becomes.
std::pair<std::string, std::string> StubParam(const ParamInfo& p, size_t k) {
  const std::string name = "a" + std::to_string(k + 1);
  if (p.optional && p.by_ref) return {"VARIANT* " + name, "OptionalRef(" + name + ")"};
  if (p.optional) return {"VARIANT " + name, "In<VT_VARIANT>(" + name + ")"};
  if (p.by_ref)
    return {CxxType(p.type) + "* " + name, "Ref<" + VarType(p.type) + ">(" + name + ")"};
  return {CxxType(p.type) + " " + name, "In<" + VarType(p.type) + ">(" + name + ")"};
}

// StubResult: where a read's value goes.
std::string StubResult(const TypeRef& type) {
  if (type.kind == ValueKind::kObject && !type.name.empty()) return "OutObject(r)";
  return "Out<" + VarType(type) + ">(r)";
}

void WriteStub(std::ostream& os, const std::string& name, const std::string& call, DispId id,
               const std::vector<ParamInfo>& params, const TypeRef* result, const TypeRef* value) {
  std::string decl;
  std::string args;
  for (size_t k = 0; k < params.size(); ++k) {
    const auto [d, a] = StubParam(params[k], k);
    decl += (decl.empty() ? "" : ", ") + d;
    args += (args.empty() ? "" : ", ") + a;
  }
  std::string out = "Result{}";
  if (result != nullptr) {
    decl += (decl.empty() ? "" : ", ") + CxxType(*result) + "* r";
    out = StubResult(*result);
  }
  if (value != nullptr) {
    decl += (decl.empty() ? "" : ", ") + CxxType(*value) + " v";
    args += (args.empty() ? "" : ", ") + std::string("In<") + VarType(*value) + ">(v)";
  }
  os << "  HRESULT STDMETHODCALLTYPE " << name << "(" << decl << ") override { return " << call
     << "(" << id << ", " << out << ", {" << args << "}); }\n";
}

void WriteStubs(std::ostream& os, const MemberTable& t) {
  const std::string face = "Dual" + t.InterfaceName();
  os << "class " << face << " final : public DualFace<" << t.InterfaceName() << "> {\n"
     << " public:\n"
     << "  using DualFace::DualFace;\n";
  for (const MemberInfo& m : t.Members()) {
    const TypeRef* result = m.result.kind == ValueKind::kVoid ? nullptr : &m.result;
    if (m.Answers(kInvokeMethod)) {
      WriteStub(os, m.name, "Method", m.id, m.params, result, nullptr);
      continue;
    }
    if (m.Answers(kInvokePropertyGet)) {
      WriteStub(os, "get_" + m.name, "Get", m.id, m.params, result, nullptr);
    }
    if (m.Answers(kInvokePropertyPut)) {
      WriteStub(os, "put_" + m.name, "Put", m.id, m.params, nullptr, &m.result);
    }
    if (m.Answers(kInvokePropertyPutRef)) {
      WriteStub(os, "putref_" + m.name, "PutRef", m.id, m.params, nullptr, &m.result);
    }
  }
  os << "};\n\n";
}

}  // namespace

std::string DualInterfaceStubs() {
  std::ostringstream os;
  os << "// DualInterfaces.cpp: the vtable side of the library's dual interfaces.\n"
     << "// Generated from the member tables by kelvary-idl; do not edit by hand.\n"
     << "// clang-format off\n"
     << "#include \"kelvary/automation/com/DualFace.h\"\n\n"
     << "namespace kelvary::com {\n\n"
     << "namespace {\n\n";
  for (const MemberTable* t : AllTables())
    WriteStubs(os, *t);
  os << "}  // namespace\n\n"
     << "DualBase* NewDualFace(REFIID iid, ComDispatch* owner) {\n";
  for (const MemberTable* t : AllTables()) {
    os << "  if (iid == __uuidof(" << t->InterfaceName() << ")) return new Dual"
       << t->InterfaceName() << "(owner);\n";
  }
  os << "  return nullptr;\n"
     << "}\n\n"
     << "}  // namespace kelvary::com\n";
  return os.str();
}

std::string InterfaceDefinition() {
  std::ostringstream os;
  os << "// Kelvary.idl: the interfaces of the Kelvary library as hosts see them.\n"
     << "// Generated from the member tables by kelvary-idl; do not edit by hand.\n\n"
     << "import \"oaidl.idl\";\n"
     << "import \"ocidl.idl\";\n\n"
     << "[\n"
     << "  uuid(" << Uuid(std::string(kTypeLibraryId)) << "),\n"
     << "  version(" << kTypeLibraryMajor << "." << kTypeLibraryMinor << "),\n"
     << "  helpstring(\"Kelvary database services\")\n"
     << "]\n"
     << "library " << kTypeLibraryName << "\n{\n"
     << "  importlib(\"stdole2.tlb\");\n\n";
  for (const EnumerationInfo& e : AllEnumerations())
    WriteEnumeration(os, e);
  for (const MemberTable* t : AllTables())
    os << "  interface " << t->InterfaceName() << ";\n";
  os << "\n";
  for (const MemberTable* t : AllTables())
    WriteInterface(os, *t);
  for (const MemberTable* t : AllTables()) {
    if (!t->Events().empty()) WriteEvents(os, *t);
  }
  for (const MemberTable* t : AllTables())
    WriteClass(os, *t);
  os << "};\n";
  return os.str();
}

}  // namespace kelvary::automation
