// Opening a picture file for reading, with errors that name the file.
#pragma once

#include <framewright/framewright.h>

#include <memory>
#include <string>

/// A file that some format has recognised, with its first track that yields frames.
class SourceMedia {
  public:
    /// Throws HostError when the file can't be read, no format takes it, or it holds no pictures.
    explicit SourceMedia(std::string const& path);

    SmMedia& Media() const { return *mMedia; }
    SmMediaTrack& Track() const { return *mTrack; }
    /// Frame `index` of the track, counted from 0, as it is in the file.
    StRef<SmImagerFrame> ReadFrame(long index) const;
    /// The spec of the track, or null.
    StRef<SmVideoSpec> Spec() const;
    /// Whether one file of the format holds many frames, so that even a single one has a rate.
    bool IsMovie() const;

  private:
    std::string mPath;
    std::unique_ptr<ScMediaFileLocation> mLocation;
    StRef<SmMedia> mMedia;
    SmMediaTrack* mTrack = nullptr;
};

/// The name of a format for people, and its file extensions, from its recognizer's rows.
std::string FormatName(SmMediaRecognizer& recognizer);
/// A four-character code as text.
std::string CodeText(unsigned long code);
/// The display name of a pixel type; empty where the registry has none.
std::string PixelName(unsigned long pixelID);
