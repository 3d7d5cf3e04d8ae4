// What a load with the letter "k" (keep going) among the options left out because it could not be
// read: external objects, pages, the document properties. Without the letter the first of them ends
// the load with its status.
//
// A load with the letter that succeeds says so in the error parameters, for hosts have nothing else
// to ask: the number of objects left out (0 when all was read), and for each of the first
// kMostUnreadNamed of them its status, its kind and its number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace ppt {

enum class UnreadKind {
    slide, // a page or what the slide list says of it; the number counts pages of its kind from 1
           // and is 0 for what the list says of none
    master,
    notes,
    hyperlink, // in the external object list; the number counts all its objects from 1
    ole,
    movie,
    midi,
    sound,
    object,    // of another kind, or its kind could not be read
    properties // the document properties; the number is 0
};

// "slide", "movie" and so on.
std::string_view name_of(UnreadKind kind);

struct UnreadObject {
    std::int32_t status = 0;
    UnreadKind kind = UnreadKind::object;
    std::int32_t number = 0;
};

inline constexpr std::size_t kMostUnreadNamed = 100;

class UnreadObjects {
  public:
    void add(const UnreadObject& object);
    std::size_t count() const { return count_; }
    // The first kMostUnreadNamed.
    const std::vector<UnreadObject>& named() const { return named_; }

  private:
    std::size_t count_ = 0;
    std::vector<UnreadObject> named_;
};

// Whether a failure of reading lies in what was read. Out of memory, a failing device and the like
// end every load.
bool b_liesInObject(std::int32_t status);

// Makes the error parameters tell what was left out.
void v_setErrorParamUnread(const UnreadObjects& unread);

} // namespace ppt
