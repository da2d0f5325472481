#include <strings.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "commands.h"
#include "file_location.h"
#include "frame_transform.h"
#include "host_error.h"
#include "output_files.h"
#include "progress_bar.h"
#include "source_media.h"

namespace {

/// The format that writes files with the extension of `path`.
SmMediaRecognizer& WriterFor(std::string const& path) {
    std::string const extension = std::filesystem::path(path).extension().string();
    SmMediaManager* manager = SrGlobalMediaManager();
    for (long i = 0; i < manager->NumberOfRecognizers(); ++i) {
        SmMediaRecognizer* recognizer = manager->GetRecognizer(i);
        bool reads = false, writes = false;
        recognizer->CapableOfReadAndWrite(reads, writes);
        if (writes && !extension.empty() && media::GoesBy(*recognizer, extension.c_str() + 1))
            return *recognizer;
    }
    throw HostError(path, extension.empty() ? "needs an extension that says its format"
                                            : "no format that can be written has the extension " + extension);
}

unsigned long CodecFromText(SmMediaRecognizer& writer, std::string const& text) {
    for (long i = 0; i < writer.HowManyCodecs(); ++i) {
        unsigned long depth = 0, family = 0;
        StPoint maxSize{};
        bool hasQuality = false;
        unsigned long const codec = writer.AvailableCodec(i, depth, maxSize, hasQuality, &family);
        if (strcasecmp(text.c_str(), CodeText(codec).c_str()) == 0) return codec;
    }
    throw HostError(FormatName(writer) + " files have no codec called " + text);
}

/// The frames to convert, first and last: those asked for, else the whole of a sequence when the output is
/// numbered too, else the one that the file's name means.
std::pair<long, long> FrameRange(ConvertOptions const& options, SourceMedia const& source,
                                 long outputNumber) {
    long const last = std::max(0L, source.Track().NumberOfFrames() - 1);
    if (!options.frames) return {0, outputNumber >= 0 ? last : 0};
    if (options.frames->first > last)
        throw HostError(options.input, "has no frame " + std::to_string(options.frames->first) +
                                           "; the last is " + std::to_string(last));
    return {options.frames->first, std::min(options.frames->second, last)};
}

/// The shape of the output: the source's, with what the options say otherwise.
StRef<SmVideoSpec> OutputSpec(ConvertOptions const& options, SourceMedia const& source,
                              SmMediaRecognizer& writer, long count) {
    StRef<SmVideoSpec> spec = source.Spec();
    if (!spec) {
        spec = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
        SrThrowIfNIL(spec.Get());
        spec->IVideoSpec();
    }
    spec->mIsSequence = count > 1;
    if (options.rate) spec->mFrameRate = *options.rate;
    if (!options.codec.empty()) spec->mCodec = CodecFromText(writer, options.codec);
    return spec;
}

/// The place of a frame in the output.
unsigned char PositionOf(long index, long count) {
    if (count == 1) return kOnlyFrame;
    return index == 0 ? kFirstFrame : index == count - 1 ? kLastFrame : kMiddleFrame;
}

/// Throws when files numbered from `first` to `last` would not be found again as one sequence: where the
/// name fits no number, or its digits end before the sequence does.
void RequireRoomForNumbers(std::string const& output, ScMediaLocation const& location, long first,
                           long last) {
    if (NumberInName(output) == NameNumber::kUnfit)
        throw HostError(output, "a sequence needs a name with one number, like shot0001.bmp");
    auto const begin = PathOfNumber(location, first), end = PathOfNumber(location, last);
    if (!begin || !end || begin->size() != end->size())
        throw HostError(output, "has too few digits for a sequence up to " + std::to_string(last));
}

}  // namespace

void RunConvert(ConvertOptions const& options) {
    RequireUsableOptions(options);
    SmMediaRecognizer& writer = WriterFor(options.output);
    SourceMedia const source(options.input);
    OutputFiles files(options.output);

    Blaming(options.output, false, [&] {
        auto const location = LocationOf(files.StagingPath());
        // A numbered output goes on from its own number; written frame i gets the number i + 1.
        long const number = location->GetSequence();
        auto const [first, last] = FrameRange(options, source, number);
        long const count = last - first + 1;
        long const base = number >= 0 ? number - 1 : 0;

        if (count > 1) RequireRoomForNumbers(options.output, *location, base + 1, base + count);

        auto media =
            StRef<SmMedia>::Adopt(SrGlobalMediaManager()->CreateMedia(location.get(), writer.GetType()));
        StRef<SmVideoSpec> const spec = OutputSpec(options, source, writer, count);
        SmMediaTrack* track = media ? media->NewTrack(SrCode("VIDE"), spec.Get()) : nullptr;
        if (!track) throw HostError(options.output, "this format can't be written");

        ProgressBar progress("converting");
        for (long i = 0; i < count; ++i) {
            if (count > 1) progress.Report(i, count);
            StRef<SmImagerFrame> const frame =
                TransformedFrame(source.ReadFrame(first + i), options, count == 1 ? &progress : nullptr);
            track->WriteFrames(frame.Get(), SmImagerFrame::Class(), base + i, count, base + i,
                               PositionOf(i, count), nullptr);
        }
    });
    files.Publish();
}

void RunMipmap(MipmapOptions const& options) {
    ConvertOptions convert;
    convert.input = options.input;
    convert.output = options.output;
    convert.mipmap = true;
    RunConvert(convert);
}

void RunRotate(RotateOptions const& options) {
    ConvertOptions convert;
    convert.input = options.input;
    convert.output = options.output;
    convert.rotation = options.rotation;
    RunConvert(convert);
}
