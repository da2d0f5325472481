#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "host_error.h"
#include "source_media.h"

namespace {

using Json = nlohmann::ordered_json;

Json PaletteFacts(SmImagerFrame& frame) {
    auto* map = SrGetColorMapFromFrame(&frame);
    if (!map) return nullptr;
    Json colors = Json::array();
    for (int i = 0; i < map->UsedEntries(); ++i) {
        StRGBA32Pixel const color = (*map)[static_cast<unsigned char>(i)];
        char text[10];
        std::snprintf(text, sizeof text, "#%02X%02X%02X%02X", color.red, color.green, color.blue,
                      color.alpha);
        colors.push_back(text);
    }
    return colors;
}

std::string TrackTypeName(unsigned long type) {
    char const* name = nullptr;
    return SrGetTrackNameRegistry() && ScTrackNameRegistry::GetObjectByID(type, false, name) && name
               ? name
               : CodeText(type);
}

Json TrackFacts(SourceMedia const& source, SmMediaTrack& track) {
    Json facts;
    facts["type"] = TrackTypeName(track.GetTrackType());
    facts["frames"] = track.NumberOfFrames();
    if (&track == &source.Track()) {
        StRef<SmImagerFrame> const frame = source.ReadFrame(0);
        StPoint const size = frame->GetSize();
        facts["rows"] = size.vertical;
        facts["columns"] = size.horizontal;
        facts["pixel"] = {{"code", CodeText(frame->PixelID())},
                          {"name", PixelName(frame->PixelID())},
                          {"bits", frame->PixelSize()}};
        facts["palette"] = PaletteFacts(*frame);
    }
    facts["rate"] = track.GetFrameRate();
    facts["duration"] = track.GetDuration();
    return facts;
}

Json FileFacts(std::string const& file) {
    SourceMedia const source(file);
    Json facts;
    facts["file"] = file;
    SmMediaRecognizer* format = SrGlobalMediaManager()->GetRecognizerByType(source.Media().GetMediaType());
    facts["format"] = {{"code", CodeText(source.Media().GetMediaType())},
                       {"name", format ? FormatName(*format) : ""}};
    facts["movie"] = source.IsMovie();
    facts["tracks"] = Json::array();
    for (long i = 0; i < source.Media().NumberOfTracks(); ++i)
        facts["tracks"].push_back(TrackFacts(source, *source.Media().GetTrack(i)));
    return facts;
}

std::string Text(Json const& json) {
    return json.get<std::string>();
}

void PrintTrack(Json const& track, std::size_t number, bool timed) {
    long const frames = track["frames"].get<long>();
    std::cout << "  track " << number << "   " << Text(track["type"]) << '\n'
              << "  frames    " << frames << '\n';
    if (track.contains("rows")) {
        Json const& pixel = track["pixel"];
        std::cout << "  size      " << track["rows"] << " rows, " << track["columns"] << " columns\n"
                  << "  pixel     " << Text(pixel["code"]);
        if (!Text(pixel["name"]).empty()) std::cout << ", " << Text(pixel["name"]);
        std::cout << ", " << pixel["bits"] << (pixel["bits"] == 1 ? " bit\n" : " bits\n");
        if (track["palette"].is_array())
            std::cout << "  palette   " << track["palette"].size() << " colours\n";
    }
    if (timed || frames > 1)
        std::cout << "  rate      " << track["rate"].get<float>() << " frames a second\n"
                  << "  duration  " << track["duration"].get<double>() << " seconds\n";
}

void PrintFile(Json const& facts) {
    std::cout << Printable(Text(facts["file"])) << '\n'
              << "  format    " << Text(facts["format"]["name"]) << " (" << Text(facts["format"]["code"])
              << ")\n";
    std::size_t number = 0;
    for (Json const& track : facts["tracks"])
        PrintTrack(track, ++number, facts["movie"].get<bool>());
}

}  // namespace

bool RunInfo(InfoOptions const& options) {
    bool all = true;
    Json listing = Json::array();
    for (std::string const& file : options.files) {
        try {
            Json facts = Blaming(file, true, [&] { return FileFacts(file); });
            if (options.json)
                listing.push_back(std::move(facts));
            else
                PrintFile(facts);
        } catch (HostError const& error) {
            PrintError(error.what());
            all = false;
        }
    }
    if (options.json) std::cout << listing.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    return all;
}
