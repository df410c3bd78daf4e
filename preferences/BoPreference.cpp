#include "preferences/BoPreference.h"

#include "platform/files/TextStreams.h"
#include "platform/run/Application.h"
#include "platform/run/Runtime.h"

namespace veltrane {

namespace {

Ref<Dictionary> prefer; // nil before prefLecture

constexpr const char* kTrue = "OK";

Ref<FolderItem> PreferenceFile()
{
    return SpecialFolder::Preferences()->Child(BoPreference::getPrefNomPreference());
}

// A line without "=" is passed over.
void TakeLine(const String& line)
{
    const std::int64_t equals = InStr(line, 0, "=");
    if (equals != 0)
        prefer->Value(StringToVariant(Left(line, equals - 1)), StringToVariant(Mid(line, equals + 1)));
}

} // namespace

String BoPreference::getPrefNomPreference()
{
    const String program = Runtime::Current().RegisteredApplication()->ExecutableFile()->Name();
    const String bare = ReplaceAll(ReplaceAll(program, ".app", nullptr), ".exe", nullptr);
    return bare + ".pref";
}

void BoPreference::prefLecture()
{
    prefer = New<Dictionary>(std::initializer_list<Pair> {});
    const Ref<FolderItem> file = PreferenceFile();
    if (!file || !file->Exists())
        return;
    const Ref<TextInputStream> stream = TextInputStream::Open(file);
    stream->Encoding(Encodings::UTF8());
    while (!stream->Eof()) {
        TakeLine(stream->ReadLine(nullptr));
        RuntimeBackgroundTask();
    }
    stream->Close();
}

void BoPreference::prefSauvegarde()
{
    const Ref<FolderItem> file = PreferenceFile();
    if (!file)
        return;
    // Asked before the stream is made, so that a run without a table leaves the file alone.
    const std::int64_t count = prefer->Count();
    const Ref<TextOutputStream> stream = TextOutputStream::Create(file);
    for (std::int64_t i = 0; i < count; ++i) {
        const Variant key = prefer->Key(i);
        const String line = VariantToString(key) + "=" + VariantToString(prefer->Value(key));
        stream->WriteLine(ConvertEncoding(line, Encodings::UTF8()));
        RuntimeBackgroundTask();
    }
    stream->Close();
}

bool BoPreference::getPrefBoolean(const String& key, bool preset)
{
    const Variant name = StringToVariant(key);
    if (!prefer->HasKey(name))
        return preset;
    return Compare(VariantToString(prefer->Value(name)), kTrue) == 0;
}

std::int64_t BoPreference::getPrefInteger(const String& key, std::int64_t preset)
{
    const Variant name = StringToVariant(key);
    if (!prefer->HasKey(name))
        return preset;
    return ToInteger(Val(VariantToString(prefer->Value(name))));
}

void BoPreference::setPref(const String& key, std::int64_t value)
{
    StoreText(key, Str(value));
}

void BoPreference::StoreText(const String& key, const String& text)
{
    prefer->Value(StringToVariant(key), StringToVariant(text));
}

} // namespace veltrane
