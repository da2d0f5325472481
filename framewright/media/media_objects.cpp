#include "framewright/media/media_objects.h"

#include "framewright/frame/frame.h"
#include "framewright/imagery/image.h"
#include "framewright/media/media.h"
#include "framewright/media/media_manager.h"
#include "framewright/media/result.h"
#include "framewright/thornmere/progress.h"

namespace {

using media::GlobalMediaManager;
using media::StResult;
using media::ThrowMediaError;

SmMediaRecognizer& FormatOfType(unsigned long type) {
    SmMediaRecognizer* const format = GlobalMediaManager().GetRecognizerByType(type);
    if (!format) ThrowMediaError(SkUnrecognizedMedia());
    return *format;
}

/// The media of a location, opened by the format of `type` if that takes it, else by whichever does.
StRef<SmMedia> OpenForLoading(ScMediaLocation* location, unsigned long type) {
    StRef<SmMedia> media;
    if (type) FormatOfType(type).Recognize(location, nullptr, &media, 0, nullptr);
    if (media) return media;
    SmMediaManager& manager = GlobalMediaManager();
    if (manager.IdentifyMedia(location, 0, nullptr) != kUnknownCode)
        media = StRef<SmMedia>::Adopt(manager.OpenMedia(location, 1, 0));
    if (!media) ThrowMediaError(SkUnrecognizedMedia());
    return media;
}

/// The one object that a load is for: the first frame of the track.
void ReadFirst(SmMediaTrack& track, ScMC_* objectClass, SmObject*& object, SmObject*& extra,
               ScProgressIndicator* progress) {
    track.ReadFrames(object, objectClass, extra, 0, 1, 0, progress, kResizeFrame);
    if (!object) ThrowMediaError(SkMediaFileIsEmpty());
}

/// The first track that yields objects of the class; null if there is none.
SmMediaTrack* FindTrack(SmMedia& media, ScMC_* objectClass) {
    for (long i = 0; i < media.NumberOfTracks(); ++i) {
        SmMediaTrack* const track = media.GetTrack(i);
        for (long kind = 0; kind < track->NumberOfObjectClasses(); ++kind) {
            if (track->ObjectClass(kind) == objectClass) return track;
        }
    }
    return nullptr;
}

/// The format that is to hold an object of the class, with the family that its track has.
SmMediaRecognizer& FormatForSaving(ScMC_* objectClass, unsigned long type, unsigned long& family) {
    if (!type) {
        SmMediaRecognizer* const format = GlobalMediaManager().GetRecognizerBySample(objectClass, &family);
        if (!format) ThrowMediaError(SkMediaIncapableOfFormat());
        return *format;
    }
    SmMediaRecognizer& format = FormatOfType(type);
    bool holds = false;
    // The walk goes on behind a hit, so the family is that of the last entry.
    for (long i = 0; i < format.NumberOfObjectClasses(); ++i)
        holds |= format.ObjectClass(i, &family) == objectClass;
    if (!holds) ThrowMediaError(SkMediaIncapableOfFormat());
    return format;
}

unsigned char PositionOf(long frame, long count) {
    if (count == 1) return kOnlyFrame;
    if (frame == 0) return kFirstFrame;
    return frame == count - 1 ? kLastFrame : kMiddleFrame;
}

void CopyFrames(SmMediaTrack& from, SmMediaTrack& to, ScProgressIndicator* progress) {
    long const count = from.NumberOfFrames();
    ScMC_* const objectClass = from.ObjectClass(0);
    StResult frame;  // made for the first one, and filled again for each
    for (long i = 0; i < count; ++i) {
        if (progress) progress->Report(i, count);
        StResult extra;
        from.ReadFrames(frame.object, objectClass, extra.object, i, 1, 0, nullptr, kResizeFrame);
        if (!frame.object) ThrowMediaError(SkMediaFileIsEmpty());
        to.WriteFrames(frame.object, objectClass, i, count, 0, PositionOf(i, count), nullptr);
    }
}

void CopyTrack(SmMediaTrack& from, SmMedia& target, SmVideoSpec* spec, ScProgressIndicator* progress) {
    auto const own = StRef<SmTrackSpec>::Adopt(spec ? nullptr : from.GetSpec());
    SmMediaTrack* const to = target.NewTrack(from.GetTrackType(), spec ? spec : own.Get());
    if (to) CopyFrames(from, *to, progress);
}

}  // namespace

