// The fixed parts of the current user record ([MS-PPT] CurrentUserAtom) and of a user edit
// ([MS-PPT] UserEditAtom), decoded and encoded field by field.
#pragma once

#include "platform/platform.h"

#include <array>
#include <cstdint>

namespace ppt {

inline constexpr std::size_t kCurrentUserSize = 20;
inline constexpr std::size_t kUserEditSize = 28;

struct CurrentUser {
    std::uint32_t size = 0;
    std::uint32_t header_token = 0;
    std::uint32_t offset_to_current_edit = 0;
    std::uint16_t user_name_length = 0;
    std::uint16_t document_file_version = 0;
    std::uint8_t major_version = 0;
    std::uint8_t minor_version = 0;
    std::uint16_t unused = 0;

    // An encrypted presentation carries another header token and is not valid.
    bool is_valid() const;
};

struct UserEdit {
    std::uint32_t last_slide_id = 0;
    std::uint16_t version = 0;
    std::uint8_t minor_version = 0;
    std::uint8_t major_version = 0;
    std::uint32_t offset_of_last_edit = 0; // the previous user edit; 0 for the first
    std::uint32_t offset_of_persist_directory = 0;
    std::uint32_t document_persist_id = 0;
    std::uint32_t persist_id_seed = 0;
    std::uint16_t last_view = 0;
    std::uint16_t unused = 0;

    bool operator==(const UserEdit&) const = default;
};

using CurrentUserBytes = std::array<std::uint8_t, kCurrentUserSize>;
using UserEditBytes = std::array<std::uint8_t, kUserEditSize>;

CurrentUser decode_current_user(const CurrentUserBytes& data);
CurrentUserBytes encode_current_user(const CurrentUser& user);
UserEdit decode_user_edit(const UserEditBytes& data);
UserEditBytes encode_user_edit(const UserEdit& edit);

} // namespace ppt
