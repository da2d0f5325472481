#include "framewright/thornmere/settings.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/files.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/stream.h"
#include "framewright/thornmere/system_calls.h"

namespace {

/// Settings are a few lines; a longer file is something else, and is treated as none.
constexpr unsigned int kLongestFile = 1 << 20;

constinit std::mutex gStoreMutex;

struct StItem {
    std::string key;
    std::string value;  ///< the bytes in hexadecimal
};

std::string EnvironmentText(char const* name) {
    char const* const text = std::getenv(name);
    return text ? text : "";
}

/// Empty when the environment names no place for settings.
std::string StorePath() {
    if (std::string path = EnvironmentText("FRAMEWRIGHT_SETTINGS"); !path.empty()) return path;
    std::string folder = EnvironmentText("XDG_CONFIG_HOME");
    if (folder.empty()) {
        std::string const home = EnvironmentText("HOME");
        if (home.empty()) return {};
        folder = home + "/.config";
    }
    return folder + "/framewright/settings";
}

/// The whole file; empty for one that cannot be read.
std::string ReadWholeFile(std::string const& path) {
    std::string text;
    unsigned int file = 0;
    try {
        SrFileOpen(StFileSpec(path.c_str()), file, kFileRead);
        unsigned int const length = SrFileGetEOF(file);
        if (length <= kLongestFile) {
            text.resize(length);
            text.resize(SrFileRead(file, text.data(), length));
        }
    } catch (std::exception const&) {
        text.clear();
    }
    SrFileClose(file, false);
    return text;
}

bool IsHexadecimal(std::string_view text) {
    return text.size() % 2 == 0 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

std::vector<StItem> ParseItems(std::string_view text) {
    std::vector<StItem> items;
    while (!text.empty()) {
        std::string_view const line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        std::size_t const space = line.find(' ');
        if (space == std::string_view::npos || !IsHexadecimal(line.substr(0, space))) continue;
        items.push_back({std::string(line.substr(space + 1)), std::string(line.substr(0, space))});
    }
    return items;
}

StItem* FindItem(std::vector<StItem>& items, std::string const& key) {
    for (StItem& item : items) {
        if (item.key == key) return &item;
    }
    return nullptr;
}

void MakeFoldersOf(std::string const& path) {
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        mkdir(path.substr(0, slash).c_str(), 0700);
    }
}

/// Writes a new file beside the old one and puts it in its place. A failure leaves the old one.
void ReplaceWholeFile(std::string const& path, std::string const& text) {
    MakeFoldersOf(path);
    std::string newPath = path + ".XXXXXX";
    int const descriptor = mkostemp(newPath.data(), O_CLOEXEC);
    if (descriptor < 0) return;
    bool written = false;
    try {
        SrFileWrite(thornmere::FileRefOf(descriptor), text.data(), static_cast<unsigned int>(text.size()));
        written = fsync(descriptor) == 0;
    } catch (std::exception const&) {
    }
    bool const closed = close(descriptor) == 0;
    bool const replaced = written && closed && std::rename(newPath.c_str(), path.c_str()) == 0;
    if (!replaced) unlink(newPath.c_str());
}

std::optional<std::string> ReadItem(std::string const& key) {
    std::lock_guard lock(gStoreMutex);
    std::string const path = StorePath();
    if (path.empty()) return std::nullopt;
    std::vector<StItem> items = ParseItems(ReadWholeFile(path));
    StItem* const item = FindItem(items, key);
    return item ? std::optional(item->value) : std::nullopt;
}

void WriteItem(std::string const& key, std::string const& value) {
    std::lock_guard lock(gStoreMutex);
    std::string const path = StorePath();
    if (path.empty() || key.find('\n') != std::string::npos) return;
    std::vector<StItem> items = ParseItems(ReadWholeFile(path));
    if (StItem* item = FindItem(items, key)) {
        item->value = value;
    } else {
        items.push_back({key, value});
    }
    std::string text;
    for (StItem const& item : items)
        text += item.value + ' ' + item.key + '\n';
    ReplaceWholeFile(path, text);
}

std::string ToHexadecimal(unsigned char const* bytes, std::size_t size) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text;
}

std::string FromHexadecimal(std::string const& text) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        bytes += static_cast<char>(std::strtoul(text.substr(i, 2).c_str(), nullptr, 16));
    }
    return bytes;
}

StRef<SmMemoryStream> NewMemoryStream(std::string const& bytes) {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    SrThrowIfNIL(stream.Get());
    stream->IMemoryStream(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return stream;
}

}  // namespace

SxPersistent::SxPersistent(SxPersistent* parent) : mParent(parent) {}
SxPersistent::~SxPersistent() = default;

std::string SxPersistent::FullKey() const {
    std::string const own = GetPersistentDataName();
    return mParent ? mParent->FullKey() + '/' + own : own;
}

void SxPersistent::ReadPersistentData() {
    std::optional<std::string> const value = ReadItem(FullKey());
    if (!value) return;
    try {
        ReadValue(NewMemoryStream(FromHexadecimal(*value)).Get());
    } catch (std::exception const&) {
        // A damaged value counts as none.
    }
}

void SxPersistent::WritePersistentData() {
    StRef<SmMemoryStream> const stream = NewMemoryStream({});
    WriteValue(stream.Get());
    WriteItem(FullKey(), ToHexadecimal(stream->Data(), stream->GetLength()));
}

ScPersistentNormalData<bool>::ScPersistentNormalData(SxPersistent* parent, char const* key, bool defaultValue)
    : SxPersistent(parent), mKey(key), mValue(defaultValue) {}

void ScPersistentNormalData<bool>::SetValue(bool value) {
    if (mValue == value) return;
    mValue = value;
    WritePersistentData();
}

void ScPersistentNormalData<bool>::ReadValue(SmStream* stream) {
    stream->GetBit(mValue);
}
void ScPersistentNormalData<bool>::WriteValue(SmStream* stream) const {
    stream->PutBit(mValue);
}