void SrLoadObjectFromMedia(ScMediaLocation* location, ScMC_*& objectClass, SmObject*& object,
                           unsigned long type, ScProgressIndicator* progress) {
    StRef<SmMedia> const media = OpenForLoading(location, type);
    SmMediaTrack* const track = media->GetTrack(0);
    if (!track) ThrowMediaError(SkMediaFileIsEmpty());
    objectClass = track->ObjectClass(0);
    StResult extra;
    ReadFirst(*track, objectClass, object, extra.object, progress);
}

void SrLoadTargettedObjectFromMedia(ScMediaLocation* location, ScMC_* objectClass, SmObject*& object,
                                    SmObject*& extra, ScProgressIndicator* progress) {
    SmMediaManager& manager = GlobalMediaManager();
    unsigned long const type = manager.IdentifyMedia(location, 0, objectClass);
    if (!type) ThrowMediaError(SkUnrecognizedMedia());
    // "????" is a type that no format has, so opening it is refused.
    auto const media = StRef<SmMedia>::Adopt(manager.OpenMedia(location, 1, type));
    if (!media) ThrowMediaError(SkUnrecognizedMedia());
    SmMediaTrack* const track = FindTrack(*media, objectClass);
    if (!track) ThrowMediaError(SkMediaFileIsEmpty());
    ReadFirst(*track, objectClass, object, extra, progress);
}

void SrSaveObjectToMedia(ScMediaLocation* location, ScMC_* objectClass, SmObject* object, unsigned long type,
                         ScProgressIndicator* progress) {
    if (!object) ThrowMediaError(SkMediaIncapableOfFormat());
    unsigned long family = 0;
    SmMediaRecognizer& format = FormatForSaving(objectClass, type, family);
    auto const media = StRef<SmMedia>::Adopt(format.NewMedia(location));
    if (!media) ThrowMediaError(SkMediaIncapableOfFormat());
    SmMediaTrack* const track = media->NewTrack(family, nullptr);
    if (!track) ThrowMediaError(SkMediaFileIsEmpty());
    track->WriteFrames(object, objectClass, 0, 1, 0, kOnlyFrame, progress);
}

bool SrCopyMedia(ScMediaLocation* source, ScMediaLocation* destination, unsigned long type, SmVideoSpec* spec,
                 ScProgressIndicator* progress) {
    SmMediaManager& manager = GlobalMediaManager();
    auto const from = StRef<SmMedia>::Adopt(manager.OpenMedia(source, 1, 0));
    if (!from) return false;
    auto const to =
        StRef<SmMedia>::Adopt(manager.CreateMedia(destination, type ? type : from->GetMediaType()));
    if (!to) ThrowMediaError(SkUnrecognizedMedia());
    for (long i = 0; i < from->NumberOfTracks(); ++i)
        CopyTrack(*from->GetTrack(i), *to, spec, progress);
    if (progress) progress->Report(100, 100);
    return true;
}

void SrWriteImagerToMedia(SmMedia* media, SmImagerImage* image, long frame, unsigned char position) {
    long number = 0;
    for (long i = 0; i < image->GetLayerCount(); ++i) {
        SmImagerFrame* const layer = image->GetLayer(i);
        if (!layer || !layer->GetSaveIntent()) continue;
        if (SmMediaTrack* const track = media->GetTrack(number))
            track->WriteFrames(layer, SmImagerFrame::Class(), frame, 1, 0, position, nullptr);
        ++number;
    }
}
