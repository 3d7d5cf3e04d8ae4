// Record types of the document stream and of drawings, with their names in [MS-PPT] and [MS-ODRAW].
#pragma once

#include <cstdint>

namespace ppt {

enum RecordType : std::uint16_t {
    RT_Document = 0x03E8,
    RT_EndDocumentAtom = 0x03EA,
    RT_SlidePersistAtom = 0x03F3,
    RT_ExternalObjectList = 0x0409,
    RT_Drawing = 0x040C,
    RT_ExternalObjectRefAtom = 0x0BC1,
    RT_TextHeaderAtom = 0x0F9F,
    RT_TextCharsAtom = 0x0FA0,
    RT_StyleTextPropAtom = 0x0FA1,
    RT_MasterTextPropAtom = 0x0FA2,
    RT_TextBookmarkAtom = 0x0FA7,
    RT_TextBytesAtom = 0x0FA8,
    RT_TextSpecialInfoAtom = 0x0FAA,
    RT_CString = 0x0FBA,
    RT_ExternalOleObjectAtom = 0x0FC3,
    RT_ExternalOleLink = 0x0FCE,
    RT_ExternalHyperlinkAtom = 0x0FD3,
    RT_ExternalHyperlink = 0x0FD7,
    RT_SlideNumberMetaCharAtom = 0x0FD8,
    RT_TextInteractiveInfoAtom = 0x0FDF,
    RT_ExternalVideoList = 0x0FEA, // container of several external videos
    RT_ExternalOleControl = 0x0FEE,
    RT_SlideListWithText = 0x0FF0,
    RT_InteractiveInfo = 0x0FF2,
    RT_InteractiveInfoAtom = 0x0FF3,
    RT_UserEditAtom = 0x0FF5,
    RT_DateTimeMetaCharAtom = 0x0FF7,
    RT_GenericDateMetaCharAtom = 0x0FF8,
    RT_HeaderMetaCharAtom = 0x0FF9,
    RT_FooterMetaCharAtom = 0x0FFA,
    RT_ExternalMediaAtom = 0x1004,
    RT_ExternalVideo = 0x1005,
    RT_ExternalAviMovie = 0x1006,
    RT_ExternalMciMovie = 0x1007,
    RT_ExternalMidiAudio = 0x100D,
    RT_ExternalWavAudioLink = 0x1010,
    RT_ExternalOleObjectStg = 0x1011,
    RT_RtfDateTimeMetaCharAtom = 0x1015,
    RT_ProgTags = 0x1388,
    RT_ProgStringTag = 0x1389,
    RT_PersistDirectoryAtom = 0x1772,
    OfficeArtDgContainer = 0xF002,
    OfficeArtSpgrContainer = 0xF003,
    OfficeArtSpContainer = 0xF004,
    OfficeArtFDG = 0xF008,
    OfficeArtFSP = 0xF00A,
    OfficeArtFOPT = 0xF00B,
    OfficeArtClientTextbox = 0xF00D,
    OfficeArtClientData = 0xF011,
};

} // namespace ppt
