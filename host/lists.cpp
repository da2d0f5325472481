#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "source_media.h"

namespace {

using Json = nlohmann::ordered_json;

Json FormatFacts(SmMediaRecognizer& recognizer) {
    bool reads = false, writes = false;
    recognizer.CapableOfReadAndWrite(reads, writes);
    Json extensions = Json::array();
    StMediaFileDesc row{};
    for (long i = 0; recognizer.GetFileDesc(i, row); ++i)
        if (row.mExtension) extensions.push_back(row.mExtension);
    return {{"code", CodeText(recognizer.GetType())},
            {"name", FormatName(recognizer)},
            {"extensions", extensions},
            {"reads", reads},
            {"writes", writes}};
}

Json AllFormats() {
    Json formats = Json::array();
    SmMediaManager* manager = SrGlobalMediaManager();
    for (long i = 0; i < manager->NumberOfRecognizers(); ++i)
        formats.push_back(FormatFacts(*manager->GetRecognizer(i)));
    return formats;
}

/// The pixel types that a frame can be made of by code, in the order of their codes.
Json AllPixels() {
    Json pixels = Json::array();
    unsigned long id = 0;
    char const* name = nullptr;
    for (int i = 0; ScLayerNameRegistry::GetObjectByIndex(i, id, name); ++i) {
        auto frame = StRef<SmImagerFrame>::Adopt(SrMakeFrame({1, 1}, id, false, false));
        if (!frame) continue;
        pixels.push_back({{"code", CodeText(id)},
                          {"name", name},
                          {"bits", frame->PixelSize()},
                          {"family", CodeText(frame->FamilyID())}});
    }
    return pixels;
}

std::string Joined(Json const& texts) {
    std::string joined;
    for (Json const& text : texts) {
        if (!joined.empty()) joined += ' ';
        joined += text.get<std::string>();
    }
    return joined;
}

std::string Text(Json const& json) {
    return json.get<std::string>();
}

void PrintJson(Json const& listing) {
    std::cout << listing.dump(2) << '\n';
}

}  // namespace

void RunFormats(ListOptions const& options) {
    Json const formats = AllFormats();
    if (options.json) return PrintJson(formats);
    std::cout << std::left << std::setw(6) << "code" << std::setw(24) << "format" << std::setw(14)
              << "extensions"
              << "can\n";
    for (Json const& format : formats)
        std::cout << std::setw(6) << Text(format["code"]) << std::setw(24) << Text(format["name"])
                  << std::setw(14) << Joined(format["extensions"])
                  << (format["reads"].get<bool>() ? "read " : "")
                  << (format["writes"].get<bool>() ? "write" : "") << '\n';
}

void RunPixels(ListOptions const& options) {
    Json const pixels = AllPixels();
    if (options.json) return PrintJson(pixels);
    std::cout << std::left << std::setw(6) << "code" << std::right << std::setw(5) << "bits"
              << "  family  name\n";
    for (Json const& pixel : pixels)
        std::cout << std::left << std::setw(6) << Text(pixel["code"]) << std::right << std::setw(5)
                  << pixel["bits"].get<long>() << "  " << std::left << std::setw(8) << Text(pixel["family"])
                  << Text(pixel["name"]) << '\n';
}
