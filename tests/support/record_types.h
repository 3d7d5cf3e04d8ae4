// Record types of a presentation, as the builder writes them ([MS-PPT] and [MS-ODRAW] names). Kept
// apart from the constants of the code under test, so that a wrong number there shows.
#pragma once

#include <cstdint>

namespace presentation_builder::record_type {

inline constexpr std::uint16_t kDocument = 0x03E8;
inline constexpr std::uint16_t kDocumentAtom = 0x03E9;
inline constexpr std::uint16_t kEndDocumentAtom = 0x03EA;
inline constexpr std::uint16_t kSlide = 0x03EE;
inline constexpr std::uint16_t kSlideAtom = 0x03EF;
inline constexpr std::uint16_t kNotes = 0x03F0;
inline constexpr std::uint16_t kNotesAtom = 0x03F1;
inline constexpr std::uint16_t kSlidePersistAtom = 0x03F3;
inline constexpr std::uint16_t kMainMaster = 0x03F8;
inline constexpr std::uint16_t kExternalObjectList = 0x0409;
inline constexpr std::uint16_t kExternalObjectListAtom = 0x040A;
inline constexpr std::uint16_t kDrawingGroup = 0x040B;
inline constexpr std::uint16_t kDrawing = 0x040C;
inline constexpr std::uint16_t kColorSchemeAtom = 0x07F0;
inline constexpr std::uint16_t kExternalObjectRefAtom = 0x0BC1;
inline constexpr std::uint16_t kTextHeaderAtom = 0x0F9F;
inline constexpr std::uint16_t kTextCharsAtom = 0x0FA0;
inline constexpr std::uint16_t kStyleTextAtom = 0x0FA1;
inline constexpr std::uint16_t kMasterTextAtom = 0x0FA2;
inline constexpr std::uint16_t kTextBookmarkAtom = 0x0FA7;
inline constexpr std::uint16_t kTextBytesAtom = 0x0FA8;
inline constexpr std::uint16_t kTextSpecialInfoAtom = 0x0FAA;
inline constexpr std::uint16_t kCString = 0x0FBA;
inline constexpr std::uint16_t kExternalOleObjectAtom = 0x0FC3;
inline constexpr std::uint16_t kExternalOleLink = 0x0FCE;
inline constexpr std::uint16_t kExternalOleLinkAtom = 0x0FD1;
inline constexpr std::uint16_t kExternalHyperlinkAtom = 0x0FD3;
inline constexpr std::uint16_t kExternalHyperlink = 0x0FD7;
inline constexpr std::uint16_t kSlideNumberAtom = 0x0FD8;
inline constexpr std::uint16_t kTextInteractiveInfoAtom = 0x0FDF;
inline constexpr std::uint16_t kExternalVideoList = 0x0FEA;
inline constexpr std::uint16_t kExternalOleControl = 0x0FEE;
inline constexpr std::uint16_t kSlideListWithText = 0x0FF0;
inline constexpr std::uint16_t kInteractiveInfo = 0x0FF2;
inline constexpr std::uint16_t kInteractiveInfoAtom = 0x0FF3;
inline constexpr std::uint16_t kUserEditAtom = 0x0FF5;
inline constexpr std::uint16_t kCurrentUserAtom = 0x0FF6;
inline constexpr std::uint16_t kDateTimeAtom = 0x0FF7;
inline constexpr std::uint16_t kGenericDateAtom = 0x0FF8;
inline constexpr std::uint16_t kHeaderAtom = 0x0FF9;
inline constexpr std::uint16_t kFooterAtom = 0x0FFA;
inline constexpr std::uint16_t kExternalMediaAtom = 0x1004;
inline constexpr std::uint16_t kExternalVideo = 0x1005;
inline constexpr std::uint16_t kExternalAviMovie = 0x1006;
inline constexpr std::uint16_t kExternalMciMovie = 0x1007;
inline constexpr std::uint16_t kExternalMidiAudio = 0x100D;
inline constexpr std::uint16_t kExternalWavAudioLink = 0x1010;
inline constexpr std::uint16_t kExternalOleObjectStg = 0x1011;
inline constexpr std::uint16_t kRtfDateTimeAtom = 0x1015;
inline constexpr std::uint16_t kProgTags = 0x1388;
inline constexpr std::uint16_t kProgStringTag = 0x1389;
inline constexpr std::uint16_t kPersistDirectoryAtom = 0x1772;

inline constexpr std::uint16_t kArtDrawingGroup = 0xF000;
inline constexpr std::uint16_t kArtDrawing = 0xF002;
inline constexpr std::uint16_t kArtShapeGroup = 0xF003;
inline constexpr std::uint16_t kArtShape = 0xF004;
inline constexpr std::uint16_t kArtDrawingGroupAtom = 0xF006;
inline constexpr std::uint16_t kArtDrawingAtom = 0xF008;
inline constexpr std::uint16_t kArtGroupBounds = 0xF009;
inline constexpr std::uint16_t kArtShapeAtom = 0xF00A;
inline constexpr std::uint16_t kArtOptions = 0xF00B;
inline constexpr std::uint16_t kArtClientTextbox = 0xF00D;
inline constexpr std::uint16_t kArtClientAnchor = 0xF010;
inline constexpr std::uint16_t kArtClientData = 0xF011;

} // namespace presentation_builder::record_type
