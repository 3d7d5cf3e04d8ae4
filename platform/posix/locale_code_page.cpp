#include "platform/posix/locale_code_page.h"

#include "platform/posix/kernel.h"

#include <cstdlib>
#include <langinfo.h>
#include <locale.h>
#include <string>
#include <string_view>

namespace platform {

namespace {

struct Codeset {
    std::string_view name; // upper case, letters and digits only
    UINT page;
};

constexpr Codeset kCodesets[] = {
    {"UTF8", 65001},     {"ISO88591", 28591}, {"ISO88592", 28592},  {"ISO88593", 28593},
    {"ISO88594", 28594}, {"ISO88595", 28595}, {"ISO88596", 28596},  {"ISO88597", 28597},
    {"ISO88598", 28598}, {"ISO88599", 28599}, {"ISO885913", 28603}, {"ISO885915", 28605},
    {"CP1250", 1250},    {"CP1251", 1251},    {"CP1252", 1252},     {"CP1253", 1253},
    {"CP1254", 1254},    {"CP1255", 1255},    {"CP1256", 1256},     {"CP1257", 1257},
    {"CP1258", 1258},    {"KOI8R", 20866},    {"KOI8U", 21866},     {"TIS620", 874},
    {"SHIFTJIS", 932},   {"SJIS", 932},       {"WINDOWS31J", 932},  {"CP932", 932},
    {"GB2312", 936},     {"GBK", 936},        {"CP936", 936},       {"EUCKR", 949},
    {"CP949", 949},      {"BIG5", 950},       {"CP950", 950},
};

std::string locale_name() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return "C";
}

// What stands between '.' and '@' in language.codeset@modifier.
std::string codeset_in_name(const std::string& locale) {
    const std::size_t dot = locale.find('.');
    return dot == std::string::npos ? std::string()
                                    : locale.substr(dot + 1, locale.find('@', dot) - dot - 1);
}

std::string codeset_of(const std::string& locale) {
    const locale_t handle = newlocale(LC_CTYPE_MASK, locale.c_str(), nullptr);
    if (handle == nullptr) {
        return codeset_in_name(locale);
    }
    std::string codeset = nl_langinfo_l(CODESET, handle);
    freelocale(handle);
    return codeset;
}

std::string plain_upper(std::string_view name) {
    std::string plain;
    for (const char c : name) {
        if (c >= 'a' && c <= 'z') {
            plain.push_back(static_cast<char>(c - 'a' + 'A'));
        } else if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) {
            plain.push_back(c);
        }
    }
    return plain;
}

} // namespace

UINT code_page_of_locale() {
    const std::string codeset = plain_upper(codeset_of(locale_name()));
    for (const Codeset& known : kCodesets) {
        if (known.name == codeset) {
            return known.page;
        }
    }
    return CP_UTF8;
}

} // namespace platform
