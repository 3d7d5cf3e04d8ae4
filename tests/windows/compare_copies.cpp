// compare_copies FILE FILE [STREAM...]: whether two presentations have the same storages and the
// same bytes in every stream. The streams named at the end may differ, and must, so that nobody
// goes on excusing what has become equal. Control characters in names are written \005.
#include "platform/base/bytes.h"
#include "platform/compound_file/compound_file.h"
#include "platform/unicode/utf8.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

namespace {

using namespace compound_file;

using Streams = std::map<std::string, bytes::Bytes>;

std::string printable(const std::u16string& name) {
    std::string out;
    for (const char c : unicode::utf16_to_utf8_lossy(name)) {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\%03o", static_cast<unsigned char>(c));
        out += static_cast<unsigned char>(c) < ' ' ? escaped : std::string(1, c);
    }
    return out;
}

// A storage counts as a stream without bytes whose name ends with a slash.
void collect(CompoundFile& file, EntryId storage, const std::string& prefix, Streams& out) {
    for (const EntryId id : file.children(storage)) {
        const EntryInfo info = file.info(id);
        const std::string path = prefix + printable(info.name);
        if (info.type == EntryType::storage) {
            out[path + "/"] = {};
            collect(file, id, path + "/", out);
            continue;
        }
        const auto stream = file.stream(id);
        bytes::Bytes content(static_cast<std::size_t>(stream->size()));
        content.resize(stream->read_at(0, content));
        out[path] = std::move(content);
    }
}

Streams streams_of(const char* path) {
    const auto file = CompoundFile::open(open_file(path, Access::read), Access::read);
    for (const std::string& fault : file->check(false)) {
        throw platform::Error(platform::Errc::corrupt, std::string(path) + ": " + fault);
    }
    Streams out;
    collect(*file, kRoot, "", out);
    return out;
}

// What differs, in words; empty when nothing does.
std::string difference(const Streams& a, const Streams& b, const std::string& name) {
    const auto first = a.find(name);
    const auto second = b.find(name);
    if (first == a.end() || second == b.end()) {
        return std::string("only in the ") + (first == a.end() ? "second" : "first");
    }
    const bytes::Bytes& left = first->second;
    const bytes::Bytes& right = second->second;
    if (left == right) {
        return "";
    }
    const auto place = std::mismatch(left.begin(), left.end(), right.begin(), right.end()).first;
    return std::to_string(left.size()) + " and " + std::to_string(right.size()) +
           " bytes, different from byte " + std::to_string(place - left.begin());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: compare_copies FILE FILE [STREAM...]\n");
        return 2;
    }
    try {
        const Streams a = streams_of(argv[1]);
        const Streams b = streams_of(argv[2]);
        std::set<std::string> excused(argv + 3, argv + argc);
        std::set<std::string> names;
        for (const Streams* streams : {&a, &b}) {
            for (const auto& [name, content] : *streams) {
                names.insert(name);
            }
        }
        bool same = true;
        for (const std::string& name : names) {
            const std::string found = difference(a, b, name);
            if (found.empty() || excused.erase(name) > 0) {
                continue;
            }
            std::printf("%s: %s\n", name.c_str(), found.c_str());
            same = false;
        }
        for (const std::string& name : excused) {
            std::printf("%s: does not differ\n", name.c_str());
            same = false;
        }
        return same ? 0 : 1;
    } catch (const platform::Error& error) {
        std::fprintf(stderr, "compare_copies: %s\n", error.what());
        return 2;
    }
}
