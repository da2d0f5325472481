// What the tests of media share: folders, error codes, refused memory, and small formats that record how they
// are called.
#pragma once

#include <dirent.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "framewright/media/media.h"
#include "framewright/media/media_location.h"
#include "framewright/media/media_manager.h"
#include "framewright/media/media_recognizer.h"
#include "framewright/media/media_registries.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/progress.h"
#include "framewright/thornmere/stream.h"

namespace media_test {

/// A fresh folder, removed with all that is in it.
class TempFolder {
  public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "framewright-XXXXXX").string();
        mPath = mkdtemp(pattern.data());
    }
    ~TempFolder() { std::filesystem::remove_all(mPath); }

    std::string Path(std::string const& name) const { return mPath + "/" + name; }
    std::string const& Path() const { return mPath; }
    /// Writes a file and gives its path.
    std::string Write(std::string const& name, std::string const& bytes = "x") const {
        std::ofstream(Path(name), std::ios::binary) << bytes;
        return Path(name);
    }
    std::string Read(std::string const& name) const {
        std::ostringstream text;
        text << std::ifstream(Path(name), std::ios::binary).rdbuf();
        return text.str();
    }
    bool Has(std::string const& name) const { return std::filesystem::exists(Path(name)); }

  private:
    std::string mPath;
};

/// How an action ended: the error code, 0 for none, and the index of its message in the list of alerts, 0 for
/// an error without a message.
struct Outcome {
    long code;
    long alert;
    bool operator==(Outcome const&) const = default;
};
inline void PrintTo(Outcome const& outcome, std::ostream* out) {
    *out << "code " << outcome.code << " (" << SrErrorName(outcome.code) << "), alert " << outcome.alert;
}

template <class Action>
Outcome OutcomeOf(Action action) {
    try {
        action();
        return {0, 0};
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        long const code = SrGetExceptionValues(exception, message);
        auto const* alert = dynamic_cast<ScMessageBuzzStrings const*>(message);
        bool const ours = alert && alert->List() == SkAlertStrings() && alert->Alert() == SkSimpleAlert();
        return {code, ours ? alert->Index() : 0};
    }
}

template <class Action>
long ErrorOf(Action action) {
    return OutcomeOf(action).code;
}

/// Lets `allowed` framework allocations pass, then refuses all until it goes.
class RefusedMemory {
  public:
    explicit RefusedMemory(long allowed = 0) {
        sAllowed = allowed;
        SrSetAllocationGate([](std::size_t) { return sAllowed-- > 0; });
    }
    ~RefusedMemory() { SrSetAllocationGate(nullptr); }

  private:
    static inline long sAllowed = 0;
};

/// Runs `action` with memory refused at its first allocation, its second, and so on, until one run gets
/// through; each run before must end in -108. Gives the number of refused runs.
template <class Action>
long RefusedRuns(Action action) {
    for (long allowed = 0; allowed < 10000; ++allowed) {
        long code;
        {
            RefusedMemory const refused(allowed);
            code = ErrorOf(action);
        }
        if (code == 0) return allowed;
        if (code != SkMemoryFull()) return -code;
    }
    return -1;
}

