// Uses the library on behalf of a program that cannot see it.
#include <cstring>
#include <exception>

#include "framewright/framewright.h"

// A plug-in's own classes, a plain one and a family of templates, come and go with it.

SM_CLASS(SmPluginObject, SmObject, 0);
class SmPluginObject : public SmManaged<SmPluginObject> {
    friend SmManaged<SmPluginObject>;
};
SM_DEFINE_CLASS(SmPluginObject);

template <class T>
class SmPluginFamily;

template <class T>
struct StClassFacts<SmPluginFamily<T>> {
    using ParentClass = SmPluginObject;
    static constexpr char const* kName = "SmPluginFamily<class template>";
    static constexpr unsigned char kVersion = 0;
    static constexpr bool kAbstract = false;
    static ScMC_* Object() { return SrClassObjectOnFirstUse<SmPluginFamily<T>>(); }
};

template <class T>
class SmPluginFamily : public SmManaged<SmPluginFamily<T>> {
    friend SmManaged<SmPluginFamily<T>>;
};

static int CountClasses(char const* name) {
    int count = 0;
    for (ScMC_* cls = ScMC_::Next(nullptr); cls; cls = ScMC_::Next(cls))
        count += std::strcmp(cls->Name(), name) == 0;
    return count;
}

/// Does a little of everything and hands an object over that the library releases when it goes. 0, or the
/// number of the line that went wrong.
extern "C" FRAMEWRIGHT_EXPORT int UseFramewright(void* object,
                                                 StReferenceCountableFunctionTable const* table);

#define CHECK(condition) \
    if (!(condition)) return __LINE__

int UseFramewright(void* object, StReferenceCountableFunctionTable const* table) {
    CHECK(SrGetStartupError() == 0);
    CHECK(SrGetInitializerNames().size() == 19);
    CHECK(ScThread::InFirstClassThread());

    SmMemoryStream* stream = SmMemoryStream::New();
    CHECK(stream);
    stream->IMemoryStream("abc", 3);
    char text[4] = "";
    stream->Read(3, text);
    CHECK(std::strcmp(text, "abc") == 0);
    stream->ReleaseReference();

    SmImagerFrame* const frame = SrMakeFrame({4, 4}, SrCode("ColB"), false, false);
    CHECK(frame);
    frame->Erase();
    frame->PutPixelAt(3, 3, StRGBA32Pixel{1, 2, 3, 255});
    CHECK(frame->GetRGBAPixelAt(3, 3).red == 3);
    SrAutoDisposeObject(StRef<SmImagerFrame>::AsReferenceCountableInterface(frame));

    // A class that no registry holds: its class object comes into being here.
    auto* const layer = SmImagerLayer<StRGB48Pixel, ScImagerNonSpool>::New();
    CHECK(layer);
    layer->ReleaseReference();

    CHECK(SrGlobalMediaManager());
    CHECK(SrGlobalMediaManager()->GetRecognizerByType(SrCode("BMP ")));

    // Whatever a thread keeps of an error must not hold the library in memory.
    try {
        ScMessageBuzzStrings message(SkAlertStrings(), 7, 1, 1, SkSimpleAlert());
        SrThrow(SkMemoryFull(), &message);
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        CHECK(SrGetExceptionValues(exception, message) == SkMemoryFull());
        CHECK(message && *message->GetText());
    }
    CHECK(SrErrorName(-1234567));

    // Alone, though the library may have met this plug-in before.
    SmPluginFamily<int>::New()->ReleaseReference();
    SmPluginFamily<char>::New()->ReleaseReference();
    CHECK(CountClasses("SmPluginFamily<class template>") == 2);
    CHECK(CountClasses("SmPluginObject") == 1);

    SrAutoDisposeObject({object, table});
    return 0;
}
