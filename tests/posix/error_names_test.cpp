// Symbolic names of error codes.
#include "plugin/error_names.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using ppt::error_name;

TEST(ErrorNames, OneOfEachFamily) {
    EXPECT_STREQ(error_name(0x00000000), "S_OK");
    EXPECT_STREQ(error_name(0x00000001), "S_FALSE");
    EXPECT_STREQ(error_name(0x80070006), "ERROR_INVALID_HANDLE");
    EXPECT_STREQ(error_name(0x80070002), "ERROR_FILE_NOT_FOUND");
    EXPECT_STREQ(error_name(0x800708CA), "ERROR_NOT_CONNECTED");
    EXPECT_STREQ(error_name(0x800706BA), "RPC_S_SERVER_UNAVAILABLE");
    EXPECT_STREQ(error_name(0x80072733), "WSAEWOULDBLOCK");
    EXPECT_STREQ(error_name(0x8000FFFF), "E_UNEXPECTED");
    EXPECT_STREQ(error_name(0x800401F0), "CO_E_NOTINITIALIZED");
    EXPECT_STREQ(error_name(0x800401E4), "MK_E_SYNTAX");
    EXPECT_STREQ(error_name(0x80030002), "STG_E_FILENOTFOUND");
    EXPECT_STREQ(error_name(0x80040000), "OLE_E_OLEVERB");
    EXPECT_STREQ(error_name(0x80040064), "DV_E_FORMATETC");
    EXPECT_STREQ(error_name(0x80020003), "DISP_E_MEMBERNOTFOUND");
    EXPECT_STREQ(error_name(0x8002801D), "TYPE_E_LIBNOTREGISTERED");
    EXPECT_STREQ(error_name(0x80010108), "RPC_E_DISCONNECTED");
    EXPECT_STREQ(error_name(0x80090001), "NTE_BAD_UID");
    EXPECT_STREQ(error_name(0x800B0101), "CERT_E_EXPIRED");
    EXPECT_STREQ(error_name(0x80096001), "TRUST_E_SYSTEM_ERROR");
    EXPECT_STREQ(error_name(0x80040154), "REGDB_E_CLASSNOTREG");
    EXPECT_STREQ(error_name(0x80040201), "EVENT_E_ALL_SUBSCRIBERS_FAILED");
    EXPECT_STREQ(error_name(0x800A0005), "CTL_E_ILLEGALFUNCTIONCALL");
    EXPECT_STREQ(error_name(0x800A02DF), "CTL_E_CANTSAVEFILETOTEMP"); // 735
}

TEST(ErrorNames, CodesWithoutAName) {
    EXPECT_STREQ(error_name(0x8007FFFF), "Unknown or new error");
    EXPECT_STREQ(error_name(0x800401FF), "CO_E_RELEASED");
    EXPECT_STREQ(error_name(0x80040191), "Unknown or new error");
    EXPECT_STREQ(error_name(0x800A0257), "Unknown or new error"); // 599
    EXPECT_STREQ(error_name(0xFFFFFFFF), "Unknown or new error");
    // What applications define for themselves.
    EXPECT_STREQ(error_name(0x80040200), "");
    EXPECT_STREQ(error_name(0x80040300), "");
    EXPECT_STREQ(error_name(0x800A0258), ""); // 600
}

TEST(ErrorNames, TheTableIsSortedAndEachCodeStandsOnce) {
    ASSERT_GT(ppt::kErrorNameCount, 1000u);
    for (std::size_t i = 0; i < ppt::kErrorNameCount; ++i) {
        const ppt::ErrorName& entry = ppt::kErrorNames[i];
        EXPECT_LE(std::strlen(entry.name), 99u);
        EXPECT_STREQ(error_name(entry.code), entry.name);
        if (i > 0) {
            EXPECT_LT(ppt::kErrorNames[i - 1].code, entry.code) << entry.name;
        }
    }
}

} // namespace
