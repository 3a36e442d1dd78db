#define VEX_SRCFILE "dds"
#include "model/DimArrows.h"

#include <iterator>

#include "res/DdsStrings.h"

namespace dds {

namespace {

// "_Small" is shown as "Dot small blank" and "_DotSmall" as "Dot small": the
// pairing users know, kept although the names suggest the opposite.
constexpr ArrowheadInfo kArrowheads[] = {
    {L"", IDS_ARROW_CLOSED_FILLED},
    {L"_ClosedBlank", IDS_ARROW_CLOSED_BLANK},
    {L"_Closed", IDS_ARROW_CLOSED},
    {L"_Dot", IDS_ARROW_DOT},
    {L"_ArchTick", IDS_ARROW_ARCH_TICK},
    {L"_Oblique", IDS_ARROW_OBLIQUE},
    {L"_Open", IDS_ARROW_OPEN},
    {L"_Origin", IDS_ARROW_ORIGIN},
    {L"_Origin2", IDS_ARROW_ORIGIN2},
    {L"_Open90", IDS_ARROW_RIGHT_ANGLE},
    {L"_Open30", IDS_ARROW_OPEN30},
    {L"_DotSmall", IDS_ARROW_DOT_SMALL},
    {L"_DotBlank", IDS_ARROW_DOT_BLANK},
    {L"_Small", IDS_ARROW_DOT_SMALL_BLANK},
    {L"_BoxBlank", IDS_ARROW_BOX},
    {L"_BoxFilled", IDS_ARROW_BOX_FILLED},
    {L"_DatumBlank", IDS_ARROW_DATUM},
    {L"_DatumFilled", IDS_ARROW_DATUM_FILLED},
    {L"_Integral", IDS_ARROW_INTEGRAL},
    {L"_None", IDS_ARROW_NONE},
};

}  // namespace

std::span<const ArrowheadInfo> ArrowheadTable() { return kArrowheads; }

const ArrowheadInfo* FindArrowhead(const OdString& blockName) {
  for (const ArrowheadInfo& a : kArrowheads) {
    if (blockName == a.blockName) return &a;
  }
  return nullptr;
}

CXStringW ArrowDisplayName(const OdString& blockName) {
  const ArrowheadInfo* a = FindArrowhead(blockName);
  return a ? ddsString(a->nameId) : CXStringW(blockName);
}

}  // namespace dds
