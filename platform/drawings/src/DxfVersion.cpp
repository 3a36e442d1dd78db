#include "drawings/DxfVersion.h"

#include <array>
#include <cassert>
#include <cctype>

#include "drawings/DxfTags.h"

namespace dxfver {
namespace {

struct VersionName {
  DxfVersion version;
  std::string_view acadver;
  std::string_view keyword;
};

// The releases before R12 go by their program release names; AC1009 was
// written by both R11 and R12, and R12 is the name users know it by.
constexpr std::array<VersionName, 12> kVersions{{
    {DxfVersion::AC1003, "AC1003", "R2.6"},
    {DxfVersion::AC1004, "AC1004", "R9"},
    {DxfVersion::AC1006, "AC1006", "R10"},
    {DxfVersion::R12, "AC1009", "R12"},
    {DxfVersion::R13, "AC1012", "R13"},
    {DxfVersion::R14, "AC1014", "R14"},
    {DxfVersion::R2000, "AC1015", "R2000"},
    {DxfVersion::R2004, "AC1018", "R2004"},
    {DxfVersion::R2007, "AC1021", "R2007"},
    {DxfVersion::R2010, "AC1024", "R2010"},
    {DxfVersion::R2013, "AC1027", "R2013"},
    {DxfVersion::R2018, "AC1032", "R2018"},
}};

const VersionName& entry(DxfVersion v) {
  for (const VersionName& e : kVersions)
    if (e.version == v) return e;
  assert(false && "DxfVersion enumerator without a row in kVersions");
  return kVersions.back();
}

}  // namespace

std::optional<DxfVersion> fromAcadVer(std::string_view acadver) {
  // Some writers pad the value; the version string itself is never blank-sensitive.
  while (!acadver.empty() && acadver.back() == ' ') acadver.remove_suffix(1);
  while (!acadver.empty() && acadver.front() == ' ') acadver.remove_prefix(1);
  for (const VersionName& e : kVersions)
    if (dxfEqualNoCase(e.acadver, acadver)) return e.version;
  return std::nullopt;
}

std::string_view acadVer(DxfVersion v) { return entry(v).acadver; }

std::optional<DxfVersion> fromKeyword(std::string_view keyword) {
  for (const VersionName& e : kVersions)
    if (dxfEqualNoCase(e.keyword, keyword)) return e.version;
  return std::nullopt;
}

std::string_view keyword(DxfVersion v) { return entry(v).keyword; }

}  // namespace dxfver
