#include "reader/user_edit.h"

#include <algorithm>

namespace ppt {

namespace {

constexpr std::uint32_t kPlainHeaderToken = 0xE391C05F;
constexpr std::uint16_t kLongestUserName = 255;

template <std::size_t size>
std::array<std::uint8_t, size> to_array(const bytes::Bytes& data) {
    std::array<std::uint8_t, size> result{};
    std::copy(data.begin(), data.end(), result.begin());
    return result;
}

} // namespace

bool CurrentUser::is_valid() const {
    return size == kCurrentUserSize && header_token == kPlainHeaderToken &&
           user_name_length <= kLongestUserName;
}

CurrentUser decode_current_user(const CurrentUserBytes& data) {
    bytes::Cursor cursor(data);
    CurrentUser user;
    user.size = cursor.u32();
    user.header_token = cursor.u32();
    user.offset_to_current_edit = cursor.u32();
    user.user_name_length = cursor.u16();
    user.document_file_version = cursor.u16();
    user.major_version = cursor.u8();
    user.minor_version = cursor.u8();
    user.unused = cursor.u16();
    return user;
}

CurrentUserBytes encode_current_user(const CurrentUser& user) {
    bytes::Bytes out;
    bytes::append_u32(out, user.size);
    bytes::append_u32(out, user.header_token);
    bytes::append_u32(out, user.offset_to_current_edit);
    bytes::append_u16(out, user.user_name_length);
    bytes::append_u16(out, user.document_file_version);
    bytes::append_u8(out, user.major_version);
    bytes::append_u8(out, user.minor_version);
    bytes::append_u16(out, user.unused);
    return to_array<kCurrentUserSize>(out);
}

UserEdit decode_user_edit(const UserEditBytes& data) {
    bytes::Cursor cursor(data);
    UserEdit edit;
    edit.last_slide_id = cursor.u32();
    edit.version = cursor.u16();
    edit.minor_version = cursor.u8();
    edit.major_version = cursor.u8();
    edit.offset_of_last_edit = cursor.u32();
    edit.offset_of_persist_directory = cursor.u32();
    edit.document_persist_id = cursor.u32();
    edit.persist_id_seed = cursor.u32();
    edit.last_view = cursor.u16();
    edit.unused = cursor.u16();
    return edit;
}

UserEditBytes encode_user_edit(const UserEdit& edit) {
    bytes::Bytes out;
    bytes::append_u32(out, edit.last_slide_id);
    bytes::append_u16(out, edit.version);
    bytes::append_u8(out, edit.minor_version);
    bytes::append_u8(out, edit.major_version);
    bytes::append_u32(out, edit.offset_of_last_edit);
    bytes::append_u32(out, edit.offset_of_persist_directory);
    bytes::append_u32(out, edit.document_persist_id);
    bytes::append_u32(out, edit.persist_id_seed);
    bytes::append_u16(out, edit.last_view);
    bytes::append_u16(out, edit.unused);
    return to_array<kUserEditSize>(out);
}

} // namespace ppt
