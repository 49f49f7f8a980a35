#include "kelvary/automation/InterfaceText.h"

#include <sstream>
#include <string>

#include "kelvary/automation/Classes.h"
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
      return "long";
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

}  // namespace

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
