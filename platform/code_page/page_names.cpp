// See page_names.h. Tables only; the pages are in ascending order.
#include "platform/code_page/page_names.h"

#include <algorithm>
#include <iterator>

namespace code_page {
namespace {

struct PageName {
    std::uint32_t page;
    const char* name;
};

constexpr PageName kNames[] = {
    {437, "CP437"},         {737, "CP737"},          {775, "CP775"},
    {850, "CP850"},         {852, "CP852"},          {855, "CP855"},
    {857, "CP857"},         {858, "CP858"},          {860, "CP860"},
    {861, "CP861"},         {862, "CP862"},          {863, "CP863"},
    {864, "CP864"},         {865, "CP865"},          {866, "CP866"},
    {869, "CP869"},         {874, "CP874"},          {932, "CP932"},
    {936, "CP936"},         {949, "CP949"},          {950, "CP950"},
    {1250, "CP1250"},       {1251, "CP1251"},        {1252, "CP1252"},
    {1253, "CP1253"},       {1254, "CP1254"},        {1255, "CP1255"},
    {1256, "CP1256"},       {1257, "CP1257"},        {1258, "CP1258"},
    {10000, "MACINTOSH"},   {10007, "MAC-CYRILLIC"}, {10029, "MAC-CENTRALEUROPE"},
    {20127, "US-ASCII"},    {20866, "KOI8-R"},       {21866, "KOI8-U"},
    {28591, "ISO-8859-1"},  {28592, "ISO-8859-2"},   {28593, "ISO-8859-3"},
    {28594, "ISO-8859-4"},  {28595, "ISO-8859-5"},   {28596, "ISO-8859-6"},
    {28597, "ISO-8859-7"},  {28598, "ISO-8859-8"},   {28599, "ISO-8859-9"},
    {28603, "ISO-8859-13"}, {28605, "ISO-8859-15"},
};

// Runs of bytes that map to a run of private use units, or of control characters.
struct UndefinedRun {
    std::uint32_t page;
    std::uint8_t first;
    std::uint8_t last;
    char16_t unit;
};

constexpr UndefinedRun kUndefined[] = {
    {874, 0x80, 0x9F, 0x0080},  {874, 0xDB, 0xDE, 0xF8C1},  {874, 0xFC, 0xFF, 0xF8C5},
    {932, 0x80, 0x80, 0x0080},  {932, 0xA0, 0xA0, 0x00A0},  {932, 0xFD, 0xFF, 0xF8F1},
    {949, 0x80, 0x80, 0x0080},  {950, 0x80, 0x80, 0x0080},  {1250, 0x80, 0x9F, 0x0080},
    {1251, 0x80, 0x9F, 0x0080}, {1252, 0x80, 0x9F, 0x0080}, {1253, 0x80, 0x9F, 0x0080},
    {1253, 0xAA, 0xAA, 0xF8F9}, {1253, 0xD2, 0xD2, 0xF8FA}, {1253, 0xFF, 0xFF, 0xF8FB},
    {1254, 0x80, 0x9F, 0x0080}, {1255, 0x80, 0x9F, 0x0080}, {1255, 0xCA, 0xCA, 0x05BA},
    {1255, 0xD9, 0xDF, 0xF88D}, {1255, 0xFB, 0xFC, 0xF894}, {1255, 0xFF, 0xFF, 0xF896},
    {1256, 0x80, 0x9F, 0x0080}, {1257, 0x80, 0x9F, 0x0080}, {1257, 0xA1, 0xA1, 0xF8FC},
    {1257, 0xA5, 0xA5, 0xF8FD}, {1258, 0x80, 0x9F, 0x0080},
};

} // namespace

const char* iconv_name(std::uint32_t page) {
    const PageName* found =
        std::lower_bound(std::begin(kNames), std::end(kNames), page,
                         [](const PageName& entry, std::uint32_t p) { return entry.page < p; });
    return found != std::end(kNames) && found->page == page ? found->name : nullptr;
}

char16_t unit_for_undefined(std::uint32_t page, std::uint8_t byte) {
    for (const UndefinedRun& run : kUndefined) {
        if (run.page == page && byte >= run.first && byte <= run.last) {
            return static_cast<char16_t>(run.unit + (byte - run.first));
        }
    }
    return 0;
}

} // namespace code_page
