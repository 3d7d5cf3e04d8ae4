// GetCPInfo: what the plug-in asks of a code page as a whole.
#include "platform/code_page/code_page.h"
#include "platform/posix/kernel.h"

BOOL GetCPInfo(UINT code_page, CPINFO* info) {
    if (code_page != CP_ACP || info == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *info = {};
    info->DefaultChar[0] = '?';
    const UINT acp = GetACP();
    info->MaxCharSize = acp == CP_UTF8 ? 4 : code_page::is_double_byte(acp) ? 2 : 1;
    return TRUE;
}
