// The OLE stream of an object ([MS-OLEDS] OLEStream): for a linked object it holds the monikers of
// the source, relative to the document and absolute.
//
// Every byte that a new source does not concern is kept as it was read: a stream that is not
// changed serialises to the bytes it was parsed from. Monikers are bytes here; moniker.h takes them
// apart.
#pragma once

#include "platform/base/bytes.h"

namespace ole_link {

class LinkStream {
  public:
    // Throws Errc::corrupt when the stream is not one, or when the monikers of a linked object do
    // not lie inside it.
    static LinkStream parse(bytes::View data);

    // False for an embedded object, which has no source.
    bool is_link() const { return is_link_; }

    // Class id and data of the moniker; empty when there is none.
    bytes::View relative_source() const { return relative_.data; }
    bytes::View absolute_source() const { return absolute_.data; }

    // Makes the object a link to this source and to no other: without a document to be relative to,
    // the relative moniker goes, since readers would try its old source first. Throws Errc::corrupt
    // when this stream would not be read back with that source; nothing has changed then.
    void set_absolute_source(bytes::Bytes moniker);

    bytes::Bytes serialise() const;

  private:
    struct Stored {
        std::uint32_t size = 0; // as it stands in front of the data
        bytes::Bytes data;
    };

    static bool read_moniker(bytes::Cursor& cursor, bool size_counts_itself, Stored& moniker);
    static void append_moniker(bytes::Bytes& out, const Stored& moniker);
    bool read_monikers(bytes::Cursor& cursor, bool sizes_count_themselves);

    bytes::Bytes head_; // version, flags, update option, a reserved word
    Stored reserved_;
    Stored relative_;
    Stored absolute_;
    bytes::Bytes rest_; // the class of the source, a reserved name, times
    bool is_link_ = false;
    bool sizes_count_themselves_ = true;
};

} // namespace ole_link
