#pragma once

#include "platform/values/Ref.h"
#include "platform/values/String.h"

namespace veltrane {

/// One file type with its registration. Writing a property takes a standing registration back first; the
/// next Register declares the type anew.
class FileType final : public Counted {
public:
    ~FileType() override;

    /// @name Properties
    /// @{
    [[nodiscard]] const String& ConformsTo() const noexcept
    {
        return mConformsTo;
    } ///< type this one is a kind of
    void ConformsTo(const String& fresh) { Write(mConformsTo, fresh); }
    [[nodiscard]] const String& Extensions() const noexcept
    {
        return mExtension;
    } ///< with dots, parted by ";"
    void Extensions(const String& fresh) { Write(mExtension, fresh); }
    [[nodiscard]] bool Imported() const noexcept { return mImported; } ///< declared by another program first
    void Imported(bool fresh);
    [[nodiscard]] const String& MacCreator() const noexcept { return mMacCreator; } ///< four characters
    void MacCreator(const String& fresh) { Write(mMacCreator, fresh); }
    [[nodiscard]] const String& MacType() const noexcept { return mMacType; } ///< four characters
    void MacType(const String& fresh) { Write(mMacType, fresh); }
    [[nodiscard]] const String& MimeType() const noexcept { return mMimeType; }
    void MimeType(const String& fresh) { Write(mMimeType, fresh); }
    [[nodiscard]] const String& Name() const noexcept { return mName; } ///< what lists of types call it
    void Name(const String& fresh) { Write(mName, fresh); }
    [[nodiscard]] const String& UTI() const noexcept { return mUTI; } ///< uniform type identifier
    void UTI(const String& fresh) { Write(mUTI, fresh); }
    /// @}

    /// Declares the type to the platform, unless it stands declared.
    void Register();

    /// Takes the declaration back, if it stands.
    void Deregister();

    /// The type as a string: registers it and gives its Name.
    [[nodiscard]] String Operator_Convert();

    [[nodiscard]] bool Registered() const noexcept { return mRegistered; }

private:
    void Write(String& field, const String& fresh);

    String mConformsTo, mExtension;
    bool mImported = false;
    String mMacCreator, mMacType, mMimeType, mName;
    bool mRegistered = false;
    String mUTI;
};

} // namespace veltrane