/// How many files this process has open.
inline long OpenFiles() {
    long count = 0;
    for ([[maybe_unused]] auto const& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

inline std::unique_ptr<ScMediaFileLocation> LocationOf(std::string const& path) {
    auto location = std::make_unique<ScMediaFileLocation>();
    location->SetFullPath(path.c_str());
    return location;
}

inline std::string PathOf(ScMediaLocation& location) {
    ScHeapString path;
    return location.GetFullPath(path) ? path.AsCString() : "(none)";
}

inline StRef<SmMemoryStream> MemoryStream(std::string const& bytes = {}) {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return stream;
}

inline std::string BytesOf(SmMemoryStream& stream) {
    return {reinterpret_cast<char const*>(stream.Data()), stream.GetLength()};
}

/// What a progress indicator was told, as "done/total" texts.
class SpyProgress : public ScProgressIndicator {
  public:
    void Report(long done, long total) override {
        reports.push_back(std::to_string(done) + "/" + std::to_string(total));
        if (throwAt == static_cast<long>(reports.size())) SrThrow(-128, nullptr);
    }

    std::vector<std::string> reports;
    long throwAt = 0;
};

/// What the spies of one test did, in order, and how many of them live.
struct Log {
    std::vector<std::string> lines;
    long alive = 0;

    void Add(std::string line) { lines.push_back(std::move(line)); }
};

/// Counts itself in the log while it lives.
class Counted {
  public:
    explicit Counted(Log& log) : mLog(log) { ++mLog.alive; }
    Counted(Counted const&) = delete;
    Counted& operator=(Counted const&) = delete;
    ~Counted() { --mLog.alive; }

  protected:
    Log& mLog;
};

/// An object of no special kind.
class SpyObject : public SmObject, public Counted {
  public:
    explicit SpyObject(Log& log) : Counted(log) {}
};

/// A track whose operations on frames write lines to the log; ReadFrames makes a SpyObject where it got none.
class SpyTrack : public SmMediaTrack, public Counted {
  public:
    explicit SpyTrack(Log& log) : Counted(log) {}

    long NumberOfFrames() override { return frames; }
    float GetFrameRate() override { return rate; }
    ScMC_* ObjectClass(long index) override {
        return objectClasses.empty() ? SmMediaTrack::ObjectClass(index)
                                     : objectClasses[static_cast<std::size_t>(index)];
    }
    long NumberOfObjectClasses() override {
        return objectClasses.empty() ? 2 : static_cast<long>(objectClasses.size());
    }
    SmTrackSpec* GetSpec() override { return spec ? spec->Clone() : nullptr; }
    void SetSpec(SmTrackSpec* newSpec) override { media::ReplaceVideoSpec(spec, newSpec); }

    void ReadFrames(SmObject*& object, ScMC_* objectClass, SmObject*& extra, long first, long count,
                    long destination, ScProgressIndicator* progress, unsigned long option) override {
        std::ostringstream line;
        line << name << " read " << objectClass->Name() << (object ? " into" : " new") << " " << first << " "
             << count << " " << destination << (progress ? " progress" : "") << " " << std::hex << option;
        mLog.Add(line.str());
        if (makesExtra) extra = new SpyObject(mLog);
        if (!object && makesObject) object = new SpyObject(mLog);
        if (throws) SrThrow(-50, nullptr);
    }
    void WriteFrames(SmObject* object, ScMC_* objectClass, long first, long count, long destination,
                     unsigned char position, ScProgressIndicator* progress) override {
        std::ostringstream line;
        line << name << " write " << objectClass->Name() << (object ? "" : " null") << " " << first << " "
             << count << " " << destination << " at " << int(position) << (progress ? " progress" : "");
        mLog.Add(line.str());
        if (throws) SrThrow(-50, nullptr);
    }

    std::string name = "track";
    long frames = 1;
    float rate = 10.0F;
    std::vector<ScMC_*> objectClasses;
    StRef<SmVideoSpec> spec;
    bool makesObject = true;
    bool makesExtra = false;
    bool throws = false;
};

class SpyMedia : public SmMedia, public Counted {
  public:
    explicit SpyMedia(Log& log) : Counted(log) {}

    void Open(ScMediaLocation* location) override { SetLocation(location); }
    unsigned long GetMediaType() override { return type; }
    SmMediaTrack* NewTrack(unsigned long trackType, SmTrackSpec* spec) override {
        bool const taken = trackType == acceptedTrack;
        mLog.Add(std::string("new track") + (taken ? "" : " refused") + (spec ? " with spec" : ""));
        if (!taken) return nullptr;
        auto track = StRef<SpyTrack>::Adopt(new SpyTrack(mLog));
        track->name = "new";
        track->throws = tracksThrow;
        if (spec) track->SetSpec(spec);
        AddTrack(track.Get());
        lastTrack = track.Get();
        return track.Get();
    }

    unsigned long type = SrCode("SpyM");
    unsigned long acceptedTrack = kVideoTrack;
    bool tracksThrow = false;
    SpyTrack* lastTrack = nullptr;
};

/// A format that is as sure as it is told and gives the media it is told.
class SpyRecognizer : public SmMediaRecognizer, public Counted {
  public:
    SpyRecognizer(Log& log, unsigned long type, short confidence = 0)
        : Counted(log), type(type), confidence(confidence) {}

    short Recognize(ScMediaLocation*, unsigned long* itsType, StRef<SmMedia>* media, unsigned long family,
                    ScMC_* objectClass) override {
        std::ostringstream line;
        line << name << " asked" << (itsType ? " type" : "") << (media ? " media" : "");
        if (family) line << " family";
        if (objectClass) line << " class";
        mLog.Add(line.str());
        if (throws) SrThrow(-50, nullptr);
        if (itsType) *itsType = GetType();
        if (media && confidence > 0) *media = opens;
        return confidence;
    }
    SmMedia* NewMedia(ScMediaLocation* location) override {
        mLog.Add(name + " new media");
        if (!makes) return nullptr;
        makes->OpenNew(location);
        makes->AddReference();
        return makes.Get();
    }
    unsigned long GetType() override { return type; }
    bool GetFileDesc(long index, StMediaFileDesc& desc) override {
        if (index < 0 || index >= static_cast<long>(rows.size())) return false;
        desc = rows[static_cast<std::size_t>(index)];
        return true;
    }
    long NumberOfObjectClasses() override { return static_cast<long>(classes.size()); }
    ScMC_* ObjectClass(long index, unsigned long* family) override {
        if (family) *family = families[static_cast<std::size_t>(index)];
        return classes[static_cast<std::size_t>(index)];
    }
    void CapableOfReadAndWrite(bool& read, bool& write) override {
        read = canRead;
        write = canWrite;
    }

    std::string name = "spy";
    unsigned long type;
    short confidence;
    StRef<SmMedia> opens;  ///< what Recognize stores
    StRef<SmMedia> makes;  ///< what NewMedia gives
    std::vector<StMediaFileDesc> rows;
    std::vector<ScMC_*> classes;
    std::vector<unsigned long> families;
    bool canRead = true;
    bool canWrite = true;
    bool throws = false;
};

/// Takes the place of the global manager's recognizers for one test.
class GlobalFormats {
  public:
    GlobalFormats() { Empty(); }
    ~GlobalFormats() {
        SrInitializeGlobalMedia(true);
        SrInitializeGlobalMedia(false);
    }
    /// A new format at the end of the list, owned by the manager.
    SpyRecognizer* Add(Log& log, char const (&type)[5], short confidence = 0) {
        auto format = StRef<SpyRecognizer>::Adopt(new SpyRecognizer(log, SrCode(type), confidence));
        format->name = type;
        SrGlobalMediaManager()->Register(format.Get());
        return format.Get();
    }

  private:
    static void Empty() {
        SmMediaManager& manager = *SrGlobalMediaManager();
        while (long const count = manager.NumberOfRecognizers())
            manager.UnregisterByClass(manager.GetRecognizer(count - 1)->GetClass());
    }
};

}  // namespace media_test
